const currentKey = "pelkraft.pattern";
const earlierKey = "pelkraft.pattern.earlier";

/** Keeps the author's text in this browser, where it lets the page. */
export class Drafts {
    /** False once the browser has refused. */
    allowed = true;

    load(): string | null {
        return this.#try(() => localStorage.getItem(currentKey));
    }

    save(text: string): void {
        this.#try(() => localStorage.setItem(currentKey, text));
    }

    /** Puts a text aside that another one takes the place of. */
    keepEarlier(text: string): void {
        this.#try(() => localStorage.setItem(earlierKey, text));
    }

    loadEarlier(): string | null {
        return this.#try(() => localStorage.getItem(earlierKey));
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
