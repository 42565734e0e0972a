// The dots and the preview of the engine are those of the program, byte for byte: each job is run
// twice, by the engine, and by the program with the command and the files that the page hands out.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";

import { readPng } from "./naive_png.js";
import { readTiff } from "./naive_tiff.js";
import {
    base64, bytesOf, digest, example, exampleNames, inFolder, runLine, runProgram, withEngine,
} from "./support.js";

// A picture of its own: smooth in one channel, coarse in another, noise in a third, none in K.
function ownPicture(width, height, channels) {
    const samples = Buffer.alloc(width * height * channels.length);
    let noise = 1;
    for (let y = 0; y < height; ++y) {
        for (let x = 0; x < width; ++x) {
            noise = (noise * 1103515245 + 12345) % 0x80000000;
            const values = [x * 3 % 256, (y >> 3) * 32 % 256, noise >> 16 & 255, 0];
            channels.forEach((_, index) => {
                samples[(y * width + x) * channels.length + index] = values[index % 4];
            });
        }
    }
    return { width, height, channels, samples: base64(samples) };
}

/** Asks the engine for the dots of a whole job, the picture's file and the command. */
async function dotsOf(page, job) {
    return page.evaluate(async (asked) => {
        const picture = "samples" in asked.picture
            ? { notes: [], ...asked.picture, samples: fromBase64(asked.picture.samples) }
            : await engine.builtIn(asked.text, asked.picture, asked.levels);
        const dots = await engine.run({
            ...asked, picture: "samples" in asked.picture ? picture : asked.picture,
        });
        return {
            ...dots, planes: toBase64(dots.planes), tiff: toBase64(engine.tiff(picture)),
            command: commandOf({ ...asked, picture }),
        };
    }, job);
}

function interleaved({ width, height, inks, planes }) {
    const bytes = bytesOf(planes);
    const rows = Buffer.alloc(bytes.length);
    const plane = width * height;
    for (let ink = 0; ink < inks.length; ++ink) {
        for (let pixel = 0; pixel < plane; ++pixel) {
            rows[pixel * inks.length + ink] = bytes[ink * plane + pixel];
        }
    }
    return rows;
}

async function expectProgramsBytes(page, job) {
    const dots = await dotsOf(page, job);
    inFolder({ "pattern.txt": job.text, "picture.tif": bytesOf(dots.tiff) }, (folder) => {
        const { status, stderr } = runLine(dots.command, folder);
        assert.ok(status === 0 || status === 1, `${dots.command}: ${stderr}`);
        const { fields, samples } = readTiff(readFileSync(join(folder, "dots.tif")));
        assert.equal(digest(interleaved(dots)), digest(samples), dots.command);
        assert.deepEqual(fields.get(336), [0, dots.fullInk]);
        const told = stderr.split("\n").filter((line) => line.includes("warning: "))
            .map((line) => line.replace(/^.*?warning: /, ""));
        // The lint's warnings are in the reading.
        for (const warning of dots.warnings) {
            assert.ok(told.includes(warning), `${warning} is not among ${told.join(" / ")}`);
        }
    });
}

test("dots", async (all) => {
    await withEngine(async (page) => {
        for (const name of exampleNames) {
            const text = example(name);
            for (const levels of ["automatic", "quantize", "raw"]) {
                for (const kind of ["ramp", "patches"]) {
                    await all.test(`${name}, ${levels}, ${kind}`, () =>
                        expectProgramsBytes(page,
                            { text, levels, picture: { kind, width: 301, height: 96 } }));
                }
            }
            await all.test(`${name}, an own picture, at another place, by equal tones`, () =>
                expectProgramsBytes(page, {
                    text, tone: "equal", origin: { x: 70000, y: -3 },
                    picture: ownPicture(173, 61, ["Cyan", "Magenta", "Yellow", "Black", "A", "B"]),
                }));
        }
        for (const [width, height] of [[1, 1], [20000, 2], [2, 20000]]) {
            await all.test(`${width} x ${height} pixels`, () =>
                expectProgramsBytes(page, {
                    text: example("two_colours"), picture: { kind: "ramp", width, height },
                }));
        }
        await all.test("a picture of several bands", () =>
            expectProgramsBytes(page, {
                text: example("six_ink"),
                picture: ownPicture(700, 650, ["Cyan", "Magenta", "Yellow", "Black"]),
            }));
        await all.test("samples above the top step", () =>
            expectProgramsBytes(page, {
                text: example("drop_sizes"), levels: "raw",
                picture: ownPicture(50, 20, ["Cyan"]),
            }));
        await all.test("rows past the end of the pattern's table", () =>
            expectProgramsBytes(page, {
                text: example("weights"), origin: { x: 0, y: 65500 },
                picture: ownPicture(40, 80, ["Cyan"]),
            }));
    });
});

test("a window has the dots that the whole has there", async () => {
    await withEngine(async (page) => {
        for (const picture of [
            { kind: "ramp", width: 300, height: 120 },
            ownPicture(300, 120, ["Cyan", "Magenta", "Yellow", "Black", "a", "b"]),
        ]) {
            const [whole, part] = await page.evaluate(async ([text, asked]) => {
                const own = "samples" in asked
                    ? { notes: [], ...asked, samples: fromBase64(asked.samples) } : asked;
                const job = { text, picture: own };
                const window = { x: 37, y: 11, width: 101, height: 77 };
                const all = [await engine.run(job), await engine.run({ ...job, window })];
                return all.map((dots) => ({ ...dots, planes: toBase64(dots.planes) }));
            }, [example("six_ink"), picture]);
            const wholeBytes = bytesOf(whole.planes);
            const expected = whole.inks.flatMap((_, ink) =>
                Array.from({ length: 77 }, (_, y) => {
                    const start = ink * 300 * 120 + (11 + y) * 300 + 37;
                    return wholeBytes.subarray(start, start + 101);
                }));
            assert.equal([part.width, part.height].join(), "101,77");
            assert.equal(digest(bytesOf(part.planes)), digest(Buffer.concat(expected)));
        }
    });
});

/** The pixels of the program's preview of the dots of a job. */
function programsPreview(dots, text, words) {
    return inFolder({ "pattern.txt": text, "picture.tif": bytesOf(dots.tiff) }, (folder) => {
        runLine(dots.command, folder);
        const { status, stderr } =
            runProgram(["preview", ...words, "dots.tif", "dots.png"], folder);
        assert.equal(status, 0, stderr);
        return readPng(readFileSync(join(folder, "dots.png")));
    });
}

function withoutAlpha(rgba) {
    return Buffer.from(rgba.filter((value, index) => {
        assert.ok(index % 4 !== 3 || value === 255);
        return index % 4 !== 3;
    }));
}

test("previews", async (all) => {
    await withEngine(async (page) => {
        const text = example("six_ink");
        const picture = { kind: "ramp", width: 200, height: 150 };
        const dots = await dotsOf(page, { text, picture });
        const inks = dots.inks;
        const mixed = ownPicture(700, 500, ["Cyan", "Magenta", "Yellow", "Black"]);
        const mixedDots = await dotsOf(page, { text, picture: mixed });
        const cases = [
            ["as usual", {}, ["--crop", "0,0,200,150"]],
            ["with gain, in another order", { gain: 17.5, order: [inks[3], inks[0]] },
                ["--crop", "0,0,200,150", "--gain", "17.5", "--print-order",
                    `${inks[3]},${inks[0]}`]],
            ["of a part", { window: { x: 31, y: 40, width: 90, height: 50 } },
                ["--crop", "31,40,90,50"]],
        ];
        for (const [name, asked, words] of cases) {
            await all.test(name, async () => {
                const shown = await page.evaluate(async (job) => {
                    const image = await engine.preview(job);
                    return { ...image, rgba: toBase64(image.rgba) };
                }, { text, picture, ...asked });
                const expected = programsPreview(dots, text, words);
                assert.deepEqual([shown.width, shown.height], [expected.width, expected.height]);
                assert.equal(digest(withoutAlpha(bytesOf(shown.rgba))), digest(expected.pixels));
            });
        }
        await all.test("with a colour of one's own, that hides those printed before", async () => {
            for (const order of [[inks[1], inks[0]], [inks[0], inks[1]]]) {
                const shown = await page.evaluate(async ([job, ink]) => {
                    const looks = [{ name: ink, colour: "#204060", opacity: 0.75 }];
                    const samples = fromBase64(job.picture.samples);
                    const own = { ...job.picture, samples, notes: [] };
                    return toBase64((await engine.preview({ ...job, picture: own, looks })).rgba);
                }, [{ text, picture: mixed, order }, inks[1]]);
                const expected = inFolder({ "inks.txt": `"${inks[1]}" #204060 0.75\n` }, (folder) =>
                    programsPreview(mixedDots, text, ["--inks", join(folder, "inks.txt"),
                        "--crop", "0,0,700,500", "--print-order", order.join(",")]));
                assert.equal(digest(withoutAlpha(bytesOf(shown))), digest(expected.pixels));
            }
        });
        await all.test("of no ink is white, of one ink has no other", async () => {
            const [none, one] = await page.evaluate(async ([job, ink]) => [
                toBase64((await engine.preview({ ...job, shown: [] })).rgba),
                toBase64((await engine.preview({ ...job, shown: [ink] })).rgba),
            ], [{ text, picture }, inks[0]]);
            assert.ok(bytesOf(none).every((value) => value === 255));
            assert.notEqual(digest(bytesOf(one)), digest(bytesOf(none)));
        });
        await all.test("made smaller averages light", async () => {
            const [large, small] = await page.evaluate(async (job) => {
                const all = [
                    await engine.preview(job), await engine.preview({ ...job, longestSide: 50 }),
                ];
                return all.map((image) => ({ ...image, rgba: toBase64(image.rgba) }));
            }, { text, picture });
            assert.deepEqual([small.width, small.height], [50, 37]);
            const light = (value) => value <= 0.04045 ? value / 12.92
                : ((value + 0.055) / 1.055) ** 2.4;
            const mean = ({ rgba }) => {
                const values = withoutAlpha(bytesOf(rgba));
                return values.reduce((sum, value) => sum + light(value / 255), 0) / values.length;
            };
            assert.ok(Math.abs(mean(large) - mean(small)) < 0.01, `${mean(large)}, ${mean(small)}`);
        });
    });
});
