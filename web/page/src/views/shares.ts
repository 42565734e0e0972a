import { h } from "../dom.js";
import { lineAt } from "../editor/explanations.js";
import type { PatternEditor } from "../editor/pattern_editor.js";
import type { InColour } from "../engine/index.js";
import { morphChildren } from "../morph.js";
import { en } from "../../texts/en.js";
import { followSoon } from "../value.js";
import type { Workbench } from "../workbench.js";
import { inkCurve, spectrumCurve } from "./curves.js";
import { looksOf } from "./looks.js";
import { shareBars, shareTable } from "./share_bars.js";

const words = en.shares;

/** Expected and measured shares, ink by step, and the spectrum. */
export class SharesView {
    readonly element = h("div", { class: "shares" });
    readonly #workbench: Workbench;
    readonly #editor: PatternEditor;

    constructor(workbench: Workbench, editor: PatternEditor) {
        this.#workbench = workbench;
        this.#editor = editor;
        followSoon(0, () => this.#show(), workbench.reading, workbench.plot);
        workbench.cursor.follow(() => this.#markCurrent());
        this.element.addEventListener("click", (event) => this.#goToLine(event));
    }

    /** Puts the focus on the bars of the step that the cursor is in. */
    focusCurrent(): boolean {
        this.#show();
        const bars = this.element.querySelector<HTMLElement>("[aria-current]");
        bars?.scrollIntoView({ block: "center" });
        bars?.focus();
        return bars !== null;
    }

    #colours(): readonly InColour[] {
        const plot = this.#workbench.plot.get();
        const reading = this.#workbench.reading.get();
        return (plot !== null && plot.text === reading?.text ? plot.result : reading?.result)
            ?.inColours ?? [];
    }

    #show(): void {
        morphChildren(this.element, h("div", {}, ...this.#content()));
        this.#markCurrent();
    }

    #content(): (Node | false)[] {
        const reading = this.#workbench.reading.get()?.result;
        const colours = this.#colours().filter(({ steps }) => steps.length > 0);
        if (reading === undefined || colours.length === 0) {
            return [h("p", {}, words.nothing)];
        }
        const looks = looksOf(reading);
        const light = reading.outInks.filter(({ strength }) => strength < 1);
        const spectra = this.#workbench.plot.get()?.result.spectra ?? [];
        return [h("p", { class: "lead" }, words.lead), legend(),
            ...colours.map((colour) => h("section", {}, h("h3", {}, colour.name),
                shareBars(colour, looks, reading.fullInk), shareTable(colour))),
            h("h3", {}, words.curves),
            h("p", { class: "lead" }, words.inkLead,
                ...light.map(({ name, strength }) => ` ${words.inkCounts(name, strength)}`)),
            h("div", { class: "curves" },
                ...colours.map((colour) => inkCurve(colour, looks, reading.fullInk)),
                ...spectra.map(spectrumCurve)),
            spectra.length > 0 && h("p", { class: "lead" }, words.spectrumLead)];
    }

    #goToLine(event: Event): void {
        const bars = (event.target as Element).closest<HTMLElement>("[data-from]");
        if (bars !== null) {
            this.#editor.goTo(Number(bars.dataset["from"]), Number(bars.dataset["to"]));
        }
    }

    #markCurrent(): void {
        const { structure, cursor } = this.#workbench;
        const from = lineAt(structure.get(), cursor.get())?.line.from;
        for (const bars of this.element.querySelectorAll<HTMLElement>("[data-from]")) {
            const isCurrent = Number(bars.dataset["from"]) === from;
            bars.toggleAttribute("aria-current", isCurrent);
            if (isCurrent) {
                bars.setAttribute("aria-current", "true");
            }
        }
    }
}

function legend(): HTMLElement {
    return h("p", { class: "legend", "aria-hidden": "true" },
        h("span", { class: "key expected" }), words.head.expected,
        h("span", { class: "key measured" }), words.head.measured);
}
