import { StreamLanguage, type StringStream } from "@codemirror/language";
import { tags } from "@lezer/highlight";

import { header } from "../pattern/structure.js";
import { commentCharacter, isBlank } from "../pattern/words.js";

type Section = "top" | "outInks" | "inColours" | "block" | "inks" | "values";
type Expected = "header" | "word" | "number" | "step" | "ratio" | "entry" | "value";

interface State {
    section: Section;
    expected: Expected;
    /** Entries that the value line still lacks. */
    entries: number;
    /** Quotes are open, which may run over lines. */
    quoted: boolean;
}

/** The keywords that lead from one section to another. */
const ways: Readonly<Record<Section, Readonly<Record<string, Section>>>> = {
    top: { BEGIN_OUT_INKS: "outInks", BEGIN_IN_COLORS: "inColours", BEGIN_IN_COLOR: "block" },
    outInks: { END_OUT_INKS: "top" },
    inColours: { END_IN_COLORS: "top" },
    block: { BEGIN_INKS: "inks", BEGIN_VALUES: "values", END_IN_COLOR: "top" },
    inks: { END_INKS: "block" },
    values: { END_VALUES: "block" },
};

const numbered = ["VERSION", "RANDOM_SEED"];

function takeWord(stream: StringStream, state: State): string {
    const start = stream.pos;
    for (let next = stream.peek(); next !== undefined; next = stream.peek()) {
        if (isBlank(next) && !state.quoted) {
            break;
        }
        state.quoted = (next === '"') !== state.quoted;
        stream.next();
    }
    return stream.string.slice(start, stream.pos);
}

function enter(state: State, section: Section): string {
    state.section = section;
    state.expected = section === "values" ? "step" : "word";
    return "keyword";
}

function classifyValue(word: string, stream: StringStream, state: State): string {
    switch (state.expected) {
    case "step":
        state.expected = "ratio";
        return "step";
    case "ratio":
        state.entries = word.split(":").length;
        state.expected = "entry";
        return "weight";
    default:
        return classifyEntry(word, stream, state);
    }
}

/** The position and the value of an entry are two colours. */
function classifyEntry(word: string, stream: StringStream, state: State): string {
    const dash = word.indexOf("-");
    if (state.expected === "entry" && dash > 0 && dash < word.length - 1) {
        stream.backUp(word.length - dash - 1);
        state.expected = "value";
        return "position";
    }
    --state.entries;
    state.expected = state.entries > 0 ? "entry" : "step";
    return "value";
}

function classify(word: string, stream: StringStream, state: State): string {
    const next = ways[state.section][word];
    if (next !== undefined) {
        return enter(state, next);
    }
    if (state.section === "values") {
        return classifyValue(word, stream, state);
    }
    if (state.expected === "header" || state.expected === "number") {
        const isHeader = state.expected === "header";
        state.expected = "word";
        return isHeader ? (word === header ? "opening" : "skipped") : "number";
    }
    if (state.section !== "top") {
        return "name";
    }
    state.expected = numbered.includes(word) ? "number" : "word";
    return state.expected === "number" ? "keyword" : "skipped";
}

/** Words by the section that they stand in, as the library reads them. */
export const patternLanguage = StreamLanguage.define<State>({
    name: "dot-pattern",
    startState: () => ({ section: "top", expected: "header", entries: 0, quoted: false }),
    copyState: (state) => ({ ...state }),
    token(stream, state) {
        if (!state.quoted && stream.eatSpace()) {
            return null;
        }
        if (!state.quoted && state.expected !== "value" && stream.peek() === commentCharacter) {
            stream.skipToEnd();
            return "comment";
        }
        return classify(takeWord(stream, state), stream, state);
    },
    languageData: { commentTokens: { line: commentCharacter } },
    tokenTable: {
        opening: tags.definitionKeyword,
        keyword: tags.keyword,
        name: tags.variableName,
        number: tags.number,
        step: tags.labelName,
        weight: tags.operator,
        position: tags.attributeName,
        value: tags.number,
        comment: tags.lineComment,
        skipped: tags.invalid,
    },
});
