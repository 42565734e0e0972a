// The tests of the engine share all this. The variables, which scripts/web.sh sets:
//   PELKRAFT_ENGINE_PAGE   the folder of the page with the engine alone
//   PELKRAFT_PROGRAM       the program, for the same bytes
//   PELKRAFT_CHROMIUM      the browser
import { execFileSync, spawnSync } from "node:child_process";
import { createHash } from "node:crypto";
import { mkdtempSync, readFileSync, readdirSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";

import { chromium } from "playwright-core";

import { serve } from "../../serve.mjs";
import { listenForFailures } from "../failures.js";

const root = join(dirname(fileURLToPath(import.meta.url)), "../../../..");

export const program = process.env.PELKRAFT_PROGRAM;

/** The text of one of the examples. */
export function example(name) {
    return readFileSync(join(root, "examples/patterns", `${name}.txt`), "utf8");
}

export const exampleNames = readdirSync(join(root, "examples/patterns"))
    .map((file) => file.replace(/\.txt$/, ""));

/** A test that waits for an answer that never comes fails. */
function tooLate(limit) {
    return new Promise((_, fail) => {
        setTimeout(() => fail(new Error(`no end after ${limit / 1000} s`)), limit).unref();
    });
}

/** Runs the test with a page that has the engine, and fails it for an error that nobody caught. */
export async function withEngine(work, limit = 300_000) {
    const server = await serve(process.env.PELKRAFT_ENGINE_PAGE);
    const browser = await chromium.launch({
        executablePath: process.env.PELKRAFT_CHROMIUM,
        args: [
            "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
            "--disable-background-networking", "--disable-component-update", "--disable-sync",
        ],
    });
    try {
        const context = await browser.newContext();
        const page = await context.newPage();
        const all = await listenForFailures(page);
        await page.goto(`http://127.0.0.1:${server.address().port}/`);
        await page.waitForFunction("globalThis.engine !== undefined");
        await Promise.race([work(page, context, server), tooLate(limit)]);
        // Some tests stop files on their way, of which the console tells.
        const failures = all.filter((words) => !words.startsWith("Failed to load resource"));
        if (failures.length > 0) {
            throw new Error(failures.join("\n"));
        }
    } finally {
        await browser.close();
        server.close();
        server.closeAllConnections();
    }
}

export function digest(bytes) {
    return createHash("sha256").update(bytes).digest("hex");
}

export function base64(bytes) {
    return Buffer.from(bytes).toString("base64");
}

export function bytesOf(letters) {
    return Buffer.from(letters, "base64");
}

/** Lends a folder with the files, which goes afterwards. */
export function inFolder(files, work) {
    const folder = mkdtempSync(join(tmpdir(), "pelkraft-page-"));
    try {
        for (const [name, content] of Object.entries(files)) {
            writeFileSync(join(folder, name), content);
        }
        return work(folder);
    } finally {
        rmSync(folder, { recursive: true });
    }
}

/** Runs the program, whose warnings give the exit code 1. */
export function runProgram(words, folder, input) {
    const { status, stdout, stderr, error } = spawnSync(program, words, {
        cwd: folder, input, maxBuffer: 1 << 28,
    });
    if (error) {
        throw error;
    }
    return { status, stdout, stderr: stderr.toString() };
}

/** Runs a line as a person types it, with the program of the build. */
export function runLine(line, folder) {
    const path = `${dirname(program)}:${process.env.PATH}`;
    const result = spawnSync("sh", ["-c", line], { cwd: folder, env: { ...process.env, PATH: path } });
    return { status: result.status, stderr: result.stderr.toString() };
}

export function runTool(name, words, folder) {
    return execFileSync(name, words, { cwd: folder });
}
