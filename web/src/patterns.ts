import { type Bytes, lengthOf } from "./bytes.js";
import { requireBytes, requireInteger, requireOneOf, textBytes } from "./checks.js";
import { aligned, type Memory } from "./memory.js";

const engines = ["auto", "reference", "x86", "sse"] as const;

/** What runs a pattern; "auto" is the fastest one that gives the bytes of "sse". */
export type Engine = (typeof engines)[number];

function createPattern(memory: Memory, text: string | Uint8Array, engine: Engine): number {
    const bytes = textBytes(text, "the pattern text");
    requireOneOf(engine, engines, "the engine");
    return memory.withBlock(4 + bytes.length, (block) => {
        memory.write(block + 4, bytes, bytes.length);
        const { create_pattern } = memory.exports;
        memory.refuse(create_pattern(block + 4, engines.indexOf(engine), block));
        return memory.readNumber(block);
    });
}

/**
 * A dot pattern turns rows of step numbers, a byte for each in-colour of a pixel, into rows of ink
 * values, a byte for each out-ink. Each row draws anew, the same for the same text and the same
 * rows before it. It takes memory until it is freed.
 */
export class Pattern {
    readonly #memory: Memory;
    #address: number;
    readonly #inColors: number;
    readonly #outInks: number;

    constructor(memory: Memory, text: string | Uint8Array, engine: Engine = "auto") {
        this.#memory = memory;
        this.#address = createPattern(memory, text, engine);
        this.#inColors = memory.exports.in_colors(this.#address);
        this.#outInks = memory.exports.out_inks(this.#address);
    }

    get inColors(): number {
        return this.#inColors;
    }

    get outInks(): number {
        return this.#outInks;
    }

    /** The highest step of an in-colour, or 255 for one that is listed but not described. */
    topStep(inColor: number): number {
        const address = this.#live();
        requireInteger(inColor, "the in-colour");
        if (inColor < 0 || inColor >= this.#inColors) {
            throw new RangeError(`there is no in-colour ${inColor} among ${this.#inColors}`);
        }
        return this.#memory.exports.top_step(address, inColor);
    }

    /** The rows begin again from the first one. */
    reset(): void {
        this.#memory.exports.reset_pattern(this.#live());
    }

    /** Applies the pattern to one row. */
    apply(source: Bytes): Uint8Array {
        const address = this.#live();
        requireBytes(source, "the row");
        const sourceBytes = lengthOf(source);
        const pixels = sourceBytes / this.#inColors;
        if (!Number.isInteger(pixels)) {
            throw new RangeError(
                `the row has ${sourceBytes} bytes, which is no whole number of pixels of ` +
                    `${this.#inColors} in-colours`,
            );
        }
        const memory = this.#memory;
        const targetPlace = aligned(sourceBytes);
        const targetBytes = pixels * this.#outInks;
        return memory.withBlock(targetPlace + targetBytes, (block) => {
            memory.write(block, source, sourceBytes);
            memory.exports.apply_pattern(address, block, block + targetPlace, pixels);
            return memory.copy(block + targetPlace, targetBytes);
        });
    }

    /** Gives the memory back. The pattern is of no use after that; a second call does nothing. */
    free(): void {
        this.#memory.exports.free_pattern(this.#address);
        this.#address = 0;
    }

    #live(): number {
        if (this.#address === 0) {
            throw new Error("the pattern has been freed");
        }
        return this.#address;
    }
}
