import type { Place } from "./api.js";

/** An offset and a length in bytes, or null. */
export type ByteSpan = readonly [number, number] | null;

// By byte of the text the unit that it belongs to; nothing where they are the same.
function unitsByByte(text: string, byteCount: number): Uint32Array | null {
    if (byteCount === text.length) {
        return null;
    }
    const units = new Uint32Array(byteCount + 1);
    let byte = 0;
    let unit = 0;
    for (const letter of text) {
        const code = letter.codePointAt(0) ?? 0;
        const size = code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
        units.fill(unit, byte, byte + size);
        byte += size;
        unit += letter.length;
    }
    units[byte] = unit;
    return units;
}

/** Turns the places of the program into those of the editor. */
export class Places {
    readonly #text: string;
    readonly #units: Uint32Array | null;
    readonly #lineStarts: number[] = [0];

    constructor(text: string, byteCount: number) {
        this.#text = text;
        this.#units = unitsByByte(text, byteCount);
        for (const { index, 0: end } of text.matchAll(/\r\n|\r|\n/g)) {
            this.#lineStarts.push(index + end.length);
        }
    }

    of(span: ByteSpan | undefined): Place | null {
        return span ? this.at(span[0], span[1]) : null;
    }

    at(offset: number, length: number): Place {
        const from = this.#unitOf(offset);
        const line = this.#lineOf(from);
        const start = this.#lineStarts[line - 1] ?? 0;
        const column = Array.from(this.#text.slice(start, from)).length + 1;
        return { from, to: this.#unitOf(offset + length), line, column };
    }

    #unitOf(byte: number): number {
        const unit = this.#units === null ? byte : this.#units[byte];
        return Math.min(unit ?? this.#text.length, this.#text.length);
    }

    #lineOf(unit: number): number {
        let low = 0;
        let high = this.#lineStarts.length;
        while (high - low > 1) {
            const middle = (low + high) >> 1;
            if ((this.#lineStarts[middle] ?? 0) <= unit) {
                low = middle;
            } else {
                high = middle;
            }
        }
        return low + 1;
    }
}
