// Serves a built page on the loopback address, with the policy that any server may send:
//   node web/page/serve.mjs FOLDER [PORT]
import { createReadStream } from "node:fs";
import { stat } from "node:fs/promises";
import { createServer } from "node:http";
import { extname, join, normalize, resolve } from "node:path";
import { fileURLToPath } from "node:url";

import { policy } from "./policy.mjs";

const types = {
    ".bin": "application/octet-stream", ".css": "text/css; charset=utf-8",
    ".html": "text/html; charset=utf-8", ".js": "text/javascript; charset=utf-8",
    ".json": "application/json", ".map": "application/json", ".png": "image/png",
    ".svg": "image/svg+xml", ".txt": "text/plain; charset=utf-8",
    ".wasm": "application/wasm", ".webmanifest": "application/manifest+json",
};

/** The file that an address names, or null. */
async function fileOf(folder, url) {
    const path = decodeURIComponent(new URL(url, "http://localhost").pathname);
    const file = join(folder, normalize(path.endsWith("/") ? `${path}index.html` : path));
    const isFile = await stat(file).then((found) => found.isFile(), () => false);
    return isFile && types[extname(file)] !== undefined ? file : null;
}

/** Answers a server that listens; a port of 0 takes any that is free. */
export async function serve(folder, port = 0) {
    const root = resolve(folder);
    const server = createServer((request, response) => {
        void fileOf(root, request.url).catch(() => null).then((file) => {
            if (file === null) {
                response.writeHead(404).end();
                return;
            }
            response.writeHead(200, {
                "Cache-Control": "no-cache",
                "Content-Security-Policy": policy,
                "Content-Type": types[extname(file)],
                "X-Content-Type-Options": "nosniff",
            });
            createReadStream(file).pipe(response);
        });
    });
    await new Promise((ready, fail) => {
        server.once("error", fail);
        server.listen(port, "127.0.0.1", ready);
    });
    return server;
}

if (resolve(process.argv[1]) === fileURLToPath(import.meta.url)) {
    const [folder, port = "8321"] = process.argv.slice(2);
    if (folder === undefined) {
        console.error("usage: node web/page/serve.mjs FOLDER [PORT]");
        process.exit(2);
    }
    try {
        const server = await serve(folder, Number(port));
        console.log(`http://127.0.0.1:${server.address().port}/`);
    } catch (failure) {
        console.error(`web/page/serve.mjs: ${failure.message}`);
        process.exit(1);
    }
}
