import { requireInteger } from "./checks.js";
import { type Exports, Memory } from "./memory.js";
import { type Engine, Pattern as AnyPattern } from "./patterns.js";
import { explainPattern, type PatternReport } from "./reports.js";
import { type ConversionOptions, convertRow, type SourceRow, type TargetRow } from "./rows.js";

export type { Bytes } from "./bytes.js";
export type { Engine } from "./patterns.js";
export type { Alternative, Finding, InColor, PatternReport, Use } from "./reports.js";
export type { ConversionOptions, RowGeometry, SourceRow, TargetRow } from "./rows.js";

export type Pattern = AnyPattern;

/**
 * The library. What it refuses is an Error with its own words; what it can't be asked at all, such
 * as a row of the wrong length, is a TypeError or a RangeError. Nothing is converted then.
 */
export interface Pelkraft {
    readonly version: string;
    /** 3 for vectors of 16 bytes, 0 without them. */
    sseLevel(): number;
    limitSseLevel(level: number): void;
    /** The bytes of its memory, which grows and never shrinks, and those that are in use. */
    memoryBytes(): number;
    memoryInUse(): number;
    /** Converts one row and gives the target's bytes. */
    convertRow(source: SourceRow, target: TargetRow, options?: ConversionOptions): Uint8Array;
    /** Reads a pattern text as its author would want it read: what it means, and what is wrong. */
    explainPattern(text: string | Uint8Array, file?: string): PatternReport;
    readonly Pattern: new (text: string | Uint8Array, engine?: Engine) => Pattern;
}

export interface LoadOptions {
    /**
     * The WebAssembly file: its address, its bytes, or what it was compiled to. Without it, the
     * file pelkraft.wasm beside this one. An address in a text begins at this file, not at the
     * page: "x.wasm" lies beside this file, new URL("x.wasm", document.baseURI) beside the page.
     */
    readonly wasm?: URL | string | BufferSource | WebAssembly.Module | undefined;
    /** Takes the lines of the library's log: one for each conversion that it refuses. */
    readonly log?: ((line: string) => void) | undefined;
}

async function read(address: URL): Promise<BufferSource> {
    if (address.protocol === "file:") {
        const { readFile } = await import("node:fs/promises");
        return new Uint8Array(await readFile(address));
    }
    const response = await fetch(address);
    if (!response.ok) {
        throw new Error(`${address} cannot be read: ${response.status} ${response.statusText}`);
    }
    return response.arrayBuffer();
}

// A file or an address may come from a frame, whose classes are not those of this page.
function isModule(wasm: unknown): wasm is WebAssembly.Module {
    return Object.prototype.toString.call(wasm) === "[object WebAssembly.Module]";
}

function isUrl(wasm: unknown): wasm is URL {
    return Object.prototype.toString.call(wasm) === "[object URL]";
}

async function compile(wasm: LoadOptions["wasm"]): Promise<WebAssembly.Module> {
    if (isModule(wasm)) {
        return wasm;
    }
    if (wasm === undefined || typeof wasm === "string" || isUrl(wasm)) {
        const address = new URL(wasm ?? "pelkraft.wasm", import.meta.url);
        return WebAssembly.compile(await read(address));
    }
    return WebAssembly.compile(wasm);
}

// The library calls its system for the log alone.
function system(memory: () => WebAssembly.Memory, log: (line: string) => void) {
    let line = "";
    const decoder = new TextDecoder();
    const success = 0;
    const write = (_file: number, pieces: number, count: number, written: number): number => {
        const view = new DataView(memory().buffer);
        let bytes = 0;
        for (let piece = pieces; piece < pieces + 8 * count; piece += 8) {
            const length = view.getUint32(piece + 4, true);
            const place = view.getUint32(piece, true);
            line += decoder.decode(new Uint8Array(view.buffer, place, length), { stream: true });
            bytes += length;
        }
        view.setUint32(written, bytes, true);
        const lines = line.split("\n");
        line = lines.pop() ?? "";
        try {
            lines.forEach((each) => log(each));
        } catch {
            // The refusal that is being logged is the error that the caller has to see.
        }
        return success;
    };
    return {
        env: { emscripten_notify_memory_growth: () => {} },
        wasi_snapshot_preview1: {
            fd_write: write,
            fd_seek: () => success,
            fd_close: () => success,
            proc_exit: (code: number) => {
                throw new Error(`the library has ended with code ${code}`);
            },
        },
    };
}

/** Each library loaded has a memory of its own, and a level. */
export async function loadPelkraft({ wasm, log = () => {} }: LoadOptions = {}): Promise<Pelkraft> {
    let exports: Exports;
    const imports = system(() => exports.memory, log);
    const instance = await WebAssembly.instantiate(await compile(wasm), imports);
    exports = instance.exports as unknown as Exports;
    exports._initialize();
    const memory = new Memory(exports);
    return {
        version: memory.readText(exports.version()),
        sseLevel: () => exports.sse_level(),
        limitSseLevel: (level) => {
            requireInteger(level, "the level");
            exports.limit_sse_level(level);
        },
        memoryBytes: () => exports.memory.buffer.byteLength,
        memoryInUse: () => exports.memory_in_use(),
        convertRow: (source, target, options) => convertRow(memory, source, target, options),
        explainPattern: (text, file) => explainPattern(memory, text, file),
        Pattern: class Pattern extends AnyPattern {
            constructor(text: string | Uint8Array, engine?: Engine) {
                super(memory, text, engine);
            }
        },
    };
}
