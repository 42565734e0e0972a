import type {
    BuiltInPicture, Dots, Levels, Picture, PreviewImage, PreviewJob, Window,
} from "./api.js";
import { engineTexts } from "../../texts/en.js";
import { makeBuiltIn, type SteppedColour } from "./built_in.js";
import { limits } from "./limits.js";
import { type Module, record } from "./module.js";
import { Refusal } from "./refusal.js";
import { bytesOf } from "./texts_work.js";

/** The rows of a picture that a window needs, from their first pixel on. */
export interface Slice {
    readonly samples: Uint8Array;
    readonly pixels: number;
    readonly rows: number;
    readonly channels: readonly string[];
    /** The place of the first pixel on its page. */
    readonly x: number;
    readonly y: number;
    /** The pixels before it are not wanted. */
    readonly firstPixel: number;
}

/** A job as it comes to the worker: of a picture no more than the part that is needed. */
export interface DotsJob {
    readonly text: string;
    readonly levels: Levels;
    readonly tone: "coverage" | "equal";
    readonly origin: { readonly x: number; readonly y: number };
    readonly slice: Slice | { readonly builtIn: BuiltInPicture; readonly window: Window | null };
}

export type Looks = Pick<PreviewJob, "looks" | "order" | "shown" | "gain" | "longestSide">;

const levelNumbers: Record<Levels, number> = { automatic: 0, dither: 1, quantize: 2, raw: 3 };
// So many bytes of samples, or thereabouts, are in the WebAssembly's memory at once.
const bandBytes = 1 << 20;

interface Facts {
    readonly lacksMask: boolean;
    readonly fullInk: number;
    readonly inks: readonly string[];
    readonly warnings: readonly string[];
}

/** Cuts the rows of a window out of a picture. */
export function sliceOf(
    { width, height, channels, samples }: Picture, window: Window | null,
    origin: { readonly x: number; readonly y: number },
): Slice {
    const part = window ?? { x: 0, y: 0, width, height };
    const numbers = [part.x, part.y, part.width, part.height];
    if (!numbers.every(Number.isInteger) || part.x < 0 || part.y < 0 || part.width < 1 ||
        part.height < 1 || part.x + part.width > width || part.y + part.height > height) {
        throw new Refusal(engineTexts.badWindow);
    }
    for (const [name, value] of [["x", origin.x], ["y", origin.y]] as const) {
        if (!Number.isInteger(value) || value !== (value | 0)) {
            throw new Refusal(engineTexts.badNumber(name, value));
        }
    }
    const pixels = part.x + part.width;
    const rowBytes = pixels * channels.length;
    const cut = new Uint8Array(rowBytes * part.height);
    for (let y = 0; y < part.height; ++y) {
        const start = (part.y + y) * width * channels.length;
        cut.set(samples.subarray(start, start + rowBytes), y * rowBytes);
    }
    return {
        samples: cut, pixels, rows: part.height, channels,
        // The place on the page is counted modulo 2^32, as the mask and the pattern repeat.
        x: origin.x, y: (origin.y + part.y) | 0, firstPixel: part.x,
    };
}

export function coloursOf(module: Module, text: string): SteppedColour[] {
    const bytes = bytesOf(text);
    return module.lend([bytes], (address) =>
        module.askJson("list_in_colours", address, bytes.length)) as SteppedColour[];
}

function resolve(module: Module, job: DotsJob): Slice {
    if (!("builtIn" in job.slice)) {
        return job.slice;
    }
    const { builtIn, window } = job.slice;
    const picture = makeBuiltIn(builtIn, coloursOf(module, job.text), job.levels);
    return sliceOf(picture, window, job.origin);
}

function begin(module: Module, job: DotsJob, slice: Slice, mask: Uint8Array | null): Facts {
    const text = bytesOf(job.text);
    const names = new TextEncoder().encode(slice.channels.map((name) => `${name}\0`).join(""));
    return module.lend([text, names, mask ?? 0], (textAt = 0, namesAt = 0, maskAt = 0) =>
        module.lend(
            [record(textAt, text.length, levelNumbers[job.levels], job.tone === "equal" ? 1 : 0,
                namesAt, slice.channels.length, mask === null ? 0 : maskAt)],
            (at) => module.askJson("begin_job", at)) as Facts);
}

/** Gives a function for each band of rows the record of it. */
function visitBands(
    module: Module, slice: Slice, targetBytesOfRow: number,
    visit: (rowsRecord: number, target: number, firstRow: number, rows: number) => void,
): void {
    const rowBytes = slice.pixels * slice.channels.length;
    const bandRows = Math.max(1, Math.floor(bandBytes / Math.max(rowBytes, targetBytesOfRow, 1)));
    for (let first = 0; first < slice.rows; first += bandRows) {
        const rows = Math.min(bandRows, slice.rows - first);
        const samples = slice.samples.subarray(first * rowBytes, (first + rows) * rowBytes);
        module.lend([samples, targetBytesOfRow * rows], (from = 0, target = 0) =>
            module.lend(
                [record(from, slice.pixels, rows, slice.x, slice.y + first, slice.firstPixel,
                    target)],
                (at = 0) => visit(at, target, first, rows)));
    }
}

function warningsOf(module: Module): readonly string[] {
    return (module.askJson("job_facts") as Facts).warnings;
}

function requireDots(width: number, height: number, inks: number): void {
    if (width * height * inks > limits.dots) {
        throw new Refusal(engineTexts.tooManyDots(width, height, inks, limits.dots));
    }
}

/** Loads the mask for a job that dithers. */
export type MaskSource = () => Promise<Uint8Array>;

async function start(module: Module, job: DotsJob, loadMask: MaskSource) {
    const slice = resolve(module, job);
    let facts = begin(module, job, slice, null);
    if (facts.lacksMask) {
        facts = begin(module, job, slice, await loadMask());
    }
    const width = slice.pixels - slice.firstPixel;
    requireDots(width, slice.rows, Math.max(facts.inks.length, 1));
    return { slice, facts, width };
}

export async function run(module: Module, job: DotsJob, loadMask: MaskSource): Promise<Dots> {
    try {
        const { slice, facts, width } = await start(module, job, loadMask);
        const planeBytes = width * slice.rows;
        const planes = new Uint8Array(planeBytes * facts.inks.length);
        visitBands(module, slice, width * facts.inks.length, (at, target, first, rows) => {
            module.ask("make_dots", at);
            const made = module.bytes();
            facts.inks.forEach((_, ink) => {
                const start = target + ink * rows * width;
                planes.set(made.subarray(start, start + rows * width),
                    ink * planeBytes + first * width);
            });
        });
        return {
            width, height: slice.rows, inks: facts.inks, fullInk: facts.fullInk, planes,
            warnings: warningsOf(module),
        };
    } finally {
        module.ask("end_job");
    }
}

/** The indexes of the inks that are printed, in the order of their printing. */
function printed(inks: readonly string[], { order = [], shown }: Looks): number[] {
    const rest = inks.map((_, index) => index);
    const take = (name: string): number => {
        const place = rest.findIndex((index) => inks[index] === name);
        if (place < 0) {
            throw new Refusal(engineTexts.unknownInk(name));
        }
        return rest.splice(place, 1)[0] ?? 0;
    };
    const sorted = order.map(take).concat(rest);
    return shown === undefined
        ? sorted
        : sorted.filter((index) => shown.includes(inks[index] ?? ""));
}

function layersOf(inks: readonly string[], looks: Looks): number[] {
    return printed(inks, looks).flatMap((index) => {
        const look = looks.looks?.find(({ name }) => name === inks[index]);
        if (look === undefined) {
            return [index, 0, -1, 0];
        }
        const [, digits] = /^#([0-9a-f]{6})$/i.exec(look.colour) ?? [];
        if (digits === undefined) {
            throw new Refusal(engineTexts.badColour(look.colour));
        }
        const opacity = look.opacity === undefined ? -1 : Math.round(look.opacity * 1000);
        return [index, Number.parseInt(digits, 16), opacity, 1];
    });
}

/** The size in which so many pixels are shown. */
function shownSize(width: number, height: number, longestSide: number | undefined) {
    const scale = Math.min(1, (longestSide ?? Infinity) / Math.max(width, height));
    return {
        shownWidth: Math.max(1, Math.floor(width * scale)),
        shownHeight: Math.max(1, Math.floor(height * scale)),
    };
}

function beginPreview(
    module: Module, looks: Looks, inks: readonly string[], frame: readonly number[],
): void {
    const gain = looks.gain ?? 0;
    if (!(gain >= 0 && gain <= 50)) {
        throw new Refusal(engineTexts.badGain(gain));
    }
    const layers = layersOf(inks, looks);
    module.lend([record(...frame), record(...layers)], (frameAt = 0, layersAt = 0) =>
        module.ask("begin_preview", frameAt, Math.round(gain * 10), layersAt, layers.length / 4));
}

export async function preview(
    module: Module, job: DotsJob, looks: Looks, loadMask: MaskSource,
): Promise<PreviewImage> {
    try {
        const { slice, facts, width } = await start(module, job, loadMask);
        const { shownWidth, shownHeight } = shownSize(width, slice.rows, looks.longestSide);
        if (shownWidth * shownHeight > limits.shownPixels) {
            throw new Refusal(
                engineTexts.tooManyPixels(shownWidth, shownHeight, limits.shownPixels));
        }
        beginPreview(module, looks, facts.inks, [width, slice.rows, shownWidth, shownHeight]);
        const rgba = new Uint8ClampedArray(shownWidth * shownHeight * 4);
        let filled = 0;
        visitBands(module, slice, shownWidth * 4, (at, target) => {
            const count = Number(new TextDecoder().decode(module.ask("show_rows", at)));
            rgba.set(module.bytes().subarray(target, target + count), filled);
            filled += count;
        });
        return { width: shownWidth, height: shownHeight, rgba, warnings: warningsOf(module) };
    } finally {
        module.ask("end_job");
    }
}
