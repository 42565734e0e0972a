// The caller's own code runs while its arguments are read, and an array of a class of its own says
// about itself what it likes. Neither makes the library write past its blocks.
import { equal, refuses, sameBytes } from "./expect.js";
import { exampleText } from "./pattern_cases.js";

const row = { width: 2, channels: 2, bits: 8, planar: false };
const shape = "bytes, but a row of 2 pixels of 2 x 8 bits interleaved has 4";
const many = 100_000;

class Disguised extends Uint8Array {
    get length() {
        return 4;
    }
    get byteLength() {
        return 4;
    }
    get byteOffset() {
        return 1;
    }
    get buffer() {
        return new ArrayBuffer(9);
    }
    get [Symbol.toStringTag]() {
        return "Disguise";
    }
}

// Runs the work when the map of the options is read.
function mapThat(work) {
    return {
        get map() {
            work();
            return [1, 0];
        },
    };
}

function growingArray() {
    const buffer = new ArrayBuffer(4, { maxByteLength: many });
    const data = new Uint8Array(buffer);
    data.set([1, 2, 3, 4]);
    return { data, resize: (bytes) => buffer.resize(bytes) };
}

// A page that is not isolated from others has no buffers to share.
const growingBuffers = {
    "a buffer": growingArray,
    ...(globalThis.SharedArrayBuffer && {
        "a shared buffer": () => {
            const buffer = new SharedArrayBuffer(4, { maxByteLength: many });
            return { data: new Uint8Array(buffer), resize: (bytes) => buffer.grow(bytes) };
        },
    }),
};

// Asks that the work throws these words, and that the library goes on afterwards.
function refusesSafely(pelkraft, work, words) {
    const source = { ...row, data: Uint8Array.of(1, 2, 3, 4) };
    const pattern = new pelkraft.Pattern(exampleText);
    const before = pelkraft.memoryInUse();
    refuses(work, "RangeError", words);
    equal(pelkraft.memoryInUse(), before, "the memory");
    sameBytes(pattern.apply(Uint8Array.of(1, 1)), [0, 64, 255], "a pattern from before");
    sameBytes(pelkraft.convertRow(source, row), [1, 2, 3, 4], "a row after it");
}

// Node.js 18 has no buffers that can be resized.
const resizingCases = {
    "a row that grows while the options are read is refused": async ({ load }) => {
        const pelkraft = await load();
        const fixed = { ...row, data: new Uint8Array(4) };
        for (const [name, make] of Object.entries(growingBuffers)) {
            for (const role of ["source", "target"]) {
                const { data, resize } = make();
                const rows = { source: fixed, target: fixed, [role]: { ...row, data } };
                const options = mapThat(() => resize(many));
                refusesSafely(pelkraft, () =>
                    pelkraft.convertRow(rows.source, rows.target, options),
                    `${role}.data has ${many} ${shape}`);
                equal(data.length, many, `the length in ${name}`);
            }
        }
    },
    "a row that shrinks while the options are read is refused": async ({ load }) => {
        const pelkraft = await load();
        const { data, resize } = growingArray();
        refusesSafely(pelkraft, () =>
            pelkraft.convertRow({ ...row, data }, row, mapThat(() => resize(3))),
            `source.data has 3 ${shape}`);
    },
    "a source that the target's getter resizes is refused": async ({ load }) => {
        const pelkraft = await load();
        const { data, resize } = growingArray();
        const target = {
            ...row,
            get data() {
                resize(many);
                return undefined;
            },
        };
        refusesSafely(pelkraft, () => pelkraft.convertRow({ ...row, data }, target),
            `source.data has ${many} ${shape}`);
    },
};

export default {
    ...(ArrayBuffer.prototype.resize && resizingCases),
    "a source that the target's getter detaches is refused": async ({ load }) => {
        const pelkraft = await load();
        const data = Uint8Array.of(1, 2, 3, 4);
        const target = {
            ...row,
            get data() {
                structuredClone(data.buffer, { transfer: [data.buffer] });
                return new Uint8Array(4);
            },
        };
        refusesSafely(pelkraft, () => pelkraft.convertRow({ ...row, data }, target),
            `source.data has 0 ${shape}`);
    },
    "a detached row of no bytes is converted": async ({ load }) => {
        const data = new Uint8Array(0);
        structuredClone(data.buffer, { transfer: [data.buffer] });
        const none = { ...row, width: 0, data };
        sameBytes((await load()).convertRow(none, none), [], "the row");
    },
    "an array counts by its true length": async ({ load }) => {
        const pelkraft = await load();
        const long = new Disguised(many);
        refusesSafely(pelkraft, () => pelkraft.convertRow({ ...row, data: long }, row),
            `source.data has ${many} ${shape}`);
        refusesSafely(pelkraft, () =>
            pelkraft.convertRow({ ...row, data: new Uint8Array(4) }, { ...row, data: long }),
            `target.data has ${many} ${shape}`);
        const bytes = [1, 2, 3, 4, 5, 6, 7, 8];
        const data = new Disguised(bytes);
        const wide = { ...row, width: 4, data };
        sameBytes(pelkraft.convertRow(wide, wide), bytes, "a row");
    },
    "a pattern counts a row and a text by their true length": async ({ load }) => {
        const pelkraft = await load();
        const pattern = new pelkraft.Pattern(exampleText);
        const steps = new Disguised(6).fill(1);
        sameBytes(pattern.apply(steps), [0, 64, 255, 0, 64, 255, 0, 64, 255], "the row");
        refusesSafely(pelkraft, () => pattern.apply(new Disguised(many + 1)),
            `the row has ${many + 1} bytes, which is no whole number of pixels of 2 in-colours`);
        const text = Disguised.from(new TextEncoder().encode(exampleText));
        equal(new pelkraft.Pattern(text).outInks, 3, "the out-inks of the text");
        equal(pelkraft.explainPattern(text).seed, 1234, "the seed of the text");
    },
    "a pattern counts by its own colours and inks": async ({ load }) => {
        const pelkraft = await load();
        class Overridden extends pelkraft.Pattern {
            get inColors() {
                return 1;
            }
            get outInks() {
                return 1;
            }
        }
        const pattern = new pelkraft.Pattern(exampleText);
        for (const name of ["inColors", "outInks"]) {
            equal(Reflect.set(pattern, name, 1), false, `${name} is set`);
        }
        const steps = new Uint8Array(many).fill(1);
        const expected = pattern.apply(steps);
        equal(expected.length, many * 1.5, "the bytes of the row");
        sameBytes(new Overridden(exampleText).apply(steps), expected, "the class's row");
    },
};
