// The page for everyone: axe finds nothing, all is reached by the key Tab, and nothing is cut off.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { test } from "node:test";

import { openPage, paste, startBrowser, summaryIs } from "./browser.js";

const axe = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");
const tabs = ["table", "shares", "dots", "compare", "take"];

const faulty = `DotWeavePattern
VERSION 2
nonsense
BEGIN_OUT_INKS Cyan Magenta Black END_OUT_INKS
BEGIN_IN_COLORS Cyan Magenta END_IN_COLORS
BEGIN_IN_COLOR Cyan BEGIN_INKS Cyan Black END_INKS
BEGIN_VALUES 1 1:3 0-255 1-300  2 1 0-255 END_VALUES END_IN_COLOR
BEGIN_IN_COLOR Magenta BEGIN_INKS Magenta END_INKS
BEGIN_VALUES 1 1:1 0-255 0-0 END_VALUES END_IN_COLOR
`;

async function show(page, tab) {
    await page.locator(`[data-tab=${tab}]`).click();
    await page.locator("[role=tabpanel]:not([hidden])").locator("*").first().waitFor();
    for (const details of await page.locator("[role=tabpanel]:not([hidden]) details").all()) {
        await details.evaluate((one) => {
            one.open = true;
        });
    }
    await page.waitForTimeout(300);
}

async function violations(page) {
    // The page's policy lets no script in, so it is evaluated as the tools of a browser do.
    await page.evaluate(`${axe}; void 0`);
    const { violations: found } = await page.evaluate(() => globalThis.axe.run(document));
    return found.map(({ id, nodes }) => `${id}: ${nodes.map(({ html, failureSummary }) =>
        `${html.slice(0, 160)} ${failureSummary}`).join("\n")}`);
}

test("for everyone", async (all) => {
    const started = await startBrowser(all);
    for (const colorScheme of ["light", "dark"]) {
        await all.test(`axe finds nothing in the ${colorScheme}`, async (one) => {
            const page = await openPage(one, started, { colorScheme });
            await paste(page, faulty);
            await summaryIs(page, "warning");
            for (const tab of tabs) {
                await show(page, tab);
                assert.deepEqual(await violations(page), [], tab);
            }
        });
    }

    for (const width of [320, 768, 1440]) {
        await all.test(`nothing is cut off at ${width} pixels`, async (one) => {
            const page = await openPage(one, started, { viewport: { width, height: 800 } });
            await paste(page, faulty);
            await summaryIs(page, "warning");
            for (const tab of tabs) {
                await show(page, tab);
                const wide = await page.evaluate(() => [...document.querySelectorAll("body *")]
                    .filter((one) => one.getBoundingClientRect().right > innerWidth + 1
                        && one.closest(".scroll, .viewer, .unseen, pre, svg") === null)
                    .map((one) => one.outerHTML.slice(0, 120)));
                assert.deepEqual(wide, [], tab);
                assert.equal(await page.evaluate(() => document.documentElement.scrollWidth), width,
                    tab);
            }
        });
    }

    for (const tab of tabs) {
        await all.test(`the key Tab reaches all of ${tab}, and the focus is seen`, async (one) => {
            const page = await openPage(one, started);
            await paste(page, faulty);
            await summaryIs(page, "warning");
            await show(page, tab);
            const expected = await page.evaluate(() => {
                const selector = "a[href], button, input, select, summary, [tabindex='0']";
                const groups = new Set();
                return [...document.querySelectorAll(selector)].filter((one) => {
                    // The arrow keys go on within tabs and among the radio buttons of a group.
                    const group = one.type === "radio" ? one.name : null;
                    const isSecond = group !== null && groups.has(group);
                    groups.add(group);
                    return !one.disabled && one.tabIndex >= 0 && one.checkVisibility()
                        && !isSecond;
                }).length;
            });
            const seen = await walk(page);
            assert.ok(expected > 10);
            assert.ok(seen.count >= expected, `${seen.count} of ${expected}`);
            assert.deepEqual(seen.unmarked, []);
        });
    }

    await all.test("every sign has a word that is seen, and that its label holds", async (one) => {
        const page = await openPage(one, started, { viewport: { width: 320, height: 800 } });
        await paste(page, faulty);
        await summaryIs(page, "warning");
        for (const tab of ["table", "dots"]) {
            await show(page, tab);
            const panel = page.locator("[role=tabpanel]:not([hidden])");
            // Signs that have no room for a word are explained in a sentence.
            const [, explained = ""] =
                /The signs (.*) remove what they stand at\./.exec(await panel.innerText()) ?? [];
            const buttons = panel.locator("button").filter({ visible: true });
            const signs = await buttons.evaluateAll((found) => found.map((one) =>
                [one.innerText.trim(), one.getAttribute("aria-label") ?? one.innerText]));
            assert.ok(signs.length > 3, tab);
            for (const [words, label] of signs) {
                const letters = words.replace(/^\W+/, "");
                assert.ok(letters === "" ? explained.split(" and ").includes(words)
                    : label.includes(letters), `${words}: ${label}`);
            }
        }
    });

    await all.test("the text is left by the key Tab, both ways", async (one) => {
        const page = await openPage(one, started);
        await page.locator("pattern-editor .cm-content").first().focus();
        await page.keyboard.press("Tab");
        assert.notEqual(await focused(page), "PATTERN-EDITOR");
        await page.keyboard.press("Shift+Tab");
        assert.equal(await focused(page), "PATTERN-EDITOR");
        await page.keyboard.press("Shift+Tab");
        assert.notEqual(await focused(page), "PATTERN-EDITOR");
    });
});

function focused(page) {
    return page.evaluate(() => document.activeElement.tagName);
}

// Presses Tab from the top until the focus comes round, and looks at each element that it finds.
async function walk(page) {
    await page.evaluate(() => {
        const first = document.querySelector(".skip");
        first.focus();
        globalThis.walked = new Set([first]);
        globalThis.unmarked = [];
    });
    for (let step = 0; step < 400; ++step) {
        await page.keyboard.press("Tab");
        const goesOn = await page.evaluate(() => {
            const one = document.activeElement;
            if (one === document.body || globalThis.walked.has(one)) {
                return false;
            }
            globalThis.walked.add(one);
            const marks = one.matches(".segments input") ? one.nextElementSibling : one;
            const { outlineStyle, outlineWidth, boxShadow } = getComputedStyle(
                one.tagName === "PATTERN-EDITOR" ? one.closest(".text, .other-text") : marks);
            if ((outlineStyle === "none" || outlineWidth === "0px") && boxShadow === "none") {
                globalThis.unmarked.push(one.outerHTML.slice(0, 120));
            }
            return true;
        });
        if (!goesOn && step > 0) {
            break;
        }
    }
    return page.evaluate(() =>
        ({ count: globalThis.walked.size, unmarked: globalThis.unmarked }));
}
