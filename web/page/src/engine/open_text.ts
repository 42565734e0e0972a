import { engineTexts } from "../../texts/en.js";
import { limits } from "./limits.js";
import { Refusal } from "./refusal.js";

// A text of two or four bytes a letter begins with one of these marks.
const wideMarks: readonly (readonly [string, readonly number[]])[] = [
    ["UTF-32", [0xff, 0xfe, 0, 0]], ["UTF-32", [0, 0, 0xfe, 0xff]],
    ["UTF-16", [0xff, 0xfe]], ["UTF-16", [0xfe, 0xff]],
];

function lineOf(bytes: Uint8Array, place: number): number {
    return bytes.subarray(0, place).reduce((line, byte) => line + (byte === 10 ? 1 : 0), 1);
}

/** The line of the first bytes that are no text, or 0. */
function binaryLine(bytes: Uint8Array): number {
    // A letter that becomes a mark of replacement without being one is damaged.
    const decoded = new TextDecoder("utf-8", { ignoreBOM: true }).decode(bytes);
    const again = new TextEncoder().encode(decoded);
    const wrong = again.findIndex((byte, place) => byte === 0 || byte !== bytes[place]);
    return wrong < 0 ? 0 : lineOf(bytes, wrong);
}

/** The text in a file, which the editor can show and give back byte for byte. */
export function openText(bytes: Uint8Array): string {
    if (bytes.length > limits.textBytes) {
        throw new Refusal(engineTexts.textTooLarge(bytes.length, limits.textBytes));
    }
    const wide = wideMarks.find(([, mark]) => mark.every((byte, place) => bytes[place] === byte));
    if (wide !== undefined) {
        throw new Refusal(engineTexts.fileIsWide(wide[0]));
    }
    const line = binaryLine(bytes);
    if (line !== 0) {
        throw new Refusal(engineTexts.fileIsBinary(line));
    }
    return new TextDecoder("utf-8", { ignoreBOM: true }).decode(bytes);
}
