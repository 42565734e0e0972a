import type { PictureJob, Window } from "../engine/index.js";
import { pictureOf, previewOf, settings } from "../settings.js";
import { en } from "../../texts/en.js";
import type { Workbench } from "../workbench.js";
import { DotsViewer } from "./dots_viewer.js";

const words = en.dots;

export interface Drawn {
    readonly picture: PictureJob["picture"];
    readonly window: Window;
    readonly warnings: readonly string[];
}

/** Draws the dots of a text as the settings ask for them, as far as its viewer shows them. */
export class DotsPane {
    readonly viewer: DotsViewer;
    readonly #workbench: Workbench;

    readonly #slot: string;

    /** Panes with a slot of their own don't wait for each other. */
    constructor(workbench: Workbench, label: string, slot = "") {
        this.#workbench = workbench;
        this.#slot = slot;
        this.viewer = new DotsViewer(label);
    }

    /** Tells what was drawn, and the warnings on the way; null if nothing was. */
    async draw(text: string, inks: readonly string[])
        : Promise<Drawn | null> {
        const chosen = settings.get();
        const picture = pictureOf(chosen);
        if (picture === null) {
            this.viewer.clear(this.#slot === "" ? words.noPicture : words.noPictureElsewhere);
            return null;
        }
        this.viewer.setSize(picture.width, picture.height, chosen.zoom);
        const window = this.viewer.window();
        if (window === null) {
            return null;
        }
        const job = { ...previewOf(text, chosen, picture, inks), window };
        const { engine } = this.#workbench;
        const subject = `dots ${this.#slot}`;
        const image = await this.#workbench.ask(engine.preview(job, this.#slot), subject);
        if (image === null) {
            // Dots of something else would be taken for those that were asked for.
            if (this.#workbench.failed(subject)) {
                this.viewer.clear();
            }
            return null;
        }
        const shown = inks.includes(chosen.ink) ? words.only(chosen.ink) : words.allInks;
        this.viewer.draw(image, window, words.label(shown, window, chosen.zoom));
        return { picture, window, warnings: image.warnings };
    }
}
