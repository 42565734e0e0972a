// Links hold a text. Those of every version that was given out are read for ever.
import assert from "node:assert/strict";
import { test } from "node:test";
import { deflateRawSync } from "node:zlib";

import { example, exampleNames, withEngine } from "./support.js";

// Version 1 is a byte 01, then the text in UTF-8 as deflate without a frame, in base64's letters for
// addresses. The first link was packed by zlib in Python, the second one is stored as it is: 01 0500
// faff, and the text.
const given = [
    ["AXPJLwlPTSxLDUgsKUktyuMKcw0K9vT3UzBSUFY4vFLhw9yWeVxOru6ef" +
        "vH-oSHxnn7ewQrOlYl5Cj6Z6RklYJarnwtcDqoUiJz9ffyDoGpBKuBCXAA",
    "DotWeavePattern\nVERSION 2 # é 𝄞\nBEGIN_OUT_INKS Cyan LightCyan END_OUT_INKS\n" +
        "BEGIN_IN_COLORS Cyan END_IN_COLORS\n"],
    ["AQEFAPr_ZG90cyA", "dots "],
];

test("links", async (all) => {
    await withEngine(async (page) => {
        const decode = (hash) => page.evaluate((asked) => decodeLink(asked), hash);
        const encode = (text) => page.evaluate((asked) => encodeLink(asked), text);
        for (const [hash, text] of given) {
            await all.test(`given out: ${hash}`, async () => {
                assert.deepEqual(await decode(`#${hash}`), { text });
                assert.deepEqual(await decode(hash), { text });
            });
        }
        const pack = (version, text) => Buffer.concat(
            [Buffer.from([version]), deflateRawSync(Buffer.from(text))]).toString("base64url");
        await all.test("what another deflate has packed", async () => {
            const text = "é 𝄞 \u0000\r\n".repeat(99);
            assert.deepEqual(await decode(pack(1, text)), { text });
        });
        await all.test("there and back", async () => {
            for (const text of ["", " ", "é𝄞\r\n", ...exampleNames.map(example)]) {
                const hash = await encode(text);
                assert.match(hash, /^[\w-]+$/);
                assert.deepEqual(await decode(hash), { text });
                assert.equal(await encode(text), hash);
            }
            assert.ok((await encode(example("six_ink"))).length < 1200);
        });
        await all.test("no text", async () => {
            assert.deepEqual(await decode(""), { fault: "none" });
            assert.deepEqual(await decode("#"), { fault: "none" });
            for (const hash of ["!", "a", "AQ", "#%ff", "AAAA", "Af__", "AQEFAPr_ZG90"]) {
                assert.deepEqual(await decode(hash), { fault: "damaged" }, hash);
            }
            assert.deepEqual(await decode(pack(2, "dots")), { fault: "newer" });
            assert.deepEqual(await decode(pack(1, "d".repeat(2 ** 20 + 1))), { fault: "large" });
            assert.deepEqual(await decode(pack(1, "d".repeat(1e8))), { fault: "large" });
            assert.equal((await decode(pack(1, "d".repeat(2 ** 20)))).text.length, 2 ** 20);
        });
    });
});
