import { announce, h } from "../dom.js";
import { commandOf, type Picture } from "../engine/index.js";
import { copy, save } from "../files.js";
import { encodeLink } from "../links.js";
import { pictureOf, previewOf, settings } from "../settings.js";
import { en } from "../../texts/en.js";
import { followSoon } from "../value.js";
import type { Workbench } from "../workbench.js";

const words = en.take;

const names = { pattern: "pattern.txt", picture: "picture.tif", dots: "dots.tif" };

/** Browsers take no longer addresses from everywhere. */
const longestLink = 32_000;

/** Everything that an author takes home. */
export class TakeAwayView {
    readonly element: HTMLElement;
    readonly #workbench: Workbench;
    readonly #said = h("p", { class: "said", role: "status" });
    readonly #link = h("input", { type: "text", readonly: true, "aria-label": words.link });
    readonly #linkNote = h("p", { class: "lead" });
    readonly #command = h("code", {});
    #shown = false;

    constructor(workbench: Workbench) {
        this.#workbench = workbench;
        followSoon(150, () => this.#show(), workbench.text, settings);
        this.element = h("div", { class: "take" }, this.#linkSection(),
            this.#commandSection(), this.#fileSection(), this.#said);
    }

    set shown(shown: boolean) {
        this.#shown = shown;
        this.#show();
    }

    #linkSection(): HTMLElement {
        return h("section", {}, h("h3", {}, words.link), this.#linkNote,
            h("div", { class: "joined wide" }, this.#link,
                this.#copier(words.copyLink, () => this.#link.value)));
    }

    #commandSection(): HTMLElement {
        return h("section", {}, h("h3", {}, words.command), h("p", { class: "lead" },
            words.commandLead),
        h("pre", { class: "command", tabindex: 0 }, this.#command),
        h("div", { class: "row" },
            this.#copier(words.copyCommand, () => this.#command.textContent ?? ""),
            this.#saver(words.saveText, () => this.#saveText()),
            this.#saver(words.savePicture, () => this.#savePicture())));
    }

    #fileSection(): HTMLElement {
        return h("section", {}, h("h3", {}, words.files), h("div", { class: "row" },
            this.#saver(words.saveSvg, () => this.#saveSvg()),
            this.#saver(words.savePng, () => this.#savePng()),
            this.#saver(words.saveSarif, () => this.#saveSarif())));
    }

    #copier(label: string, text: () => string): HTMLElement {
        return h("button", { type: "button", click: async () => {
            this.#tell(await copy(text()) ? words.copied : words.notCopied);
        } }, label);
    }

    #saver(label: string, act: () => Promise<string | null>): HTMLElement {
        return h("button", { type: "button", click: async () => {
            const name = await act();
            if (name !== null) {
                this.#tell(words.saved(name));
            }
        } }, label);
    }

    #tell(sentence: string): void {
        announce(this.#said, sentence);
    }

    #show(): void {
        if (!this.#shown) {
            return;
        }
        const text = this.#workbench.text.get();
        const { origin, pathname } = location;
        const link = `${origin}${pathname}#${encodeLink(text)}`;
        const fits = link.length <= longestLink;
        this.#link.value = fits ? link : "";
        this.#linkNote.textContent = fits ? words.linkLead(link.length) : words.linkTooLong;
        this.#command.textContent = commandOf(settings.get(), names);
    }

    async #saveText(): Promise<string> {
        save(names.pattern, this.#workbench.text.get(), "text/plain");
        return names.pattern;
    }

    async #picture(): Promise<Picture | null> {
        const chosen = settings.get();
        const picture = pictureOf(chosen);
        if (picture === null) {
            announce(this.#said, en.dots.noPictureElsewhere);
            return null;
        }
        return "kind" in picture ? this.#workbench.ask(this.#workbench.engine.builtIn(
            this.#workbench.text.get(), picture, chosen.levels)) : picture;
    }

    async #savePicture(): Promise<string | null> {
        const picture = await this.#picture();
        const bytes = picture === null ? null
            : this.#workbench.engine.tiff(picture);
        if (bytes === null) {
            return null;
        }
        save(names.picture, bytes as BlobPart, "image/tiff");
        return names.picture;
    }

    async #saveSvg(): Promise<string | null> {
        const { engine } = this.#workbench;
        const plot = await this.#workbench.ask(engine.plot(this.#workbench.text.get(),
            names.pattern));
        if (plot === null) {
            return null;
        }
        save("plot.svg", plot.svg, "image/svg+xml");
        return "plot.svg";
    }

    async #savePng(): Promise<string | null> {
        const inks = this.#workbench.reading.get()?.result.outInks.map(({ name }) => name) ?? [];
        const picture = await this.#picture();
        if (picture === null) {
            return null;
        }
        const job = previewOf(this.#workbench.text.get(), settings.get(), picture, inks);
        const image = await this.#workbench.ask(this.#workbench.engine.preview(job));
        if (image === null) {
            return null;
        }
        const canvas = h("canvas", { width: image.width, height: image.height });
        const data = new ImageData(image.rgba, image.width, image.height);
        canvas.getContext("2d")!.putImageData(data, 0, 0);
        const blob = await new Promise<Blob | null>((done) => canvas.toBlob(done, "image/png"));
        if (blob === null) {
            return null;
        }
        save("dots.png", blob, "image/png");
        return "dots.png";
    }

    async #saveSarif(): Promise<string | null> {
        const { engine } = this.#workbench;
        const sarif = await this.#workbench.ask(engine.sarif(this.#workbench.text.get(),
            names.pattern));
        if (sarif === null) {
            return null;
        }
        save("pattern.sarif", sarif, "application/sarif+json");
        return "pattern.sarif";
    }
}
