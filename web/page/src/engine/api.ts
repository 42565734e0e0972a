/**
 * The page asks all this of the engine. The work is done in a worker by the WebAssembly of the
 * library and of the program's own code, so that numbers, words and bytes are the program's.
 *
 * Texts are strings as the editor has them. Places are counted as the editor counts them, in UTF-16
 * units from the start of the text; lines and columns are those that the program prints, from 1.
 * Whatever is refused is an EngineFailure, whose message is a sentence for the author.
 */

import type {
    Alternative as PlainAlternative, Finding as PlainFinding, InColor as PlainInColour,
    PatternReport, Use,
} from "../../../src/reports.js";

export type { Use };

export interface Place {
    readonly from: number;
    readonly to: number;
    readonly line: number;
    readonly column: number;
}

/** Takes the place of the text between from and to. */
export interface Edit {
    readonly from: number;
    readonly to: number;
    readonly insert: string;
}

export type Severity = PlainFinding["severity"];

export interface Finding extends Pick<PlainFinding, "severity" | "kind" | "message" | "hint"> {
    readonly place: Place;
    /** There is one where it is certainly what the author meant. */
    readonly fix: Edit | null;
}

/** A number as the text asks for it and, from plot() alone, as counted in the pixels. */
export interface Expected {
    readonly expected: number;
    readonly measured: number | null;
}

export interface InkShares {
    readonly ink: string | null;
    readonly mean: Expected;
    readonly values: readonly ({ readonly value: number } & Expected)[];
}

export interface Alternative extends PlainAlternative {
    /** The entry in the value line, or null where the step has no line. */
    readonly place: Place | null;
}

export interface Step {
    readonly step: number;
    /** There is a value line for it. */
    readonly listed: boolean;
    /** The line's number of the step, and the ratio after it. */
    readonly place: Place | null;
    readonly ratioPlace: Place | null;
    readonly alternatives: readonly Alternative[];
    readonly shares: readonly InkShares[];
    /** The sum over all inks. */
    readonly meanInk: Expected;
}

export interface InColour extends Pick<PlainInColour, "name" | "topStep" | "combinations"> {
    /** Its name in the list of in-colours. */
    readonly place: Place | null;
    /** Its name in the block that describes it, if there is one. */
    readonly blockPlace: Place | null;
    /** The out-inks by position, with the places of their names in the block. */
    readonly feeds: readonly { readonly ink: string | null; readonly place: Place | null }[];
    readonly steps: readonly Step[];
}

export interface OutInk {
    readonly name: string;
    /** Its name in the list of out-inks. */
    readonly place: Place | null;
    /** The in-colours that name it. */
    readonly fedBy: readonly string[];
    /** Its look in print, "#rrggbb", unless a preview is told otherwise. */
    readonly colour: string;
    readonly opacity: number;
    /** A drop of it counts as this part of a drop of a full ink: 0.4 for light inks, else 1. */
    readonly strength: number;
}

export interface Reading extends Pick<PatternReport, "version" | "seed" | "limits" | "engines"> {
    readonly inColours: readonly InColour[];
    readonly outInks: readonly OutInk[];
    readonly counts: {
        readonly errors: number;
        readonly warnings: number;
        readonly notes: number;
    };
    readonly findings: readonly Finding[];
    /** The engine that draws dots loads the text. */
    readonly runs: boolean;
    /** The highest value that the pattern gives to an ink: full ink. */
    readonly fullInk: number;
}

export interface Spectrum {
    readonly inColour: string;
    readonly step: number;
    readonly ink: string;
    /** By frequency, in waves on 256 pixels; 1 is the mean of all. */
    readonly power: readonly number[];
}

export interface Plot {
    /** The reading's in-colours with measured shares. */
    readonly inColours: readonly InColour[];
    readonly spectra: readonly Spectrum[];
    /** The drawing of "pelkraft pattern plot", letter for letter. */
    readonly svg: string;
}

export interface Difference {
    readonly kind: string;
    readonly inColour: string | null;
    readonly step: number | null;
    readonly ink: string | null;
    readonly left: string;
    readonly right: string;
}

export interface Differences {
    /** The patterns do these things in different ways. */
    readonly differences: readonly Difference[];
    /** The difference of the letters, as "diff -u" shows it; empty where there is none. */
    readonly textual: string;
}

export interface FixedText {
    readonly text: string;
    readonly changes: number;
    /** There were safe hints, but they alone don't mend it: it is the old text. */
    readonly isGivenUp: boolean;
}

/** A picture of amounts of ink, 0 for none and 255 for full: interleaved, a byte a channel. */
export interface Picture {
    readonly width: number;
    readonly height: number;
    readonly channels: readonly string[];
    readonly samples: Uint8Array;
    /** They tell what it was read from, such as "PNG, RGB", and what was done to it. */
    readonly notes: readonly string[];
}

/** A ramp has a band, and patches a row of fields, for each in-colour. */
export interface BuiltInPicture {
    readonly kind: "ramp" | "patches";
    readonly width: number;
    readonly height: number;
}

export type Levels = "automatic" | "dither" | "quantize" | "raw";

export interface Window {
    readonly x: number;
    readonly y: number;
    readonly width: number;
    readonly height: number;
}

/** A pattern on a picture. The dots depend on nothing else. */
export interface PictureJob {
    readonly text: string;
    readonly picture: Picture | BuiltInPicture;
    /** "automatic" when it is left out. With "raw" the samples of patches are steps. */
    readonly levels?: Levels;
    /** The inks of steps for the dither: "coverage" when it is left out. */
    readonly tone?: "coverage" | "equal";
    /** The place of the first pixel on the page: 0,0 when it is left out. */
    readonly origin?: { readonly x: number; readonly y: number };
    /** The part that is wanted: all of it when it is left out. */
    readonly window?: Window;
}

export interface Dots {
    readonly width: number;
    readonly height: number;
    readonly inks: readonly string[];
    /** The value that is full ink. */
    readonly fullInk: number;
    /** One plane for each ink, of height rows of width bytes. */
    readonly planes: Uint8Array;
    /** Sentences that the program would print as warnings. */
    readonly warnings: readonly string[];
}

export interface InkLook {
    readonly name: string;
    /** "#rrggbb" */
    readonly colour: string;
    /** From 0 to 1; as usual for the ink when it is left out. */
    readonly opacity?: number;
}

export interface PreviewJob extends PictureJob {
    /** Others look as usual for their names. */
    readonly looks?: readonly InkLook[];
    /** Names of inks as they are printed; others follow. */
    readonly order?: readonly string[];
    /** Names of the inks that are printed: all of them when it is left out. */
    readonly shown?: readonly string[];
    /** Percent that half a tone gains in print, 0 to 50. */
    readonly gain?: number;
    /** At most so many pixels on a side: the light of several is averaged into one. */
    readonly longestSide?: number;
}

export interface PreviewImage {
    readonly width: number;
    readonly height: number;
    /** Opaque, ready for ImageData. */
    readonly rgba: Uint8ClampedArray<ArrayBuffer>;
    readonly warnings: readonly string[];
}

/**
 * The engine does one thing after the other. A request that waits is given up when a newer one of
 * the same method and the same slot arrives: pages with two panes give each a slot of its own.
 */
export interface Engine {
    /** Everything about a text but what takes long to count. */
    read(text: string, slot?: string): Promise<Reading>;
    plot(text: string, title?: string, slot?: string): Promise<Plot>;
    diff(left: string, right: string, slot?: string): Promise<Differences>;
    fixed(text: string, slot?: string): Promise<FixedText>;
    /** The log of "pelkraft pattern lint --sarif" for a file of this name. */
    sarif(text: string, file?: string, slot?: string): Promise<string>;
    run(job: PictureJob, slot?: string): Promise<Dots>;
    preview(job: PreviewJob, slot?: string): Promise<PreviewImage>;

    /** The text in a file that the author opens or drops. */
    openText(bytes: Uint8Array, slot?: string): Promise<string>;
    /** PNG, JPEG or TIFF. The bytes are handed over and are of no use after that. */
    readPicture(bytes: Uint8Array, slot?: string): Promise<Picture>;
    /** The built-in picture itself, as run() takes it for this text. */
    builtIn(
        text: string, picture: BuiltInPicture, levels?: Levels, slot?: string,
    ): Promise<Picture>;
    /** The TIFF file that the command of a job names. */
    tiff(picture: Picture): Uint8Array;

    /**
     * Ends all that is under way, at once: what was asked for fails with the code "aborted". The
     * next request starts anew.
     */
    abort(): void;
    /** Ends the engine for good. */
    close(): void;
    /** Counts of work, for tests. */
    counts(): EngineCounts;
}

export interface EngineCounts {
    /** Requests that reached the worker. */
    readonly sent: number;
    /** Requests that a newer one of their kind replaced before they were sent. */
    readonly superseded: number;
    readonly workersStarted: number;
    /** The highest use of memory by the WebAssembly of this worker, in bytes, as last told. */
    readonly memory: number;
}

/**
 * - "refused": the text, the picture or the job can't be served; the message says why.
 * - "superseded": a newer request of the same kind took its place. Nothing to tell anyone.
 * - "aborted": abort() or close() ended it. Nothing to tell anyone.
 * - "broken": the worker died; the message says so. The next request starts a new one.
 */
export type FailureCode = "refused" | "superseded" | "aborted" | "broken";

export class EngineFailure extends Error {
    readonly code: FailureCode;

    constructor(code: FailureCode, message: string) {
        super(message);
        const isQuiet = code === "superseded" || code === "aborted";
        this.name = isQuiet ? "AbortError" : "EngineFailure";
        this.code = code;
    }
}

/** The names of files in a command. */
export interface CommandNames {
    readonly pattern: string;
    readonly picture: string;
    readonly dots: string;
}
