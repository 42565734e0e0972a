// The author's text is never lost: not by a reload, by a link, or by work that is ended.
import assert from "node:assert/strict";
import { test } from "node:test";

import { dotsAreSeen, openPage, paste, startBrowser, summaryIs, textOf } from "./browser.js";
import { load } from "./sources.js";

const { encodeLink } = await load("src/links.ts");

const mine = `DotWeavePattern
VERSION 3
BEGIN_OUT_INKS Grün "Pantone 485 C" END_OUT_INKS   # “mine”
BEGIN_IN_COLORS Grün END_IN_COLORS
BEGIN_IN_COLOR Grün BEGIN_INKS Grün "Pantone 485 C" END_INKS
BEGIN_VALUES
1 1:2 0-255 1-255
END_VALUES
END_IN_COLOR
`;
const theirs = mine.replace("1:2", "7:9");

test("keeping", async (all) => {
    const started = await startBrowser(all);

    await all.test("a reload brings the text back", async (one) => {
        const page = await openPage(one, started);
        await paste(page, mine);
        await page.reload();
        await page.locator("pattern-editor").first().waitFor();
        assert.equal(await textOf(page), mine);
    });

    await all.test("a browser that keeps nothing is told of, and the page works", async (one) => {
        const page = await openPage(one, started, {}, "", () => {
            Object.defineProperty(globalThis, "localStorage", {
                get() {
                    throw new DOMException("no", "SecurityError");
                },
            });
        });
        await paste(page, mine);
        await page.getByText("doesn't let the page keep your text").waitFor();
        await summaryIs(page, "Nothing is wrong");
        await page.getByRole("button", { name: "New" }).click();
        await page.getByRole("button", { name: "Bring it back" }).click();
        assert.equal(await textOf(page), mine);
    });

    await all.test("a link opens its pattern, and the own text comes back", async (one) => {
        const page = await openPage(one, started);
        await paste(page, mine);
        await page.evaluate((hash) => {
            location.hash = hash;
        }, encodeLink(theirs));
        await page.getByText("your text, which is put aside").waitFor();
        assert.equal(await textOf(page), theirs);
        assert.equal(new URL(page.url()).hash, "");
        await page.reload();
        await page.getByRole("button", { name: "Bring it back" }).click();
        assert.equal(await textOf(page), mine);
    });

    for (const [hash, words] of [
        [`#${encodeLink(mine).slice(0, 60)}`, "The link is damaged"],
        ["#_w", "made by a newer page"],
    ]) {
        await all.test(`a link is refused in words: ${words}`, async (one) => {
            const page = await openPage(one, started, {}, hash);
            await page.getByText(words).waitFor();
            await summaryIs(page, "Nothing is wrong");
        });
    }

    await all.test("work that is stopped leaves the text, and goes on anew", async (one) => {
        const page = await openPage(one, started, {}, "", () => {
            const Real = Worker;
            globalThis.endedWorkers = 0;
            globalThis.Worker = class extends Real {
                postMessage(...message) {
                    if (!globalThis.isDeaf) {
                        super.postMessage(...message);
                    }
                }

                terminate() {
                    ++globalThis.endedWorkers;
                    super.terminate();
                }
            };
        });
        await page.evaluate(() => {
            globalThis.isDeaf = true;
        });
        await paste(page, theirs);
        await page.getByRole("button", { name: "Stop" }).click();
        await page.getByText("Stopped. The next change begins anew.").waitFor();
        assert.equal(await page.evaluate(() => globalThis.endedWorkers), 1);
        assert.equal(await textOf(page), theirs);
        await page.evaluate(() => {
            globalThis.isDeaf = false;
        });
        await paste(page, theirs.replace("END_INKS", "end_inks"));
        await summaryIs(page, "1 error");
        await page.getByRole("button", { name: "Stop" }).waitFor({ state: "hidden" });
    });

    await all.test("dots that are refused give way to the reason", async (one) => {
        const page = await openPage(one, started);
        // Step 2 has less ink than step 1, so that no dither can lie between them.
        await paste(page, mine.replace("END_VALUES", "2 1 0-1\nEND_VALUES"));
        await page.getByRole("tab", { name: "Dots" }).click();
        await dotsAreSeen(page);
        await page.getByLabel("Tones").selectOption("Dithered");
        await page.getByRole("alert").getByText("step 2 has no more ink than step 1").waitFor();
        await page.getByRole("img", { name: "No dots" }).waitFor({ state: "attached" });
        await page.getByLabel("Tones").selectOption("Quantized");
        await dotsAreSeen(page);
        assert.equal(await page.getByRole("alert").textContent(), "");
    });

    await all.test("another pattern that has no dots says why", async (one) => {
        const page = await openPage(one, started);
        // Step 1 has no line, which the library refuses.
        await paste(page, mine.replace("1 1:2", "2 1 0-1\n3 1:2"));
        await page.getByRole("tab", { name: "Compare" }).click();
        const why = page.locator(".pair-of-dots figure").getByText(
            "No dots yet. Line 7: step 1 of \"Grün\" has no line, and step 2 has one.");
        await why.first().waitFor();
        assert.equal(await why.count(), 2);
        assert.equal(await page.getByRole("alert").textContent(), "");
        await paste(page, mine);
        await dotsAreSeen(page);
        assert.equal(await why.filter({ visible: true }).count(), 1);
    });

    await all.test("10 MB of text are answered with a sentence", async (one) => {
        const page = await openPage(one, started);
        await page.evaluate((size) => {
            const editor = document.querySelector("pattern-editor");
            editor.replaceText("# all and sundry\n".repeat(size / 17));
        }, 10 << 20);
        await page.getByRole("alert").getByText(/has 10,4\d\d,\d\d\d bytes; a pattern may have/)
            .waitFor();
        await page.getByText("larger than any pattern can be").waitFor();
        await paste(page, mine);
        await summaryIs(page, "Nothing is wrong");
    });

    await all.test("a file that is no text is answered with a sentence", async (one) => {
        const page = await openPage(one, started);
        const before = await textOf(page);
        await page.locator("header input[type=file]").setInputFiles({
            name: "x.txt", mimeType: "text/plain", buffer: Buffer.from([0xff, 0xfe, 0x80, 0, 1, 2]),
        });
        await page.getByRole("alert").filter({ hasText: /text/ }).waitFor();
        assert.equal(await textOf(page), before);
    });

    await all.test("a picture that is damaged is answered with a sentence", async (one) => {
        const page = await openPage(one, started);
        await page.getByRole("tab", { name: "Dots" }).click();
        await page.getByLabel("Own picture").check();
        await page.getByLabel("PNG, JPEG or TIFF").setInputFiles({
            name: "x.png", mimeType: "image/png",
            buffer: Buffer.from("\x89PNG\r\n\x1a\nand no more", "latin1"),
        });
        await page.getByRole("alert").filter({ hasText: /PNG/ }).waitFor();
    });
});
