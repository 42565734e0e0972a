import { afterPause, h, refill } from "./dom.js";
import { Drafts } from "./drafts.js";
import { lineAt } from "./editor/explanations.js";
import { PatternEditor } from "./editor/pattern_editor.js";
import { examples } from "./examples.js";
import { fileButton } from "./files.js";
import { followHistoryKeys } from "./history_keys.js";
import { registerMark } from "./icons.js";
import { decodeLink, encodeLink } from "./links.js";
import { Tabs } from "./tabs.js";
import { en } from "../texts/en.js";
import { CompareView } from "./views/compare.js";
import { DotsView } from "./views/dots.js";
import { findingsList } from "./views/findings_list.js";
import { SharesView } from "./views/shares.js";
import { PatternTable } from "./views/table.js";
import { TakeAwayView } from "./views/take_away.js";
import { Workbench } from "./workbench.js";

/** The whole page: what belongs together is put together here. */
export class App {
    readonly #workbench = new Workbench();
    readonly #drafts = new Drafts();
    readonly #notice = h("div", { class: "notice", role: "status" });
    readonly #editor: PatternEditor;
    readonly #shares: SharesView;
    readonly #tabs: Tabs;
    #compare: CompareView | null = null;
    #saidNotKept = false;

    constructor() {
        const start = this.#drafts.load() ?? examples.light_ink;
        this.#editor = new PatternEditor(en.editor.label, start);
        this.#shares = new SharesView(this.#workbench, this.#editor);
        this.#tabs = this.#makeTabs();
        this.#connect();
        this.#workbench.setText(start);
        this.#offerEarlier();
        this.#openLink();
    }

    show(root: HTMLElement): void {
        document.title = en.title;
        root.append(
            this.#header(), this.#notice, this.#trouble(),
            h("main", {}, h("div", { class: "writing" }, h("div", { class: "text" }, this.#editor),
                this.#placeLine(), findingsList(this.#workbench, this.#editor), keyList()),
            this.#tabs.element));
        this.#tabs.show("table");
    }

    #makeTabs(): Tabs {
        const dots = new DotsView(this.#workbench);
        const take = new TakeAwayView(this.#workbench);
        const table = new PatternTable(this.#workbench, this.#editor);
        followHistoryKeys(table.element, (turn) => table.take(turn));
        const compare = h("div", {});
        const tabs = new Tabs(en.tabs.label, [
            { name: "table", label: en.tabs.table, content: table.element },
            { name: "shares", label: en.tabs.shares, content: this.#shares.element },
            { name: "dots", label: en.tabs.dots, content: dots.element },
            { name: "compare", label: en.tabs.compare, content: compare },
            { name: "take", label: en.tabs.take, content: take.element },
        ]);
        tabs.onShow = (name) => {
            this.#workbench.forget();
            this.#workbench.wantsPlot.set(name === "shares");
            dots.shown = name === "dots";
            take.shown = name === "take";
            if (name === "compare" && this.#compare === null) {
                this.#compare = new CompareView(this.#workbench);
                compare.append(this.#compare.element);
            }
            if (this.#compare !== null) {
                this.#compare.shown = name === "compare";
            }
        };
        return tabs;
    }

    #connect(): void {
        const keep = afterPause(400, () => this.#keep());
        this.#editor.onChange = (text) => {
            this.#workbench.setText(text);
            keep();
        };
        this.#editor.onCursor = (place) => this.#workbench.cursor.set(place);
        this.#editor.onShow = () => this.#showShares();
        this.#workbench.reading.follow((reading) => {
            if (reading !== null && reading.text === this.#editor.text) {
                this.#editor.showFindings(reading.result.findings);
            }
        });
        addEventListener("hashchange", () => this.#openLink());
        addEventListener("pagehide", () => this.#keep());
    }

    #keep(): void {
        this.#drafts.save(this.#editor.text);
        if (!this.#drafts.allowed && !this.#saidNotKept) {
            this.#saidNotKept = true;
            this.#say(en.status.notKept);
        }
    }

    #say(sentence: string, tools: readonly HTMLElement[] = [], closed = () => {}): void {
        const close = h("button", { class: "plain", click: () => {
            refill(this.#notice);
            closed();
        } }, en.status.dismiss);
        refill(this.#notice, h("p", {}, sentence), ...tools, close);
    }

    /** The text that another one took the place of waits until its author has decided. */
    #offerEarlier(): void {
        const earlier = this.#drafts.loadEarlier();
        if (earlier === null) {
            return;
        }
        const bringBack = h("button", { class: "small", click: () => {
            refill(this.#notice);
            this.#drafts.dropEarlier();
            this.#editor.replaceText(earlier);
        } }, en.status.bringBack);
        this.#say(en.status.putAside, [bringBack], () => this.#drafts.dropEarlier());
    }

    #openLink(): void {
        const link = decodeLink(location.hash);
        if (link.fault === "none") {
            return;
        }
        // The text goes on from here, and a reload must not bring the link's back.
        history.replaceState(null, "", location.pathname + location.search);
        if (link.fault !== undefined) {
            this.#say(en.status.linkFaults[link.fault]);
        } else if (link.text !== this.#editor.text) {
            this.#replace(link.text);
        }
    }

    /** Takes another text; what the author had written can be brought back. */
    #replace(text: string): void {
        const earlier = this.#editor.text;
        this.#editor.replaceText(text);
        this.#editor.focus();
        if (Object.values<string>(examples).includes(earlier) || earlier === en.newPattern) {
            refill(this.#notice);
            return;
        }
        this.#drafts.keepEarlier(earlier);
        this.#offerEarlier();
    }

    #header(): HTMLElement {
        const skip = h("a", { class: "skip", href: "#", click: (event: Event) => {
            event.preventDefault();
            this.#editor.focus();
        } }, en.skip);
        return h("header", {}, skip, h("div", { class: "brand" }, registerMark(),
            h("h1", {}, en.brand, h("span", {}, en.subtitle))),
        h("nav", { "aria-label": en.menu.label }, exampleMenu(),
            fileButton(en.menu.file, ".txt,text/plain", (file) => void this.#openFile(file)),
            h("button", { click: () => this.#replace(en.newPattern) }, en.menu.fresh)));
    }

    async #openFile(file: File): Promise<void> {
        const bytes = new Uint8Array(await file.arrayBuffer());
        const text = await this.#workbench.ask(this.#workbench.engine.openText(bytes));
        if (text !== null) {
            this.#replace(text);
        }
    }

    /** Tells that something went wrong, or that work goes on, with a way to end it. */
    #trouble(): HTMLElement {
        const alert = h("p", { role: "alert" });
        const stop = h("button", { class: "small", click: () => {
            this.#workbench.engine.abort();
            this.#say(en.status.stopped);
        } }, en.status.stop);
        const busy = h("div", { class: "busy", hidden: true }, h("span", {}, en.status.working), stop);
        const late = afterPause(400, () => {
            busy.hidden = this.#workbench.working.get() === 0;
        });
        this.#workbench.working.follow((count) => {
            if (count === 0) {
                busy.hidden = true;
            } else {
                late();
            }
        });
        this.#workbench.trouble.follow((words) => {
            alert.textContent = words;
        });
        return h("div", { class: "trouble" }, alert, busy);
    }

    #showShares(): boolean {
        this.#tabs.show("shares");
        return this.#shares.focusCurrent();
    }

    /** Tells the place of the cursor, and leads from there to the bars of its step. */
    #placeLine(): HTMLElement {
        const place = h("span", {});
        const show = h("button", { "class": "small", "aria-keyshortcuts": "Control+Enter",
            "click": () => this.#showShares() }, en.editor.show);
        const follow = () => {
            const cursor = this.#workbench.cursor.get();
            const line = this.#editor.lineNumber(cursor);
            const found = lineAt(this.#workbench.structure.get(), cursor);
            place.textContent = found === null ? en.editor.place(line)
                : en.editor.placeOf(line, en.hover.step(found.inColour, found.line.step));
            show.hidden = found === null;
        };
        this.#workbench.cursor.follow(follow);
        this.#workbench.structure.follow(follow);
        return h("p", { class: "place" }, place, show);
    }
}

function keyList(): HTMLElement {
    return h("details", { class: "keys" }, h("summary", {}, en.editor.keys), h("dl", {},
        ...en.editor.keyList.flatMap(([key, does]) =>
            [h("dt", {}, h("kbd", {}, key)), h("dd", {}, does)])));
}

/** The examples as links, in a menu that Escape and leaving it close. */
function exampleMenu(): HTMLElement {
    const menu = h("details", { class: "menu" }, h("summary", {}, en.menu.examples),
        h("ul", {}, ...Object.entries(examples).map(([name, text]) => h("li", {},
            h("a", { href: `#${encodeLink(text)}` },
                en.examples[name as keyof typeof examples])))));
    const close = () => menu.removeAttribute("open");
    menu.addEventListener("click", (event) => {
        if (event.target instanceof HTMLAnchorElement) {
            close();
        }
    });
    menu.addEventListener("keydown", (event) => {
        if (event.key === "Escape") {
            close();
            menu.querySelector("summary")!.focus();
        }
    });
    menu.addEventListener("focusout", (event) => {
        if (event.relatedTarget instanceof Node && !menu.contains(event.relatedTarget)) {
            close();
        }
    });
    return menu;
}
