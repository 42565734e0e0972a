// A step that the table adds goes on from those before it.
import assert from "node:assert/strict";
import { test } from "node:test";

import { load } from "./sources.js";

const { nextStep } = await load("src/pattern/next_step.ts");
const { readStructure } = await load("src/pattern/structure.ts");

const strengthOf = (ink) => (ink === "LightCyan" ? 0.4 : 1);

function following(values, inks = "Cyan LightCyan") {
    const structure = readStructure(`DotWeavePattern VERSION 3
BEGIN_OUT_INKS Cyan LightCyan END_OUT_INKS BEGIN_IN_COLORS Cyan END_IN_COLORS
BEGIN_IN_COLOR Cyan BEGIN_INKS ${inks} END_INKS BEGIN_VALUES
${values}
END_VALUES END_IN_COLOR`);
    const { step, position, value } = nextStep(structure, structure.blocks[0], strengthOf);
    return `${step} ${position}-${value}`;
}

// Value lines, and the step, position and value that come after them.
const cases = [
    ["nothing yet begins with a full drop", "", "1 0-255"],
    ["one size is doubled", "1 1 0-85", "2 0-170"],
    ["sizes go on by the same step", "1 1 0-60\n2 1 0-100", "3 0-140"],
    ["the highest size is the end", "1 1 0-85\n2 1 0-200", "3 0-255"],
    ["a size that shrank still grows", "1 1 0-90\n2 1 0-80", "3 0-81"],
    ["half of the pixels become all", "1 1:1 0-255 0-0", "2 0-255"],
    ["a mix becomes its larger drop", "1 1 0-85\n2 1:1 0-85 0-170", "3 0-170"],
    ["a mix becomes its full ink, not the light one", "1 1:3 1-255 0-200", "2 0-200"],
    ["a weight of zero is no mix", "1 1:0 0-85 0-255", "2 0-170"],
    ["after the light ink comes the full one", "1 1 1-255", "2 0-255"],
    ["after everything comes the same", "1 1 1-255\n2 1 0-255", "3 0-255"],
    ["the order of the lines doesn't count", "2 1 0-100\n1 1 0-60", "3 0-140"],
    ["the full ink is found at its position", "1 1 0-255", "2 1-255", "LightCyan Cyan"],
];

for (const [name, values, expected, inks] of cases) {
    test(name, () => {
        assert.equal(following(values, inks), expected);
    });
}
