// Runs all cases in headless Chromium, on a page that a server of the loopback address hands out
// under a policy that allows scripts and WebAssembly of its own alone. The variables are those of
// node.test.js; PELKRAFT_CHROMIUM names the browser.
import { readFile } from "node:fs/promises";
import { createServer } from "node:http";
import { dirname, extname, join } from "node:path";
import { test } from "node:test";
import { fileURLToPath } from "node:url";

import { chromium } from "playwright-core";

const tests = dirname(fileURLToPath(import.meta.url));
const types = {
    ".html": "text/html", ".js": "text/javascript", ".wasm": "application/wasm",
};
const policy = "default-src 'none'; script-src 'self' 'wasm-unsafe-eval'; connect-src 'self'";

// The paths /module/... are of the module, all others of this folder.
async function answer(request, response) {
    const [, folder, file] = /^\/(module\/)?([\w.]+)$/.exec(request.url) ?? [];
    try {
        const data = await readFile(join(folder ? process.env.PELKRAFT_MODULE : tests, file));
        response.writeHead(200, {
            "Content-Type": types[extname(file)], "Content-Security-Policy": policy,
        });
        response.end(data);
    } catch {
        response.writeHead(404).end();
    }
}

function launch() {
    return chromium.launch({
        executablePath: process.env.PELKRAFT_CHROMIUM,
        args: [
            "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
            "--disable-background-networking", "--disable-component-update", "--disable-sync",
        ],
    });
}

test("in Chromium", async (all) => {
    const server = createServer(answer);
    await new Promise((ready) => server.listen(0, "127.0.0.1", ready));
    const browser = await launch();
    try {
        const page = await browser.newPage();
        const failures = [];
        page.on("pageerror", (error) => failures.push(error));
        await page.goto(`http://127.0.0.1:${server.address().port}/browser.html`);
        await page.waitForFunction("globalThis.runCase !== undefined");
        for (const words of await page.evaluate("caseNames()")) {
            await all.test(words, () =>
                page.evaluate(([name, version]) => globalThis.runCase(name, version),
                    [words, process.env.PELKRAFT_VERSION]));
        }
        if (failures.length > 0) {
            throw failures[0];
        }
    } finally {
        await browser.close();
        server.close();
    }
});
