import { announce, h } from "../dom.js";
import { lineAt } from "../editor/explanations.js";
import type { PatternEditor } from "../editor/pattern_editor.js";
import type { Edit } from "../engine/index.js";
import type { Turn } from "../history_keys.js";
import { morphChildren, showDefault } from "../morph.js";
import * as edits from "../pattern/edits.js";
import { inksOf, type Block, type ValueLine } from "../pattern/structure.js";
import { cutWords, sameName } from "../pattern/words.js";
import { en } from "../../texts/en.js";
import { followSoon } from "../value.js";
import { mostCharacters, type Workbench } from "../workbench.js";
import { looksOf, swatch } from "./looks.js";
import { keepFocus } from "./table_focus.js";
import { addForm, blockSection, button, nameField, newStep, type TableState }
    from "./table_parts.js";

const words = en.table;

/** An element of the table is about this. */
interface Target {
    readonly action: string;
    readonly value: string;
    readonly block: Block | undefined;
    readonly line: ValueLine | undefined;
    readonly alternative: number;
    readonly position: number;
    readonly name: string;
}

type Act = (target: Target & { block: Block; line: ValueLine }, text: string) => readonly Edit[];

/** The pattern as a table, which can be changed like the text. */
export class PatternTable {
    readonly element: HTMLElement;
    readonly #table = h("div", { class: "pattern-table" });
    readonly #said = h("p", { class: "said", role: "status" });
    readonly #workbench: Workbench;
    readonly #editor: PatternEditor;

    constructor(workbench: Workbench, editor: PatternEditor) {
        this.#workbench = workbench;
        this.#editor = editor;
        const turn = (which: Turn) => h("button", { class: "small", click: () => this.take(which) },
            words[which]);
        this.element = h("div", { class: "table-view" },
            h("div", { class: "row history" }, turn("undo"), turn("redo"), this.#said),
            this.#table);
        followSoon(0, () => this.#show(), workbench.structure, workbench.reading, workbench.cursor);
        this.#table.addEventListener("change", (event) => this.#changed(event));
        this.#table.addEventListener("click", (event) => this.#clicked(event));
        this.#table.addEventListener("submit", (event) => this.#submitted(event));
    }

    /** Takes the last change of the pattern back, or makes it again. */
    take(turn: Turn): void {
        if (turn === "undo") {
            announce(this.#said, this.#editor.undo() ? words.undone : words.nothingToUndo);
        } else {
            announce(this.#said, this.#editor.redo() ? words.redone : words.nothingToRedo);
        }
        this.#show();
    }

    #state(): TableState {
        const structure = this.#workbench.structure.get();
        return {
            structure,
            looks: looksOf(this.#workbench.reading.get()?.result),
            current: lineAt(structure, this.#workbench.cursor.get())?.line.from ?? -1,
            lineNumber: (place) => this.#editor.lineNumber(place),
        };
    }

    #show(): void {
        keepFocus(this.#table, () =>
            morphChildren(this.#table, h("div", {}, ...this.#content())));
    }

    #content(): HTMLElement[] {
        const state = this.#state();
        const { structure } = state;
        if (this.#workbench.text.get().length > mostCharacters) {
            return [h("p", {}, words.tooLarge)];
        }
        if (structure.header === null) {
            return [h("p", {}, words.noHeader),
                h("button", { class: "small", "data-do": "begin" }, words.begin)];
        }
        const undescribed = (structure.inColours?.names ?? []).filter(({ text }) =>
            !structure.blocks.some((block) => sameName(block.name, text)));
        return [
            h("p", { class: "lead" }, words.lead, " ", words.signs),
            this.#machine(state),
            ...structure.blocks.map((block, index) => blockSection(state, block, index)),
            ...undescribed.map(({ text }) => h("p", { class: "undescribed" },
                words.undescribed(text), " ",
                h("button", { class: "small", "data-do": "describe", "data-name": text },
                    words.describe))),
            addForm("add-colour", words.newColour, words.addColour),
        ];
    }

    #machine(state: TableState): HTMLElement {
        const { structure } = state;
        const inks = structure.outInks?.names ?? [];
        const version = structure.version?.value ?? 0;
        const number = (action: string, label: string, value: number | undefined) =>
            h("label", {}, h("span", { class: "label" }, label), h("input", {
                type: "number", "data-do": action, value: value ?? "", step: 1, required: true,
            }));
        return h("section", { class: "machine" },
            h("div", { class: "chips" }, h("span", { class: "label" }, words.outInks),
                h("ul", {}, ...inks.map(({ text }, index) => h("li", { class: "chip" },
                    swatch(state.looks, text),
                    nameField("rename-ink", { name: text, position: index },
                        words.inkName(index + 1), text),
                    button("remove-out-ink", { name: text, position: index },
                        words.removeOutInk(text, edits.countUses(structure, text)), "×")))),
                addForm("add-out-ink", words.newInk, words.addInk)),
            h("div", { class: "numbers" },
                h("label", {}, h("span", { class: "label" }, words.version),
                    h("select", { "data-do": "version" },
                        ...[2, 3].map((one) => h("option", { value: one, selected: one === version },
                            words.versions[one as 2 | 3])),
                        version !== 2 && version !== 3 && h("option", {
                            value: version, selected: true,
                        }, String(version)))),
                number("seed", words.seed, structure.seed?.value ?? 42)),
            inks.length === 0 && h("p", {}, words.noInks));
    }

    #targetOf(element: HTMLElement): Target {
        const { block, line, alternative, position, name } = element.dataset;
        const found = this.#workbench.structure.get().blocks[Number(block ?? -1)];
        return {
            action: element.dataset["do"] ?? "",
            value: "value" in element ? String(element.value) : "",
            block: found,
            line: found?.values?.lines[Number(line ?? -1)],
            alternative: Number(alternative ?? -1),
            position: Number(position ?? -1),
            name: name ?? "",
        };
    }

    #changed(event: Event): void {
        const field = event.target as HTMLInputElement | HTMLSelectElement;
        if (field.dataset["do"] === undefined || !field.reportValidity()) {
            return;
        }
        this.#do(this.#targetOf(field));
        // A refused value must not stay in its field.
        showDefault(field);
    }

    #clicked(event: Event): void {
        const element = (event.target as Element).closest<HTMLElement>("button[data-do]");
        if (element === null) {
            return;
        }
        const target = this.#targetOf(element);
        if (target.action === "go" && target.line !== undefined) {
            this.#editor.goTo(target.line.from, target.line.to);
        } else if (target.action === "begin") {
            this.#editor.replaceText(en.newPattern);
        } else {
            this.#do(target);
        }
    }

    #submitted(event: SubmitEvent): void {
        event.preventDefault();
        const form = event.target as HTMLFormElement;
        const field = form.elements.namedItem("name") as HTMLInputElement;
        const { value } = field;
        field.value = "";
        this.#do({ ...this.#targetOf(form), value: value.trim() });
    }

    #do(target: Target): void {
        // The views follow the text at once, so that all places are those of the text.
        const text = this.#workbench.text.get();
        const act = this.#acts[target.action];
        const written = act?.(target as Parameters<Act>[0], text) ?? [];
        if (written.length > 0) {
            const removed = this.#removed[target.action]?.(target as Parameters<Act>[0]);
            this.#editor.applyEdits(written);
            announce(this.#said, removed === undefined ? "" : words.removed(removed));
        }
        this.#show();
    }

    get #structure() {
        return this.#workbench.structure.get();
    }

    /** Names what an action takes away. */
    readonly #removed: Readonly<Record<string, (target: Parameters<Act>[0]) => string>> = {
        "remove-alternative": ({ block, line, alternative }) =>
            words.alternative(block.name, line.step, alternative + 1),
        "remove-step": ({ block, line }) => words.step(block.name, line.step),
        "remove-ink": ({ block, position }) =>
            words.inkOfColour(inksOf(this.#structure, block)[position] ?? "", block.name),
        "remove-out-ink": ({ name }) =>
            words.inkOfMachine(name, edits.countUses(this.#structure, name)),
        "remove-colour": ({ block }) => words.inColour(block.name),
    };

    readonly #acts: Readonly<Record<string, Act>> = {
        "weight": ({ line, alternative, value }) =>
            edits.writeWeight(line, alternative, Number(value)),
        "share": ({ line, alternative, value }) =>
            edits.writeShare(line, alternative, Math.round(100 * Number(value))),
        "ink": ({ line, alternative, value }) => {
            const one = line.alternatives[alternative]!;
            return edits.writeEntry(one, Number(value), one.value);
        },
        "value": ({ line, alternative, value }) => {
            const one = line.alternatives[alternative]!;
            return edits.writeEntry(one, one.position, Number(value));
        },
        "step": ({ line, value }) => edits.writeStep(line, Number(value)),
        "add-alternative": ({ line }) => edits.addAlternative(line),
        "remove-alternative": ({ line, alternative }, text) =>
            edits.removeAlternative(text, line, alternative),
        "add-step": ({ block }, text) =>
            edits.addStep(text, block, newStep(this.#state(), block)),
        "remove-step": ({ line }, text) => edits.removeStep(text, line),
        "add-ink": ({ block, value }) => edits.addInk(this.#structure, block, value),
        "remove-ink": ({ block, position }, text) =>
            edits.removeInk(text, this.#structure, block,
                inksOf(this.#structure, block)[position] ?? ""),
        "remove-out-ink": ({ name }, text) => edits.removeOutInk(text, this.#structure, name),
        "rename-ink": ({ name, value }) => edits.renameOutInk(this.#structure, name, value),
        "add-out-ink": ({ value }) => edits.addOutInk(this.#structure, value),
        "rename-colour": ({ block, value }, text) =>
            edits.renameInColour(this.#structure, cutWords(text), block.name, value),
        "remove-colour": ({ block }, text) =>
            edits.removeInColour(text, this.#structure, block.name),
        "add-colour": ({ value }, text) => edits.addInColour(text, this.#structure, value),
        "describe": ({ name }, text) => edits.addBlock(text, this.#structure, name),
        "version": ({ value }) => edits.writeNumber(this.#structure, "VERSION", Number(value)),
        "seed": ({ value }) => edits.writeNumber(this.#structure, "RANDOM_SEED", Number(value)),
    };
}
