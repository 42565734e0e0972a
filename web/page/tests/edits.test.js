// A change in the table must write what its author means and nothing else.
import assert from "node:assert/strict";
import { readFileSync, readdirSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";

import { load, root } from "./sources.js";

const edits = await load("src/pattern/edits.ts");
const { blockOf, readStructure } = await load("src/pattern/structure.ts");
const { cutWords } = await load("src/pattern/words.ts");

const folder = join(root, "examples/patterns");
const examples = readdirSync(folder).map((name) => [name, readFileSync(join(folder, name), "utf8")]);

// Cut letter by letter, from what the manual says of words.
function naiveWords(text) {
    const words = [];
    let word = null;
    let quoted = false;
    for (let at = 0; at <= text.length; ++at) {
        const letter = text[at] ?? (quoted ? "" : " ");
        if (word === null && letter === "#") {
            while (at + 1 < text.length && text[at + 1] !== "\n" && text[at + 1] !== "\r") {
                ++at;
            }
        } else if (!quoted && " \t\r\n".includes(letter)) {
            if (word !== null) {
                words.push({ ...word, to: at });
            }
            word = null;
        } else {
            word ??= { text: "", from: at };
            quoted = letter === '"' ? !quoted : quoted;
            word.text += letter === '"' ? "" : letter;
        }
    }
    if (word !== null) {
        words.push({ ...word, to: text.length });
    }
    return words;
}

test("words are cut as the manual says", () => {
    let state = 20406;
    const random = (below) => {
        state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
        return Math.floor(state / 65536) % below;
    };
    for (let round = 0; round < 3000; ++round) {
        const text = Array.from({ length: random(24) }, () => 'ab1"# \n\r\t:-'[random(11)]).join("");
        assert.deepEqual(cutWords(text), naiveWords(text), JSON.stringify(text));
    }
});

const weighty = `DotWeavePattern VERSION 3
BEGIN_OUT_INKS Cyan LightCyan END_OUT_INKS
BEGIN_IN_COLORS Cyan END_IN_COLORS
BEGIN_IN_COLOR Cyan BEGIN_INKS Cyan LightCyan END_INKS
BEGIN_VALUES
  1 1:3 1-255 1-0   # light
  2 1   0-255       # dark
END_VALUES END_IN_COLOR
`;

function change(act) {
    const structure = readStructure(weighty);
    const block = blockOf(structure, "cyan");
    return edits.applyEdits(weighty, act(structure, block, block.values.lines));
}

// Each pair: what is done, and the one line that must differ, before and after.
const oneLine = [
    ["a weight", (s, b, [line]) => edits.writeWeight(line, 1, 7),
        "  1 1:3 1-255 1-0   # light", "  1 1:7 1-255 1-0   # light"],
    ["a share", (s, b, [line]) => edits.writeShare(line, 0, 4000),
        "  1 1:3 1-255 1-0   # light", "  1 2:3 1-255 1-0   # light"],
    ["an entry", (s, b, [line]) => edits.writeEntry(line.alternatives[1], 0, 85),
        "  1 1:3 1-255 1-0   # light", "  1 1:3 1-255 0-85   # light"],
    ["a step", (s, b, [, line]) => edits.writeStep(line, 4),
        "  2 1   0-255       # dark", "  4 1   0-255       # dark"],
    ["one more alternative", (s, b, [, line]) => edits.addAlternative(line),
        "  2 1   0-255       # dark", "  2 1:1   0-255 0-0       # dark"],
    ["one alternative less", (s, b, [line]) => edits.removeAlternative(weighty, line, 0),
        "  1 1:3 1-255 1-0   # light", "  1 1 1-0   # light"],
    ["one step more", (s, b) => edits.addStep(weighty, b, { step: 3, position: 0, value: 255 }),
        "  2 1   0-255       # dark\n", "  2 1   0-255       # dark\n  3 1 0-255\n"],
    ["one step less", (s, b, [line]) => edits.removeStep(weighty, line),
        "  1 1:3 1-255 1-0   # light", "   # light"],
    ["another seed", (s) => edits.writeNumber(s, "RANDOM_SEED", 7),
        "VERSION 3", "VERSION 3\nRANDOM_SEED 7"],
    ["another version", (s) => edits.writeNumber(s, "VERSION", 2), "VERSION 3", "VERSION 2"],
    ["another ink", (s) => edits.addOutInk(s, "Spot \"1\""),
        "LightCyan END_OUT_INKS", "LightCyan \"Spot 1\" END_OUT_INKS"],
];

for (const [name, act, before, after] of oneLine) {
    test(`${name} changes its own words alone`, () => {
        assert.equal(change(act), weighty.replace(before, after));
    });
}

test("an ink that goes takes its position along", () => {
    assert.equal(change((structure, block) => edits.removeInk(weighty, structure, block, "Cyan")),
        weighty.replace("BEGIN_INKS Cyan LightCyan", "BEGIN_INKS LightCyan")
            .replace("1-255 1-0", "0-255 0-0").replace("2 1   0-255", "2 1   0-0"));
});

test("an ink goes from the machine and from all that print with it", () => {
    const two = `${weighty}BEGIN_IN_COLOR Blue BEGIN_INKS lightcyan cyan END_INKS
BEGIN_VALUES 1 1:1:1 0-1 1-2 2-3 END_VALUES END_IN_COLOR
`;
    const structure = readStructure(two);
    assert.equal(edits.countUses(structure, "CYAN"), 2);
    assert.equal(edits.countUses(structure, "lightcyan"), 2);
    assert.equal(edits.countUses(structure, "Black"), 0);
    assert.equal(edits.applyEdits(two, edits.removeOutInk(two, structure, "cyan")), two
        .replaceAll("Cyan LightCyan", "LightCyan").replace("1-255 1-0", "0-255 0-0")
        .replace("2 1   0-255", "2 1   0-0")
        .replace("lightcyan cyan", "lightcyan").replace("0-1 1-2 2-3", "0-1 0-0 1-3"));
});

test("a renamed ink is renamed wherever it stands", () => {
    assert.equal(change((structure) => edits.renameOutInk(structure, "lightcyan", "Pale")),
        weighty.replaceAll("LightCyan", "Pale"));
});

test("a renamed in-colour leaves the ink of its name alone", () => {
    assert.equal(change((structure) =>
        edits.renameInColour(structure, cutWords(weighty), "Cyan", "Sky")),
    weighty.replace("BEGIN_IN_COLORS Cyan", "BEGIN_IN_COLORS Sky")
        .replace("BEGIN_IN_COLOR Cyan", "BEGIN_IN_COLOR Sky"));
});

test("an in-colour comes with an ink and a block, and goes with its block", () => {
    const more = change((structure) => edits.addInColour(weighty, structure, "Black"));
    const structure = readStructure(more);
    assert.deepEqual(structure.inColours.names.map(({ text }) => text), ["Cyan", "Black"]);
    assert.deepEqual(structure.outInks.names.map(({ text }) => text),
        ["Cyan", "LightCyan", "Black"]);
    const [line] = blockOf(structure, "Black").values.lines;
    assert.deepEqual([line.step, line.alternatives[0].ink, line.alternatives[0].value],
        [1, "Black", 255]);
    const less = edits.applyEdits(more, edits.removeInColour(more, structure, "black"));
    assert.deepEqual(readStructure(less).blocks.map(({ name }) => name), ["Cyan"]);
    assert.deepEqual(readStructure(less).inColours.names.map(({ text }) => text), ["Cyan"]);
});

for (const begun of ["DotWeavePattern", "DotWeavePattern VERSION 3 # begun\n"]) {
    test(`a text of "${begun.trim()}" gets the lists that it lacks`, () => {
        const grown = ["Black", "Red"].reduce((text, name) =>
            edits.applyEdits(text, edits.addInColour(text, readStructure(text), name)), begun);
        const structure = readStructure(grown);
        assert.equal(structure.header.text, "DotWeavePattern");
        for (const list of [structure.outInks, structure.inColours]) {
            assert.deepEqual(list.names.map(({ text }) => text), ["Black", "Red"]);
            assert.ok(list.close !== null);
        }
        assert.deepEqual(structure.blocks.map(({ name }) => name), ["Black", "Red"]);
        assert.deepEqual(commentsOf(grown), commentsOf(begun));
        const inked = edits.applyEdits(begun, edits.addOutInk(readStructure(begun), "Cyan"));
        assert.deepEqual(readStructure(inked).outInks.names.map(({ text }) => text), ["Cyan"]);
    });
}

test("a share gets exactly its hundredths of a percent, and the others keep their proportions", () => {
    for (const weights of [[1, 1], [1, 3], [2, 5, 3], [0, 4, 4], [7, 0, 0]]) {
        for (const hundredths of [1, 50, 3333, 5000, 9999]) {
            const written = edits.weightsForShare(weights, 0, hundredths);
            const sum = written.reduce((total, weight) => total + weight, 0);
            assert.ok(written.every(Number.isSafeInteger), `${written}`);
            assert.equal(written[0] * 10000, hundredths * sum, `${weights} ${hundredths}`);
            for (let i = 2; i < weights.length && weights[1] + weights[2] > 0; ++i) {
                assert.equal(written[i] * weights[1], written[1] * weights[i]);
            }
        }
    }
});

const commentsOf = (text) => text.match(/(?<=^|\s)#.*$/gm) ?? [];

for (const [name, text] of examples) {
    test(`no change of a line in ${name} loses a comment or another line`, () => {
        for (const block of readStructure(text).blocks) {
            for (const line of block.values.lines) {
                for (const written of [
                    edits.writeWeight(line, 0, 9), edits.writeStep(line, line.step ^ 1),
                    edits.addAlternative(line), edits.removeStep(text, line),
                    edits.addStep(text, block, { step: line.step + 1, position: 1, value: 1 }),
                ]) {
                    const result = edits.applyEdits(text, written);
                    assert.notEqual(result, text);
                    assert.deepEqual(commentsOf(result), commentsOf(text));
                    const smallest = written.map((edit) => edits.smallest(text, edit));
                    assert.equal(edits.applyEdits(text, smallest), result);
                    const kept = new Set(result.split("\n"));
                    const lost = text.split("\n").filter((row) => !kept.has(row));
                    assert.ok(lost.length <= 1, lost.join("\n"));
                }
            }
        }
    });
}

test("the smallest edit begins and ends with what differs", () => {
    assert.deepEqual(edits.smallest("1 1:3 0-255", { from: 2, to: 5, insert: "1:7" }),
        { from: 4, to: 5, insert: "7" });
    assert.deepEqual(edits.smallest("aaa", { from: 0, to: 3, insert: "aaaa" }),
        { from: 3, to: 3, insert: "a" });
});
