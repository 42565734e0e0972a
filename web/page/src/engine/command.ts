import type { CommandNames, PictureJob } from "./api.js";

const usualNames: CommandNames = {
    pattern: "pattern.txt",
    picture: "picture.tif",
    dots: "dots.tif",
};

// A shell takes other words as they stand only between quotes.
function quoted(word: string): string {
    return /^[\w.,/:=@%+-]+$/.test(word) && !word.startsWith("-")
        ? word
        : `'${word.replaceAll("'", "'\\''")}'`;
}

/**
 * The line for a shell that makes the dots of a whole picture, from the files that the page saves:
 * the text as it is, and the picture's TIFF.
 */
export function commandOf(job: Pick<PictureJob, "levels" | "tone" | "origin">,
    names: Partial<CommandNames> = {}): string {
    const files = { ...usualNames, ...names };
    const words = ["pelkraft", "simulate"];
    if (job.levels !== undefined && job.levels !== "automatic") {
        words.push("--levels", job.levels);
    }
    if (job.tone === "equal" && job.levels !== "quantize" && job.levels !== "raw") {
        words.push("--tone", "equal");
    }
    if (job.origin !== undefined && (job.origin.x !== 0 || job.origin.y !== 0)) {
        words.push(`--origin=${job.origin.x},${job.origin.y}`);
    }
    words.push(quoted(files.pattern), quoted(files.picture), quoted(files.dots));
    return words.join(" ");
}
