// The queue, the end of a worker in the middle of its work, use without a network, and budgets of
// memory and of work.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";

import { writePng } from "./naive_png.js";
import { writeTiff } from "./naive_tiff.js";
import { base64, digest, example, program, runProgram, withEngine } from "./support.js";

const mebi = 1 << 20;
const large = { kind: "ramp", width: 2300, height: 2300 };

test("of requests that wait the newest of its kind and slot is served", async () => {
    await withEngine(async (page) => {
        const { outcomes, counts, busy } = await page.evaluate(async (text) => {
            const heard = [];
            const own = createEngine((isBusy) => heard.push(isBusy));
            const texts = Array.from({ length: 20 }, (_, index) => `${text}\n# ${index}`);
            const waits = texts.map((asked) => outcomeOf(own.read(asked)));
            waits.push(outcomeOf(own.read(text, "right")), outcomeOf(own.fixed(text)));
            const all = await Promise.all(waits);
            own.close();
            return { outcomes: all, counts: own.counts(), busy: heard };
        }, example("one_drop"));
        const codes = outcomes.map(({ value, code }) => value === undefined ? code : "served");
        assert.deepEqual(codes, ["served", ...Array(18).fill("superseded"), ...Array(3).fill("served")]);
        assert.deepEqual([counts.sent, counts.superseded, counts.workersStarted], [4, 18, 1]);
        assert.equal(busy[0], true);
        assert.equal(busy.at(-1), false);
    });
});

test("an abort ends the work at once, and the next request begins anew", async () => {
    await withEngine(async (page) => {
        const result = await page.evaluate(async ([text, picture]) => {
            await engine.read(text);
            const running = outcomeOf(engine.run({ text, picture }));
            const waiting = outcomeOf(engine.plot(text));
            await new Promise((later) => setTimeout(later, 5));
            engine.abort();
            const ended = [await running, await waiting];
            const reading = await engine.read(text);
            const dots = await engine.run({ text, picture: { ...picture, width: 9, height: 9 } });
            return { ended, runs: reading.runs, dots: dots.planes.length, counts: engine.counts() };
        }, [example("six_ink"), large]);
        assert.deepEqual(result.ended.map(({ code }) => code), ["aborted", "aborted"]);
        assert.equal(result.runs, true);
        assert.equal(result.dots, 9 * 9 * 6);
        assert.equal(result.counts.workersStarted, 2);
    });
});

test("a worker that dies is told of, and the next request begins anew", async () => {
    await withEngine(async (page, context) => {
        // Its script fails to load once.
        await context.route(/\/worker-.*\.js$/, (route) => route.abort(), { times: 1 });
        const [first, second] = await page.evaluate(async (text) => {
            const own = createEngine();
            return [await outcomeOf(own.read(text)), await outcomeOf(own.read(text))];
        }, example("one_drop"));
        assert.equal(first.code, "broken");
        assert.match(first.message, /^The work broke off: .*\.$/);
        assert.equal(second.value.runs, true);
    });
});

test("a module that can't be loaded is a sentence, and is asked for again", async () => {
    await withEngine(async (page, context) => {
        await context.route(/\/pelkraft_tiff-.*\.wasm$/, (route) => route.abort(), { times: 1 });
        const file = writeTiff([[256, 4, [1]], [257, 4, [1]], [258, 3, [8]], [262, 3, [0]],
            [277, 3, [1]], [278, 4, [1]]], Buffer.alloc(1));
        const [first, second] = await page.evaluate(async (letters) => [
            await outcomeOf(engine.readPicture(fromBase64(letters))),
            await outcomeOf(engine.readPicture(fromBase64(letters))),
        ], base64(file));
        assert.equal(first.code, "refused");
        assert.match(first.message, /^pelkraft_tiff-.* couldn't be loaded/);
        assert.equal(second.value.width, 1);
    });
});

test("after the first load everything works without a network", async () => {
    await withEngine(async (page, context, server) => {
        await page.evaluate(async () => {
            await registerServiceWorker();
            await navigator.serviceWorker.ready;
        });
        // Not even this machine answers any more.
        server.close();
        server.closeAllConnections();
        await context.setOffline(true);
        await page.reload();
        await page.waitForFunction("globalThis.engine !== undefined");
        const file = writeTiff([[256, 4, [1]], [257, 4, [1]], [258, 3, [8]], [262, 3, [0]],
            [277, 3, [1]], [278, 4, [1]]], Buffer.alloc(1));
        const result = await page.evaluate(async ([text, letters]) => {
            const picture = { kind: "ramp", width: 30, height: 30 };
            const dots = await engine.run({ text, picture, levels: "dither" });
            return [dots.planes.length, (await engine.readPicture(fromBase64(letters))).width];
        }, [example("six_ink"), base64(file)]);
        assert.deepEqual(result, [30 * 30 * 6, 1]);
    });
});

test("the mask is the program's, and is loaded only to dither", async () => {
    const file = readFileSync(join(process.env.PELKRAFT_MODULES, "dither_mask.bin"));
    const { stdout } = runProgram(["mask", "--export", "raw16", "-"], "/");
    assert.equal(digest(file), digest(stdout), program);
    await withEngine(async (page, context) => {
        const asked = [];
        context.on("request", (request) => asked.push(new URL(request.url()).pathname));
        const run = (levels) => page.evaluate(([text, kind]) => engine.run(
            { text, levels: kind, picture: { kind: "ramp", width: 9, height: 9 } },
        ).then(({ width }) => width), [example("six_ink"), levels]);
        await run("quantize");
        const lazy = /dither_mask|pelkraft_tiff/;
        assert.deepEqual(asked.filter((path) => lazy.test(path)), []);
        await run("dither");
        await run("automatic");
        assert.equal(asked.filter((path) => /dither_mask/.test(path)).length, 1);
        assert.equal(asked.filter((path) => /pelkraft_page/.test(path)).length, 1);
    });
});

test("memory stays within its budget", async () => {
    await withEngine(async (page) => {
        const heap = () => page.evaluate(() => engine.counts().memory);
        // So many dots are shown at once at most.
        await page.evaluate(async ([text, picture]) => {
            const { planes } = await engine.run({ text, picture });
            if (planes.length !== 6 * picture.width * picture.height) {
                throw new Error("dots are missing");
            }
        }, [example("six_ink"), large]);
        const afterDots = await heap();
        assert.ok(afterDots <= 16 * mebi, `${afterDots} bytes`);
        // 24 MiB of samples, the largest picture.
        const [width, height] = [3072, 2048];
        const png = writePng(width, height, 3, Buffer.alloc(width * height * 3, 7));
        const read = await page.evaluate(async (letters) => {
            const picture = await engine.readPicture(fromBase64(letters));
            return picture.samples.length;
        }, base64(png));
        assert.equal(read, 24 * mebi);
        const again = await page.evaluate(async ([text, count]) => {
            for (let index = 0; index < count; ++index) {
                await engine.preview({ text: `${text}\n# ${index}`,
                    picture: { kind: "patches", width: 256, height: 256 } });
            }
            return engine.counts();
        }, [example("six_ink"), 50]);
        assert.equal(again.memory, afterDots);
        assert.equal(again.workersStarted, 1);
    });
});
