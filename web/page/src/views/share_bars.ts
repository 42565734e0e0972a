import { h, styled } from "../dom.js";
import type { InColour, InkShares, Step } from "../engine/index.js";
import { percent } from "../numbers.js";
import { en } from "../../texts/en.js";
import { colourOf, type Looks } from "./looks.js";

const words = en.shares;

type Measure = "expected" | "measured";

/** An ink at a value is between paper and its full colour; the text on it is black or white. */
function tint(looks: Looks, ink: string | null, value: number, fullInk: number)
    : Record<string, string> {
    const colour = colourOf(looks, ink) ?? "#555555";
    const part = fullInk === 0 ? 0 : Math.min(1, value / fullInk);
    const channels = [1, 3, 5].map((at) => Number.parseInt(colour.slice(at, at + 2), 16))
        .map((channel) => Math.round(255 + part * (channel - 255)));
    const [red, green, blue] = channels.map((channel) => (channel / 255) ** 2.2);
    const light = 0.2126 * red! + 0.7152 * green! + 0.0722 * blue!;
    // At this light black and white text have the same contrast.
    return { background: `rgb(${channels.join(" ")})`, color: light > 0.18 ? "#000000" : "#ffffff" };
}

function bar(shares: InkShares, measure: Measure, looks: Looks, fullInk: number): HTMLElement {
    const pieces = shares.values.filter((one) => (one[measure] ?? 0) > 0).map((one) => {
        const share = one[measure] ?? 0;
        const label = h("span", {}, `${words.piece(one.value, percent(share))} `);
        return styled(h("span", { class: share > 0.12 ? "piece" : "narrow piece" }, label),
            { "flex-grow": String(share), ...tint(looks, shares.ink, one.value, fullInk) });
    });
    return h("span", { class: `bar ${measure}` }, ...pieces);
}

function inkBars(shares: InkShares, looks: Looks, fullInk: number): HTMLElement {
    const isMeasured = shares.values.some(({ measured }) => measured !== null);
    return h("span", { class: "ink-bars" },
        h("span", { class: "ink-name" }, `${shares.ink ?? ""} `),
        h("span", { class: "pair" }, bar(shares, "expected", looks, fullInk),
            isMeasured && h("span", { class: "unseen" }, words.measured),
            bar(shares, "measured", looks, fullInk)));
}

/** The shares of one step as a button that leads to its line; a step without one has no line. */
function stepBars(colour: InColour, step: Step, looks: Looks, fullInk: number): HTMLElement {
    const inside = [
        h("span", { class: "step-number" }, h("span", { class: "unseen" }, `${colour.name} `),
            `${words.step(step.step)} `),
        h("span", { class: "inks" }, ...step.shares.map((one) => inkBars(one, looks, fullInk))),
    ];
    if (step.place === null) {
        return h("div", { class: "step-bars" }, ...inside);
    }
    const { from, to, line } = step.place;
    return h("button", { "class": "step-bars", "data-from": from, "data-to": to }, ...inside,
        h("span", { class: "unseen" }, words.goTo(line)));
}

/** Bars for the values of each ink at each step: as the text asks above, as measured below. */
export function shareBars(colour: InColour, looks: Looks, fullInk: number): HTMLElement {
    return h("div", { class: "bars" },
        ...colour.steps.map((step) => stepBars(colour, step, looks, fullInk)));
}

/** The same numbers as a table. */
export function shareTable(colour: InColour): HTMLElement {
    const rows = colour.steps.flatMap((step) => step.shares.flatMap((shares) =>
        shares.values.map((one) => h("tr", {}, h("td", {}, String(step.step)),
            h("td", {}, shares.ink ?? ""), h("td", {}, String(one.value)),
            h("td", {}, percent(one.expected)),
            h("td", {}, one.measured === null ? "–" : percent(one.measured))))));
    return dataTable(words.tableOf(colour.name),
        [words.head.step, words.head.ink, words.head.value, words.head.expected,
            words.head.measured], rows);
}

export function dataTable(caption: string, heads: readonly string[], rows: HTMLElement[])
    : HTMLElement {
    return h("details", { class: "as-table" }, h("summary", {}, caption),
        h("div", { class: "scroll", tabindex: 0, role: "group", "aria-label": caption },
            h("table", { class: "data" },
                h("thead", {}, h("tr", {}, ...heads.map((head) => h("th", { scope: "col" }, head)))),
                h("tbody", {}, ...rows))));
}
