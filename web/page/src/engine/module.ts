import { engineTexts } from "../../texts/en.js";
import { Refusal } from "./refusal.js";

// Each function answers 0 where its answer is what was asked for, and 1 where it is a sentence.
interface Exports {
    readonly memory: WebAssembly.Memory;
    readonly [name: string]: WebAssembly.ExportValue;
}

// The number of WASI for a function that isn't there.
const notSupported = 52;

/** One of the page's WebAssembly files at work. */
export class Module {
    readonly #exports: Exports;

    private constructor(exports: Exports) {
        this.#exports = exports;
    }

    static async compile(address: string | URL): Promise<WebAssembly.Module> {
        return WebAssembly.compile(await load(address));
    }

    static async start(compiled: WebAssembly.Module): Promise<Module> {
        const instance = await WebAssembly.instantiate(compiled, {
            env: { emscripten_notify_memory_growth: () => undefined },
            wasi_snapshot_preview1: {
                proc_exit: (code: number) => {
                    throw new WebAssembly.RuntimeError(engineTexts.moduleEnded(code));
                },
                // There are no files and no variables.
                environ_get: () => notSupported,
                environ_sizes_get: () => notSupported,
                fd_close: () => notSupported,
                fd_seek: () => notSupported,
                fd_write: () => notSupported,
            },
        });
        const module = new Module(instance.exports as Exports);
        module.#call("_initialize", []);
        return module;
    }

    get memoryBytes(): number {
        return this.#exports.memory.buffer.byteLength;
    }

    /** Calls a function and gives the bytes of its answer. */
    ask(name: string, ...numbers: number[]): Uint8Array {
        const isRefused = this.#call(name, numbers) !== 0;
        const start = this.#call("answer_data", []);
        const bytes = this.bytes().slice(start, start + this.#call("answer_bytes", []));
        if (isRefused) {
            throw new Refusal(new TextDecoder().decode(bytes));
        }
        return bytes;
    }

    askJson(name: string, ...numbers: number[]): unknown {
        return JSON.parse(new TextDecoder().decode(this.ask(name, ...numbers)));
    }

    /** Lends blocks that hold the bytes, or zeros for a number of them, whatever the work does. */
    lend<Result>(
        contents: readonly (Uint8Array | number)[], work: (...addresses: number[]) => Result,
    ): Result {
        const addresses: number[] = [];
        try {
            for (const content of contents) {
                addresses.push(this.#allocate(content));
            }
            return work(...addresses);
        } finally {
            for (const address of addresses) {
                this.#call("release", [address]);
            }
        }
    }

    /** The memory moves when it grows: a view is good until the next call. */
    bytes(): Uint8Array {
        return new Uint8Array(this.#exports.memory.buffer);
    }

    #allocate(content: Uint8Array | number): number {
        const bytes = typeof content === "number" ? content : content.length;
        const address = this.#call("allocate", [bytes]);
        if (address === 0) {
            throw new RangeError(engineTexts.noMemory(bytes));
        }
        if (typeof content !== "number") {
            this.bytes().set(content, address);
        }
        return address;
    }

    // Addresses are unsigned.
    #call(name: string, numbers: number[]): number {
        const called = this.#exports[name] as (...numbers: number[]) => number | undefined;
        return (called(...numbers) ?? 0) >>> 0;
    }
}

export async function load(address: string | URL): Promise<ArrayBuffer> {
    const file = new URL(address, import.meta.url);
    const refuse = () => {
        throw new Refusal(engineTexts.notLoaded(file.pathname.replace(/.*\//, "")));
    };
    const response = await fetch(file).catch(refuse);
    return response.ok ? response.arrayBuffer() : refuse();
}

/** Numbers of 32 bits as a record of C++ has them. */
export function record(...numbers: number[]): Uint8Array {
    return new Uint8Array(Int32Array.from(numbers, (number) => number | 0).buffer);
}
