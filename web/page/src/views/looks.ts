import { h, styled } from "../dom.js";
import type { OutInk, Reading } from "../engine/index.js";

/** The engine tells of inks, by name in small letters, how they look and how much they count. */
export type Looks = ReadonlyMap<string, OutInk>;

export function looksOf(reading: Reading | undefined): Looks {
    return new Map((reading?.outInks ?? []).map((ink) => [ink.name.toLowerCase(), ink]));
}

export function colourOf(looks: Looks, name: string | null): string | undefined {
    return looks.get((name ?? "").toLowerCase())?.colour;
}

/** A drop of a light ink counts as this part of a drop of a full one. */
export function strengthOf(looks: Looks, name: string | null): number {
    return looks.get((name ?? "").toLowerCase())?.strength ?? 1;
}

export function swatch(looks: Looks, name: string): HTMLElement {
    const dot = h("span", { class: "swatch", "aria-hidden": "true" });
    const colour = colourOf(looks, name);
    return colour === undefined ? dot : styled(dot, { background: colour });
}
