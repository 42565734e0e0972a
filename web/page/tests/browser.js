// A browser and the page in it. PELKRAFT_WEB names the folder of the built page, if it isn't
// build/web, PELKRAFT_CHROMIUM the browser, and PELKRAFT_PAGE the address of a page that is served
// already.
import { join } from "node:path";

import { chromium } from "playwright-core";

import { serve } from "../serve.mjs";
import { listenForFailures } from "./failures.js";
import { root } from "./sources.js";

const folder = process.env.PELKRAFT_WEB ?? join(root, "build/web");

/** A browser for the tests of a file; ends with the test that it was started in. */
export async function startBrowser(all) {
    const given = process.env.PELKRAFT_PAGE;
    const server = given === undefined ? await serve(folder) : null;
    const browser = await chromium.launch({
        executablePath: process.env.PELKRAFT_CHROMIUM ?? "/usr/bin/chromium",
        args: [
            "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
            "--disable-background-networking", "--disable-component-update", "--disable-sync",
        ],
    });
    all.after(async () => {
        await browser.close();
        server?.close();
    });
    return { browser, address: given ?? `http://127.0.0.1:${server.address().port}/` };
}

/**
 * Opens the page for one test, in which no script may fail and no policy be broken. A script may run
 * before those of the page.
 */
export async function openPage(test, { browser, address }, options = {}, hash = "", first = null) {
    const context = await browser.newContext({
        viewport: { width: 1440, height: 900 }, permissions: ["clipboard-read", "clipboard-write"],
        ...options,
    });
    context.setDefaultTimeout(10_000);
    const page = await context.newPage();
    if (first !== null) {
        await page.addInitScript(first);
    }
    const failures = await listenForFailures(page);
    test.after(async () => {
        await context.close();
        if (failures.length > 0) {
            throw new Error(failures.join("\n"));
        }
    });
    await page.goto(address + hash);
    await page.locator(".found .summary").filter({ hasNotText: "Reading" }).waitFor();
    return page;
}

/** The text in the editor; lines that aren't drawn have their place too. */
export function textOf(page, which = 0) {
    return page.evaluate((index) => document.querySelectorAll("pattern-editor")[index].text, which);
}

/** Puts a text into the editor as a person does, by the clipboard. */
export async function paste(page, text) {
    await page.locator("pattern-editor .cm-content").first().focus();
    await page.evaluate((words) => navigator.clipboard.writeText(words), text);
    await page.keyboard.press("Control+A");
    await page.keyboard.press("Control+V");
}

/** The sentence that tells how the text stands, once it is about the text that is there. */
export async function summaryIs(page, words) {
    await page.locator(".found .summary").filter({ hasText: words }).waitFor({ timeout: 5000 });
}

/** The page has drawn something else than paper. */
export async function dotsAreSeen(page, which = 0) {
    await page.waitForFunction((index) => {
        const canvas = [...document.querySelectorAll(".extent canvas")]
            .filter((one) => one.offsetParent !== null)[index];
        if (canvas === undefined || canvas.width === 0) {
            return false;
        }
        const { data } = canvas.getContext("2d").getImageData(0, 0, canvas.width, canvas.height);
        const [red, green, blue] = data;
        return data.some((value, at) => at % 4 < 3 && value !== [red, green, blue][at % 4]);
    }, which, { timeout: 10000 });
}
