import { equal, randomBytes, refuses, sameBytes } from "./expect.js";
import { isPacked, naiveConvert, refusal, rowBytes } from "./naive_rows.js";

const forms = [
    { bits: 8, planar: false }, { bits: 8, planar: true },
    { bits: 16, planar: false }, { bits: 16, planar: true },
    { bits: 1, planar: true }, { bits: 2, planar: true },
    { bits: 1, planar: false }, { bits: 2, planar: false },
    { bits: 10, planar: false }, { bits: 4, planar: false }, { bits: 4, planar: true },
];
const widths = [0, 1, 7, 16, 17, 33, 128, 259];
const channelCounts = [1, 2, 3, 4, 5, 8, 17];

function operations(channels) {
    const backwards = Array.from({ length: channels }, (_, c) => channels - 1 - c);
    return [
        {}, { map: backwards }, { map: [...backwards, -1, 0] },
        ...[1, 2, 4, -1, -2, -4].map((repeat) => ({ repeat })),
    ];
}

function describe(row) {
    return `${row.width} x ${row.channels} x ${row.bits} ${row.planar ? "planar" : "interleaved"}`;
}

// On the portable road a packed row that is unpacked stays packed in most of its channels.
function isLeftPacked(source, target, { repeat }) {
    return isPacked(source) && (source.bits !== target.bits || repeat !== undefined);
}

function checkConversion(pelkraft, source, target, operation, portable) {
    const what = `${describe(source)} to ${describe(target)} ${JSON.stringify(operation)}`;
    const expected = refusal(source, target, operation);
    const convert = () => pelkraft.convertRow(source, target, { ...operation, portable });
    if (expected !== undefined) {
        refuses(convert, "Error", expected);
    } else if (!portable || !isLeftPacked(source, target, operation)) {
        sameBytes(convert(), naiveConvert(source, target, operation), what);
    }
}

function sweep(pelkraft, portable) {
    let seed = 0;
    for (const from of forms) {
        for (const to of forms) {
            const channels = channelCounts[seed % channelCounts.length];
            for (const operation of operations(channels)) {
                const width = widths[++seed % widths.length];
                const source = { width, channels, ...from };
                source.data = randomBytes(rowBytes(source), seed);
                const times = Math.abs(operation.repeat ?? 1);
                const targetChannels = operation.map?.length ?? channels;
                const targetWidth = width * times + [0, 3, -1][seed % 3];
                const target = { width: Math.max(targetWidth, 0), channels: targetChannels, ...to };
                target.data = randomBytes(rowBytes(target), seed + 1);
                checkConversion(pelkraft, source, target, operation, portable);
            }
        }
    }
    return seed;
}

export default {
    "rows are converted as the naive loop does it": async ({ load }) => {
        equal(sweep(await load(), false), forms.length ** 2 * 9, "the number of conversions");
    },
    "rows are converted on the portable road": async ({ load }) => {
        sweep(await load(), true);
    },
    "rows are converted at level 0": async ({ load }) => {
        const pelkraft = await load();
        equal(pelkraft.sseLevel(), 3, "the level");
        // Of four channels the portable road unpacks none.
        const source = { width: 64, channels: 4, bits: 1, planar: true, data: randomBytes(32, 5) };
        const target = { width: 128, channels: 4, bits: 8, planar: true };
        for (const operation of [{}, { map: [3, 2, 1, 0] }, { repeat: 2 }]) {
            const what = JSON.stringify(operation);
            const unpacked = naiveConvert(source, target, operation);
            const portable = pelkraft.convertRow(source, target, { ...operation, portable: true });
            equal(String(portable) === String(unpacked), false, `${what} unpacks, portably`);
            sameBytes(pelkraft.convertRow(source, target, operation), unpacked, `${what}, level 3`);
            pelkraft.limitSseLevel(0);
            equal(pelkraft.sseLevel(), 0, "the level");
            sameBytes(pelkraft.convertRow(source, target, operation), portable, `${what}, level 0`);
            pelkraft.limitSseLevel(3);
        }
    },
    "every value of 16 bits is narrowed": async ({ load }) => {
        const numbers = Uint16Array.from({ length: 65536 }, (_, i) => i);
        const data = new Uint8Array(numbers.buffer);
        const source = { width: 65536, channels: 1, bits: 16, planar: false, data };
        const target = { width: 65536, channels: 1, bits: 8, planar: false };
        const converted = (await load()).convertRow(source, target);
        sameBytes(converted, naiveConvert(source, target), "all values");
        equal([converted[0], converted[129], converted[130], converted[65535]], [0, 0, 1, 255]);
    },
    "without bytes of its own a target begins as zeros": async ({ load }) => {
        const pelkraft = await load();
        const data = Uint8Array.of(1, 2, 3);
        const source = { width: 3, channels: 1, bits: 8, planar: false, data };
        const target = { width: 5, channels: 1, bits: 8, planar: false };
        // The second block stands where the first one was.
        pelkraft.convertRow({ ...source, width: 5, data: new Uint8Array(5).fill(9) }, target);
        sameBytes(pelkraft.convertRow(source, target), [1, 2, 3, 0, 0], "the target");
        sameBytes(data, [1, 2, 3], "the source");
    },
    "refused geometry is refused in the library's words": async ({ load }) => {
        const pelkraft = await load();
        const row = { width: 2, channels: 1, bits: 8, planar: false };
        const data = new Uint8Array(2);
        const none = new Uint8Array(0);
        const depth = "zvk::Pelkraft::ImageRowFormat unsupported bit depth";
        const width = "zvk::Pelkraft::ImageRowFormat invalid width";
        const channels = "zvk::Pelkraft::ImageRowFormat invalid channel count";
        const refused = [
            [{ bits: 0 }, depth], [{ bits: -8 }, depth], [{ bits: 17 }, depth],
            [{ bits: 64 }, depth], [{ bits: 2 ** 31 - 1 }, depth], [{ width: -1 }, width],
            [{ width: -(2 ** 31) }, width], [{ channels: -1 }, channels],
            [{ width: 2 ** 31 - 1, bits: 16 }, width], [{ width: 2 ** 30, channels: 2 }, width],
            [{ width: 2 ** 16, channels: 2 ** 16 }, width],
            [{ width: 2 ** 31 - 1, bits: 16, planar: true }, width],
        ];
        for (const [change, text] of refused) {
            const bad = { ...row, ...change };
            const pair = { ...row, channels: bad.channels };
            const size = rowBytes(pair);
            const good = { ...pair, data: size < 0 || size > 9 ? none : new Uint8Array(size) };
            if (size >= 0 && size < 9) {
                refuses(() => pelkraft.convertRow(good, bad), "Error", text);
                refuses(() => pelkraft.convertRow(good, bad, { portable: true }), "Error", text);
            }
            refuses(() => pelkraft.convertRow({ ...bad, data: none }, { ...bad }), "Error", text);
        }
        const more = { ...row, channels: 2 };
        refuses(() => pelkraft.convertRow({ ...row, data }, more), "Error",
            "zvk::Pelkraft::ImageRow::FillFrom unsupported conversion");
        for (const repeat of [0, 3, 5, -3, 8, 2 ** 31 - 1, -(2 ** 31)]) {
            refuses(() => pelkraft.convertRow({ ...row, data }, row, { repeat }), "Error",
                "zvk::Pelkraft::ImageRow::FillFromWithPixelRepeat unsupported conversion");
        }
    },
    "each refused conversion is one line of the log": async ({ load }) => {
        const lines = [];
        const pelkraft = await load({ log: (line) => lines.push(line) });
        const row = { width: 1, channels: 1, bits: 4, planar: false };
        const depth = "zvk::Pelkraft::ImageRowFormat unsupported bit depth";
        const source = { ...row, data: new Uint8Array(1) };
        refuses(() => pelkraft.convertRow(source, row), "Error", depth);
        equal(lines, [`zvk::Pelkraft::ImageRow::FillFrom has thrown C++ exception: ${depth}`]);
    },
    "a log that throws does not hide the refusal": async ({ load }) => {
        const pelkraft = await load({
            log: () => {
                throw new Error("the log is full");
            },
        });
        const row = { width: 1, channels: 1, bits: 4, planar: false };
        const before = pelkraft.memoryInUse();
        for (let i = 0; i < 20_000; ++i) {
            refuses(() => pelkraft.convertRow({ ...row, data: new Uint8Array(1) }, row), "Error",
                "zvk::Pelkraft::ImageRowFormat unsupported bit depth");
        }
        equal(pelkraft.memoryInUse(), before, "the memory");
    },
};
