// Measures the built page in Chromium, and prints a table in Markdown:
//   node web/page/measure.mjs PAGE ENGINE_PAGE
// PELKRAFT_CHROMIUM names the browser. Figures count only while the machine does nothing else.
import { readFileSync, mkdtempSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";

import { chromium } from "playwright-core";

import { serve } from "./serve.mjs";
import { writePng } from "./tests/engine/naive_png.js";

const root = join(dirname(fileURLToPath(import.meta.url)), "../..");
const pattern = readFileSync(join(root, "examples/patterns/six_ink.txt"), "utf8");
const pause = 150;

async function launch() {
    return chromium.launch({
        executablePath: process.env.PELKRAFT_CHROMIUM ?? "/usr/bin/chromium",
        args: [
            "--no-sandbox", "--disable-gpu", "--no-first-run", "--disable-background-networking",
        ],
    });
}

function medianAndMost(times) {
    const sorted = [...times].sort((one, other) => one - other);
    return [sorted[sorted.length >> 1], sorted.at(-1)];
}

function milliseconds(what, times, most) {
    const [median, highest] = medianAndMost(times);
    return [what, `${median.toFixed(0)} ms, at most ${highest.toFixed(0)} ms of ${times.length}`,
        `${most} ms`];
}

/** Opens the page in a context that has never seen it, and waits for the first findings. */
async function openFresh(browser, address) {
    const context = await browser.newContext({ viewport: { width: 1440, height: 900 } });
    const page = await context.newPage();
    await page.addInitScript(() => {
        const look = new MutationObserver(() => {
            const summary = document.querySelector(".found .summary")?.textContent ?? "";
            if (summary !== globalThis.summary) {
                globalThis.summary = summary;
                globalThis.changedAt = performance.now();
            }
            if (globalThis.readyAt === undefined && /Nothing is wrong/.test(summary)) {
                globalThis.readyAt = performance.now();
            }
        });
        look.observe(document, { childList: true, characterData: true, subtree: true });
        addEventListener("keydown", () => {
            globalThis.keyAt = performance.now();
        }, true);
    });
    await page.goto(address);
    await page.waitForFunction(() => globalThis.readyAt !== undefined);
    return page;
}

async function timesToInteract(browser, address) {
    const times = [];
    for (let round = 0; round < 11; ++round) {
        const page = await openFresh(browser, address);
        times.push(await page.evaluate(() => globalThis.readyAt));
        await page.context().close();
    }
    return times;
}

/** Presses a key that brings a finding or takes it away, and counts from the end of the pause. */
async function timesToFindings(browser, address) {
    const page = await openFresh(browser, address);
    await page.evaluate((text) => {
        document.querySelector("pattern-editor").replaceText(text);
    }, pattern);
    await page.locator("pattern-editor .cm-content").focus();
    await page.keyboard.press("Control+End");
    const times = [];
    for (let round = 0; round < 20; ++round) {
        const isBad = round % 2 === 0;
        await page.keyboard.press(isBad ? "x" : "Backspace");
        await page.locator(".found .summary").filter({ hasText: isBad ? "1 " : "Nothing is wrong" })
            .waitFor();
        times.push(await page.evaluate(() => globalThis.changedAt - globalThis.keyAt) - pause);
    }
    await page.context().close();
    return times;
}

async function timesOfPreview(browser, address) {
    const page = await browser.newPage();
    await page.goto(address);
    await page.waitForFunction(() => globalThis.engine !== undefined);
    const times = await page.evaluate(async (text) => {
        const job = { text, picture: { kind: "ramp", width: 512, height: 512 } };
        const all = [];
        for (let round = 0; round < 21; ++round) {
            const start = performance.now();
            await globalThis.engine.preview(job);
            all.push(performance.now() - start);
        }
        return all;
    }, pattern);
    await page.close();
    // The first one loads the module and the mask.
    return times.slice(1);
}

/** Mebibytes of a field in the system's account of a process; 0 once the process is gone. */
function memoryOf(process, field) {
    try {
        const status = readFileSync(`/proc/${process}/status`, "utf8");
        return Number(new RegExp(`^${field}:\\s+(\\d+) kB$`, "m").exec(status)[1]) / 1024;
    } catch {
        return 0;
    }
}

/** Follows the memory of all pages of a browser while something is done, and tells the highest. */
async function followMemory(browser, act) {
    const session = await browser.newBrowserCDPSession();
    let own = 0;
    const look = async () => {
        const { processInfo } = await session.send("SystemInfo.getProcessInfo");
        const pages = processInfo.filter(({ type }) => type === "renderer").map(({ id }) => id);
        own = Math.max(own, ...pages.map((id) => memoryOf(id, "RssAnon")));
        return pages;
    };
    const timer = setInterval(() => void look().catch(() => undefined), 10);
    try {
        await act();
        const pages = await look();
        return { own, all: Math.max(0, ...pages.map((id) => memoryOf(id, "VmHWM"))) };
    } finally {
        clearInterval(timer);
    }
}

/** Works with the largest picture that the page takes. */
async function workWithLargest(browser, address, picture) {
    const page = await openFresh(browser, address);
    for (const tab of ["shares", "compare", "dots"]) {
        await page.locator(`[data-tab=${tab}]`).click();
        await page.waitForTimeout(500);
    }
    await page.getByLabel("Own picture").check();
    await page.getByLabel("PNG, JPEG or TIFF").setInputFiles(picture);
    await page.getByRole("img", { name: "dots from" }).waitFor({ timeout: 60_000 });
    await page.locator("[data-tab=take]").click();
    for (const name of ["Save picture.tif", "Dots as PNG"]) {
        await Promise.all([page.waitForEvent("download"),
            page.getByRole("button", { name }).click()]);
    }
}

async function memories(address) {
    const folder = mkdtempSync(join(tmpdir(), "pelkraft-measure-"));
    try {
        const picture = join(folder, "largest.png");
        writeFileSync(picture, writePng(3072, 2048, 3, Buffer.alloc(3072 * 2048 * 3, 7)));
        const empty = await launch();
        const idle = await followMemory(empty, async () => {
            await (await empty.newPage()).goto("about:blank");
        });
        await empty.close();
        const browser = await launch();
        const used = await followMemory(browser, () => workWithLargest(browser, address, picture));
        await browser.close();
        return { idle, used };
    } finally {
        rmSync(folder, { recursive: true });
    }
}

function mebibytes({ own, all }) {
    return `${own.toFixed(0)} MiB, with the browser's code ${all.toFixed(0)} MiB`;
}

const [pageFolder, engineFolder] = process.argv.slice(2);
if (engineFolder === undefined) {
    console.error("usage: node web/page/measure.mjs PAGE ENGINE_PAGE");
    process.exit(2);
}
const server = await serve(pageFolder);
const engineServer = await serve(engineFolder);
const address = `http://127.0.0.1:${server.address().port}/`;
const engineAddress = `http://127.0.0.1:${engineServer.address().port}/`;
try {
    const browser = await launch();
    const rows = [
        milliseconds("first visit until the text can be changed and its findings are there",
            await timesToInteract(browser, address), 1000),
        milliseconds(`findings, after the pause of ${pause} ms`,
            await timesToFindings(browser, address), 50),
        milliseconds("preview of 512 x 512 pixels in 6 inks",
            await timesOfPreview(browser, engineAddress), 100),
    ];
    await browser.close();
    const { idle, used } = await memories(address);
    rows.push([`most memory of the page's process, with a picture of 24 MiB`,
        mebibytes(used), "256 MiB"], ["the same of an empty page", mebibytes(idle), ""]);
    console.log(["| | measured | to reach |", "|---|---|---|",
        ...rows.map((row) => `| ${row.join(" | ")} |`)].join("\n"));
} finally {
    server.close();
    engineServer.close();
    server.closeAllConnections();
    engineServer.closeAllConnections();
}
