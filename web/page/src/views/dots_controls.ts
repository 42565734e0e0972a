import { h } from "../dom.js";
import { morphChildren } from "../morph.js";
import { change, orderOf, settings, zooms, type Settings } from "../settings.js";
import { en } from "../../texts/en.js";
import type { Workbench } from "../workbench.js";

const words = en.dots;

function choice<T extends string | number>(
    name: keyof Settings, label: string, options: readonly (readonly [T, string])[], chosen: T,
): HTMLElement {
    return h("label", {}, h("span", { class: "label" }, label),
        h("select", { "data-set": name }, ...options.map(([value, text]) =>
            h("option", { value, selected: value === chosen }, text))));
}

/** One of a few, with all of them in sight. */
function radios<T extends string | number>(
    set: keyof Settings, name: string, label: string, options: readonly (readonly [T, string])[],
    chosen: T,
): HTMLElement {
    return h("fieldset", { class: "segments" }, h("legend", {}, label),
        ...options.map(([value, text]) => h("label", {},
            h("input", { type: "radio", name, value, "data-set": set, checked: value === chosen }),
            h("span", {}, text))));
}

/** The size of a dot, of which each group of the page has its own name. */
export function zoomField(name: string, label: string, zoom: number): HTMLElement {
    return radios("zoom", name, label, zooms.map((one) => [one, `${one}:1`] as const), zoom);
}

function orderList(inks: readonly string[], chosen: Settings): HTMLElement {
    const order = orderOf(chosen.order, inks);
    const tool = (index: number, by: number, label: string, sign: string) =>
        h("button", {
            "class": "sign", "type": "button", "data-ink": index, "data-by": by,
            "aria-label": label, "title": label, "disabled": order[index + by] === undefined,
        }, sign);
    return h("fieldset", { class: "order" }, h("legend", {}, words.order),
        h("ol", {}, ...order.map((ink, index) => h("li", {}, h("span", {}, ink),
            tool(index, -1, words.earlier(ink), `↑ ${words.word.earlier}`),
            tool(index, 1, words.later(ink), `↓ ${words.word.later}`)))));
}

function content(inks: readonly string[], chosen: Settings): HTMLElement[] {
    const { kind, own, levels, tone, ink, zoom, gain, origin } = chosen;
    const pictures = [["ramp", words.ramp], ["patches", words.patches], ["own", words.own]] as const;
    const shown = inks.includes(ink) ? ink : "";
    return [
        h("div", { class: "row" }, radios("kind", "kind", words.picture, pictures, kind),
            zoomField("zoom", words.zoom, zoom)),
        h("div", { class: "row", hidden: kind !== "own" },
            h("label", { class: "file" }, h("span", { class: "label" }, words.file),
                h("input", { type: "file", accept: "image/png,image/jpeg,image/tiff,.tif,.tiff" })),
            h("ul", { class: "notes" }, ...(own?.notes ?? []).map((note) => h("li", {}, note)))),
        h("div", { class: "row" },
            choice("ink", words.shown, [["", words.allInks] as const,
                ...inks.map((one) => [one, words.only(one)] as const)], shown),
            choice("levels", words.levels, Object.entries(words.levelNames), levels),
            choice("tone", words.tone, Object.entries(words.toneNames), tone)),
        h("details", {}, h("summary", {}, words.press),
            h("div", { class: "row" }, orderList(inks, chosen),
                h("label", { class: "gain" }, h("span", { class: "label" }, words.gain),
                    h("input", { "type": "range", "min": 0, "max": 50, "value": gain,
                        "data-set": "gain", "aria-describedby": "gain-said" }),
                    h("output", { id: "gain-said" }, words.gainSaid(gain))),
                ...(["x", "y"] as const).map((axis) => h("label", {},
                    h("span", { class: "label" }, words.origin(axis)),
                    h("input", { "type": "number", "min": 0, "step": 1, "required": true,
                        "value": origin[axis], "data-axis": axis }))))),
    ];
}

/** Shows fresh fields, in which a person may be at work, in place of the old ones. */
export function showFields(form: HTMLFormElement, fields: readonly HTMLElement[]): void {
    morphChildren(form, h("div", {}, ...fields));
    for (const radio of form.querySelectorAll<HTMLInputElement>("[type=radio]")) {
        radio.checked = radio.defaultChecked;
    }
}

/** The fields that say which dots are shown, and how. */
export class DotsControls {
    readonly element = h("form", { class: "controls" });
    readonly #workbench: Workbench;
    #inks: readonly string[] = [];

    constructor(workbench: Workbench) {
        this.#workbench = workbench;
        const show = () => this.#show();
        workbench.reading.follow((reading) => {
            this.#inks = reading?.result.outInks.map(({ name }) => name) ?? [];
            show();
        });
        settings.follow(show);
        this.element.addEventListener("input", (event) => this.#changed(event));
        this.element.addEventListener("click", (event) => this.#clicked(event));
        this.element.addEventListener("submit", (event) => event.preventDefault());
    }

    get inks(): readonly string[] {
        return this.#inks;
    }

    async openPicture(file: Blob): Promise<void> {
        const bytes = new Uint8Array(await file.arrayBuffer());
        const own = await this.#workbench.ask(this.#workbench.engine.readPicture(bytes));
        if (own !== null) {
            change({ kind: "own", own });
        }
    }

    #show(): void {
        showFields(this.element, content(this.#inks, settings.get()));
    }

    #changed(event: Event): void {
        const field = event.target as HTMLInputElement;
        const file = field.files?.[0];
        if (file !== undefined) {
            void this.openPicture(file);
            return;
        }
        const { set, axis } = field.dataset;
        if (!field.checkValidity()) {
            return;
        }
        if (axis !== undefined) {
            change({ origin: { ...settings.get().origin, [axis]: Number(field.value) } });
        } else if (set !== undefined) {
            const isNumber = set === "zoom" || set === "gain";
            change({ [set]: isNumber ? Number(field.value) : field.value });
        }
    }

    #clicked(event: Event): void {
        const tool = (event.target as Element).closest<HTMLElement>("[data-ink]");
        if (tool === null) {
            return;
        }
        const order = orderOf(settings.get().order, this.#inks);
        const from = Number(tool.dataset["ink"]);
        const [ink] = order.splice(from, 1);
        order.splice(from + Number(tool.dataset["by"]), 0, ink!);
        change({ order });
    }
}
