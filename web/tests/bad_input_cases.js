import { equal, refuses, sameBytes } from "./expect.js";
import { exampleText } from "./pattern_cases.js";

const row = { width: 2, channels: 2, bits: 8, planar: false };
const source = { ...row, data: Uint8Array.of(1, 2, 3, 4) };

export default {
    "numbers that are no integers are refused": async ({ load }) => {
        const { convertRow } = await load();
        const wrong = [
            [NaN, "NaN"], [1.5, "1.5"], [Infinity, "Infinity"], [null, "null"],
            [undefined, "undefined"], ["2", '"2"'], [2n, "2"], [true, "true"],
            [{}, "an object of the class Object"], [() => 1, "a function"],
            [Symbol("x"), "a symbol"],
        ];
        for (const field of ["width", "channels", "bits"]) {
            for (const [value, words] of wrong) {
                const text = (name) => `${name}.${field} must be an integer, not ${words}`;
                refuses(() => convertRow({ ...source, [field]: value }, row), "TypeError",
                    text("source"));
                refuses(() => convertRow(source, { ...row, [field]: value }), "TypeError",
                    text("target"));
            }
            for (const value of [2 ** 31, -(2 ** 31) - 1, 2 ** 32 + 2, 2 ** 53, -1e300]) {
                refuses(() => convertRow({ ...source, [field]: value }, row), "RangeError",
                    `source.${field} must be an integer of 32 bits, not ${value}`);
            }
        }
        for (const [value, words] of wrong.filter(([value]) => value !== undefined)) {
            refuses(() => convertRow(source, row, { repeat: value }), "TypeError",
                `repeat must be an integer, not ${words}`);
            refuses(() => convertRow(source, row, { map: [0, value] }), "TypeError",
                `map[1] must be an integer, not ${words}`);
        }
    },
    "values of another kind are refused": async ({ load }) => {
        const { convertRow } = await load();
        for (const value of [0, 1, "true", null, undefined]) {
            const words = typeof value === "string" ? `"${value}"` : value;
            refuses(() => convertRow({ ...source, planar: value }, row), "TypeError",
                `source.planar must be true or false, not ${words}`);
            refuses(() => convertRow(source, { ...row, planar: value }), "TypeError",
                `target.planar must be true or false, not ${words}`);
            if (value !== undefined) {
                refuses(() => convertRow(source, row, { portable: value }), "TypeError",
                    `portable must be true or false, not ${words}`);
            }
        }
        for (const [value, words] of [[null, "null"], [7, "7"], [undefined, "undefined"]]) {
            refuses(() => convertRow(value, row), "TypeError",
                `source must be an object, not ${words}`);
            refuses(() => convertRow(source, value), "TypeError",
                `target must be an object, not ${words}`);
        }
        refuses(() => convertRow(source, row, null), "TypeError",
            "the options must be an object, not null");
        refuses(() => convertRow(source, row, { map: "01" }), "TypeError",
            'map must be an object, not "01"');
        refuses(() => convertRow(source, row, { map: [0, 1], repeat: 1 }), "TypeError",
            "map and repeat exclude each other");
    },
    "data of another kind or length is refused": async ({ load }) => {
        const { convertRow } = await load();
        for (const [data, words] of [
            [null, "null"], [undefined, "undefined"], ["abcd", '"abcd"'],
            [[1, 2, 3, 4], "an object of the class Array"],
            [new Uint16Array(2), "an object of the class Uint16Array"],
            [new ArrayBuffer(4), "an object of the class ArrayBuffer"],
        ]) {
            refuses(() => convertRow({ ...source, data }, row), "TypeError",
                `source.data must be a Uint8Array, not ${words}`);
        }
        refuses(() => convertRow(source, { ...row, data: null }), "TypeError",
            "target.data must be a Uint8Array, not null");
        for (const length of [0, 3, 5]) {
            refuses(() => convertRow({ ...source, data: new Uint8Array(length) }, row),
                "RangeError", `source.data has ${length} bytes, but a row of 2 pixels of 2 x 8 ` +
                "bits interleaved has 4");
        }
        const packed = { width: 9, channels: 3, bits: 1, planar: true };
        refuses(() => convertRow({ ...packed, data: new Uint8Array(4) }, packed), "RangeError",
            "source.data has 4 bytes, but a row of 9 pixels of 3 x 1 bits planar has 6");
        refuses(() => convertRow(source, { ...row, data: new Uint8Array(8) }), "RangeError",
            "target.data has 8 bytes, but a row of 2 pixels of 2 x 8 bits interleaved has 4");
        for (const map of [[], [0], [0, 1, 1]]) {
            refuses(() => convertRow(source, row, { map }), "RangeError",
                `map has ${map.length} entries, but the target has 2 channels`);
        }
        const moved = new Uint8Array(4);
        structuredClone(moved.buffer, { transfer: [moved.buffer] });
        refuses(() => convertRow({ ...source, data: moved }, row), "RangeError",
            "source.data has 0 bytes, but a row of 2 pixels of 2 x 8 bits interleaved has 4");
    },
    "a row that is larger than the memory is refused": async ({ load }) => {
        const pelkraft = await load();
        const large = { width: 2 ** 31 - 1, channels: 1, bits: 8, planar: false };
        const small = { ...large, width: 1, data: Uint8Array.of(7) };
        refuses(() => pelkraft.convertRow(small, large), "RangeError",
            `there is no memory for ${64 + 16 + 2 ** 31} bytes`);
        sameBytes(pelkraft.convertRow(small, { ...small }), [7], "a conversion after it");
    },
    "a row that makes the memory grow is converted": async ({ load }) => {
        const pelkraft = await load();
        const before = pelkraft.memoryBytes();
        const width = 40_000_000;
        const data = new Uint8Array(width).fill(3);
        data[width - 1] = 200;
        const shape = { width, channels: 1, bits: 8, planar: false };
        const pattern = new pelkraft.Pattern(exampleText);
        sameBytes(pelkraft.convertRow(source, row), [1, 2, 3, 4], "a small row ahead of it");
        const result = pelkraft.convertRow({ ...shape, data }, shape, { repeat: -1 });
        equal([result.length, result[0], result[1], result[width - 1]], [width, 200, 3, 3]);
        equal(pelkraft.memoryBytes() > before, true, "the memory has grown");
        equal(pattern.inColors, 2, "a pattern from before");
        sameBytes(pattern.apply(Uint8Array.of(1, 1)), [0, 64, 255], "its row");
    },
    "bytes that share a buffer are taken as they are": async ({ load }) => {
        const { convertRow } = await load();
        const buffer = Uint8Array.from({ length: 10 }, (_, i) => i).buffer;
        const data = new Uint8Array(buffer, 3, 4);
        sameBytes(convertRow({ ...source, data }, { ...row, data }), [3, 4, 5, 6], "a copy");
        const clamped = new Uint8ClampedArray([9, 8, 7, 6]);
        sameBytes(convertRow({ ...source, data: clamped }, row), [9, 8, 7, 6], "clamped bytes");
    },
    "a pattern refuses what is no text, engine, row or in-colour": async ({ load }) => {
        const { Pattern } = await load();
        for (const [text, words] of [[null, "null"], [undefined, "undefined"], [5, "5"],
            [["x"], "an object of the class Array"]]) {
            refuses(() => new Pattern(text), "TypeError",
                `the pattern text must be a string or a Uint8Array, not ${words}`);
        }
        for (const [engine, words] of [["avx", '"avx"'], [1, "1"], [null, "null"], ["", '""']]) {
            refuses(() => new Pattern(exampleText, engine), "TypeError",
                `the engine must be one of auto, reference, x86, sse, not ${words}`);
        }
        const pattern = new Pattern(exampleText);
        for (const [value, words] of [[null, "null"], [[1, 2], "an object of the class Array"]]) {
            refuses(() => pattern.apply(value), "TypeError",
                `the row must be a Uint8Array, not ${words}`);
        }
        refuses(() => pattern.apply(new Uint8Array(3)), "RangeError",
            "the row has 3 bytes, which is no whole number of pixels of 2 in-colours");
        refuses(() => pattern.topStep(0.5), "TypeError",
            "the in-colour must be an integer, not 0.5");
        for (const inColor of [-1, 2, 255]) {
            refuses(() => pattern.topStep(inColor), "RangeError",
                `there is no in-colour ${inColor} among 2`);
        }
        sameBytes(pattern.apply(new Uint8Array(0)), [], "a row of no pixels");
    },
    "a pattern that has been freed is refused": async ({ load }) => {
        const { Pattern } = await load();
        const pattern = new Pattern(exampleText);
        pattern.free();
        pattern.free();
        const words = "the pattern has been freed";
        refuses(() => pattern.apply(new Uint8Array(2)), "Error", words);
        refuses(() => pattern.reset(), "Error", words);
        refuses(() => pattern.topStep(0), "Error", words);
    },
    "a level that is no integer is refused": async ({ load }) => {
        const pelkraft = await load();
        refuses(() => pelkraft.limitSseLevel("0"), "TypeError",
            'the level must be an integer, not "0"');
        equal(pelkraft.sseLevel(), 3, "the level");
        pelkraft.limitSseLevel(-5);
        equal(pelkraft.sseLevel(), 0, "the level below 0");
        pelkraft.limitSseLevel(7);
        equal(pelkraft.sseLevel(), 3, "the level above its own");
    },
};
