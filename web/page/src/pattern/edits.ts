import type { Edit } from "../engine/index.js";
import type { NewStep } from "./next_step.js";
import {
    blockOf, inksOf, type Alternative, type Block, type List, type Structure, type ValueLine,
} from "./structure.js";
import { quoteName, sameName, type Word } from "./words.js";

export function applyEdits(text: string, edits: readonly Edit[]): string {
    return [...edits]
        .sort((one, other) => other.from - one.from)
        .reduce((rest, { from, to, insert }) => rest.slice(0, from) + insert + rest.slice(to), text);
}

/** The same edit without what it would write anew, so that cursors and marks beside it stay. */
export function smallest(text: string, { from, to, insert }: Edit): Edit {
    let head = 0;
    while (head < insert.length && from + head < to && text[from + head] === insert[head]) {
        ++head;
    }
    let tail = 0;
    while (tail < insert.length - head && to - tail > from + head
        && text[to - tail - 1] === insert.at(-1 - tail)) {
        ++tail;
    }
    return { from: from + head, to: to - tail, insert: insert.slice(head, insert.length - tail) };
}

function replaceWord(word: Word, insert: string): Edit {
    return { from: word.from, to: word.to, insert };
}

/** Takes a word away with the blanks that part it from the one before. */
function removeWord(text: string, word: Word): Edit {
    const before = /[ \t]*$/.exec(text.slice(0, word.from))![0].length;
    return { from: word.from - before, to: word.to, insert: "" };
}

/** A comment at the end of the text must not swallow what is written after it. */
function insertAfter(place: number, insert: string): Edit {
    return { from: place, to: place, insert };
}

export function writeRatio(line: ValueLine, weights: readonly number[]): Edit {
    return replaceWord(line.ratioWord, weights.join(":"));
}

export function writeWeight(line: ValueLine, index: number, weight: number): Edit[] {
    const weights = line.alternatives.map((one, i) => (i === index ? weight : one.weight));
    return [writeRatio(line, weights)];
}

function greatestDivisor(one: number, other: number): number {
    return other === 0 ? one : greatestDivisor(other, one % other);
}

/**
 * The weights by which one alternative comes with these hundredths of a percent, while the others
 * share the rest as they did.
 */
export function weightsForShare(
    weights: readonly number[], index: number, hundredths: number,
): number[] {
    const others = weights.reduce((sum, weight, i) => (i === index ? sum : sum + weight), 0);
    const even = others === 0;
    const spread = even ? weights.length - 1 : others;
    const raw = weights.map((weight, i) =>
        i === index ? hundredths * spread : (even ? 1 : weight) * (10000 - hundredths));
    const divisor = raw.reduce(greatestDivisor, 0);
    return raw.map((weight) => weight / Math.max(divisor, 1));
}

export function writeShare(line: ValueLine, index: number, hundredths: number): Edit[] {
    const weights = line.alternatives.map((one) => one.weight);
    return [writeRatio(line, weightsForShare(weights, index, hundredths))];
}

export function writeEntry(alternative: Alternative, position: number, value: number): Edit[] {
    return [replaceWord(alternative.word, `${position}-${value}`)];
}

export function writeStep(line: ValueLine, step: number): Edit[] {
    const suffix = line.stepWord.text.endsWith("+") ? "+" : "";
    return [replaceWord(line.stepWord, `${step}${suffix}`)];
}

export function addAlternative(line: ValueLine): Edit[] {
    const last = line.alternatives.at(-1);
    const weights = [...line.alternatives.map((one) => one.weight), 1];
    const entry = ` ${last?.position ?? 0}-0`;
    return [writeRatio(line, weights), insertAfter(line.to, entry)];
}

export function removeAlternative(text: string, line: ValueLine, index: number): Edit[] {
    const rest = line.alternatives.filter((_, i) => i !== index);
    const weights = rest.length === 1 ? [1] : rest.map((one) => one.weight);
    return [writeRatio(line, weights), removeWord(text, line.alternatives[index]!.word)];
}

/** Blanks that the line of this place begins with. */
function indentAt(text: string, place: number): string {
    const start = text.lastIndexOf("\n", place - 1) + 1;
    return /^[ \t]*/.exec(text.slice(start))![0];
}

/** The end of the line of text that this place is on, after its comment. */
function lineEnd(text: string, place: number): number {
    const end = text.indexOf("\n", place);
    return end < 0 ? text.length : end;
}

/** Nothing but blanks or a comment stands between this place and the end of its line. */
function endsItsLine(text: string, place: number): boolean {
    return /^[ \t]*(#.*)?$/.test(text.slice(place, lineEnd(text, place)));
}

export function addStep(text: string, block: Block, { step, position, value }: NewStep): Edit[] {
    const values = block.values;
    if (values === null) {
        return [];
    }
    const last = [...values.lines].reverse().find((line) => line.step < step);
    const place = last?.to ?? values.open.to;
    const written = `${step} 1 ${position}-${value}`;
    if (!endsItsLine(text, place)) {
        return [insertAfter(place, ` ${written}`)];
    }
    return [insertAfter(lineEnd(text, place), `\n${indentAt(text, place)}${written}`)];
}

/** Takes a value line away. Comments stay, and so do words on its line that aren't its own. */
export function removeStep(text: string, line: ValueLine): Edit[] {
    const start = text.lastIndexOf("\n", line.from - 1) + 1;
    const alone = /^[ \t]*$/.test(text.slice(start, line.from));
    const end = lineEnd(text, line.to);
    if (alone && /^[ \t]*$/.test(text.slice(line.to, end))) {
        return [{ from: start, to: Math.min(end + 1, text.length), insert: "" }];
    }
    const pieces = [line.stepWord, line.ratioWord, ...line.alternatives.map((one) => one.word)];
    return pieces.map((word) => removeWord(text, word));
}

/** Adds a name to a list, after its last one. */
function addName(list: List, name: string): Edit {
    const place = list.names.at(-1)?.to ?? list.open.to;
    return insertAfter(place, ` ${quoteName(name)}`);
}

/** Takes a name from a list, wherever it stands there. */
function removeName(text: string, list: List | null, name: string): Edit[] {
    return (list?.names ?? []).filter((word) => sameName(word.text, name))
        .map((word) => removeWord(text, word));
}

/** Lists may stand wherever a section may: after the version, or after the first word. */
function placeOfLists(structure: Structure): number {
    return structure.version?.number?.to ?? structure.header?.to ?? 0;
}

function newList(stem: string, name: string): string {
    return `\nBEGIN_${stem} ${quoteName(name)} END_${stem}`;
}

export function addOutInk(structure: Structure, name: string): Edit[] {
    return [structure.outInks !== null ? addName(structure.outInks, name)
        : insertAfter(placeOfLists(structure), newList("OUT_INKS", name))];
}

/** Adds an ink to those of an in-colour, and to those of the machine where it is new. */
export function addInk(structure: Structure, block: Block, name: string): Edit[] {
    const known = structure.outInks?.names.some((word) => sameName(word.text, name)) ?? false;
    const edits = known ? [] : addOutInk(structure, name);
    return block.inks === null ? edits : [...edits, addName(block.inks, name)];
}

/** Takes an ink from an in-colour: the positions after it move down, its own entries give none. */
export function removeInk(
    text: string, structure: Structure, block: Block, name: string,
): Edit[] {
    const isGone = inksOf(structure, block).map((ink) => sameName(ink, name));
    const entries = (block.values?.lines ?? []).flatMap((line) => line.alternatives)
        .flatMap((one) => {
            const moved = one.position - isGone.slice(0, one.position).filter(Boolean).length;
            return isGone[one.position] === true ? writeEntry(one, 0, 0)
                : moved === one.position ? [] : writeEntry(one, moved, one.value);
        });
    return [...removeName(text, block.inks, name), ...entries];
}

/** Takes an ink from the machine, and from each in-colour that prints with it. */
export function removeOutInk(text: string, structure: Structure, name: string): Edit[] {
    return [...removeName(text, structure.outInks, name),
        ...structure.blocks.flatMap((block) => removeInk(text, structure, block, name))];
}

/** Counts the alternatives that print an ink. */
export function countUses(structure: Structure, name: string): number {
    return structure.blocks.flatMap((block) => block.values?.lines ?? [])
        .flatMap((line) => line.alternatives)
        .filter(({ ink, value }) => ink !== null && value > 0 && sameName(ink, name)).length;
}

/** Gives an ink of the machine another name wherever it stands. */
export function renameOutInk(structure: Structure, name: string, newName: string): Edit[] {
    const lists = [structure.outInks, ...structure.blocks.map((block) => block.inks)];
    return lists.flatMap((list) => list?.names ?? [])
        .filter((word) => sameName(word.text, name))
        .map((word) => replaceWord(word, quoteName(newName)));
}

export function renameInColour(structure: Structure, words: readonly Word[], name: string,
    newName: string): Edit[] {
    const places = new Set(structure.inColours?.names.map((word) => word.from));
    const inBlocks = new Set(structure.blocks.map((block) => block.open.to));
    return words
        .filter((word, i) => sameName(word.text, name)
            && (places.has(word.from) || inBlocks.has(words[i - 1]?.to ?? -1)))
        .map((word) => replaceWord(word, quoteName(newName)));
}

/** Writes the block of a listed in-colour: it prints an ink of its own name, or the first one. */
export function addBlock(text: string, structure: Structure, name: string): Edit[] {
    const inks = structure.outInks?.names.map((word) => word.text) ?? [];
    const ink = inks.find((one) => sameName(one, name)) ?? inks[0] ?? name;
    const block = ["", `BEGIN_IN_COLOR ${quoteName(name)}`,
        `BEGIN_INKS ${quoteName(ink)} END_INKS`, "BEGIN_VALUES", "1 1 0-255", "END_VALUES",
        "END_IN_COLOR", ""].join("\n");
    return [insertAfter(text.length, text.endsWith("\n") ? block : `\n${block}`)];
}

/** A new in-colour prints an ink of its own name, which the machine gets where it is new. */
export function addInColour(text: string, structure: Structure, name: string): Edit[] {
    const { inColours, outInks } = structure;
    const block = addBlock(text, withInk(structure, name), name);
    if (outInks === null && inColours === null) {
        const lists = newList("OUT_INKS", name) + newList("IN_COLORS", name);
        return [insertAfter(placeOfLists(structure), lists), ...block];
    }
    const known = outInks?.names.some((word) => sameName(word.text, name)) ?? false;
    const listed = inColours?.names.some((word) => sameName(word.text, name)) ?? false;
    const listing = inColours !== null ? addName(inColours, name)
        : insertAfter(placeOfLists(structure), newList("IN_COLORS", name));
    return [...(known ? [] : addOutInk(structure, name)), ...(listed ? [] : [listing]), ...block];
}

function withInk(structure: Structure, text: string): Structure {
    const names = structure.outInks?.names ?? [];
    const known = names.some((word) => sameName(word.text, text));
    const word = { text, from: 0, to: 0 };
    return known ? structure : { ...structure,
        outInks: { open: word, close: null, names: [...names, word] } };
}

/** Takes an in-colour with its block away; the inks of the machine stay. */
export function removeInColour(text: string, structure: Structure, name: string): Edit[] {
    const block = blockOf(structure, name);
    const edits = removeName(text, structure.inColours, name);
    if (block === null) {
        return edits;
    }
    const end = block.close?.to ?? text.length;
    const next = endsItsLine(text, end) && text[end] === "\n" ? end + 1 : end;
    return [...edits, { from: block.open.from, to: next, insert: "" }];
}

export function writeNumber(structure: Structure, keyword: "VERSION" | "RANDOM_SEED",
    value: number): Edit[] {
    const numbered = keyword === "VERSION" ? structure.version : structure.seed;
    if (numbered?.number != null) {
        return [replaceWord(numbered.number, String(value))];
    }
    const place = (keyword === "RANDOM_SEED" ? structure.version?.number : null)?.to
        ?? structure.header?.to;
    return place === undefined ? [] : [insertAfter(place, `\n${keyword} ${value}`)];
}
