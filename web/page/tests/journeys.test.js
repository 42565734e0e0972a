// A pattern from nothing to the files that an author takes home: by keyboard alone, by mouse, and by
// touch.
import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { join } from "node:path";
import { test } from "node:test";

import { dotsAreSeen, openPage, startBrowser, summaryIs, textOf } from "./browser.js";
import { root } from "./sources.js";

const typed = `DotWeavePattern
VERSION 3
BEGIN_OUT_INKS Cyan Black END_OUT_INKS
BEGIN_IN_COLORS Cyan END_IN_COLORS
BEGIN_IN_COLOR Cyan
BEGIN_INKS Cyan Black end_inks
BEGIN_VALUES
1 1:3 0-255 0-0
2 1 1-255
END_VALUES
END_IN_COLOR
`;
const sound = typed.replace("end_inks", "END_INKS");

// Goes on with the key Tab to the element that has this name.
async function tabTo(page, name) {
    for (let step = 0; step < 200; ++step) {
        await page.keyboard.press("Tab");
        const found = await page.evaluate(() => {
            const one = document.activeElement;
            return one.getAttribute("aria-label")
                ?? one.labels?.[0]?.textContent ?? one.textContent;
        });
        if (found.startsWith(name)) {
            return;
        }
    }
    throw new Error(`the key Tab doesn't lead to "${name}"`);
}

async function goToTab(page, name) {
    const tab = page.getByRole("tab", { name });
    await page.getByRole("tab", { selected: true }).focus();
    for (let step = 0; step < 5 && await tab.getAttribute("aria-selected") !== "true"; ++step) {
        await page.keyboard.press("ArrowRight");
    }
    assert.equal(await tab.getAttribute("aria-selected"), "true");
}

function cursorLine(page) {
    return page.locator(".place span").textContent();
}

function clipboard(page) {
    return page.evaluate(() => navigator.clipboard.readText());
}

async function saved(page, act) {
    const [download] = await Promise.all([page.waitForEvent("download"), act()]);
    return [download.suggestedFilename(), await readFile(await download.path())];
}

test("journeys", async (all) => {
    const started = await startBrowser(all);

    await all.test("by keyboard alone", async (one) => {
        const page = await openPage(one, started);
        await page.keyboard.press("Tab");
        await page.keyboard.press("Enter");
        await page.keyboard.press("Control+A");
        // The editor follows the browser's own selection, which is told a moment later.
        await page.waitForFunction(() => {
            const { text, selectedText } = document.querySelector("pattern-editor");
            return text === selectedText;
        });
        await page.keyboard.press("Delete");
        for (const line of typed.split("\n")) {
            await page.keyboard.type(line);
            if (line.includes("end_inks")) {
                await page.keyboard.press("Escape");
            }
            // So long that suggestions would be there; none takes the key that ends the line.
            await page.waitForTimeout(250);
            await page.keyboard.press("Enter");
        }
        await summaryIs(page, "1 error");
        await page.keyboard.press("Control+Home");
        await page.keyboard.press("F8");
        await page.keyboard.press("Control+.");
        await summaryIs(page, "Nothing is wrong");
        assert.equal((await textOf(page)).trimEnd(), sound.trimEnd());

        await tabTo(page, "Share of Cyan step 1, alternative 1");
        await page.keyboard.press("Control+A");
        await page.keyboard.type("40");
        await page.keyboard.press("Enter");
        await page.waitForFunction(() =>
            document.querySelector("pattern-editor").text.includes("1 2:3 0-255 0-0"));
        await tabTo(page, "Go to line 9");
        await page.keyboard.press("Enter");
        assert.equal(await cursorLine(page), "Line 9: Cyan, step 2");
        await page.keyboard.press("Control+Enter");
        await page.getByRole("tab", { name: "Shares", selected: true }).waitFor();
        await page.keyboard.press("Shift+Tab");
        await page.keyboard.press("Enter");
        assert.equal(await cursorLine(page), "Line 8: Cyan, step 1");

        await goToTab(page, "Dots");
        await dotsAreSeen(page);
        await tabTo(page, "4:1");
        await page.keyboard.press("ArrowRight");
        await page.keyboard.press("ArrowRight");
        await page.getByRole("img", { name: "at 16 to 1" }).waitFor();
        await tabTo(page, "Dots; the arrow keys");
        await page.keyboard.press("End");
        for (let press = 0; press < 5; ++press) {
            await page.keyboard.press("ArrowRight");
        }
        await page.waitForFunction(() => document.querySelector(".viewer").scrollLeft > 0);

        await goToTab(page, "Compare");
        await tabTo(page, "16:1");
        await page.keyboard.press("ArrowLeft");
        await page.keyboard.press("ArrowLeft");
        assert.equal(await page.evaluate(() => document.activeElement.value), "4");
        await page.getByRole("img", { name: "at 4 to 1" }).first().waitFor();

        await goToTab(page, "Take away");
        await tabTo(page, "Copy the link");
        await page.keyboard.press("Enter");
        await page.getByText("Copied.").waitFor();
        const link = await clipboard(page);
        await tabTo(page, "Copy as command");
        await page.keyboard.press("Enter");
        await page.waitForFunction(async () =>
            (await navigator.clipboard.readText()).startsWith("pelkraft simulate"));
        await page.goto("about:blank");
        await page.goto(link);
        await page.locator("pattern-editor").first().waitFor();
        assert.equal((await textOf(page)).trimEnd(), sound.replace("1:3", "2:3").trimEnd());
    });

    await all.test("by mouse", async (one) => {
        const page = await openPage(one, started);
        await page.getByText("Examples", { exact: true }).click();
        await page.getByRole("link", { name: "Three drop sizes" }).click();
        await page.getByLabel("Value of Cyan step 3, alternative 1").waitFor();
        await summaryIs(page, "Nothing is wrong");
        await page.getByRole("button", { name: "Add an alternative to Cyan step 2" }).click();
        await page.getByLabel("Weight of Cyan step 2, alternative 2").fill("3");
        // The click itself ends the change of the field.
        await page.getByRole("button", { name: "Add step 4" }).click();
        assert.match(await textOf(page), /^2 1:3 0-170 0-0 +# medium drops\n3 1 0-255 +# large drops\n4 1 0-255$/m);
        await page.getByRole("tab", { name: "Shares" }).click();
        const bars = page.getByRole("button", { name: /^Cyan step 4 / });
        await bars.waitFor();
        await bars.click();
        assert.equal(await cursorLine(page), "Line 13: Cyan, step 4");
        const current = page.locator("[aria-current=true].step-bars");
        await current.waitFor();
        assert.equal(await current.count(), 1);
        await page.getByRole("button", { name: "Show its shares" }).click();
        assert.match(await page.evaluate(() => document.activeElement.textContent), /^Cyan step 4/);

        await page.getByRole("tab", { name: "Dots" }).click();
        await dotsAreSeen(page);
        await page.getByLabel("16:1").click();
        await page.getByRole("img", { name: "at 16 to 1" }).waitFor();
        await page.getByLabel("Patches").click();
        await dotsAreSeen(page);
        await page.getByLabel("Show").selectOption("Cyan alone");
        await page.getByRole("img", { name: "Cyan alone" }).waitFor();

        await page.getByLabel("Own picture").check();
        // Nobody takes the ramp for a picture of their own.
        await page.getByText("No picture is chosen yet.").waitFor();
        await page.getByRole("img", { name: "No dots" }).waitFor({ state: "attached" });
        await page.getByRole("tab", { name: "Take away" }).click();
        await page.getByRole("button", { name: "Save picture.tif" }).click();
        await page.locator(".take .said").getByText("No picture is chosen yet.").waitFor();
        await page.getByRole("tab", { name: "Dots" }).click();
        await page.getByLabel("PNG, JPEG or TIFF").setInputFiles(
            join(root, "docs/pictures/balls.png"));
        await page.getByText("C, M, Y are 255 less R, G, B").waitFor();
        await dotsAreSeen(page);
        assert.equal(await page.locator(".dots .why").textContent(), "");
        await page.getByText("What is seen, in numbers").click();
        await page.getByRole("row", { name: /^Cyan/ }).waitFor();

        await page.getByRole("tab", { name: "Compare" }).click();
        await page.getByText("Both texts are the same.").waitFor();
        await page.getByLabel("Example to compare with").selectOption("Weights");
        await page.getByRole("button", { name: "Open", exact: true }).click();
        await page.getByRole("group", { name: "Size of a dot in both" }).getByLabel("1:1").check();
        await page.getByText(/^\d+ differences in what they do/).waitFor();
        await dotsAreSeen(page, 0);
        await dotsAreSeen(page, 1);

        await page.getByRole("tab", { name: "Take away" }).click();
        const text = await textOf(page);
        const save = (name) => saved(page, () => page.getByRole("button", { name }).click());
        const [textName, textBytes] = await save("Save pattern.txt");
        assert.equal(textName, "pattern.txt");
        assert.equal(textBytes.toString(), text);
        const [, tiff] = await save("Save picture.tif");
        assert.equal(tiff.subarray(0, 4).toString("latin1"), "II*\0");
        const [, drawing] = await save("Plot as SVG");
        assert.match(drawing.toString(), /<svg[^]*Cyan step 4/);
        const [, picture] = await save("Dots as PNG");
        assert.equal(picture.subarray(1, 4).toString("latin1"), "PNG");
        const [, log] = await save("Findings as SARIF");
        assert.equal(JSON.parse(log).version, "2.1.0");
    });

    await all.test("by touch", async (one) => {
        const page = await openPage(one, started, {
            viewport: { width: 390, height: 780 }, hasTouch: true, isMobile: true,
        });
        await page.getByText("Examples", { exact: true }).tap();
        await page.getByRole("link", { name: "Weights" }).tap();
        await page.getByRole("button", { name: "Remove Cyan step 7" }).tap();
        await page.getByRole("button", { name: "Remove Cyan step 7" }).waitFor({ state: "detached" });
        assert.doesNotMatch(await textOf(page), /^7 1/m);
        await page.getByRole("button", { name: "Go to line 15" }).tap();
        assert.equal(await cursorLine(page), "Line 15: Cyan, step 6");
        await page.getByRole("tab", { name: "Shares" }).tap();
        await page.getByRole("button", { name: /^Cyan step 5 / }).tap();
        assert.equal(await cursorLine(page), "Line 14: Cyan, step 5");
        await page.getByRole("tab", { name: "Dots" }).tap();
        await dotsAreSeen(page);
        await page.getByLabel("8:1").tap();
        await page.getByRole("img", { name: "at 8 to 1" }).waitFor();
        await page.getByRole("tab", { name: "Take away" }).tap();
        await page.getByRole("button", { name: "Copy the link" }).tap();
        await page.getByText("Copied.").waitFor();
    });
});
