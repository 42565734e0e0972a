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
