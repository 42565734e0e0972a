import { inksOf, type Alternative, type Block, type Structure } from "./structure.js";

/** A step that gives every pixel the same. */
export interface NewStep {
    readonly step: number;
    readonly position: number;
    readonly value: number;
}

const full = 255;

/**
 * The step that goes on from the last one. Where the last one mixes, all pixels get the strongest
 * of its alternatives; where it doesn't, the drop grows by as much as it did last, and after a full
 * drop comes the strongest ink of the in-colour.
 */
export function nextStep(structure: Structure, block: Block,
    strengthOf: (ink: string | null) => number): NewStep {
    const lines = [...(block.values?.lines ?? [])].sort((one, other) => one.step - other.step);
    const inkOf = ({ ink, value }: Alternative) => value * strengthOf(ink);
    const strongest = (all: readonly Alternative[]) => [...all]
        .filter(({ weight }) => weight > 0)
        .sort((one, other) => inkOf(other) - inkOf(one))[0];
    const last = lines.at(-1);
    const step = Math.max(0, last?.step ?? 0) + 1;
    const top = strongest(last?.alternatives ?? []);
    if (last === undefined || top === undefined) {
        return { step, position: 0, value: full };
    }
    const { position, value } = top;
    if (last.alternatives.some((one) => one.weight > 0 && inkOf(one) < inkOf(top))) {
        return { step, position, value };
    }
    if (value < full) {
        const before = strongest(lines.at(-2)?.alternatives ?? []);
        const growth = value - (before?.position === position ? before.value : 0);
        return { step, position, value: Math.min(full, value + Math.max(1, growth)) };
    }
    const strengths = inksOf(structure, block).map(strengthOf);
    const best = Math.max(...strengths, strengthOf(top.ink));
    return { step, value,
        position: best > strengthOf(top.ink) ? strengths.indexOf(best) : position };
}
