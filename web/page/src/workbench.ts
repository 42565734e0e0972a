import { createEngine, EngineFailure, type Engine, type Plot, type Reading } from "./engine/index.js";
import { afterPause } from "./dom.js";
import { readStructure, type Structure } from "./pattern/structure.js";
import { Value } from "./value.js";

/** The engine's answer and the text that it is about, since the author goes on writing. */
export interface Known<T> {
    readonly text: string;
    readonly result: T;
}

/** A text that is longer has no table, and no engine takes it. */
export const mostCharacters = 1 << 20;

const pause = 150;

const empty = readStructure("");

/** The pattern that is worked on, and what is known of it. The views follow its values. */
export class Workbench {
    readonly engine: Engine = createEngine();
    readonly text = new Value("");
    readonly structure = new Value<Structure>(empty);
    readonly reading = new Value<Known<Reading> | null>(null);
    readonly plot = new Value<Known<Plot> | null>(null);
    /** The place of the cursor in the text. */
    readonly cursor = new Value(0);
    readonly working = new Value(0);
    /** The failures that stand, in sentences. */
    readonly trouble = new Value("");
    /** A view is shown that needs the shares as measured. */
    readonly wantsPlot = new Value(false);

    readonly #troubles = new Map<string, string>();
    readonly #readSoon = afterPause(pause, () => void this.#read());

    constructor() {
        this.reading.follow(() => void this.#measure());
        this.wantsPlot.follow(() => void this.#measure());
    }

    setText(text: string): void {
        this.text.set(text);
        this.structure.set(text.length > mostCharacters ? empty : readStructure(text));
        this.#readSoon();
    }

    /**
     * Awaits the engine, and tells of its failure; null then. A failure stands until the engine has
     * served the same subject, or until the author turns to something else.
     */
    async ask<T>(work: Promise<T>, subject = "action"): Promise<T | null> {
        this.working.set(this.working.get() + 1);
        try {
            const result = await work;
            this.#troubles.delete(subject);
            this.#tell();
            return result;
        } catch (failure) {
            this.#keepTrouble(subject, failure);
            return null;
        } finally {
            this.working.set(this.working.get() - 1);
        }
    }

    /** The last request about this subject was refused. */
    failed(subject: string): boolean {
        return this.#troubles.has(subject);
    }

    /** Forgets all failures but those of the text. */
    forget(): void {
        for (const subject of this.#troubles.keys()) {
            if (subject !== "text") {
                this.#troubles.delete(subject);
            }
        }
        this.#tell();
    }

    #tell(): void {
        this.trouble.set([...new Set(this.#troubles.values())].join(" "));
    }

    #keepTrouble(subject: string, failure: unknown): void {
        const isQuiet = failure instanceof EngineFailure
            && (failure.code === "superseded" || failure.code === "aborted");
        if (!isQuiet) {
            this.#troubles.set(subject,
                failure instanceof Error ? failure.message : String(failure));
            this.#tell();
        }
    }

    async #read(): Promise<void> {
        const text = this.text.get();
        const result = await this.ask(this.engine.read(text), "text");
        if (result !== null && text === this.text.get()) {
            this.reading.set({ text, result });
        }
    }

    async #measure(): Promise<void> {
        const reading = this.reading.get();
        const isKnown = reading?.text === this.plot.get()?.text;
        if (!this.wantsPlot.get() || reading === null || isKnown || !reading.result.runs) {
            return;
        }
        const { text } = reading;
        const result = await this.ask(this.engine.plot(text), "plot");
        if (result !== null && text === this.text.get()) {
            this.plot.set({ text, result });
        }
    }
}
