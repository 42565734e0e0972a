const currentKey = "pelkraft.pattern";
const earlierKey = "pelkraft.pattern.earlier";

/** Keeps the author's text in this browser, where it lets the page. */
export class Drafts {
    /** The browser let the page do the last thing that it asked for. */
    allowed = true;
    // A browser that stores nothing has it until the page is left.
    #earlier: string | null = null;

    load(): string | null {
        return this.#try(() => localStorage.getItem(currentKey));
    }

    save(text: string): void {
        this.#try(() => localStorage.setItem(currentKey, text));
    }

    /** Puts a text aside that another one takes the place of. */
    keepEarlier(text: string): void {
        this.#earlier = text;
        this.#try(() => localStorage.setItem(earlierKey, text));
    }

    dropEarlier(): void {
        this.#earlier = null;
        this.#try(() => localStorage.removeItem(earlierKey));
    }

    loadEarlier(): string | null {
        return this.#try(() => localStorage.getItem(earlierKey)) ?? this.#earlier;
    }

    // Private windows, policies and a full store all throw.
    #try<T>(act: () => T): T | null {
        try {
            const result = act();
            this.allowed = true;
            return result;
        } catch {
            this.allowed = false;
            return null;
        }
    }
}
