// What a customer gets: the size of the module's files, and the example of its page. The variable
// PELKRAFT_MODULE names the folder of the module.
import { execFileSync } from "node:child_process";
import { mkdtempSync, readdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { test } from "node:test";
import { pathToFileURL } from "node:url";
import { gzipSync } from "node:zlib";

import { equal } from "./expect.js";

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
