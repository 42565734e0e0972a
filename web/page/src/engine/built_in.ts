import type { BuiltInPicture, Levels, Picture } from "./api.js";
import { engineTexts } from "../../texts/en.js";
import { limits } from "./limits.js";
import { Refusal } from "./refusal.js";

/** An in-colour as simulation takes it. */
export interface SteppedColour {
    readonly name: string;
    readonly topStep: number;
}

export function requireSize(width: number, height: number, channels: number): void {
    if (![width, height].every((side) => Number.isInteger(side) && side > 0)) {
        throw new Refusal(engineTexts.badSize(width, height));
    }
    if (width * height * channels > limits.pictureBytes) {
        throw new Refusal(
            engineTexts.pictureTooLarge(width, height, channels, limits.pictureBytes),
        );
    }
}

// Evenly from 0 to the highest one.
function partOf(index: number, count: number, highest: number): number {
    return count < 2 ? highest : Math.round((index * highest) / (count - 1));
}

function rampRow(width: number, { topStep }: SteppedColour, levels: Levels): number[] {
    return Array.from({ length: width }, (_, x) =>
        levels === "raw" ? Math.floor((x * (topStep + 1)) / width) : partOf(x, width, 255));
}

function patchesRow(width: number, { topStep }: SteppedColour, levels: Levels): number[] {
    const fields = topStep + 1;
    return Array.from({ length: width }, (_, x) => {
        const step = Math.floor((x * fields) / width);
        return levels === "raw" ? step : fields === 1 ? 0 : partOf(step, fields, 255);
    });
}

/** A band for each in-colour, one below the other, in which all others have no ink. */
export function makeBuiltIn(
    { kind, width, height }: BuiltInPicture, colours: readonly SteppedColour[], levels: Levels,
): Picture {
    requireSize(width, height, Math.max(colours.length, 1));
    const samples = new Uint8Array(width * height * colours.length);
    const rows = colours.map((colour) =>
        (kind === "ramp" ? rampRow : patchesRow)(width, colour, levels));
    for (let y = 0; y < height; ++y) {
        const band = Math.floor((y * colours.length) / height);
        const row = rows[band] ?? [];
        const start = y * width * colours.length + band;
        for (let x = 0; x < row.length; ++x) {
            samples[start + x * colours.length] = row[x] ?? 0;
        }
    }
    return { width, height, channels: colours.map(({ name }) => name), samples, notes: [] };
}
