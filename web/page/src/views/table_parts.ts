import { h, styled } from "../dom.js";
import { rounded } from "../numbers.js";
import { nextStep, type NewStep } from "../pattern/next_step.js";
import { inksOf, type Alternative, type Block, type Structure, type ValueLine }
    from "../pattern/structure.js";
import { sameName } from "../pattern/words.js";
import { en } from "../../texts/en.js";
import { strengthOf, swatch, type Looks } from "./looks.js";

export interface TableState {
    readonly structure: Structure;
    readonly looks: Looks;
    /** The beginning of the value line that the cursor is in, or -1. */
    readonly current: number;
    readonly lineNumber: (place: number) => number;
}

const words = en.table;

type Data = Readonly<Record<string, string | number>>;

function dataOf(action: string, data: Data): Record<string, string | number> {
    const pairs = Object.entries(data).map(([name, value]) => [`data-${name}`, value]);
    return { "data-do": action, ...Object.fromEntries(pairs) };
}

/** A button with a sign. A word beside it is part of the label, and needs no mouse to be read. */
export function button(action: string, data: Data, label: string, sign: string, word = "")
    : HTMLElement {
    return h("button", { class: "sign", title: label, "aria-label": label, ...dataOf(action, data) },
        sign, word !== "" && ` ${word}`);
}

function numberField(action: string, data: Data, label: string, value: string, range: {
    min: number; max?: number; step?: number | string;
}): HTMLElement {
    return h("input", {
        type: "number", value, "aria-label": label, required: true, min: range.min,
        max: range.max, step: range.step ?? 1, ...dataOf(action, data),
    });
}

export function nameField(action: string, data: Data, label: string, value: string): HTMLElement {
    return h("input", {
        type: "text", value, "aria-label": label, required: true, spellcheck: "false",
        autocomplete: "off", size: Math.max(4, value.length), ...dataOf(action, data),
    });
}

function inkChoice(data: Data, label: string, inks: readonly string[], position: number)
    : HTMLElement {
    const options = inks.map((name, index) =>
        h("option", { value: index, selected: index === position }, name));
    if (inks[position] === undefined) {
        options.push(h("option", { value: position, selected: true }, words.noInk(position)));
    }
    return h("select", { "aria-label": label, ...dataOf("ink", data) }, ...options);
}

function alternativeCells(state: TableState, block: Block, line: ValueLine, index: number,
    data: Data): HTMLElement[] {
    const one = line.alternatives[index]!;
    const at = { ...data, alternative: index };
    const name = words.alternative(block.name, line.step, index + 1);
    const alone = line.alternatives.length === 1;
    const inks = inksOf(state.structure, block);
    const bar = styled(h("span", { class: "share-bar", "aria-hidden": "true" }),
        { "--share": String(one.probability) });
    return [
        h("td", { class: "ink" }, swatch(state.looks, one.ink ?? ""),
            inkChoice(at, words.inkOf(name), inks, one.position)),
        h("td", {}, numberField("value", at, words.valueOf(name), String(one.value),
            { min: 0, max: 255 })),
        h("td", {}, alone ? h("span", { class: "always" }, words.always)
            : numberField("weight", at, words.weightOf(name), String(one.weight), { min: 0 })),
        h("td", { class: "share" }, alone ? h("span", { class: "always" }, "100 %") : shareField(
            at, name, one), bar),
        h("td", { class: "tools" },
            !alone && button("remove-alternative", at, words.removeAlternative(name), "−")),
    ];
}

function shareField(data: Data, name: string, { probability }: Alternative): HTMLElement {
    return numberField("share", data, words.shareOf(name), rounded(100 * probability),
        { min: 0, max: 100, step: "any" });
}

function stepRows(state: TableState, block: Block, line: ValueLine, data: Data): HTMLElement {
    const rows = Math.max(line.alternatives.length, 1);
    const current = line.from === state.current;
    const name = words.step(block.name, line.step);
    const lineNumber = state.lineNumber(line.from);
    const lead = h("th", { scope: "rowgroup", rowspan: rows },
        numberField("step", data, words.stepOf(name), String(line.step), { min: 0, max: 7 }),
        h("div", { class: "step-tools" },
            button("go", data, words.goToLine(lineNumber), "↦", words.line(lineNumber)),
            button("add-alternative", data, words.addAlternative(name), "+",
                words.word.alternative),
            button("remove-step", data, words.removeStep(name), "−", words.word.step)));
    const trs = Array.from({ length: rows }, (_, index) => h("tr", {}, index === 0 && lead,
        ...(line.alternatives.length === 0 ? [h("td", { colspan: 5 }, words.unfinished)]
            : alternativeCells(state, block, line, index, data))));
    return h("tbody", { "aria-current": current ? "true" : null }, ...trs);
}

function inkList(state: TableState, block: Block, data: Data): HTMLElement {
    const inks = inksOf(state.structure, block);
    const others = (state.structure.outInks?.names ?? []).map((word) => word.text)
        .filter((name) => !inks.some((ink) => sameName(ink, name)));
    return h("div", { class: "chips" }, h("span", { class: "label" }, words.feeds),
        h("ul", {}, ...inks.map((ink, position) => h("li", { class: "chip" },
            h("span", { class: "position" },
                h("span", { class: "unseen" }, words.positionOf), String(position)), swatch(state.looks, ink), ink,
            button("remove-ink", { ...data, position }, words.removeInk(ink, block.name), "×")))),
        others.length > 0 && h("select", {
            "aria-label": words.addInkTo(block.name), ...dataOf("add-ink", data),
        }, h("option", { value: "", selected: true }, words.addInk),
        ...others.map((name) => h("option", { value: name }, name))));
}

export function blockSection(state: TableState, block: Block, index: number): HTMLElement {
    const data = { block: index };
    const lines = block.values?.lines ?? [];
    const heads = [words.head.step, words.head.ink, words.head.value, words.head.weight,
        words.head.share].map((head) => h("th", { scope: "col" }, head));
    const next = newStep(state, block);
    return h("section", { class: "in-colour" },
        h("h3", {}, nameField("rename-colour", data, words.nameOf(block.name), block.name),
            button("remove-colour", data, words.removeColour(block.name), "×", words.word.colour)),
        inkList(state, block, data),
        lines.length > 0 && h("table", { class: "steps" },
            h("caption", { class: "unseen" }, words.caption(block.name)),
            h("thead", {}, h("tr", {}, ...heads,
                h("th", { scope: "col" }, h("span", { class: "unseen" }, words.head.tools)))),
            ...lines.slice(0, 32).map((line, number) =>
                stepRows(state, block, line, { ...data, line: number }))),
        block.values === null ? h("p", {}, words.noValues)
            : next.step <= 7 && h("p", { class: "row next-step" },
                h("button", { class: "small", ...dataOf("add-step", data) },
                    words.addStep(next.step)),
                h("span", { class: "soft" }, words.newStep(
                    inksOf(state.structure, block)[next.position] ?? words.noInk(next.position),
                    next.value, lines.length > 0))));
}

/** The step that the table offers to add. */
export function newStep({ structure, looks }: TableState, block: Block): NewStep {
    return nextStep(structure, block, (ink) => strengthOf(looks, ink));
}

export function addForm(action: string, label: string, say: string): HTMLElement {
    return h("form", { class: "add", "data-do": action },
        h("input", {
            type: "text", name: "name", "aria-label": label, placeholder: label, required: true,
            autocomplete: "off", spellcheck: "false",
        }),
        h("button", { class: "small", type: "submit" }, say));
}
