import type { BuiltInPicture, Levels, Picture, PictureJob, PreviewJob }
    from "./engine/index.js";
import { Value } from "./value.js";

/** The author has chosen this for the picture of dots. */
export interface Settings {
    readonly kind: "ramp" | "patches" | "own";
    readonly own: Picture | null;
    readonly levels: Levels;
    readonly tone: "coverage" | "equal";
    readonly origin: { readonly x: number; readonly y: number };
    /** The one ink that is shown, or none for all of them in print. */
    readonly ink: string;
    readonly zoom: number;
    /** Inks in the order of their printing, as far as the author has said. */
    readonly order: readonly string[];
    readonly gain: number;
}

export const zooms = [1, 2, 4, 8, 16] as const;

export const settings = new Value<Settings>({
    kind: "ramp", own: null, levels: "automatic", tone: "coverage", origin: { x: 0, y: 0 },
    ink: "", zoom: 4, order: [], gain: 0,
});

export function change(changes: Partial<Settings>): void {
    settings.set({ ...settings.get(), ...changes });
}

/** The picture that is chosen; null while the author's own is meant and there is none yet. */
export function pictureOf({ kind, own }: Settings): Picture | BuiltInPicture | null {
    if (kind === "own") {
        return own;
    }
    return { kind: kind === "patches" ? "patches" : "ramp", width: 192, height: 128 };
}

export function jobOf(text: string, chosen: Settings, picture: PictureJob["picture"]): PictureJob {
    const { levels, tone, origin } = chosen;
    return { text, picture, levels, tone, origin };
}

/** The job of the picture that is seen. */
export function previewOf(text: string, chosen: Settings, picture: PictureJob["picture"],
    inks: readonly string[]): PreviewJob {
    const { ink, order, gain } = chosen;
    const shown = inks.includes(ink) ? [ink] : inks;
    return { ...jobOf(text, chosen, picture), shown, order: orderOf(order, inks), gain };
}

/** The inks in the order of their printing: first those with a place, then the others. */
export function orderOf(order: readonly string[], inks: readonly string[]): string[] {
    const placed = order.filter((ink) => inks.includes(ink));
    return [...placed, ...inks.filter((ink) => !placed.includes(ink))];
}
