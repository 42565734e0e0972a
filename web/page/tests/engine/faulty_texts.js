// Texts with faults of every kind, [name, text]: first each word of a text that is right, left out,
// misspelt or doubled, then what single words don't bring about.

/** Replaces one word of the text by others. */
function* wordByWord(text) {
    const words = [...text.matchAll(/[^\s#]+(?![^\n]*#)/g)];
    for (const [number, { 0: word, index }] of words.entries()) {
        const before = text.slice(0, index);
        const after = text.slice(index + word.length);
        const changes = { "left out": "", misspelt: `${word}x`, doubled: `${word} ${word}`,
            "in another case": word === word.toUpperCase() ? word.toLowerCase() : word.toUpperCase() };
        for (const [kind, changed] of Object.entries(changes)) {
            yield [`word ${number}, "${word}", ${kind}`, before + changed + after];
        }
    }
}

function pattern(values, { version = 3, head = "", inks = "A", inColours = "a", more = "" } = {}) {
    return `DotWeavePattern VERSION ${version} ${head}\nBEGIN_OUT_INKS ${inks} END_OUT_INKS ` +
        `BEGIN_IN_COLORS ${inColours} END_IN_COLORS\nBEGIN_IN_COLOR a\nBEGIN_INKS ${inks} ` +
        `END_INKS\nBEGIN_VALUES\n${values}\nEND_VALUES\nEND_IN_COLOR\n${more}`;
}

function names(count, letter) {
    return Array.from({ length: count }, (_, index) => `${letter}${index}`).join(" ");
}

const whole = [
    ["nothing", ""],
    ["no pattern", "Once upon a time\nthere were dots"],
    ["letters of several bytes before a fault", pattern("1 1 0-256", { head: "# äé𝄞\n" })],
    ["ends of lines of another system", pattern("1 1 0-256").replaceAll("\n", "\r\n")],
    ["a zero letter", `${pattern("1 1 0-1")}\0 more`],
    ["no version", pattern("1 1 0-1").replace("VERSION 3", "")],
    ["an early version", pattern("1 1 0-1", { version: 1 })],
    ["two versions", pattern("1 1 0-1", { head: "VERSION 2" })],
    ["a version too high", pattern("1 1 0-1", { version: 9 })],
    ["an odd number", pattern("1x 1 0-1")],
    ["a suffix", pattern("1+ 1 0-1")],
    ["a step twice", pattern("1 1 0-1\n1 1 0-2")],
    ["a step beyond", pattern("9 1 0-1")],
    ["a gap", pattern("1 1 0-1\n3 1 0-1")],
    ["a comma after a name", pattern("1 1 0-1", { inks: "A, B" })],
    ["blanks in a ratio", pattern("1 1 : 3 0-1 0-2")],
    ["too many entries", pattern("1 1:1 0-1 0-2 0-3")],
    ["an entry too few", pattern("1 1:1 0-1\n")],
    ["a line that ends", pattern("1")],
    ["a plain entry", pattern("1 1 7")],
    ["an empty position", pattern("1 1 3-7")],
    ["a position beyond", pattern("1 1 99-7")],
    ["an unused position", pattern("1 1 0-7", { inks: "A B" })],
    ["a weight of zero", pattern("1 1:0 0-7 0-8")],
    ["a ratio of zeros", pattern("1 0:0 0-7 0-8")],
    ["too many weights", pattern(`1 ${Array(17).fill(1).join(":")} ${"0-1 ".repeat(17)}`)],
    ["an open quote", pattern("1 1 0-1", { more: '"never closed' })],
    ["a stray end", pattern("1 1 0-1", { more: "END_VALUES" })],
    ["an open section", pattern("1 1 0-1").replace("END_IN_COLOR\n", "")],
    ["a wrong end", pattern("1 1 0-1").replace("END_INKS", "END_VALUES")],
    ["inks outside", pattern("1 1 0-1", { more: "BEGIN_IN_COLOR\nBEGIN_INKS A END_INKS" })],
    ["inks of an in-colour that isn't listed",
        pattern("1 1 0-1", { more: "BEGIN_IN_COLOR b BEGIN_INKS A END_INKS BEGIN_VALUES 1 1 0-1 " +
            "END_VALUES END_IN_COLOR" })],
    ["a block twice", pattern("1 1 0-1", { more: "BEGIN_IN_COLOR a BEGIN_INKS A END_INKS " +
        "BEGIN_VALUES 2 1 0-1 END_VALUES END_IN_COLOR" })],
    ["a block of nothing", pattern("", {})],
    ["an in-colour without a block", pattern("1 1 0-1", { inColours: "a b" })],
    ["an ink of two", pattern("1 1 0-1", { inColours: "a b", more: "BEGIN_IN_COLOR b BEGIN_INKS " +
        "A END_INKS BEGIN_VALUES 1 1 0-1 END_VALUES END_IN_COLOR" })],
    ["an unknown ink", pattern("1 1 0-1").replace("BEGIN_INKS A", "BEGIN_INKS Z")],
    ["an ink that nobody feeds", pattern("1 1 0-1").replace("OUT_INKS A", "OUT_INKS A Z")],
    ["names twice", pattern("1 1 0-1", { inColours: "a a" })],
    ["no in-colours", pattern("1 1 0-1", { inColours: "" })],
    ["no out-inks", pattern("1 1 0-1", { inks: "" })],
    ["too many in-colours", pattern("1 1 0-1", { inColours: `a ${names(16, "b")}` })],
    ["too many out-inks", pattern("1 1 0-1", { inks: names(17, "B") })],
    ["a second list of in-colours",
        pattern("1 1 0-1", { inColours: "a b", more: "BEGIN_IN_COLORS a END_IN_COLORS" })],
    ["a number that lacks", pattern("1 1 0-1", { more: "RANDOM_SEED" })],
    ["nothing to draw", pattern("1 1 0-1")],
    ["steps that draw together", pattern("1 1:2 0-1 1-1\n2 2:1 0-1 1-1", { inks: "A B" })],
    ["steps that draw apart", pattern("1 1:1 0-1 0-2\n2 2:2 0-1 0-2")],
    ["steps of other orders", pattern("1 1:1 0-1 1-2\n2 1:1 1-1 0-2", { inks: "A B" })],
    ["shares without a denominator", pattern("1 1:3:2 0-1 0-2 0-3")],
    ["shares that come too rarely", pattern("1 1:100000 0-1 0-2", { version: 2 })],
    ["a denominator that wraps", pattern(
        "1 1:65520 0-1 0-2\n2 1:65522 0-1 0-2\n3 1:65518 0-1 0-2", { version: 2 })],
    ["too many combinations of one in-colour", pattern(
        "1 1:2 0-1 0-2\n2 1:3 0-1 0-2\n3 1:4 0-1 0-2\n4 1:5 0-1 0-2\n5 1:6 0-1 0-2\n6 1:7 0-1 0-2")],
    ["too many combinations of all", combinations(["a", "b", "c"])],
    ["too many values", places()],
];

/** In-colours of so many combinations each that all together are too many. */
function combinations(inColours) {
    const values = "1 1:2 0-1 0-2\n2 1:3 0-1 0-2\n3 1:4 0-1 0-2\n4 1:5 0-1 0-2";
    const blocks = inColours.map((name) => `BEGIN_IN_COLOR ${name} BEGIN_INKS ${name} END_INKS ` +
        `BEGIN_VALUES\n${values}\nEND_VALUES END_IN_COLOR`);
    return `DotWeavePattern VERSION 3 BEGIN_OUT_INKS ${inColours.join(" ")} END_OUT_INKS ` +
        `BEGIN_IN_COLORS ${inColours.join(" ")} END_IN_COLORS\n${blocks.join("\n")}`;
}

/** 17 values that no two inks share: one more than an engine stores for a combination. */
function places() {
    let value = 0;
    const blocks = [["A", 7], ["B", 7], ["C", 3]].map(([name, steps]) => {
        const lines = Array.from({ length: steps }, (_, step) => `${step + 1} 1 0-${++value}`);
        return `BEGIN_IN_COLOR ${name} BEGIN_INKS ${name} END_INKS BEGIN_VALUES\n` +
            `${lines.join("\n")}\nEND_VALUES END_IN_COLOR`;
    });
    return "DotWeavePattern VERSION 2 BEGIN_OUT_INKS A B C END_OUT_INKS BEGIN_IN_COLORS A B C " +
        `END_IN_COLORS\n${blocks.join("\n")}`;
}

export function* faultyTexts(right) {
    yield* whole;
    yield* wordByWord(right);
}
