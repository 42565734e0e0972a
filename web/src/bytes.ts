export type Bytes = Uint8Array | Uint8ClampedArray;

// The getters that all typed arrays share tell the truth about an array of any realm, whatever its
// own class says.
function sharedGetter<Value>(name: PropertyKey): (array: unknown) => Value {
    const shared = Object.getPrototypeOf(Uint8Array.prototype) as object;
    const { get } = Object.getOwnPropertyDescriptor(shared, name) as { get: () => Value };
    return (array) => get.call(array);
}

const className = sharedGetter<string | undefined>(Symbol.toStringTag);
const bufferOf = sharedGetter<ArrayBuffer>("buffer");
const offsetOf = sharedGetter<number>("byteOffset");

/** Gives 0 for an array whose buffer has been detached, or has become too small for it. */
export const lengthOf = sharedGetter<number>("length");

export function isUint8Array(value: unknown): value is Uint8Array {
    return className(value) === "Uint8Array";
}

export function isBytes(value: unknown): value is Bytes {
    return isUint8Array(value) || className(value) === "Uint8ClampedArray";
}

// A buffer may change its length whenever other code runs, so that a view is good for one step.
export function viewOf(bytes: Bytes, count: number): Uint8Array {
    const length = lengthOf(bytes);
    if (length < count) {
        throw new RangeError(`an array of ${count} bytes has shrunk to ${length}`);
    }
    return count === 0 ? new Uint8Array() : new Uint8Array(bufferOf(bytes), offsetOf(bytes), count);
}
