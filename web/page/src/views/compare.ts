import { h } from "../dom.js";
import { PatternEditor } from "../editor/pattern_editor.js";
import type { Difference, Differences } from "../engine/index.js";
import { examples, type ExampleName } from "../examples.js";
import { fileButton } from "../files.js";
import { morphChildren } from "../morph.js";
import { change, settings } from "../settings.js";
import { en } from "../../texts/en.js";
import { followSoon } from "../value.js";
import type { Workbench } from "../workbench.js";
import { showFields, zoomField } from "./dots_controls.js";
import { DotsPane } from "./dots_pane.js";

const words = en.compare;

/** Another pattern beside the one that is worked on, and what they do in different ways. */
export class CompareView {
    readonly element = h("div", { class: "compare" });
    readonly #workbench: Workbench;
    readonly #other: PatternEditor;
    readonly #count = h("p", { class: "summary", role: "status" });
    readonly #found = h("div", {});
    readonly #left: DotsPane;
    readonly #right: DotsPane;
    readonly #soon: () => void;
    #shown = false;

    constructor(workbench: Workbench) {
        this.#workbench = workbench;
        this.#other = new PatternEditor(words.editor, workbench.text.get());
        this.#left = new DotsPane(workbench, words.dotsOfThis, "left");
        this.#right = new DotsPane(workbench, words.dotsOfOther, "right");
        const soon = followSoon(150, () => void this.#show(), workbench.reading, settings);
        this.#soon = soon;
        this.#other.onChange = soon;
        this.#left.viewer.follow(this.#right.viewer, soon);
        this.#right.viewer.follow(this.#left.viewer, soon);
        this.element.append(h("p", { class: "lead" }, words.lead), this.#choice(),
            h("div", { class: "other-text" }, this.#other), this.#count, this.#found,
            zoomChoice(),
            h("div", { class: "pair-of-dots" },
                h("figure", {}, h("figcaption", {}, words.dotsOfThis), this.#left.viewer.element),
                h("figure", {}, h("figcaption", {}, words.dotsOfOther),
                    this.#right.viewer.element)));
    }

    set shown(shown: boolean) {
        this.#shown = shown;
        this.#soon();
    }

    #choice(): HTMLElement {
        const select = h("select", { "aria-label": words.example },
            ...Object.entries(en.examples).map(([name, title]) =>
                h("option", { value: name }, title)));
        return h("div", { class: "row" },
            h("button", { type: "button", click: () =>
                this.#other.replaceText(this.#workbench.text.get()) }, words.take),
            h("span", { class: "joined" }, select, h("button", { type: "button", click: () =>
                this.#other.replaceText(examples[select.value as ExampleName]) }, words.open)),
            fileButton(words.file, ".txt,text/plain", (file) => void this.#openFile(file)));
    }

    async #openFile(file: File): Promise<void> {
        const bytes = new Uint8Array(await file.arrayBuffer());
        const text = await this.#workbench.ask(this.#workbench.engine.openText(bytes));
        if (text !== null) {
            this.#other.replaceText(text);
        }
    }

    async #show(): Promise<void> {
        if (!this.#shown) {
            return;
        }
        const { engine } = this.#workbench;
        const text = this.#workbench.text.get();
        const differences = await this.#workbench.ask(engine.diff(text, this.#other.text),
            "differences");
        if (differences === null) {
            return;
        }
        const count = countOf(differences);
        if (this.#count.textContent !== count) {
            this.#count.textContent = count;
        }
        morphChildren(this.#found, h("div", {}, ...detailsOf(differences)));
        await Promise.all([this.#draw(this.#left, text, "left"),
            this.#draw(this.#right, this.#other.text, "right")]);
    }

    async #draw(pane: DotsPane, text: string, slot: string): Promise<void> {
        const reading = await this.#workbench.ask(this.#workbench.engine.read(text, slot), slot);
        if (reading === null) {
            return;
        }
        if (!reading.runs) {
            const [first] = reading.findings;
            pane.viewer.clear(first === undefined ? en.dots.refused
                : words.refused(first.place.line, first.message));
            return;
        }
        await pane.draw(text, reading.outInks.map(({ name }) => name));
    }
}

function zoomChoice(): HTMLElement {
    const form = h("form", { input: (event: Event) => {
        change({ zoom: Number((event.target as HTMLInputElement).value) });
    } });
    settings.follow(({ zoom }) => showFields(form,
        [zoomField("zoom-of-both", words.zoom, zoom)]));
    return form;
}

function placeOf({ inColour, step, ink }: Difference): string {
    return [inColour, step === null ? null : en.shares.step(step), ink]
        .filter((word) => word !== null).join(", ");
}

function countOf({ differences, textual }: Differences): string {
    return textual === "" ? words.sameText : words.count(differences.length);
}

function detailsOf({ differences, textual }: Differences): HTMLElement[] {
    const rows = differences.map((one) => h("tr", {}, h("th", { scope: "row" },
        words.kinds[one.kind as keyof typeof words.kinds] ?? one.kind),
    h("td", {}, placeOf(one)), h("td", {}, one.left), h("td", {}, one.right)));
    const table = h("div", { class: "scroll", tabindex: 0, role: "group", "aria-label": words.title },
        h("table", { class: "data" }, h("thead", {}, h("tr", {}, ...words.heads.map((head) =>
            h("th", { scope: "col" }, head)))), h("tbody", {}, ...rows)));
    const letters = h("details", { class: "as-table" }, h("summary", {}, words.letters),
        h("pre", { class: "diff", tabindex: 0 }, ...textual.split("\n").map(lineOfDiff)));
    return [...(rows.length > 0 ? [table] : []), ...(textual === "" ? [] : [letters])];
}

function lineOfDiff(line: string): HTMLElement {
    const kind = line.startsWith("+") ? "ins" : line.startsWith("-") ? "del" : "span";
    return h(kind, {}, `${line}\n`);
}
