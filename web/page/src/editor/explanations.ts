import { hoverTooltip, type EditorView, type Tooltip } from "@codemirror/view";

import { h } from "../dom.js";
import { readStructure, type Structure, type ValueLine } from "../pattern/structure.js";
import { cutWords } from "../pattern/words.js";
import { percent } from "../numbers.js";
import { en } from "../../texts/en.js";

export interface LinePlace {
    readonly inColour: string;
    readonly line: ValueLine;
}

/** The value line that a place of the text belongs to. */
export function lineAt(structure: Structure, place: number): LinePlace | null {
    for (const block of structure.blocks) {
        const line = block.values?.lines.find(({ from, to }) => place >= from && place <= to);
        if (line !== undefined) {
            return { inColour: block.name, line };
        }
    }
    return null;
}

function explainLine({ inColour, line }: LinePlace): HTMLElement {
    const rows = line.alternatives.map(({ ink, value, position, probability }) =>
        h("p", {}, en.hover.alternative(percent(probability), ink ?? String(position), value)));
    return h("div", { class: "explanation" },
        h("p", {}, h("strong", {}, en.hover.step(inColour, line.step))), ...rows);
}

function explanationAt(view: EditorView, place: number): Tooltip | null {
    const text = view.state.doc.toString();
    const word = cutWords(text).find(({ from, to }) => place >= from && place <= to);
    if (word === undefined) {
        return null;
    }
    const tooltip = (dom: HTMLElement) =>
        ({ pos: word.from, end: word.to, above: true, create: () => ({ dom }) });
    if (Object.hasOwn(en.keywords, word.text)) {
        const meaning = en.keywords[word.text as keyof typeof en.keywords];
        return tooltip(h("div", { class: "explanation" },
            h("p", {}, h("strong", {}, word.text)), h("p", {}, meaning)));
    }
    const line = lineAt(readStructure(text), word.from);
    return line === null ? null : tooltip(explainLine(line));
}

export const explanations = hoverTooltip(explanationAt, { hoverTime: 400 });
