import { expose, transfer } from "comlink";

import maskAddress from "module:dither_mask.bin";
import pageAddress from "module:pelkraft_page.wasm";
import tiffAddress from "module:pelkraft_tiff.wasm";

import type { BuiltInPicture, Levels, Picture } from "./api.js";
import { engineTexts } from "../../texts/en.js";
import { readBrowserPicture } from "./browser_picture.js";
import { makeBuiltIn } from "./built_in.js";
import { coloursOf, type DotsJob, type Looks, preview, run } from "./dots_work.js";
import { limits } from "./limits.js";
import { load, Module } from "./module.js";
import { kindOf } from "./picture_header.js";
import { type Outcome, Refusal } from "./refusal.js";
import { diff, fixed, plot, read, sarif } from "./texts_work.js";
import { readTiff } from "./tiff_picture.js";

/** Keeps what was made once, but not a failure. */
function once<Value>(make: () => Promise<Value>): () => Promise<Value> {
    let made: Promise<Value> | null = null;
    return () => {
        made ??= make().catch((failure: unknown) => {
            made = null;
            throw failure;
        });
        return made;
    };
}

const pageModule = once(async () => Module.start(await Module.compile(pageAddress)));
const tiffCode = once(() => Module.compile(tiffAddress));
const mask = once(async () => new Uint8Array(await load(maskAddress)));

async function answer<Value>(
    work: (module: Module) => Value | Promise<Value>,
    buffersOf: (value: Value) => readonly ArrayBufferLike[] = () => [],
): Promise<Outcome<Value>> {
    try {
        const module = await pageModule();
        try {
            const value = await work(module);
            const outcome = { value, memory: module.memoryBytes };
            return transfer(outcome, buffersOf(value) as Transferable[]);
        } catch (failure) {
            if (failure instanceof Refusal) {
                return { refusal: failure.message, memory: module.memoryBytes };
            }
            throw failure;
        }
    } catch (failure) {
        if (failure instanceof Refusal) {
            return { refusal: failure.message, memory: 0 };
        }
        return { fault: failure instanceof Error ? failure.message : String(failure) };
    }
}

async function readPicture(bytes: Uint8Array): Promise<Picture> {
    if (bytes.length > limits.fileBytes) {
        throw new Refusal(engineTexts.fileTooLarge(bytes.length, limits.fileBytes));
    }
    const kind = kindOf(bytes);
    if (kind === null) {
        throw new Refusal(engineTexts.unknownPicture);
    }
    if (kind !== "TIFF") {
        return readBrowserPicture(kind, bytes);
    }
    // Its memory goes with it.
    const module = await Module.start(await tiffCode());
    try {
        return readTiff(module, bytes);
    } catch (failure) {
        if (failure instanceof WebAssembly.RuntimeError || failure instanceof RangeError) {
            throw new Refusal(engineTexts.damagedPicture("TIFF", failure.message));
        }
        throw failure;
    }
}

const work = {
    read: (text: string) => answer((module) => read(module, text)),
    plot: (text: string, title: string) => answer((module) => plot(module, text, title)),
    diff: (left: string, right: string) => answer((module) => diff(module, left, right)),
    fixed: (text: string) => answer((module) => fixed(module, text)),
    sarif: (text: string, file: string) => answer((module) => sarif(module, text, file)),
    run: (job: DotsJob) =>
        answer((module) => run(module, job, mask), ({ planes }) => [planes.buffer]),
    preview: (job: DotsJob, looks: Looks) =>
        answer((module) => preview(module, job, looks, mask), ({ rgba }) => [rgba.buffer]),
    readPicture: (bytes: Uint8Array) =>
        answer(() => readPicture(bytes), ({ samples }) => [samples.buffer]),
    builtIn: (text: string, picture: BuiltInPicture, levels: Levels) =>
        answer((module) => makeBuiltIn(picture, coloursOf(module, text), levels),
            ({ samples }) => [samples.buffer]),
};

export type Work = typeof work;

expose(work);
