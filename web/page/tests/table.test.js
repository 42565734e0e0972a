// The table is worked in by itself: changes are taken back there, and the focus is never lost.
import assert from "node:assert/strict";
import { test } from "node:test";

import { openPage, paste, startBrowser, summaryIs, textOf } from "./browser.js";

const pattern = `DotWeavePattern
VERSION 3
BEGIN_OUT_INKS Cyan LightCyan END_OUT_INKS
BEGIN_IN_COLORS Cyan END_IN_COLORS
BEGIN_IN_COLOR Cyan
BEGIN_INKS Cyan LightCyan END_INKS
BEGIN_VALUES
1 1:3 1-255 1-0
2 1 1-255
3 1 0-255
END_VALUES
END_IN_COLOR
`;

async function openPattern(test, started, options) {
    const page = await openPage(test, started, options);
    await paste(page, pattern);
    await page.getByLabel("Number of Cyan step 3").waitFor();
    await summaryIs(page, "Nothing is wrong");
    return page;
}

// The name of what has the focus; the page's body has none.
function focused(page) {
    return page.evaluate(() => document.activeElement.getAttribute("aria-label")
        ?? (document.activeElement === document.body ? "nothing"
            : document.activeElement.textContent));
}

async function said(page, words) {
    await page.locator(".history [role=status]").getByText(words).waitFor();
}

async function type(page, label, value) {
    const field = page.getByLabel(label, { exact: true });
    await field.focus();
    await page.keyboard.press("Control+A");
    await page.keyboard.type(value);
    return field;
}

test("the table", async (all) => {
    const started = await startBrowser(all);

    await all.test("a change is undone and made again from its own field", async (one) => {
        const page = await openPattern(one, started);
        const share = "Share of Cyan step 1, alternative 1 in percent";
        const field = await type(page, share, "40");
        await page.keyboard.press("Enter");
        const changed = pattern.replace("1:3", "2:3");
        assert.equal(await textOf(page), changed);

        await page.keyboard.press("Control+Z");
        assert.equal(await textOf(page), pattern);
        await said(page, "The last change is undone.");
        assert.equal(await focused(page), share);
        assert.equal(await field.inputValue(), "25");

        for (const key of ["Control+Y", "Control+Shift+Z"]) {
            await page.keyboard.press(key);
            assert.equal(await textOf(page), changed, key);
            assert.equal(await field.inputValue(), "40");
            await page.keyboard.press("Control+Z");
            assert.equal(await textOf(page), pattern, key);
        }
    });

    await all.test("what is being typed is undone ahead of the pattern", async (one) => {
        const page = await openPattern(one, started);
        const field = await type(page, "Weight of Cyan step 1, alternative 1", "7");
        await page.keyboard.press("Control+Z");
        assert.equal(await textOf(page), pattern);
        assert.equal(await field.inputValue(), "1");
    });

    await all.test("a change is undone wherever the focus is but in other fields", async (one) => {
        const page = await openPattern(one, started);
        const changed = pattern.replace("3 1 0-255", "3 1 0-200");
        await type(page, "Value of Cyan step 3, alternative 1", "200");
        await page.keyboard.press("Tab");
        assert.equal(await textOf(page), changed);
        await page.getByRole("tab", { name: "Dots" }).click();
        await page.getByLabel("Tones").focus();
        await page.keyboard.press("Control+Z");
        assert.equal(await textOf(page), changed);
        await page.getByRole("tab", { name: "Dots" }).focus();
        await page.keyboard.press("Control+Z");
        assert.equal(await textOf(page), pattern);
    });

    await all.test("a finger undoes, and hears when nothing is left", async (one) => {
        const page = await openPattern(one, started, { hasTouch: true, isMobile: true,
            viewport: { width: 390, height: 780 } });
        await page.getByLabel("Ink of Cyan step 3, alternative 1").selectOption("LightCyan");
        const changed = pattern.replace("3 1 0-255", "3 1 1-255");
        assert.equal(await textOf(page), changed);
        await page.getByRole("button", { name: "Undo" }).tap();
        assert.equal(await textOf(page), pattern);
        await page.getByRole("button", { name: "Redo" }).tap();
        assert.equal(await textOf(page), changed);
        await said(page, "The change is made again.");
        await page.getByRole("button", { name: "Redo" }).tap();
        await said(page, "There is nothing to redo.");
    });

    // A button that removes, what the page says then, and where the focus is: after that, and after
    // the change was undone.
    const removals = [
        ["Remove Cyan step 2", "Cyan step 2", "Remove Cyan step 3", "Remove Cyan step 2"],
        ["Remove Cyan step 3", "Cyan step 3", "Remove Cyan step 2", "Remove Cyan step 2"],
        ["Remove Cyan step 1, alternative 1", "Cyan step 1, alternative 1",
            "Add an alternative to Cyan step 1", "Add an alternative to Cyan step 1"],
        ["Take Cyan from Cyan", "Cyan as an ink of Cyan", "Take LightCyan from Cyan",
            "Take Cyan from Cyan"],
        ["Take LightCyan from Cyan", "LightCyan as an ink of Cyan", "Take Cyan from Cyan",
            "Take Cyan from Cyan"],
        ["Remove in-colour Cyan", "in-colour Cyan", "Name of a new in-colour",
            "Name of a new in-colour"],
    ];
    for (const [name, gone, next, back] of removals) {
        await all.test(`the focus goes on from "${name}"`, async (one) => {
            const page = await openPattern(one, started);
            await page.getByRole("button", { name, exact: true }).focus();
            await page.keyboard.press("Enter");
            await said(page, `Removed: ${gone}. Undo brings it back.`);
            assert.notEqual(await textOf(page), pattern);
            assert.equal(await focused(page), next);
            await page.waitForTimeout(400);
            assert.equal(await focused(page), next, "after the findings have come");
            await page.keyboard.press("Control+Z");
            assert.equal(await textOf(page), pattern);
            assert.equal(await focused(page), back);
        });
    }

    await all.test("an ink of the machine goes, and comes back", async (one) => {
        const page = await openPattern(one, started);
        const label = "Remove Cyan from the machine, which 1 alternative prints";
        await page.getByRole("button", { name: label, exact: true }).focus();
        await page.keyboard.press("Enter");
        assert.equal(await textOf(page), pattern.replaceAll("Cyan LightCyan", "LightCyan")
            .replace("1-255 1-0", "0-255 0-0").replace("2 1 1-255", "2 1 0-255")
            .replace("3 1 0-255", "3 1 0-0"));
        await said(page, "Removed: Cyan as an ink of the machine; 1 alternative that printed it "
            + "gives no drop now. Undo brings it back.");
        assert.equal(await focused(page),
            "Remove LightCyan from the machine, which 2 alternatives print");
        await page.keyboard.press("Enter");
        assert.equal(await focused(page), "Name of a new ink");
        await page.getByRole("button", { name: "Undo" }).click();
        await page.getByRole("button", { name: "Undo" }).click();
        assert.equal(await textOf(page), pattern);
    });

    await all.test("a step goes on from the last one, as the table says before", async (one) => {
        const page = await openPattern(one, started);
        await paste(page, pattern.replace("2 1 1-255\n3 1 0-255\n", ""));
        const steps = [["LightCyan 255", "2 1 1-255"], ["Cyan 255", "3 1 0-255"]];
        for (const [offered, written] of steps) {
            await page.locator(".next-step").getByText(`It begins with ${offered} at every pixel`)
                .waitFor();
            await page.getByRole("button", { name: "Add step" }).click();
            assert.match(await textOf(page), new RegExp(`^${written}$`, "m"));
        }
        assert.equal(await textOf(page), pattern);
    });

    await all.test("last steps, last inks and new in-colours keep the focus", async (one) => {
        const page = await openPattern(one, started);
        const press = async (name) => {
            await page.getByRole("button", { name, exact: true }).focus();
            await page.keyboard.press("Enter");
        };
        for (const step of [3, 2, 1]) {
            await press(`Remove Cyan step ${step}`);
        }
        assert.equal(await focused(page), "Add step 1");
        await press("Take Cyan from Cyan");
        await press("Take LightCyan from Cyan");
        assert.equal(await focused(page), "Add an ink to Cyan");
        await page.getByLabel("Name of a new in-colour").focus();
        await page.keyboard.type("Black");
        await page.keyboard.press("Enter");
        await page.getByLabel("Name of in-colour Black").waitFor();
        assert.equal(await focused(page), "Name of a new in-colour");
    });
});
