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
import { exampleText } from "./pattern_cases.js";

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

// The memory is taken in blocks that nobody touches, so that the machine need not have it.
function takeAllMemory(exports) {
    for (let bytes = 2 ** 30; bytes > 1000; ) {
        if (exports.allocate(bytes) === 0) {
            bytes /= 2;
        }
    }
}

test("a library without memory says so", async () => {
    const [{ Memory }, { Pattern }] = await Promise.all(["memory.js", "patterns.js"].map(
        (name) => import(pathToFileURL(join(folder, name)).href)));
    const nothing = () => 0;
    const wasm = readFileSync(join(folder, "pelkraft.wasm"));
    const { instance } = await WebAssembly.instantiate(wasm, {
        env: { emscripten_notify_memory_growth: nothing },
        wasi_snapshot_preview1: {
            fd_write: nothing, fd_seek: nothing, fd_close: nothing, proc_exit: nothing,
        },
    });
    instance.exports._initialize();
    const memory = new Memory(instance.exports);
    const pattern = new Pattern(memory, exampleText);
    const block = instance.exports.allocate(5000);
    takeAllMemory(instance.exports);
    refuses(() => pattern.apply(new Uint8Array(20_000)), "RangeError",
        "there is no memory for 50000 bytes");
    instance.exports.release(block);
    refuses(() => new Pattern(memory, exampleText), "Error", "std::bad_alloc");
    equal(pattern.apply(Uint8Array.of(1, 1)).join(" "), "0 64 255", "a pattern from before");
});

// Node.js 18 has no buffers that can be resized.
const resizing = { skip: ArrayBuffer.prototype.resize === undefined };
test("the memory takes as many bytes as it is asked for", resizing, async () => {
    const { Memory } = await import(pathToFileURL(join(folder, "memory.js")).href);
    const memory = new Memory({ memory: new WebAssembly.Memory({ initial: 1 }) });
    const buffer = new ArrayBuffer(4, { maxByteLength: 9 });
    const bytes = new Uint8Array(buffer).fill(7);
    buffer.resize(9);
    memory.write(16, bytes, 4);
    equal(memory.copy(16, 5).join(" "), "7 7 7 7 0", "four bytes of nine");
    buffer.resize(3);
    refuses(() => memory.write(32, bytes, 4), "RangeError",
        "an array of 4 bytes has shrunk to 3");
    equal(memory.copy(32, 4).join(" "), "0 0 0 0", "the place of the refused bytes");
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
