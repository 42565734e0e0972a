// Pictures become amounts of ink by the numbers in their files.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";

import { writePng } from "./naive_png.js";
import { readTiff, writeTiff } from "./naive_tiff.js";
import { base64, bytesOf, digest, inFolder, runProgram, runTool, withEngine } from "./support.js";

function noise(count) {
    let state = 7;
    return Buffer.from(Array.from({ length: count }, () => {
        state = (state * 1103515245 + 12345) % 0x80000000;
        return state >> 16 & 255;
    }));
}

async function read(page, file) {
    const picture = await page.evaluate(async (letters) => {
        const found = await engine.readPicture(fromBase64(letters));
        return { ...found, samples: toBase64(found.samples) };
    }, base64(file));
    return { ...picture, samples: bytesOf(picture.samples) };
}

/** C, M, Y = 255 - R, G, B and K = 0. */
function inksOf(rgb, stride = 3) {
    const samples = Buffer.alloc(rgb.length / stride * 4);
    for (let pixel = 0; pixel < rgb.length / stride; ++pixel) {
        for (let colour = 0; colour < 3; ++colour) {
            samples[pixel * 4 + colour] = 255 - rgb[pixel * stride + colour];
        }
    }
    return samples;
}

function expectInks(picture, width, height, samples) {
    assert.deepEqual([picture.width, picture.height], [width, height]);
    assert.deepEqual(picture.channels, ["Cyan", "Magenta", "Yellow", "Black"]);
    assert.equal(digest(picture.samples), digest(samples));
}

test("PNG and JPEG", async (all) => {
    await withEngine(async (page) => {
        const rgb = noise(61 * 47 * 3);
        await all.test("a PNG of noise", async () =>
            expectInks(await read(page, writePng(61, 47, 3, rgb)), 61, 47, inksOf(rgb)));
        await all.test("one pixel", async () =>
            expectInks(await read(page, writePng(1, 1, 3, Buffer.from([1, 2, 3]))), 1, 1,
                Buffer.from([254, 253, 252, 0])));
        await all.test("20,000 pixels in a row", async () => {
            const long = noise(20000 * 3);
            expectInks(await read(page, writePng(20000, 1, 3, long)), 20000, 1, inksOf(long));
        });
        await all.test("more rows than are copied at once", async () => {
            const tall = noise(3 * 1200 * 1000);
            expectInks(await read(page, writePng(1000, 1200, 3, tall)), 1000, 1200, inksOf(tall));
        });
        await all.test("a grey PNG", async () => {
            const grey = noise(30 * 20);
            const asRgb = Buffer.from([...grey].flatMap((value) => [value, value, value]));
            expectInks(await read(page, writePng(30, 20, 1, grey)), 30, 20, inksOf(asRgb));
        });
        await all.test("what lets paper through, on white", async () => {
            const rgba = Buffer.from([0, 0, 0, 0, 10, 20, 30, 255, 200, 100, 0, 0]);
            const picture = await read(page, writePng(3, 1, 4, rgba));
            expectInks(picture, 3, 1, Buffer.from([0, 0, 0, 0, 245, 235, 225, 0, 0, 0, 0, 0]));
            assert.equal(picture.notes.length, 2);
        });
        await all.test("a PNG that asks for other colours gives its own numbers", async () => {
            // A gamma of 1, which is far from that of screens, and sides of red and green exchanged.
            const gamma = Buffer.alloc(4);
            gamma.writeUInt32BE(100000);
            const sides = Buffer.alloc(32);
            [31270, 32900, 30000, 60000, 64000, 33000, 15000, 6000].forEach((value, index) =>
                sides.writeUInt32BE(value, index * 4));
            const file = writePng(61, 47, 3, rgb, [["gAMA", gamma], ["cHRM", sides]]);
            expectInks(await read(page, file), 61, 47, inksOf(rgb));
        });
        await all.test("a JPEG", async () => {
            const file = await page.evaluate(async () => {
                const canvas = new OffscreenCanvas(40, 24);
                const context = canvas.getContext("2d");
                context.fillStyle = "rgb(200, 100, 50)";
                context.fillRect(0, 0, 40, 24);
                const blob = await canvas.convertToBlob({ type: "image/jpeg", quality: 1 });
                return toBase64(new Uint8Array(await blob.arrayBuffer()));
            });
            const picture = await read(page, bytesOf(file));
            assert.deepEqual([picture.width, picture.height], [40, 24]);
            picture.samples.forEach((value, index) =>
                assert.ok(Math.abs(value - [55, 155, 205, 0][index % 4]) <= 2));
        });
    });
});

const cmykFields = (width, height, bits = 8) => [
    [256, 4, [width]], [257, 4, [height]], [258, 3, [bits, bits, bits, bits]], [259, 3, [1]],
    [262, 3, [5]], [277, 3, [4]], [278, 4, [height]],
];

test("TIFF", async (all) => {
    await withEngine(async (page) => {
        const [width, height] = [53, 31];
        const samples = noise(width * height * 4);
        const plain = writeTiff(cmykFields(width, height), samples);
        const made = (name, words) => inFolder({ "in.tif": plain }, (folder) => {
            runTool(name, [...words, "in.tif", "out.tif"], folder);
            return readFileSync(join(folder, "out.tif"));
        });
        for (const [name, words] of [
            ["as it is", ["-c", "none"]], ["LZW", ["-c", "lzw:2"]], ["deflate", ["-c", "zip:2"]],
            ["PackBits", ["-c", "packbits"]], ["the high byte first", ["-B"]],
            ["strips of three rows", ["-r", "3"]], ["planes", ["-p", "separate", "-c", "lzw"]],
        ]) {
            await all.test(name, async () =>
                expectInks(await read(page, made("tiffcp", words)), width, height, samples));
        }
        await all.test("16 bits, rounded", async () => {
            const words = Buffer.alloc(samples.length * 2);
            const wide = (value) => Math.min(value * 257 + 100, 65535);
            samples.forEach((value, index) => words.writeUInt16LE(wide(value), index * 2));
            const file = writeTiff(cmykFields(width, height, 16), words);
            expectInks(await read(page, file), width, height, Buffer.from(samples.map((value) =>
                Math.round(wide(value) / 257))));
        });
        await all.test("RGB", async () => {
            const rgb = noise(20 * 10 * 3);
            const file = writeTiff([[256, 4, [20]], [257, 4, [10]], [258, 3, [8, 8, 8]],
                [262, 3, [2]], [277, 3, [3]], [278, 4, [10]]], rgb);
            expectInks(await read(page, file), 20, 10, inksOf(rgb));
        });
        for (const [kind, name] of [[0, "white is 0"], [1, "black is 0"]]) {
            await all.test(`grey, ${name}`, async () => {
                const file = writeTiff([[256, 4, [4]], [257, 4, [1]], [258, 3, [8]],
                    [262, 3, [kind]], [277, 3, [1]], [278, 4, [1]]], Buffer.from([0, 1, 200, 255]));
                const picture = await read(page, file);
                assert.deepEqual(picture.channels, ["Gray"]);
                assert.deepEqual([...picture.samples],
                    kind === 0 ? [0, 1, 200, 255] : [255, 254, 55, 0]);
            });
        }
        await all.test("named inks and a range of dots", async () => {
            const file = writeTiff([[256, 4, [2]], [257, 4, [1]], [258, 3, [8, 8]], [262, 3, [5]],
                [277, 3, [2]], [278, 4, [1]], [332, 3, [2]], [333, 2, [...Buffer.from("Red\0Blue\0")]],
                [334, 3, [2]], [336, 3, [0, 3]]], Buffer.from([0, 1, 2, 3]));
            const picture = await read(page, file);
            assert.deepEqual(picture.channels, ["Red", "Blue"]);
            assert.deepEqual([...picture.samples], [0, 85, 170, 255]);
        });
        await all.test("the program reads what the page writes, and so does the page", async () => {
            for (const channels of [["Cyan", "Magenta", "Yellow", "Black"], ["Gold"],
                ["a", "b c", "é", "d", "e", "f"]]) {
                const own = noise(9 * 5 * channels.length);
                const letters = await page.evaluate(([names, bytes]) => toBase64(engine.tiff({
                    width: 9, height: 5, channels: names, notes: [], samples: fromBase64(bytes),
                })), [channels, base64(own)]);
                const file = bytesOf(letters);
                const { directory, samples: found } = readTiff(file);
                assert.equal(directory, 8);
                assert.equal(digest(found), digest(own));
                const { status, stdout, stderr } = inFolder({ "a.tif": file }, (folder) =>
                    runProgram(["info", "--json", "a.tif"], folder));
                assert.equal(status, 0, stderr);
                for (const name of channels) {
                    assert.ok(stdout.toString().includes(JSON.stringify(name)), stdout.toString());
                }
                const again = await read(page, file);
                assert.deepEqual(again.channels, channels);
                assert.equal(digest(again.samples), digest(own));
            }
        });
    });
});
