import { afterPause } from "./dom.js";

/** A value that tells of its changes. */
export class Value<T> {
    #value: T;
    readonly #listeners: ((value: T) => void)[] = [];

    constructor(value: T) {
        this.#value = value;
    }

    get(): T {
        return this.#value;
    }

    set(value: T): void {
        if (Object.is(value, this.#value)) {
            return;
        }
        this.#value = value;
        for (const listener of this.#listeners) {
            listener(value);
        }
    }

    /** Calls at once, and with each change. */
    follow(listener: (value: T) => void): void {
        this.#listeners.push(listener);
        listener(this.#value);
    }
}

/**
 * Runs a function soon after some values have changed, once for all of them. Others ask for it by
 * what is answered.
 */
export function followSoon(milliseconds: number, run: () => void,
    ...values: readonly { follow(listener: () => void): void }[]): () => void {
    const soon = afterPause(milliseconds, run);
    for (const value of values) {
        value.follow(soon);
    }
    return soon;
}
