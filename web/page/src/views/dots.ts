import { h, refill } from "../dom.js";
import type { Dots } from "../engine/index.js";
import { percent, rounded } from "../numbers.js";
import { jobOf, settings } from "../settings.js";
import { en } from "../../texts/en.js";
import { followSoon } from "../value.js";
import type { Workbench } from "../workbench.js";
import { DotsControls } from "./dots_controls.js";
import { DotsPane } from "./dots_pane.js";

const words = en.dots;

/** The dots of the pattern on a picture. */
export class DotsView {
    readonly #workbench: Workbench;
    readonly #pane: DotsPane;
    readonly #controls: DotsControls;
    readonly #warnings = h("div", { class: "warnings", role: "status" });
    readonly #numbers = h("div", {});
    readonly #details = h("details", { class: "as-table" },
        h("summary", {}, words.numbers), this.#numbers);
    readonly element: HTMLElement;
    #shown = false;
    #drawn = "";

    constructor(workbench: Workbench) {
        this.#workbench = workbench;
        this.#controls = new DotsControls(workbench);
        this.#pane = new DotsPane(workbench, words.viewer);
        this.element = h("div", { class: "dots" }, this.#controls.element, this.#pane.viewer.element,
            this.#warnings, this.#details);
        const soon = followSoon(16, () => void this.#show(), workbench.reading, settings);
        this.#pane.viewer.onMove = soon;
        this.#details.addEventListener("toggle", soon);
        this.element.addEventListener("dragover", (event) => event.preventDefault());
        this.element.addEventListener("drop", (event) => this.#dropped(event));
    }

    /** Dots are made while they are seen. */
    set shown(shown: boolean) {
        this.#shown = shown;
        void this.#show();
    }

    #dropped(event: DragEvent): void {
        const file = event.dataTransfer?.files[0];
        if (file !== undefined) {
            event.preventDefault();
            void this.#controls.openPicture(file);
        }
    }

    async #show(): Promise<void> {
        const reading = this.#workbench.reading.get();
        if (!this.#shown || reading === null) {
            return;
        }
        if (!reading.result.runs) {
            this.#pane.viewer.clear();
            this.#warn([words.refused]);
            return;
        }
        const { text } = reading;
        const drawn = await this.#pane.draw(text, this.#controls.inks);
        if (drawn === null) {
            this.#warn([]);
            return;
        }
        this.#warn(drawn.warnings);
        if (this.#details.open) {
            const job = { ...jobOf(text, settings.get(), drawn.picture), window: drawn.window };
            const dots = await this.#workbench.ask(this.#workbench.engine.run(job));
            if (dots !== null) {
                refill(this.#numbers, numbersOf(dots));
            }
        }
    }

    #warn(warnings: readonly string[]): void {
        const said = warnings.join("\n");
        if (said !== this.#drawn) {
            this.#drawn = said;
            refill(this.#warnings, ...warnings.map((warning) => h("p", {}, warning)));
        }
    }
}

/** Counts each value, so that the picture can be told in numbers. */
function countValues(plane: Uint8Array): Map<number, number> {
    const counts = new Map<number, number>();
    for (const value of plane) {
        counts.set(value, (counts.get(value) ?? 0) + 1);
    }
    return new Map([...counts].sort(([one], [other]) => one - other));
}

function numbersOf({ inks, planes, width, height, fullInk }: Dots): HTMLElement {
    const size = width * height;
    const rows = inks.map((ink, index) => {
        const counts = countValues(planes.subarray(index * size, (index + 1) * size));
        const sum = [...counts].reduce((total, [value, count]) => total + value * count, 0);
        const values = [...counts].map(([value, count]) =>
            words.valueShare(value, percent(count / size, 1))).join(", ");
        return h("tr", {}, h("th", { scope: "row" }, ink),
            h("td", {}, percent(sum / size / Math.max(fullInk, 1))),
            h("td", {}, rounded(sum / size, 1)), h("td", {}, values));
    });
    return h("table", { class: "data" }, h("caption", {}, words.numbersOf(width, height)),
        h("thead", {}, h("tr", {}, ...words.numberHeads.map((head) =>
            h("th", { scope: "col" }, head)))),
        h("tbody", {}, ...rows));
}
