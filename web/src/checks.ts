import { type Bytes, isBytes, isUint8Array, lengthOf, viewOf } from "./bytes.js";

// Says in a few words what a value of a wrong kind is.
function shown(value: unknown): string {
    if (typeof value === "string") {
        return JSON.stringify(value.slice(0, 40));
    }
    if (typeof value === "function" || typeof value === "symbol") {
        return `a ${typeof value}`;
    }
    if (typeof value !== "object" || value === null) {
        return String(value);
    }
    return `an object of the class ${value.constructor?.name ?? "null"}`;
}

export function requireRecord(value: unknown, name: string): void {
    if (typeof value !== "object" || value === null) {
        throw new TypeError(`${name} must be an object, not ${shown(value)}`);
    }
}

export function requireInteger(value: unknown, name: string): void {
    if (!Number.isInteger(value)) {
        throw new TypeError(`${name} must be an integer, not ${shown(value)}`);
    }
    if (value !== ((value as number) | 0)) {
        throw new RangeError(`${name} must be an integer of 32 bits, not ${value}`);
    }
}

export function requireBoolean(value: unknown, name: string): void {
    if (typeof value !== "boolean") {
        throw new TypeError(`${name} must be true or false, not ${shown(value)}`);
    }
}

export function requireBytes(value: unknown, name: string): asserts value is Bytes {
    if (!isBytes(value)) {
        throw new TypeError(`${name} must be a Uint8Array, not ${shown(value)}`);
    }
}

// Gives the bytes of a text, or takes those that it is given in any code page, and ends them with a
// zero.
export function textBytes(text: unknown, name: string): Uint8Array {
    if (typeof text === "string") {
        return new TextEncoder().encode(`${text}\0`);
    }
    if (!isUint8Array(text)) {
        throw new TypeError(`${name} must be a string or a Uint8Array, not ${shown(text)}`);
    }
    const length = lengthOf(text);
    const bytes = new Uint8Array(length + 1);
    bytes.set(viewOf(text, length));
    return bytes;
}

export function requireOneOf(value: unknown, names: readonly string[], name: string): void {
    if (!names.includes(value as string)) {
        throw new TypeError(`${name} must be one of ${names.join(", ")}, not ${shown(value)}`);
    }
}
