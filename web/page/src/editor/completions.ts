import type { Completion, CompletionContext, CompletionResult } from "@codemirror/autocomplete";

import { cutWords, quoteName, type Word } from "../pattern/words.js";
import { readStructure } from "../pattern/structure.js";
import { en } from "../../texts/en.js";

/** The list that a place stands in: the last keyword before it says so. */
function openList(words: readonly Word[], place: number): string | null {
    const keyword = [...words].reverse()
        .find((word) => word.to < place && Object.hasOwn(en.keywords, word.text));
    return keyword?.text ?? null;
}

function keywordsAfter(list: string | null): string[] {
    switch (list) {
    case "BEGIN_OUT_INKS":
    case "BEGIN_IN_COLORS":
    case "BEGIN_INKS":
    case "BEGIN_VALUES":
        return [list.replace("BEGIN", "END")];
    case "BEGIN_IN_COLOR":
    case "END_INKS":
    case "END_VALUES":
        return ["BEGIN_INKS", "BEGIN_VALUES", "END_IN_COLOR"];
    default:
        return ["VERSION", "RANDOM_SEED", "BEGIN_OUT_INKS", "BEGIN_IN_COLORS", "BEGIN_IN_COLOR"];
    }
}

/** Keywords that may follow, and the names that are known. */
export function completePattern(context: CompletionContext): CompletionResult | null {
    const word = context.matchBefore(/[\w"]+/);
    if (word === null && !context.explicit) {
        return null;
    }
    const text = context.state.doc.toString();
    const words = cutWords(text);
    const structure = readStructure(text);
    const from = word?.from ?? context.pos;
    const list = openList(words, from);
    const options: Completion[] = keywordsAfter(list).map((label) =>
        ({ label, type: "keyword", info: en.keywords[label as keyof typeof en.keywords] }));
    const names = list === "BEGIN_INKS" ? structure.outInks
        : list === "BEGIN_IN_COLOR" ? structure.inColours : null;
    options.push(...(names?.names ?? []).map(({ text: name }) =>
        ({ label: quoteName(name), type: "variable", boost: 1 })));
    // A word that is whole needs no list, which would take the key that ends the line.
    const isWhole = (typed: string) => options.some(({ label }) => label === typed);
    if (!context.explicit && isWhole(word?.text ?? "")) {
        return null;
    }
    return { from, options, validFor: (typed) => /^[\w"]*$/.test(typed) && !isWhole(typed) };
}
