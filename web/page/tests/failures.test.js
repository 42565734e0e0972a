// No page test passes over an error: what would go wrong unseen is heard, and its place is told.
import assert from "node:assert/strict";
import { test } from "node:test";

import { startBrowser } from "./browser.js";
import { listenForFailures } from "./failures.js";

// Things that the page must never do, and what is heard of each.
const faults = [
    ["an inline style", () => document.body.setAttribute("style", "color: red"),
        /the policy stopped inline by style-src-attr, asked for in .*:\d+/],
    ["a style element in the editor's shadow root", () => {
        const style = document.createElement("style");
        style.textContent = "b { color: red }";
        document.querySelector("pattern-editor").shadowRoot.append(style);
    }, /the policy stopped inline by style-src-elem/],
    ["a picture from elsewhere", () => {
        new Image().src = "http://127.0.0.1:9/x.png";
    }, /the policy stopped http:\/\/127\.0\.0\.1:9\/x\.png by img-src/],
    ["a form that is sent", () => {
        const form = document.createElement("form");
        document.body.append(form);
        form.submit();
    }, /the policy stopped .* by form-action/],
    ["an error that nobody catches", () => {
        setTimeout(() => {
            throw new Error("nobody caught it");
        });
    }, /nobody caught it/],
    ["a promise that nobody catches", () => {
        void Promise.reject(new Error("nobody kept it"));
    }, /nobody kept it/],
    ["a complaint on the console", () => console.error("a complaint"), /^a complaint$/],
];

test("failures", async (all) => {
    const started = await startBrowser(all);
    for (const [name, act, heard] of faults) {
        await all.test(`${name} is heard`, async () => {
            const context = await started.browser.newContext();
            const page = await context.newPage();
            const failures = await listenForFailures(page);
            await page.goto(started.address);
            await page.locator(".found .summary").filter({ hasText: "Nothing is wrong" }).waitFor();
            assert.deepEqual(failures, []);
            await page.evaluate(act);
            await page.waitForTimeout(200);
            assert.ok(failures.some((words) => heard.test(words)), failures.join("\n"));
            await context.close();
        });
    }
});
