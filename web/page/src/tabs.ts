import { freshId, h } from "./dom.js";

export interface Tab {
    readonly name: string;
    readonly label: string;
    readonly content: HTMLElement;
}

/** Tabs whose keys are those that people know: arrows, Home and End move, Tab goes on. */
export class Tabs {
    readonly element: HTMLElement;
    readonly #tabs: readonly Tab[];
    readonly #buttons: readonly HTMLButtonElement[];
    readonly #panels: readonly HTMLElement[];
    onShow: (name: string) => void = () => {};

    constructor(label: string, tabs: readonly Tab[]) {
        this.#tabs = tabs;
        const ids = tabs.map(() => freshId("tab"));
        this.#buttons = tabs.map((tab, index) => h("button", {
            "role": "tab", "id": ids[index], "aria-controls": `${ids[index]}-panel`,
            "data-tab": tab.name, "click": () => this.show(tab.name),
        }, tab.label));
        this.#panels = tabs.map((tab, index) => h("div", {
            "role": "tabpanel", "id": `${ids[index]}-panel`, "aria-labelledby": ids[index],
            "tabindex": -1,
        }, tab.content));
        const list = h("div", { role: "tablist", "aria-label": label }, ...this.#buttons);
        list.addEventListener("keydown", (event) => this.#move(event));
        this.element = h("div", { class: "tabs" }, list, ...this.#panels);
    }

    show(name: string): void {
        this.#tabs.forEach((tab, index) => {
            const isShown = tab.name === name;
            this.#buttons[index]!.setAttribute("aria-selected", String(isShown));
            this.#buttons[index]!.tabIndex = isShown ? 0 : -1;
            this.#panels[index]!.hidden = !isShown;
        });
        this.onShow(name);
    }

    #move(event: KeyboardEvent): void {
        const { length } = this.#tabs;
        const index = this.#buttons.findIndex((button) => button === event.target);
        const targets: Record<string, number> = {
            ArrowRight: (index + 1) % length, ArrowLeft: (index + length - 1) % length,
            Home: 0, End: length - 1,
        };
        const target = targets[event.key];
        if (target !== undefined) {
            event.preventDefault();
            this.show(this.#tabs[target]!.name);
            this.#buttons[target]!.focus();
        }
    }
}
