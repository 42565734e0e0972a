import { type Bytes, viewOf } from "./bytes.js";

// The WebAssembly file exports these. A text is the address of bytes that a zero ends.
export interface Exports {
    readonly memory: WebAssembly.Memory;
    _initialize(): void;
    allocate(bytes: number): number;
    release(address: number): void;
    memory_in_use(): number;
    version(): number;
    sse_level(): number;
    limit_sse_level(level: number): void;
    convert_row(conversion: number): number;
    create_pattern(text: number, engine: number, created: number): number;
    free_pattern(pattern: number): void;
    in_colors(pattern: number): number;
    out_inks(pattern: number): number;
    top_step(pattern: number, inColor: number): number;
    reset_pattern(pattern: number): void;
    apply_pattern(pattern: number, source: number, target: number, pixels: number): void;
    explain_pattern(text: number, length: number, file: number, report: number): number;
}

const largestBlock = 0x7fffffff;

// The address after so many bytes of a block at which a row begins, as a block does.
export function aligned(bytes: number): number {
    return Math.ceil(bytes / 16) * 16;
}

// The memory of the WebAssembly file. It may move when it grows, so that a view of it is good for
// one step only.
export class Memory {
    constructor(readonly exports: Exports) {}

    // Lends a block to the work and takes it back, whatever happens.
    withBlock<Result>(bytes: number, work: (address: number) => Result): Result {
        const address = bytes <= largestBlock ? this.exports.allocate(bytes) : 0;
        if (address === 0) {
            throw new RangeError(`there is no memory for ${bytes} bytes`);
        }
        try {
            return work(address);
        } finally {
            this.exports.release(address);
        }
    }

    // Writes so many bytes and never more, however long the array is by now.
    write(address: number, bytes: Bytes, count: number): void {
        new Uint8Array(this.exports.memory.buffer).set(viewOf(bytes, count), address);
    }

    writeNumbers(address: number, numbers: ArrayLike<number>): void {
        new Int32Array(this.exports.memory.buffer).set(numbers, address / 4);
    }

    readNumber(address: number): number {
        return new DataView(this.exports.memory.buffer).getUint32(address, true);
    }

    clear(address: number, bytes: number): void {
        new Uint8Array(this.exports.memory.buffer).fill(0, address, address + bytes);
    }

    copy(address: number, bytes: number): Uint8Array {
        return new Uint8Array(this.exports.memory.buffer).slice(address, address + bytes);
    }

    readText(address: number): string {
        const bytes = new Uint8Array(this.exports.memory.buffer);
        return new TextDecoder().decode(bytes.subarray(address, bytes.indexOf(0, address)));
    }

    // Throws the library's own words, if there are any.
    refuse(text: number): void {
        if (text !== 0) {
            throw new Error(this.readText(text));
        }
    }
}
