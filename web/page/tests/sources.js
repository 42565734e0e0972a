// Scripts of the page for tests in Node.js, which knows no TypeScript.
import { mkdtemp, rm } from "node:fs/promises";
import { tmpdir } from "node:os";
import { dirname, join } from "node:path";
import { fileURLToPath, pathToFileURL } from "node:url";

import { build } from "esbuild";

const page = dirname(dirname(fileURLToPath(import.meta.url)));
export const root = dirname(dirname(page));

/** What a module of the page exports; its name begins in web/page/. */
export async function load(name) {
    const folder = await mkdtemp(join(tmpdir(), "page-"));
    try {
        const outfile = join(folder, "module.mjs");
        await build({
            absWorkingDir: page, bundle: true, entryPoints: [name], format: "esm", outfile,
            platform: "node",
        });
        return await import(pathToFileURL(outfile).href);
    } finally {
        await rm(folder, { recursive: true });
    }
}
