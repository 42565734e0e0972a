import { h, styled } from "../dom.js";
import type { PreviewImage, Window } from "../engine/index.js";
import { en } from "../../texts/en.js";

/**
 * A window on a picture, whose dots are drawn as far as they are seen. It scrolls like any other
 * part of a page: by wheel, by finger and by the arrow keys.
 */
export class DotsViewer {
    readonly element: HTMLElement;
    readonly #canvas = h("canvas", { role: "img" });
    readonly #extent = h("div", { class: "extent" }, this.#canvas);
    readonly #scroller = h("div", { class: "viewer", tabindex: 0, role: "group" }, this.#extent);
    /** Tells why there are no dots. */
    readonly #why = h("p", { class: "why" });
    #zoom = 1;
    #width = 0;
    #height = 0;
    /** Another part is seen. */
    onMove: () => void = () => {};

    constructor(label: string) {
        this.#scroller.setAttribute("aria-label", label);
        this.element = h("div", { class: "sheet" }, this.#scroller, this.#why);
        this.#scroller.addEventListener("scroll", () => this.onMove(), { passive: true });
        new ResizeObserver(() => this.onMove()).observe(this.#scroller);
    }

    /** The size of the whole picture, and of a dot on the screen. */
    setSize(width: number, height: number, zoom: number): void {
        const { scrollLeft, scrollTop, clientWidth, clientHeight } = this.#scroller;
        const factor = this.#width === 0 ? 0 : zoom / this.#zoom;
        if (factor === 1 && width === this.#width && height === this.#height) {
            return;
        }
        this.#width = width;
        this.#height = height;
        this.#zoom = zoom;
        styled(this.#extent, { width: `${width * zoom}px`, height: `${height * zoom}px` });
        // The middle stays where it is.
        this.#scroller.scrollTo((scrollLeft + clientWidth / 2) * factor - clientWidth / 2,
            (scrollTop + clientHeight / 2) * factor - clientHeight / 2);
    }

    /** The part of the picture that is seen, or null while nothing is. */
    window(): Window | null {
        const { scrollLeft, scrollTop, clientWidth, clientHeight } = this.#scroller;
        const x = Math.min(Math.floor(scrollLeft / this.#zoom), Math.max(this.#width - 1, 0));
        const y = Math.min(Math.floor(scrollTop / this.#zoom), Math.max(this.#height - 1, 0));
        const width = Math.min(Math.ceil(clientWidth / this.#zoom) + 1, this.#width - x);
        const height = Math.min(Math.ceil(clientHeight / this.#zoom) + 1, this.#height - y);
        return width > 0 && height > 0 && clientWidth > 0 ? { x, y, width, height } : null;
    }

    /** Shows the same part as another viewer does. */
    follow(other: DotsViewer, moved: () => void): void {
        this.onMove = () => {
            const { scrollLeft, scrollTop } = this.#scroller;
            other.#scroller.scrollTo(scrollLeft, scrollTop);
            moved();
        };
    }

    draw(image: PreviewImage, { x, y }: Window, label: string): void {
        const { scrollLeft, scrollTop } = this.#scroller;
        this.#canvas.width = image.width;
        this.#canvas.height = image.height;
        const data = new ImageData(image.rgba, image.width, image.height);
        this.#canvas.getContext("2d")!.putImageData(data, 0, 0);
        this.#canvas.setAttribute("aria-label", label);
        styled(this.#canvas, {
            width: `${image.width * this.#zoom}px`,
            height: `${image.height * this.#zoom}px`,
            transform: `translate(${x * this.#zoom - scrollLeft}px, ${y * this.#zoom - scrollTop}px)`,
        });
        this.#why.textContent = "";
        this.element.classList.remove("empty");
    }

    clear(why = ""): void {
        this.#why.textContent = why;
        this.#canvas.width = this.#canvas.height = 0;
        this.#canvas.setAttribute("aria-label", en.dots.nothing);
        this.element.classList.add("empty");
    }
}
