import { createTwoFilesPatch } from "diff";

import type {
    Difference, Differences, FixedText, InColour, OutInk, Plot, Reading, Spectrum, Step,
} from "./api.js";
import { engineTexts } from "../../texts/en.js";
import { limits } from "./limits.js";
import type { Module } from "./module.js";
import { type ByteSpan, Places } from "./places.js";
import { Refusal } from "./refusal.js";

interface StepSpans {
    readonly step: ByteSpan;
    readonly ratio: ByteSpan;
    readonly entries: readonly ByteSpan[];
}

interface InColourSpans {
    readonly listed: ByteSpan;
    readonly described: ByteSpan;
    readonly inks: readonly ByteSpan[];
    readonly steps: readonly StepSpans[];
}

interface Spans {
    readonly runs: boolean;
    readonly fullInk: number;
    readonly inColours: readonly InColourSpans[];
    readonly outInks: readonly {
        readonly place: ByteSpan;
        readonly colour: string;
        readonly opacity: number;
        readonly strength: number;
    }[];
    readonly findings: readonly (readonly [number, number])[];
}

type Plain<Type, Changed extends keyof Type> = Omit<Type, Changed>;

/** The program prints this as JSON, as far as the page looks at it. */
interface Report extends Plain<Reading, "inColours" | "outInks" | "findings" | "runs" | "fullInk"> {
    readonly inColours: readonly (Plain<InColour, "feeds" | "steps"> & {
        readonly feeds: readonly (string | null)[];
        readonly steps: readonly Step[];
    })[];
    readonly outInks: readonly { readonly name: string; readonly fedBy: readonly string[] }[];
    readonly findings: readonly (Plain<Reading["findings"][number], "place" | "fix"> & {
        readonly fix: string | null;
    })[];
}

interface Known {
    readonly report: Report;
    readonly places: Spans;
}

function stepOf(step: Step, spans: StepSpans | undefined, places: Places): Step {
    return {
        ...step,
        shares: step.shares ?? [],
        meanInk: step.meanInk ?? { expected: 0, measured: null },
        place: places.of(spans?.step),
        ratioPlace: places.of(spans?.ratio),
        alternatives: step.alternatives.map((alternative, index) => ({
            ...alternative,
            place: places.of(spans?.entries[index]),
        })),
    };
}

function inColoursOf({ report, places: spans }: Known, places: Places): InColour[] {
    return report.inColours.map((inColour, index) => {
        const own = spans.inColours[index];
        return {
            ...inColour,
            place: places.of(own?.listed),
            blockPlace: places.of(own?.described),
            feeds: inColour.feeds.map((ink, position) => ({
                ink, place: places.of(own?.inks[position]),
            })),
            steps: inColour.steps.map((step, number) => stepOf(step, own?.steps[number], places)),
        };
    });
}

function outInksOf({ report, places: spans }: Known, places: Places): OutInk[] {
    return report.outInks.map((ink, index) => ({
        ...ink,
        place: places.of(spans.outInks[index]?.place),
        colour: spans.outInks[index]?.colour ?? "#000000",
        opacity: spans.outInks[index]?.opacity ?? 0,
        strength: spans.outInks[index]?.strength ?? 1,
    }));
}

export function bytesOf(text: string): Uint8Array {
    const bytes = new TextEncoder().encode(text);
    if (bytes.length > limits.textBytes) {
        throw new Refusal(engineTexts.textTooLarge(bytes.length, limits.textBytes));
    }
    return bytes;
}

export function read(module: Module, text: string): Reading {
    const bytes = bytesOf(text);
    const known = module.lend([bytes], (address) =>
        module.askJson("read_text", address, bytes.length)) as Known;
    const places = new Places(text, bytes.length);
    return {
        ...known.report,
        inColours: inColoursOf(known, places),
        outInks: outInksOf(known, places),
        findings: known.report.findings.map(({ severity, kind, message, hint, fix }, index) => {
            const [offset, length] = known.places.findings[index] ?? [0, 0];
            const place = places.at(offset, length);
            const edit = fix === null ? null : { from: place.from, to: place.to, insert: fix };
            return { severity, kind, message, hint, place, fix: edit };
        }),
        runs: known.places.runs,
        fullInk: known.places.fullInk,
    };
}

/** Calls a function with two texts. */
function withTwo<Result>(
    module: Module, first: Uint8Array, second: Uint8Array,
    ask: (...numbers: [number, number, number, number]) => Result,
): Result {
    return module.lend([first, second], (one, two) =>
        ask(one ?? 0, first.length, two ?? 0, second.length));
}

export function plot(module: Module, text: string, title: string): Plot {
    const bytes = bytesOf(text);
    const known = withTwo(module, bytes, bytesOf(title), (...numbers) =>
        module.askJson("plot_text", ...numbers)) as Known & {
        readonly spectra: readonly Spectrum[];
        readonly svg: string;
    };
    const places = new Places(text, bytes.length);
    return { inColours: inColoursOf(known, places), spectra: known.spectra, svg: known.svg };
}

export function diff(module: Module, left: string, right: string): Differences {
    const answer = withTwo(module, bytesOf(left), bytesOf(right), (...numbers) =>
        module.askJson("compare_texts", ...numbers)) as {
        readonly differences: readonly (Omit<Difference, "ink"> & { readonly of: string | null })[];
    };
    return {
        differences: answer.differences.map(({ of, ...rest }) => ({ ...rest, ink: of })),
        textual: left === right ? "" : createTwoFilesPatch("left", "right", left, right),
    };
}

export function fixed(module: Module, text: string): FixedText {
    const bytes = bytesOf(text);
    return module.lend([bytes], (address) =>
        module.askJson("fix_text", address, bytes.length)) as FixedText;
}

export function sarif(module: Module, text: string, file: string): string {
    return new TextDecoder().decode(withTwo(module, bytesOf(text), bytesOf(file), (...numbers) =>
        module.ask("log_text", ...numbers)));
}
