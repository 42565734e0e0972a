// The ink of a step is what the dither takes for its tone, on the page as in the program.
import assert from "node:assert/strict";
import { test } from "node:test";

import { openPage, paste, startBrowser, summaryIs } from "./browser.js";

// Step, ink of the machine by its strength: a light ink counts 0.4.
const light = `DotWeavePattern
VERSION 3
BEGIN_OUT_INKS Cyan LightCyan END_OUT_INKS
BEGIN_IN_COLORS Cyan END_IN_COLORS
BEGIN_IN_COLOR Cyan
BEGIN_INKS Cyan LightCyan END_INKS
BEGIN_VALUES
1 1:3 1-200 1-0
2 1 1-200
3 1:1 0-200 1-200
4 1 0-100
END_VALUES
END_IN_COLOR
`;
const expected = [0, 0.25 * 0.4, 0.4, 0.5 + 0.5 * 0.4, 0.5];

test("the ink of steps", async (all) => {
    const started = await startBrowser(all);

    await all.test("counts a light ink as the dither does, and says so", async (one) => {
        const page = await openPage(one, started);
        await paste(page, light);
        await summaryIs(page, "Nothing is wrong");
        await page.getByRole("tab", { name: "Shares" }).click();
        await page.getByText("In it LightCyan counts 0.4 of a full ink.").waitFor();
        await page.getByText("Mean ink of Cyan as a table").click();
        const rows = page.locator("figure").first().locator("tbody tr");
        // The measured shares come a moment later.
        await rows.nth(2).locator("td").nth(2).filter({ hasText: "40 %" }).waitFor();
        for (const [step, ink] of expected.entries()) {
            const [, told, measured] = await rows.nth(step).locator("td").allTextContents();
            assert.equal(told, `${Number((100 * ink).toFixed(2))} %`);
            assert.ok(Math.abs(Number.parseFloat(measured) - 100 * ink) < 1, measured);
        }
    });

    await all.test("falls in the drawing where the dither says that it falls", async (one) => {
        const page = await openPage(one, started);
        await paste(page, light);
        await page.getByRole("tab", { name: "Dots" }).click();
        // 0.5 of 200 after 0.7 of 200.
        await page.getByText("step 4 has no more ink than step 3, 100.000 after 140.000").waitFor();
        await page.getByRole("tab", { name: "Shares" }).click();
        const path = await page.locator("figure .expected").first().getAttribute("d");
        const heights = path.split(/[ML]/).slice(1).map((place) => Number(place.split(" ")[1]));
        assert.ok(heights[4] > heights[3], path);
    });

    await all.test("a pattern of full inks alone needs no word about strength", async (one) => {
        const page = await openPage(one, started);
        await paste(page, light.replaceAll("LightCyan", "Black"));
        await page.getByRole("tab", { name: "Shares" }).click();
        await page.locator(".ink-name").getByText("Black").first().waitFor();
        await page.getByText("Mean ink of Cyan by step, in percent of full ink").waitFor();
        assert.equal(await page.getByText("counts 0.4").count(), 0);
    });
});
