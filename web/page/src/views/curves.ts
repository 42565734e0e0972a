import { h, svg } from "../dom.js";
import type { InColour, Spectrum, Step } from "../engine/index.js";
import { percent, rounded } from "../numbers.js";
import { en } from "../../texts/en.js";
import { strengthOf, type Looks } from "./looks.js";
import { dataTable } from "./share_bars.js";

const words = en.shares;

const width = 340;
const height = 180;
const left = 40;
const bottom = 30;
const top = 10;

/** Places on the drawing of numbers from 0 to a highest one. */
interface Scale {
    readonly x: (value: number) => number;
    readonly y: (value: number) => number;
}

function scaleFor(highestX: number, highestY: number): Scale {
    return {
        x: (value) => left + 8 + (value / Math.max(highestX, 1e-9)) * (width - left - 18),
        y: (value) => height - bottom - (value / Math.max(highestY, 1e-9)) * (height - bottom - top),
    };
}

function pathOf(points: readonly (readonly [number, number])[], { x, y }: Scale): string {
    return points.map(([a, b], index) =>
        `${index === 0 ? "M" : "L"}${x(a).toFixed(1)} ${y(b).toFixed(1)}`).join("");
}

function axes(scale: Scale, ticksX: readonly number[], ticksY: readonly [number, string][],
    labelX: string): SVGElement[] {
    return [
        ...ticksY.flatMap(([value, label]) => [
            svg("path", { class: "grid", d: `M${left} ${scale.y(value)}H${width - 10}` }),
            svg("text", { "class": "tick", "x": left - 5, "y": scale.y(value) + 4,
                "text-anchor": "end" }, label),
        ]),
        ...ticksX.map((value) => svg("text", { "class": "tick", "x": scale.x(value),
            "y": height - bottom + 14, "text-anchor": "middle" }, String(value))),
        svg("text", { "class": "tick", "x": (left + width) / 2, "y": height - 2,
            "text-anchor": "middle" }, labelX),
    ];
}

function drawing(label: string, ...parts: SVGElement[]): SVGSVGElement {
    return svg("svg", { "class": "curve", "viewBox": `0 0 ${width} ${height}`, "role": "img",
        "aria-label": label }, ...parts);
}

/** The mean ink of a step in full inks, in which a light ink counts as it does for the dither. */
function inkOf(step: Step, measure: "expected" | "measured", looks: Looks, fullInk: number)
    : number | null {
    return step.shares.reduce<number | null>((sum, { ink, mean }) => {
        const part = mean[measure];
        return sum === null || part === null ? null
            : sum + part * strengthOf(looks, ink) / Math.max(fullInk, 1);
    }, 0);
}

/** The mean ink of each step in percent of full ink: a line as asked for, dots as measured. */
export function inkCurve(colour: InColour, looks: Looks, fullInk: number): HTMLElement {
    const inks = colour.steps.map((step) => ({
        step: step.step,
        expected: inkOf(step, "expected", looks, fullInk) ?? 0,
        measured: inkOf(step, "measured", looks, fullInk),
    }));
    const highest = Math.max(1, ...inks.map(({ expected }) => expected));
    const scale = scaleFor(Math.max(1, colour.topStep ?? 1), highest);
    const dots = inks.filter(({ measured }) => measured !== null).map(({ step, measured }) =>
        svg("circle", { class: "measured", r: 4, cx: scale.x(step), cy: scale.y(measured ?? 0) }));
    const rows = inks.map(({ step, expected, measured }) => h("tr", {}, h("td", {}, String(step)),
        h("td", {}, percent(expected)), h("td", {}, measured === null ? "–" : percent(measured))));
    const line = inks.map(({ step, expected }) => [step, expected] as const);
    return h("figure", {},
        h("figcaption", {}, words.inkTitle(colour.name)),
        drawing(words.inkLabel(colour.name),
            ...axes(scale, colour.steps.map(({ step }) => step),
                [[0, "0 %"], [highest / 2, percent(highest / 2, 0)],
                    [highest, percent(highest, 0)]], words.head.step),
            svg("path", { class: "expected", d: pathOf(line, scale) }), ...dots),
        dataTable(words.inkTable(colour.name),
            [words.head.step, words.head.expected, words.head.measured], rows));
}

/** The power of the drops by their frequency; 1 is that of white noise. */
export function spectrumCurve({ inColour, step, ink, power }: Spectrum): HTMLElement {
    const title = words.spectrumTitle(inColour, step, ink);
    const highest = Math.max(2, ...power.slice(1));
    const scale = scaleFor(power.length - 1, highest);
    const points = power.map((value, wave) => [wave, value] as const).slice(1);
    const rows = points.map(([wave, value]) =>
        h("tr", {}, h("td", {}, String(wave)), h("td", {}, rounded(value, 3))));
    return h("figure", {}, h("figcaption", {}, title),
        drawing(words.spectrumLabel(title, rounded(Math.max(...power.slice(1)))),
            ...axes(scale, [0, 32, 64, 96, 128].filter((wave) => wave < power.length),
                [[0, "0"], [1, "1"], [highest, rounded(highest, 1)]], words.waves),
            svg("path", { class: "reference", d: `M${left} ${scale.y(1)}H${width - 10}` }),
            svg("path", { class: "expected", d: pathOf(points, scale) })),
        dataTable(words.spectrumTable, [words.waves, words.head.power], rows));
}
