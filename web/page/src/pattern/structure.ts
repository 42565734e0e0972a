import { cutWords, isListKeyword, readNumber, sameName, type Word } from "./words.js";

/** An entry of a value line, with its weight in the ratio. */
export interface Alternative {
    readonly weight: number;
    readonly probability: number;
    readonly position: number;
    readonly value: number;
    readonly ink: string | null;
    readonly word: Word;
}

export interface ValueLine {
    readonly step: number;
    readonly stepWord: Word;
    readonly ratioWord: Word;
    readonly alternatives: readonly Alternative[];
    readonly from: number;
    readonly to: number;
}

/** Words between a keyword and the one that closes it, which an unfinished text may lack. */
export interface List {
    readonly open: Word;
    readonly close: Word | null;
    readonly names: readonly Word[];
}

export interface Block {
    readonly name: string;
    readonly open: Word;
    readonly close: Word | null;
    readonly inks: List | null;
    readonly values: { open: Word; close: Word | null; lines: readonly ValueLine[] } | null;
}

export interface Numbered {
    readonly keyword: Word;
    readonly number: Word | null;
    readonly value: number;
}

/** The sections of a pattern text with the places that a change must touch. */
export interface Structure {
    readonly header: Word | null;
    readonly version: Numbered | null;
    readonly seed: Numbered | null;
    readonly outInks: List | null;
    readonly inColours: List | null;
    readonly blocks: readonly Block[];
}

export const header = "DotWeavePattern";
const mostWeights = 16;

class Reader {
    #at = 0;
    readonly #words: readonly Word[];
    readonly #found: {
        header: Word | null; version: Numbered | null; seed: Numbered | null;
        outInks: List | null; inColours: List | null; blocks: Block[];
    } = { header: null, version: null, seed: null, outInks: null, inColours: null, blocks: [] };

    constructor(text: string) {
        this.#words = cutWords(text);
        if (this.#words[0]?.text === header) {
            this.#found.header = this.#words[0];
        }
    }

    read(): Structure {
        for (let word = this.#next(); word !== null; word = this.#next()) {
            this.#readSection(word);
        }
        return this.#found;
    }

    #next(): Word | null {
        return this.#words[this.#at++] ?? null;
    }

    #readSection(word: Word): void {
        switch (word.text) {
        case "VERSION":
            this.#found.version = this.#readNumbered(word);
            break;
        case "RANDOM_SEED":
            this.#found.seed = this.#readNumbered(word);
            break;
        case "BEGIN_OUT_INKS":
            this.#found.outInks = this.#readList(word, "END_OUT_INKS");
            break;
        case "BEGIN_IN_COLORS":
            this.#found.inColours = this.#readList(word, "END_IN_COLORS");
            break;
        case "BEGIN_IN_COLOR":
            this.#found.blocks.push(this.#readBlock(word));
            break;
        }
    }

    #readNumbered(keyword: Word): Numbered {
        const number = this.#next();
        return { keyword, number, value: readNumber(number?.text ?? "") };
    }

    #readList(open: Word, closing: string): List {
        const names: Word[] = [];
        let close = this.#next();
        for (; close !== null && close.text !== closing; close = this.#next()) {
            names.push(close);
        }
        return { open, close, names };
    }

    #readBlock(open: Word): Block {
        const block: { -readonly [key in keyof Block]: Block[key] } =
            { name: "", open, close: null, inks: null, values: null };
        for (let word = this.#next(); word !== null; word = this.#next()) {
            if (word.text === "END_IN_COLOR") {
                block.close = word;
                break;
            } else if (word.text === "BEGIN_INKS") {
                block.inks = this.#readList(word, "END_INKS");
            } else if (word.text === "BEGIN_VALUES") {
                block.values = this.#readValues(word, inksOf(this.#found, block));
            } else if (block.name === "") {
                block.name = word.text;
            }
        }
        return block;
    }

    #readValues(open: Word, inks: readonly string[]): NonNullable<Block["values"]> {
        const lines: ValueLine[] = [];
        for (let word = this.#next(); word !== null; word = this.#next()) {
            if (word.text === "END_VALUES") {
                return { open, close: word, lines };
            }
            const line = this.#readLine(word, inks);
            if (line !== null) {
                lines.push(line);
            }
        }
        return { open, close: null, lines };
    }

    #readLine(stepWord: Word, inks: readonly string[]): ValueLine | null {
        const ratioWord = this.#next();
        if (ratioWord === null || isListKeyword(ratioWord)) {
            --this.#at;
            return null;
        }
        const weights = ratioWord.text.split(":").slice(0, mostWeights).map(readNumber);
        const sum = weights.reduce((total, weight) => total + weight, 0);
        const alternatives: Alternative[] = [];
        for (const weight of weights) {
            const word = this.#next();
            // The author hasn't finished this line.
            if (word === null || isListKeyword(word)) {
                --this.#at;
                break;
            }
            const [position, value] = readEntry(word.text);
            const probability = sum > 0 ? weight / sum : 0;
            const ink = inks[position] ?? null;
            alternatives.push({ weight, probability, position, value, ink, word });
        }
        const to = alternatives.at(-1)?.word.to ?? ratioWord.to;
        const step = readNumber(stepWord.text);
        return { step, stepWord, ratioWord, alternatives, from: stepWord.from, to };
    }
}

function readEntry(text: string): [position: number, value: number] {
    const dash = text.indexOf("-");
    return dash < 0 ? [0, readNumber(text)]
        : [readNumber(text.slice(0, dash)), readNumber(text.slice(dash + 1))];
}

export function readStructure(text: string): Structure {
    return new Reader(text).read();
}

/** The last one counts if there are several blocks for an in-colour. */
export function blockOf(structure: Structure, inColour: string): Block | null {
    return [...structure.blocks].reverse().find((block) => sameName(block.name, inColour)) ?? null;
}

/** The inks of a block by position: a name that is no ink of the machine takes none. */
export function inksOf(structure: Structure, block: Block): string[] {
    const known = structure.outInks?.names.map((word) => word.text) ?? [];
    return (block.inks?.names ?? [])
        .map((word) => word.text)
        .filter((name) => known.some((ink) => sameName(ink, name)));
}
