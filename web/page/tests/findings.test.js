// Each finding is underlined where it stands, listed with its line, and explained.
import assert from "node:assert/strict";
import { test } from "node:test";

import { openPage, paste, startBrowser, summaryIs, textOf } from "./browser.js";

const sound = `DotWeavePattern
VERSION 2
BEGIN_OUT_INKS Cyan LightCyan END_OUT_INKS
BEGIN_IN_COLORS Cyan END_IN_COLORS
BEGIN_IN_COLOR Cyan
BEGIN_INKS Cyan LightCyan END_INKS
BEGIN_VALUES
1 1:3 1-255 1-0
2 1   0-255
END_VALUES
END_IN_COLOR
`;

// A slip, the word that must be underlined, its line, and the name of its severity.
const slips = [
    ["LightCyan END_INKS", "LightCyan end_inks", "end_inks", 6, "Error"],
    ["Cyan LightCyan END_INKS", "Cyan LihgtCyan END_INKS", "LihgtCyan", 6, "Warning"],
    ["1-255 1-0", "1-300 1-0", "1-300", 8, "Warning"],
    ["VERSION 2\n", "VERSION 2\nnonsense\n", "nonsense", 3, "Warning"],
    ["VERSION 2\n", "# “grün” 🖨\nVERSION 2\nnonsense\n", "nonsense", 4, "Warning"],
    ["2 1   0-255", "9 1   0-255", "9", 9, "Error"],
    ["2 1   0-255", "2 1   7-255", "7-255", 9, "Warning"],
];

// The underlined words with their severities; a word's pieces of several colours are joined.
function underlined(page) {
    return page.evaluate(() => {
        const root = document.querySelector("pattern-editor").shadowRoot;
        return [...root.querySelectorAll(".cm-lintRange")].map((mark) => mark.textContent);
    });
}

test("findings", async (all) => {
    const started = await startBrowser(all);
    for (const [before, after, word, line, severity] of slips) {
        await all.test(`"${word}" is underlined, listed and led to`, async (one) => {
            const page = await openPage(one, started);
            assert.ok(sound.includes(before));
            await paste(page, sound.replace(before, after));
            const item = page.locator(".finding").filter({ hasText: `${severity} in line ${line}` });
            await item.first().waitFor();
            assert.ok((await underlined(page)).join("").includes(word), await underlined(page));
            await item.first().getByRole("button").first().click();
            const chosen = await page.evaluate(() =>
                document.querySelector("pattern-editor").selectedText);
            assert.equal(chosen, word);
        });
    }

    await all.test("a sound text has none", async (one) => {
        const page = await openPage(one, started);
        await paste(page, sound);
        await summaryIs(page, "Nothing is wrong");
        assert.deepEqual(await underlined(page), []);
        assert.equal(await page.locator(".finding").count(), 0);
    });

    await all.test("a fix is taken from the list and by the key", async (one) => {
        const page = await openPage(one, started);
        const slip = sound.replace("LightCyan END_INKS", "LightCyan end_inks");
        await paste(page, slip);
        await page.getByRole("button", { name: "Write END_INKS", exact: true }).click();
        await summaryIs(page, "Nothing is wrong");
        assert.equal(await textOf(page), sound);
        await paste(page, slip);
        await page.locator(".finding button.plain").first().click();
        await page.keyboard.press("Control+.");
        await summaryIs(page, "Nothing is wrong");
        assert.equal(await textOf(page), sound);
    });

    await all.test("all fixes are taken at once", async (one) => {
        const page = await openPage(one, started);
        await paste(page, sound.replace("LightCyan END_INKS", "LightCyan end_inks")
            .replace("END_VALUES", "end_values"));
        await summaryIs(page, "2 errors");
        await page.getByRole("button", { name: "Take all fixes" }).click();
        await summaryIs(page, "Nothing is wrong");
        assert.equal(await textOf(page), sound);
    });

    await all.test("the mouse over a finding and over a keyword gets an explanation", async (one) => {
        const page = await openPage(one, started);
        await paste(page, sound.replace("LightCyan END_INKS", "LightCyan end_inks"));
        await page.locator("pattern-editor .cm-lintRange").first().hover();
        await page.locator("pattern-editor .cm-tooltip").getByText("no keyword in this case")
            .waitFor();
        await page.locator("pattern-editor").getByText("BEGIN_VALUES").hover();
        await page.locator("pattern-editor .cm-tooltip").getByText("A line for each step").waitFor();
    });
});
