// Builds the page into static files:
//   node web/page/build.mjs MODULES OUT
// MODULES holds pelkraft_page.wasm, pelkraft_tiff.wasm and dither_mask.bin. What the page loads gets
// a name that says its content, and the service worker keeps all of it.
import { createHash } from "node:crypto";
import { existsSync } from "node:fs";
import { cp, mkdir, readFile, readdir, rm, writeFile } from "node:fs/promises";
import { basename, dirname, extname, join, relative, resolve } from "node:path";
import { fileURLToPath } from "node:url";

import { build } from "esbuild";

import { policy } from "./policy.mjs";

const page = dirname(fileURLToPath(import.meta.url));

// import address from "module:pelkraft_page.wasm" gives the file's address.
function modulesFrom(folder) {
    return {
        name: "modules",
        setup(bundler) {
            bundler.onResolve({ filter: /^module:/ }, ({ path }) => ({
                path: join(folder, path.slice("module:".length)),
            }));
        },
    };
}

function optionsFor(modules, out) {
    return {
        absWorkingDir: page,
        assetNames: "[name]-[hash]",
        bundle: true,
        charset: "utf8",
        entryNames: "[name]-[hash]",
        format: "esm",
        legalComments: "linked",
        loader: { ".bin": "file", ".svg": "file", ".txt": "text", ".wasm": "file" },
        metafile: true,
        minify: true,
        outdir: out,
        plugins: [modulesFrom(modules)],
        sourcemap: "linked",
        target: "es2022",
    };
}

/** Bundles one entry, and answers the name of what it became in the folder. */
async function bundle(options, entry, define = {}) {
    const { metafile } = await build({ ...options, define, entryPoints: [entry] });
    const [file] = Object.entries(metafile.outputs).find(([, { entryPoint }]) =>
        entryPoint === entry);
    return basename(file);
}

// The page names its script and its style sheet by plain names, which the bundles' give way to.
async function writePage(html, bundles, out) {
    let whole = await readFile(html, "utf8");
    for (const [plain, built] of bundles) {
        whole = whole.replaceAll(`"./${plain}"`, `"./${built}"`);
    }
    const meta = `<meta http-equiv="Content-Security-Policy" content="${policy}">`;
    if (!whole.includes("<head>") || bundles.some(([, built]) => !whole.includes(`"./${built}"`))) {
        throw new Error(`${html} must have a <head>, and refer to ${bundles.map(([plain]) =>
            `"./${plain}"`).join(" and ")}`);
    }
    await writeFile(join(out, "index.html"),
        whole.replace("<head>", `<head>\n        ${meta}`));
}

/** All that a visitor may load, without what only people who look at the source do. */
async function filesToKeep(out) {
    const all = await readdir(out, { recursive: true });
    return all
        .filter((file) => extname(file) !== "" && !/\.(map|txt)$/.test(file) && file !== "sw.js")
        .map((file) => file.replaceAll("\\", "/"))
        .sort();
}

async function writeServiceWorker(options, out) {
    const files = await filesToKeep(out);
    const digest = createHash("sha256");
    for (const file of files) {
        digest.update(`${file}\0`).update(await readFile(join(out, file)));
    }
    // Its name stays, since a browser asks again for the one that it knows.
    await build({
        ...options,
        define: {
            FILES: JSON.stringify(["./", ...files]),
            STORE: JSON.stringify(`pelkraft-${digest.digest("hex").slice(0, 16)}`),
        },
        entryNames: "sw",
        entryPoints: ["src/engine/sw.ts"],
        sourcemap: false,
    });
}

/**
 * Builds a page of the files' paths below web/page/: an HTML file, its script, a style sheet, and a
 * folder of files that stay as they are. The last two may be left out.
 */
export async function buildPage(modules, out, { html, script, style, files }) {
    await rm(out, { recursive: true, force: true });
    await mkdir(out, { recursive: true });
    const options = optionsFor(resolve(modules), resolve(out));
    const worker = await bundle(options, "src/engine/worker.ts");
    const define = { WORKER: JSON.stringify(worker) };
    const bundles = [["main.js", await bundle({ ...options, splitting: true }, script, define)]];
    if (style !== undefined) {
        bundles.push(["page.css", await bundle(options, style)]);
    }
    await writePage(join(page, html), bundles, out);
    if (files !== undefined && existsSync(join(page, files))) {
        await cp(join(page, files), out, { recursive: true });
    }
    await writeServiceWorker(options, out);
}

if (resolve(process.argv[1]) === fileURLToPath(import.meta.url)) {
    const [modules, out] = process.argv.slice(2);
    if (out === undefined) {
        console.error("usage: node web/page/build.mjs MODULES OUT");
        process.exit(2);
    }
    await buildPage(modules, out, {
        html: "index.html", script: "src/main.ts", style: "styles/page.css", files: "static",
    });
    console.log(`the page stands in ${relative(process.cwd(), resolve(out))}`);
}
