// The cases need these few checks, in Node.js and in a browser alike.
function shown(value) {
    if (value instanceof Uint8Array) {
        return `bytes ${value.slice(0, 64)}`;
    }
    return JSON.stringify(value) ?? String(value);
}

export function equal(actual, expected, what = "the value") {
    if (!Object.is(actual, expected) && JSON.stringify(actual) !== JSON.stringify(expected)) {
        throw new Error(`${what} is ${shown(actual)}, not ${shown(expected)}`);
    }
}

export function sameBytes(actual, expected, what) {
    if (!(actual instanceof Uint8Array)) {
        throw new Error(`${what}: ${shown(actual)} is no Uint8Array`);
    }
    equal(actual.length, expected.length, `${what}: the length`);
    const at = expected.findIndex((byte, i) => byte !== actual[i]);
    if (at !== -1) {
        throw new Error(`${what}: byte ${at} is ${actual[at]}, not ${expected[at]}`);
    }
}

// Asks that the work throws an error of this kind with these words, whole.
export function refuses(work, kind, message) {
    let thrown;
    try {
        work();
    } catch (error) {
        thrown = error;
    }
    if (thrown === undefined) {
        throw new Error(`nothing was thrown, but ${message} was expected`);
    }
    equal([thrown.name, thrown.message], [kind, message], "what is thrown");
}

// Makes numbers from 0 to 1, the same in each run.
export function randomNumbers(seed) {
    let state = seed >>> 0;
    return () => {
        state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
        return (state >>> 8) / 2 ** 24;
    };
}

export function randomBytes(count, seed) {
    const random = randomNumbers(seed);
    return Uint8Array.from({ length: count }, () => Math.floor(random() * 256));
}
