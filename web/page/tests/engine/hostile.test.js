// Whatever comes in is answered, and what can't be served with a sentence; the next request is
// served all the same.
import assert from "node:assert/strict";
import { test } from "node:test";
import { deflateSync } from "node:zlib";

import { writePng } from "./naive_png.js";
import { writeTiff } from "./naive_tiff.js";
import { base64, example, withEngine } from "./support.js";

async function stillWorks(page) {
    const reading = await page.evaluate((text) => engine.read(text), example("one_drop"));
    assert.equal(reading.runs, true);
}

function expectSentence({ code, message, value }, words) {
    assert.equal(value, undefined);
    assert.equal(code, "refused", message);
    assert.match(message, /^[A-Z].*\.$/s);
    assert.match(message, words);
}

test("texts", async (all) => {
    await withEngine(async (page) => {
        const open = (bytes) => page.evaluate(
            (letters) => outcomeOf(engine.openText(fromBase64(letters))), base64(bytes));
        await all.test("of 10 MB", async () => {
            for (const method of ["read", "plot", "fixed", "sarif"]) {
                expectSentence(await page.evaluate(([name, count]) =>
                    outcomeOf(engine[name]("0-255 ".repeat(count))), [method, 10 * 2 ** 20 / 6]),
                /10,485,75\d bytes.* up to 1,048,576/);
            }
            expectSentence(await page.evaluate(() => outcomeOf(
                engine.run({ text: "x".repeat(1e7), picture: { kind: "ramp", width: 9, height: 9 } }),
            )), /10,000,000 bytes/);
            expectSentence(await open(Buffer.alloc(10 * 2 ** 20, "a")), /10,485,760 bytes/);
            await stillWorks(page);
        });
        await all.test("of as many bytes as there may be", async () => {
            for (const piece of ["0-255 ", "\"", "#", "\n", "1:", "BEGIN_IN_COLOR ", "𝄞", "\ud800"]) {
                const { value, code } = await page.evaluate((repeated) => outcomeOf(engine.read(
                    repeated.repeat(Math.floor(2 ** 20 / new TextEncoder().encode(repeated).length)),
                )), piece);
                assert.equal(code, undefined, piece);
                assert.equal(value.runs, false);
                assert.ok(value.findings.length > 0);
            }
        });
        await all.test("of bytes that are no text", async () => {
            expectSentence(await open(Buffer.from([65, 10, 0xc3, 0x28])), /line 2 /);
            expectSentence(await open(Buffer.from("one\ntwo\n\0three")), /line 3 /);
            expectSentence(await open(writePng(1, 1, 3, Buffer.alloc(3))), /line 1 /);
            expectSentence(await open(Buffer.from("\ufeffVERSION 2", "utf16le")), /UTF-16/);
            await stillWorks(page);
        });
        await all.test("that are texts", async () => {
            for (const text of ["", "\ufeffa", "é𝄞\r\n", "\ufffd"]) {
                assert.equal((await open(Buffer.from(text))).value, text);
            }
        });
        await all.test("that no engine takes", async () => {
            const text = example("one_drop").replace("DotWeavePattern", "DotWovePattern");
            for (const method of ["run", "preview"]) {
                const outcome = await page.evaluate(([name, asked]) => outcomeOf(
                    engine[name]({ text: asked, picture: { kind: "ramp", width: 9, height: 9 } }),
                ), [method, text]);
                assert.equal(outcome.code, "refused");
                assert.match(outcome.message, /the engine says: "/);
            }
        });
    });
});

test("jobs", async (all) => {
    await withEngine(async (page) => {
        const text = example("six_ink");
        const ramp = { kind: "ramp", width: 40, height: 40 };
        const run = (job) => page.evaluate((asked) => outcomeOf(engine.run(asked)),
            { text, picture: ramp, ...job });
        const preview = (job) => page.evaluate((asked) => outcomeOf(engine.preview(asked)),
            { text, picture: ramp, ...job });
        const cases = [
            ["a picture without pixels", { picture: { ...ramp, width: 0 } }, /0 × 40/],
            ["half a pixel", { picture: { ...ramp, width: 1.5 } }, /1\.5 × 40/],
            ["20,000 x 20,000 pixels", { picture: { ...ramp, width: 20000, height: 20000 } },
                /1,600,000,000 bytes.* 25,165,824/],
            ["a part outside", { window: { x: 39, y: 0, width: 2, height: 1 } }, /outside/],
            ["a part of nothing", { window: { x: 0, y: 0, width: 0, height: 1 } }, /outside/],
            ["a place that is none", { origin: { x: 2 ** 40, y: 0 } }, /1099511627776/],
            ["more dots than are shown", { picture: { ...ramp, width: 2450, height: 2450 } },
                /36,015,000 dots.* 33,554,432/],
        ];
        for (const [name, job, words] of cases) {
            await all.test(name, async () => expectSentence(await run(job), words));
        }
        await all.test("a gain beyond all", async () =>
            expectSentence(await preview({ gain: 51 }), /51 %/));
        await all.test("more pixels than are shown", async () => {
            const picture = { ...ramp, width: 2900, height: 2900 };
            const job = { text: example("one_drop"), picture };
            await expectSentence(await preview(job), /2,900 × 2,900 pixels.* 6,291,456/);
            const { value } = await preview({ ...job, longestSide: 29 });
            assert.equal(value.width, 29);
        });
        await all.test("no colour", async () => expectSentence(
            await preview({ looks: [{ name: "Cyan", colour: "blue" }] }), /"blue"/));
        await all.test("an unknown ink", async () =>
            expectSentence(await preview({ order: ["Gold"] }), /"Gold"/));
        await all.test("too few channels", async () => {
            const { code, message } = await page.evaluate((asked) => outcomeOf(engine.run({
                text: asked,
                picture: { width: 1, height: 1, channels: ["a"], notes: [],
                    samples: new Uint8Array(1) },
            })), text);
            assert.equal(code, "refused");
            assert.match(message, /has 1 channel; .* 4 in-colours/);
        });
        await stillWorks(page);
    });
});

test("pictures", async (all) => {
    await withEngine(async (page) => {
        const read = (bytes) => page.evaluate(async (letters) => {
            const { value, ...failure } = await outcomeOf(engine.readPicture(fromBase64(letters)));
            return value === undefined ? failure : { value: [value.width, value.height] };
        }, base64(bytes));
        const png = writePng(40, 30, 3, Buffer.alloc(40 * 30 * 3, 99));
        const large = Buffer.from(png);
        large.writeUInt32BE(20000, 16);
        large.writeUInt32BE(20000, 20);
        const jpeg = Buffer.from([0xff, 0xd8, 0xff, 0xc0, 0, 17, 8, 0x4e, 0x20, 0x4e, 0x20, 3]);
        const tiffFields = (width, height, more = []) => [
            [256, 4, [width]], [257, 4, [height]], [258, 3, [8]], [262, 3, [0]], [277, 3, [1]],
            [278, 4, [height]], ...more];
        const cases = [
            ["nothing", Buffer.alloc(0), /no picture/],
            ["another file", Buffer.from("%PDF-1.7"), /no picture/],
            ["a PNG of 20,000 x 20,000 pixels", large, /20,000 × 20,000 .* 1,600,000,000 bytes/],
            ["a JPEG of as many", jpeg, /20,000 × 20,000 /],
            ["a PNG that ends early", png.subarray(0, 20), /PNG/],
            ["a PNG without pixels", png.subarray(0, 33), /PNG/],
            ["a JPEG of noise", Buffer.concat([jpeg.subarray(0, 3), Buffer.alloc(99, 7)]), /JPEG/],
            ["a TIFF of 8 bytes", Buffer.from("II*\0\x08\0\0\0", "latin1"), /TIFF .*damaged/],
            ["a TIFF whose directory is itself", Buffer.from("II*\0\0\0\0\0", "latin1"), /damaged/],
            ["a TIFF of 4,000,000,000 pixels",
                writeTiff(tiffFields(200000, 20000), Buffer.alloc(9)), /4,000,000,000 bytes/],
            ["a TIFF that ends early", writeTiff(tiffFields(100, 100), Buffer.alloc(99)), /damaged/],
            ["a TIFF compressed in another way",
                writeTiff(tiffFields(4, 1, [[259, 3, [7]]]), Buffer.alloc(4)), /number 7/],
            ["a TIFF of bits", writeTiff([[256, 4, [8]], [257, 4, [1]], [258, 3, [1]],
                [262, 3, [0]], [277, 3, [1]], [278, 4, [1]]], Buffer.alloc(1)), /1 bits/],
            ["a TIFF of a palette", writeTiff([[256, 4, [4]], [257, 4, [1]], [258, 3, [8]],
                [262, 3, [3]], [277, 3, [1]], [278, 4, [1]], [320, 3, Array(768).fill(0)]],
            Buffer.alloc(4)), /kind 3/],
            ["a TIFF of numbers with a point", writeTiff(
                tiffFields(4, 1, [[339, 3, [3]]]), Buffer.alloc(4)), /whole numbers/],
            ["a TIFF of tiles", writeTiff(tiffFields(16, 16,
                [[322, 4, [16]], [323, 4, [16]], [324, 4, [8]], [325, 4, [256]]]),
            Buffer.alloc(256)), /tiles/],
        ];
        for (const [name, file, words] of cases) {
            await all.test(name, async () => expectSentence(await read(file), words));
        }
        await all.test("a file of 60 MB", async () => {
            const { code, message } = await page.evaluate(() =>
                outcomeOf(engine.readPicture(new Uint8Array(60e6))));
            expectSentence({ code, message }, /60,000,000 bytes/);
        });
        await all.test("TIFF files with a byte changed, or cut", async () => {
            const samples = deflateSync(Buffer.alloc(40 * 30 * 4, "pelkraft"));
            const file = writeTiff([[256, 4, [40]], [257, 4, [30]], [258, 3, [8, 8, 8, 8]],
                [259, 3, [8]], [262, 3, [5]], [277, 3, [4]], [278, 4, [30]]], samples);
            const files = [];
            for (let place = 0; place < file.length; place += 3) {
                const changed = Buffer.from(file);
                changed[place] ^= 1 << place % 8;
                files.push(changed, file.subarray(0, place));
            }
            for (const one of files) {
                const outcome = await read(one);
                if (outcome.value === undefined) {
                    expectSentence(outcome, /./);
                }
            }
            assert.deepEqual((await read(file)).value, [40, 30]);
        });
        await stillWorks(page);
    });
});
