// Says how large the built page is, and fails if it is larger than it may be: PELKRAFT_WEB names its
// folder. Sizes are those that a server sends, by gzip.
import { readFileSync, readdirSync } from "node:fs";
import { basename, extname, join } from "node:path";
import { gzipSync } from "node:zlib";

const budget = { firstLoad: 350_000, ownWebAssembly: 150_000 };
// These come later: what only some need, and what nobody's browser asks for without being told.
const later = /^(dither_mask|pelkraft_tiff)-|^sw\.js$|\.(map|txt)$/;

const folder = process.env.PELKRAFT_WEB;
const files = readdirSync(folder, { recursive: true })
    .filter((name) => extname(name) !== "" && !later.test(basename(name)))
    .map((name) => ({
        name, bytes: gzipSync(readFileSync(join(folder, name)), { level: 9 }).length,
    }));
const sum = (some) => some.reduce((total, { bytes }) => total + bytes, 0);
const firstLoad = sum(files);
const ownWebAssembly = sum(files.filter(({ name }) => name.endsWith(".wasm")));

function tell(what, bytes, most) {
    console.log(`${what}: ${bytes} bytes by gzip, of ${most} at most`);
    if (bytes > most || bytes === 0) {
        process.exitCode = 1;
    }
}

tell("first load", firstLoad, budget.firstLoad);
tell("of it WebAssembly", ownWebAssembly, budget.ownWebAssembly);
