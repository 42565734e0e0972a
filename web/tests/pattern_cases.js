import { equal, randomBytes, randomNumbers, refuses, sameBytes } from "./expect.js";
import { NaivePattern, patternText } from "./naive_patterns.js";

// Two in-colours and three out-inks. Cyan has the steps 0 to 3, of which step 2 draws, and Black 0
// and 1; of the inks Cyan and LightCyan follow Cyan.
export const exampleText = `DotWeavePattern
VERSION 2
RANDOM_SEED 1234
#comment up to the end of the line
BEGIN_OUT_INKS
Cyan LightCyan Black
END_OUT_INKS
BEGIN_IN_COLORS
Cyan Black
END_IN_COLORS
BEGIN_IN_COLOR
Cyan
BEGIN_INKS
Cyan LightCyan
END_INKS
BEGIN_VALUES
1 1 1-64
2 1:3 1-128 0-40
3+ 1 0-255
END_VALUES
END_IN_COLOR
BEGIN_IN_COLOR
Black
BEGIN_INKS
Black
END_INKS
BEGIN_VALUES
1 1 0-255
END_VALUES
END_IN_COLOR
`;

const line = (weights, positions, values) => ({ weights, positions, values });

const patterns = [
    // One combination: nothing is drawn.
    { seed: 7, outInks: 2, inColors: [{ inks: [1, 0], lines: { 1: line([1], [1], [9]) } }] },
    { seed: 1234, outInks: 3, inColors: [
        { inks: [0, 1], lines: {
            1: line([1], [1], [64]), 2: line([1, 3], [1, 0], [128, 40]), 3: line([1], [0], [255]),
        } },
        { inks: [2], lines: { 1: line([1], [0], [255]) } },
    ] },
    // Step 0 draws too, two steps share a draw, and another has twice its weights.
    { seed: -5, outInks: 3, inColors: [
        { inks: [2], lines: {
            0: line([1, 2], [0, 0], [1, 2]), 1: line([1, 2], [0, 0], [3, 4]),
            2: line([2, 4], [0, 0], [5, 6]), 3: line([3, 1, 4], [0, 0, 0], [7, 8, 300]),
        } },
        { inks: [1, 0], lines: { 1: line([5, 5], [0, 1], [20, 30]) } },
        { inks: [], lines: { 1: line([1], [0], [200]) } },
    ] },
];

function rows(inColors) {
    return [61, 1, 0, 1021, 17].map((pixels, i) => {
        const random = randomNumbers(100 + i);
        // A few steps are above any top step.
        return Uint8Array.from({ length: pixels * inColors },
            () => (random() < 0.05 ? 255 : Math.floor(random() * 5)));
    });
}

function checkRows(pattern, naive, what) {
    for (const row of rows(pattern.inColors)) {
        sameBytes(pattern.apply(row), naive.apply(row), `${what}, ${row.length} bytes`);
    }
}

export default {
    "patterns draw as the naive simulation does": async ({ load }) => {
        const { Pattern } = await load();
        for (const version of [2, 3]) {
            for (const [number, shape] of patterns.entries()) {
                // The second generation takes a field only where something is drawn.
                if (version === 3 && number === 0) {
                    continue;
                }
                const made = { ...shape, version };
                for (const engine of ["x86", "sse", "auto"]) {
                    const what = `pattern ${number}, version ${version}, ${engine}`;
                    const pattern = new Pattern(patternText(made), engine);
                    const naive = new NaivePattern(made);
                    checkRows(pattern, naive, what);
                    pattern.reset();
                    naive.reset(engine === "x86");
                    checkRows(pattern, naive, `${what}, after a reset`);
                    pattern.free();
                }
            }
        }
    },
    "without vectors auto is the portable engine": async ({ load }) => {
        const pelkraft = await load();
        pelkraft.limitSseLevel(0);
        const made = { ...patterns[1], version: 2 };
        const pattern = new pelkraft.Pattern(patternText(made));
        const naive = new NaivePattern(made);
        checkRows(pattern, naive, "level 0");
        pattern.reset();
        naive.reset(true);
        checkRows(pattern, naive, "level 0, after a reset");
    },
    "the reference engine sets the values of a pattern that draws nothing": async ({ load }) => {
        const { Pattern } = await load();
        const text = patternText({ ...patterns[0], version: 2 });
        const pattern = new Pattern(text, "reference");
        sameBytes(pattern.apply(Uint8Array.of(0, 1, 1, 8)), [0, 0, 9, 0, 9, 0, 0, 0], "a row");
    },
    "a pattern knows its colours, inks and top steps": async ({ load }) => {
        const { Pattern } = await load();
        for (const text of [exampleText, new TextEncoder().encode(exampleText)]) {
            const pattern = new Pattern(text);
            equal([pattern.inColors, pattern.outInks], [2, 3], "in-colours and out-inks");
            equal([pattern.topStep(0), pattern.topStep(1)], [3, 1], "the top steps");
            pattern.free();
        }
        const listed = exampleText.replace("Cyan Black\nEND_IN", "Cyan Black Gold\nEND_IN");
        equal(new Pattern(listed).topStep(2), 255, "a colour that is not described");
    },
    "a refused text is refused in the library's words": async ({ load }) => {
        const { Pattern } = await load();
        const change = (from, to) => exampleText.replace(from, to);
        const refused = [
            ["", "Internal Message: no version in dotweave pattern"],
            ["VERSION", "Internal Message: no version in dotweave pattern"],
            ["Dots\nVERSION 2", "Internal Message: init from dotweave pattern failed"],
            ["DotWeavePattern\nVERSION 2",
                "DotWeavePattern::Init invalid DotWeave pattern configuration file!"],
            [change("VERSION 2", "VERSION 1"), "unsupported pattern version"],
            [change("3+ 1", "8 1"), "step out of range in pattern"],
            [change("0-40", "16-40"), "ink position out of range in pattern"],
            [change("1:3", "0:0"), "sum of weights out of range in pattern"],
            [change("1 1 1-64\n", ""), "step without value line in pattern"],
            [change("1:3 1-128 0-40", `${Array(16).fill(1).join(":")} ${"0-1 ".repeat(16)}`)
                .replace("3+ 1 0-255", "3 1:1:1 0-1 0-2 0-3"),
            "numCombinations > MAXS_CHANNEL_RANDOM"],
        ];
        for (const engine of ["x86", "sse", "auto"]) {
            for (const [text, words] of refused) {
                refuses(() => new Pattern(text, engine), "Error", words);
            }
        }
        const manyValues = patternText({ version: 2, seed: 1, outInks: 3, inColors: [0, 1, 2].map(
            (ink) => ({ inks: [ink], lines: Object.fromEntries([1, 2, 3, 4, 5, 6, 7].map(
                (step) => [step, line([1], [0], [ink * 10 + step])])) })) });
        refuses(() => new Pattern(manyValues, "sse"), "Error", "capacity exceeded in mComonTrans");
        equal(new Pattern(manyValues, "x86").outInks, 3, "the out-inks of the portable engine");
    },
    "a text ends at its first zero": async ({ load }) => {
        const { Pattern } = await load();
        equal(new Pattern(`${exampleText}\0nonsense BEGIN_OUT_INKS X END_OUT_INKS`).outInks, 3);
        refuses(() => new Pattern(`\0${exampleText}`), "Error",
            "Internal Message: no version in dotweave pattern");
    },
    "random bytes are no pattern": async ({ load }) => {
        const { Pattern } = await load();
        for (let seed = 0; seed < 50; ++seed) {
            const bytes = randomBytes(1000, seed).map((byte) => byte || 1);
            refuses(() => new Pattern(bytes), "Error",
                "Internal Message: no version in dotweave pattern");
        }
    },
};
