// The table's reader and the program understand patterns alike. PELKRAFT_PROGRAM names the program.
import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { readFileSync, readdirSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";

import { load, root } from "./sources.js";

const { blockOf, inksOf, readStructure } = await load("src/pattern/structure.ts");

const folder = join(root, "examples/patterns");
const names = readdirSync(folder);

function explain(file) {
    const { stdout } = spawnSync(process.env.PELKRAFT_PROGRAM, ["pattern", "--json", file]);
    return JSON.parse(stdout);
}

for (const name of names) {
    test(`${name} is read as the program reads it`, () => {
        const file = join(folder, name);
        const structure = readStructure(readFileSync(file, "utf8"));
        const report = explain(file);
        assert.equal(structure.version.value, report.version.parser);
        assert.equal(structure.seed?.value ?? 42, report.seed);
        assert.deepEqual(structure.outInks.names.map(({ text }) => text),
            report.outInks.map((ink) => ink.name));
        assert.deepEqual(structure.inColours.names.map(({ text }) => text),
            report.inColours.map((colour) => colour.name));
        for (const colour of report.inColours) {
            const block = blockOf(structure, colour.name);
            assert.deepEqual(inksOf(structure, block), colour.feeds);
            const steps = block.values.lines.map(({ step, alternatives }) => [step,
                alternatives.map(({ weight, probability, position, ink, value }) =>
                    ({ weight, probability, values: [{ position, ink, value }] }))]);
            assert.deepEqual(steps, colour.steps.filter(({ listed }) => listed)
                .map(({ step, alternatives }) => [step, alternatives]));
        }
    });
}
