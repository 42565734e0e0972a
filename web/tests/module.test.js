// These tests hold what a customer gets: files of this size, and the example of the page. The
// variable PELKRAFT_MODULE names the folder of the module.
import { execFileSync } from "node:child_process";
import { mkdtempSync, readdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { test } from "node:test";
import { pathToFileURL } from "node:url";
import { gzipSync } from "node:zlib";

import { equal, refuses } from "./expect.js";

const folder = process.env.PELKRAFT_MODULE;

test("what a browser loads is below 400 kB, compressed", () => {
    const loaded = readdirSync(folder).filter((name) => /\.(js|wasm)$/.test(name));
    equal(loaded.includes("pelkraft.wasm") && loaded.includes("pelkraft.js"), true, "the files");
    const bytes = loaded
        .map((name) => gzipSync(readFileSync(join(folder, name)), { level: 9 }).length)
        .reduce((total, length) => total + length, 0);
    console.log(`${loaded.length} files, ${bytes} bytes`);
    equal(bytes < 400_000, true, `${bytes} bytes is below 400 kB`);
});

// In a browser there may be no array of this size.
test("a conversion of more bytes than 32 bits count is refused", async () => {
    const { loadPelkraft } = await import(pathToFileURL(join(folder, "pelkraft.js")).href);
    const { convertRow } = await loadPelkraft();
    const width = 2 ** 31 - 1;
    const shape = { width, channels: 1, bits: 8, planar: false };
    refuses(() => convertRow({ ...shape, data: new Uint8Array(width) }, shape), "RangeError",
        `there is no memory for ${64 + 2 * 2 ** 31} bytes`);
});

test("the example of the page prints what the page says", () => {
    const page = readFileSync(new URL("../README.md", import.meta.url), "utf8");
    const block = (kind) => page.split(`\`\`\`${kind}\n`)[1].split("```")[0];
    const address = pathToFileURL(join(folder, "pelkraft.js")).href;
    const place = mkdtempSync(join(tmpdir(), "pelkraft-"));
    try {
        const script = join(place, "example.mjs");
        writeFileSync(script, block("js").replace('"./pelkraft.js"', JSON.stringify(address)));
        equal(execFileSync(process.execPath, [script], { encoding: "utf8" }), block("text"));
    } finally {
        rmSync(place, { recursive: true });
    }
});
