import type { Picture } from "./api.js";
import { engineTexts } from "../../texts/en.js";
import { inksOfRgb, rgbChannels } from "./browser_picture.js";
import { requireSize } from "./built_in.js";
import type { Module } from "./module.js";
import { Refusal } from "./refusal.js";

const photometric = { minIsWhite: 0, minIsBlack: 1, rgb: 2, separated: 5 } as const;
const separatePlanes = 2;
const cmyk = 1;

interface Facts {
    readonly width: number;
    readonly height: number;
    readonly samples: number;
    readonly bits: number;
    readonly photometric: number;
    readonly isSeparate: boolean;
    readonly compression: number;
    readonly isWhole: boolean;
    readonly isTiled: boolean;
    readonly extras: number;
    readonly isConfigured: boolean;
    readonly rowBytes: number;
    readonly inkSet: number;
    readonly none: number;
    readonly full: number;
    readonly inkNames: readonly string[];
}

function factsOf(answer: Uint8Array): Facts {
    const [first = "", ...names] = new TextDecoder().decode(answer).split("\n");
    const [
        width = 0, height = 0, samples = 0, bits = 0, kind = 0, planes = 0, compression = 0,
        format = 0, tiled = 0, extras = 0, configured = 0, rowBytes = 0, inkSet = 0, none = 0,
        full = 0,
    ] = first.split(" ").map(Number);
    return {
        width, height, samples, bits, photometric: kind, isSeparate: planes === separatePlanes,
        compression, isWhole: format === 1, isTiled: tiled !== 0, extras,
        isConfigured: configured !== 0, rowBytes, inkSet, none, full,
        inkNames: names.filter((name) => name !== ""),
    };
}

function requireKnown(facts: Facts): void {
    const fault = facts.isTiled ? engineTexts.tiffTiles
        : !facts.isConfigured ? engineTexts.tiffCompression(facts.compression)
        : !facts.isWhole ? engineTexts.tiffFormat
        : facts.bits !== 8 && facts.bits !== 16 ? engineTexts.tiffBits(facts.bits)
        : !(Object.values(photometric) as number[]).includes(facts.photometric)
            ? engineTexts.tiffColours(facts.photometric)
        : null;
    if (fault !== null) {
        throw new Refusal(engineTexts.tiffUnsupported(fault));
    }
}

/** The channels that are inks or colours, before others. */
function colourCount({ photometric: kind, samples, extras, inkNames }: Facts): number {
    if (kind === photometric.rgb) {
        return Math.min(3, samples);
    }
    if (kind !== photometric.separated) {
        return 1;
    }
    // Inks beyond the fourth count as extra samples where the file doesn't say how many it has.
    return Math.min(samples, Math.max(samples - extras, inkNames.length));
}

function channelsOf(facts: Facts): readonly string[] {
    if (facts.photometric === photometric.rgb) {
        return rgbChannels;
    }
    if (facts.photometric !== photometric.separated) {
        return ["Gray"];
    }
    const usual = facts.inkSet === cmyk ? rgbChannels : [];
    return Array.from({ length: colourCount(facts) }, (_, index) =>
        facts.inkNames[index] ?? usual[index] ?? `Channel ${index}`);
}

/** From a sample of the file to one of 8 bits, of which 0 is none and 255 all. */
function codesOf({ bits, photometric: kind, none, full }: Facts): (sample: number) => number {
    const highest = 2 ** bits - 1;
    const [start, end] = kind === photometric.separated && none !== full ? [none, full]
        : kind === photometric.minIsBlack ? [highest, 0] : [0, highest];
    return (sample) => {
        const share = (sample - start) / (end - start);
        return Math.round(Math.min(Math.max(share, 0), 1) * 255);
    };
}

function rowOf(module: Module, facts: Facts, y: number, plane: number): ArrayLike<number> {
    const bytes = module.ask("tiff_row", y, plane);
    return facts.bits === 16
        ? new Uint16Array(bytes.buffer, 0, bytes.length >> 1)
        : bytes;
}

/** Gives the rows of the file: of separate planes first all of one, so that it is read once. */
function visitRows(
    module: Module, facts: Facts, colours: number,
    visit: (row: ArrayLike<number>, y: number, plane: number) => void,
): void {
    for (let plane = 0; plane < (facts.isSeparate ? colours : 1); ++plane) {
        for (let y = 0; y < facts.height; ++y) {
            visit(rowOf(module, facts, y, plane), y, plane);
        }
    }
}

function readSamples(module: Module, facts: Facts, channels: number): Uint8Array {
    const samples = new Uint8Array(facts.width * facts.height * channels);
    const colours = colourCount(facts);
    const codeOf = codesOf(facts);
    const codes = Uint8Array.from({ length: 2 ** facts.bits }, (_, sample) => codeOf(sample));
    const stride = facts.isSeparate ? 1 : facts.samples;
    visitRows(module, facts, colours, (row, y, plane) => {
        const start = y * facts.width * channels;
        const count = facts.isSeparate ? 1 : colours;
        for (let pixel = 0; pixel < facts.width; ++pixel) {
            for (let colour = 0; colour < count; ++colour) {
                samples[start + pixel * channels + plane + colour] =
                    codes[row[pixel * stride + colour] ?? 0] ?? 0;
            }
        }
    });
    return samples;
}

function notesOf(facts: Facts): string[] {
    const kind = facts.photometric;
    const notes = [
        kind === photometric.rgb ? engineTexts.noteRgb("TIFF")
            : kind === photometric.separated ? engineTexts.noteInks("TIFF")
            : engineTexts.noteGrey("TIFF"),
        engineTexts.noteFirstPage,
    ];
    const extras = facts.samples - colourCount(facts);
    return notes
        .concat(facts.bits === 16 ? [engineTexts.noteSixteen] : [])
        .concat(extras > 0 ? [engineTexts.noteExtras(extras)] : []);
}

function readOpen(module: Module, facts: Facts): Picture {
    const channels = channelsOf(facts);
    requireSize(facts.width, facts.height, Math.max(channels.length, facts.samples));
    requireKnown(facts);
    const samples = readSamples(module, facts, channels.length);
    if (facts.photometric === photometric.rgb) {
        inksOfRgb(samples.slice(), channels.length, facts.width * facts.height, samples, 0);
    }
    return {
        width: facts.width, height: facts.height, channels, samples, notes: notesOf(facts),
    };
}

/** Reads the first page of a TIFF file by libtiff. */
export function readTiff(module: Module, bytes: Uint8Array): Picture {
    try {
        return module.lend([bytes], (address) => {
            try {
                return readOpen(module,
                    factsOf(module.ask("tiff_open", address ?? 0, bytes.length)));
            } finally {
                module.ask("tiff_close");
            }
        });
    } catch (failure) {
        // For a file that it can't read libtiff has half a sentence.
        if (failure instanceof Refusal && !failure.message.endsWith(".")) {
            throw new Refusal(engineTexts.damagedPicture("TIFF", failure.message));
        }
        throw failure;
    }
}
