/** A word of a pattern text and its place; quotes belong to the place, and not to the text. */
export interface Word {
    readonly text: string;
    readonly from: number;
    readonly to: number;
}

export const commentCharacter = "#";

export function isBlank(character: string): boolean {
    return character === " " || character === "\t" || character === "\n" || character === "\r";
}

/** Finds the end of the comment that begins at this place. */
function commentEnd(text: string, from: number): number {
    const end = text.slice(from).search(/[\r\n]/);
    return end < 0 ? text.length : from + end;
}

/** Finds the end of the word that begins at this place: blanks within quotes belong to it. */
function wordEnd(text: string, from: number): number {
    let quoted = false;
    let at = from;
    while (at < text.length && (quoted || !isBlank(text[at]!))) {
        quoted = (text[at] === '"') !== quoted;
        ++at;
    }
    return at;
}

/** Cuts a text as the library does: at blanks, with quotes, and without comments. */
export function cutWords(text: string): Word[] {
    const words: Word[] = [];
    let at = 0;
    while (at < text.length) {
        if (isBlank(text[at]!)) {
            ++at;
        } else if (text[at] === commentCharacter) {
            at = commentEnd(text, at);
        } else {
            const to = wordEnd(text, at);
            words.push({ text: text.slice(at, to).replaceAll('"', ""), from: at, to });
            at = to;
        }
    }
    return words;
}

/** Reads a number as the library does: up to the first character that is no digit, else 0. */
export function readNumber(text: string): number {
    const digits = /^\s*([+-]?\d+)/.exec(text);
    return digits === null ? 0 : Number(digits[1]);
}

/** Keywords that open or close a list: no name or number of a finished text looks like them. */
export function isListKeyword(word: Word): boolean {
    return /^(BEGIN|END)_[A-Z_]+$/.test(word.text);
}

/** A name as a pattern text must write it. */
export function quoteName(name: string): string {
    const plain = name.replaceAll('"', "");
    return plain === "" || /\s/.test(plain) || plain.startsWith(commentCharacter)
        ? `"${plain}"`
        : plain;
}

/** Names count the same in any case of their ASCII letters. */
export function sameName(one: string, other: string): boolean {
    return upperCase(one) === upperCase(other);
}

export function upperCase(name: string): string {
    return name.replace(/[a-z]/g, (letter) => letter.toUpperCase());
}
