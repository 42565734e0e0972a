// The engine says of texts what the program says, finding by finding.
import assert from "node:assert/strict";
import { test } from "node:test";

import { faultyTexts } from "./faulty_texts.js";
import { example, exampleNames, inFolder, runProgram, withEngine } from "./support.js";

function readIn(page, text) {
    return page.evaluate((asked) => engine.read(asked), text);
}

function said(folder, ...words) {
    return runProgram(["pattern", ...words], folder).stdout.toString();
}

/** Tells what the program says of the texts, in JSON and in SARIF, with the files numbered. */
function programSays(texts) {
    const files = Object.fromEntries(texts.map((text, index) => [`${index}.txt`, text]));
    return inFolder(files, (folder) => {
        const names = Object.keys(files);
        const log = JSON.parse(said(folder, "lint", "--format", "sarif", ...names)).runs[0];
        const reports = JSON.parse(said(folder, "explain", "--json", ...names)).texts;
        const regions = new Map(names.map((name) => [name, []]));
        for (const { locations: [{ physicalLocation: place }] } of log.results) {
            regions.get(place.artifactLocation.uri).push(place.region);
        }
        return {
            rules: log.tool.driver.rules.map(({ id }) => id),
            of: names.map((name, index) => ({
                report: reports[index], regions: regions.get(name),
            })),
        };
    });
}

/** The letters between two places of the program, lines and columns from 1. */
function between(text, { startLine, startColumn, endLine, endColumn }) {
    const lines = text.split(/(?<=\r\n|\r(?!\n)|\n)/);
    const unitOf = (line, column) => lines.slice(0, line - 1).join("").length +
        Array.from(lines[line - 1] ?? "").slice(0, column - 1).join("").length;
    return [unitOf(startLine, startColumn), unitOf(endLine, endColumn)];
}

function expectProgramsFindings(reading, text, { report, regions }) {
    assert.deepEqual(
        reading.findings.map(({ severity, kind, message, hint, place, fix }) =>
            [severity, kind, message, hint, place.line, place.column, fix?.insert ?? null]),
        report.findings.map(({ severity, kind, message, hint, line, column, fix }) =>
            [severity, kind, message, hint, line, column, fix]));
    reading.findings.forEach(({ place, kind }, index) => {
        const end = { endLine: regions[index].startLine, ...regions[index] };
        assert.deepEqual([place.from, place.to], between(text, end), `${kind} in ${text}`);
    });
    assert.deepEqual(reading.counts, report.counts);
    assert.deepEqual(reading.engines, report.engines);
    assert.deepEqual(reading.limits, report.limits);
    assert.equal(reading.runs, report.engines.find(({ name }) => name === "sse").loads);
}

test("findings stand where the program finds them", async (all) => {
    const texts = [...faultyTexts(example("light_ink"))];
    const { rules, of } = programSays(texts.map(([, text]) => text));
    const kinds = new Set();
    const sentences = new Set();
    await withEngine(async (page) => {
        for (const [index, [name, text]] of texts.entries()) {
            await all.test(name, async () => {
                const reading = await readIn(page, text);
                expectProgramsFindings(reading, text, of[index]);
                for (const { kind, message, hint } of reading.findings) {
                    kinds.add(kind);
                    sentences.add(`${message}; ${hint}`);
                }
            });
        }
    });
    await all.test("none names an engine, of which authors know nothing", () => {
        const names = ["sse", "x86", "engine"];
        assert.deepEqual([...sentences].filter((words) =>
            words.toLowerCase().split(/\W+/).some((word) => names.includes(word))), []);
        assert.ok(sentences.size > kinds.size);
    });
    await all.test("of every kind there is one", () => {
        // No text is known that every engine refuses without another finding.
        const never = ["refused"];
        assert.deepEqual(rules.filter((rule) => !kinds.has(rule) && !never.includes(rule)), []);
    });
});

// The place of each is marked in the text.
const marked = [
    ["value-range", "DotWeavePattern VERSION 2 BEGIN_OUT_INKS A END_OUT_INKS BEGIN_IN_COLORS a " +
        "END_IN_COLORS BEGIN_IN_COLOR a BEGIN_INKS A END_INKS BEGIN_VALUES 1 1 «0-256» " +
        "END_VALUES END_IN_COLOR"],
    ["step-range", "DotWeavePattern\r\nVERSION 2 # é 𝄞\r\nBEGIN_OUT_INKS A END_OUT_INKS\r\n" +
        "BEGIN_IN_COLORS a END_IN_COLORS\r\nBEGIN_IN_COLOR a BEGIN_INKS A END_INKS\r\n" +
        "BEGIN_VALUES\r\n1 1 0-255\r\n«8» 1 0-255\r\nEND_VALUES END_IN_COLOR"],
    ["ink-unfed", "DotWeavePattern VERSION 2 # äöü 𝄞𝄞\nBEGIN_OUT_INKS A «𝄞é» END_OUT_INKS " +
        "BEGIN_IN_COLORS a END_IN_COLORS BEGIN_IN_COLOR a BEGIN_INKS A END_INKS BEGIN_VALUES " +
        "1 1 0-255 END_VALUES END_IN_COLOR"],
];

test("places are those of the editor", async (all) => {
    await withEngine(async (page) => {
        for (const [kind, words] of marked) {
            await all.test(kind, async () => {
                const text = words.replace(/[«»]/g, "");
                const reading = await readIn(page, text);
                const found = reading.findings.find((finding) => finding.kind === kind);
                const from = words.indexOf("«");
                assert.deepEqual([found.place.from, found.place.to], [from, words.indexOf("»") - 1]);
                const before = text.slice(0, from).split(/\r\n|\n/);
                assert.deepEqual([found.place.line, found.place.column],
                    [before.length, Array.from(before.at(-1)).length + 1]);
            });
        }
        await all.test("of steps, entries and names", async () => {
            const text = example("weights");
            const [cyan] = (await readIn(page, text)).inColours;
            const at = ({ from, to }) => text.slice(from, to);
            assert.equal(at(cyan.place), "Cyan");
            assert.equal(cyan.place.line, 5);
            assert.equal(at(cyan.blockPlace), "Cyan");
            assert.equal(cyan.blockPlace.line, 7);
            assert.deepEqual(cyan.feeds.map(({ ink, place }) => [ink, at(place)]),
                [["Cyan", "Cyan"]]);
            const step = cyan.steps[4];
            assert.deepEqual([at(step.place), step.place.line, at(step.ratioPlace)],
                ["4", 13, "1:1"]);
            assert.deepEqual(step.alternatives.map(({ place }) => at(place)), ["0-170", "0-85"]);
            assert.equal(cyan.steps[0].place, null);
            assert.equal(step.meanInk.expected, 127.5);
            assert.equal(step.meanInk.measured, null);
        });
    });
});

test("drawings, logs and mended texts are the program's", async (all) => {
    await withEngine(async (page) => {
        for (const name of exampleNames) {
            await all.test(`${name}: plot`, async () => {
                const text = example(name);
                const plot = await page.evaluate((asked) => engine.plot(asked, "pattern.txt"), text);
                const svg = inFolder({ "pattern.txt": text }, (folder) =>
                    said(folder, "plot", "--output", "-", "pattern.txt"));
                const [{ report }] = programSays([text]).of;
                assert.equal(plot.svg, svg);
                assert.deepEqual(
                    plot.inColours.map(({ steps }) => steps.map(({ shares }) => shares)),
                    report.inColours.map(({ steps }) => steps.map(({ shares }) => shares)));
                for (const { power } of plot.spectra) {
                    assert.equal(power.length, 129);
                }
            });
        }
        await all.test("the log of findings", async () => {
            const text = example("weights").replace("0-255", "0-256");
            const log = await page.evaluate((asked) => engine.sarif(asked, "pattern.txt"), text);
            assert.equal(log, inFolder({ "pattern.txt": text }, (folder) =>
                said(folder, "lint", "--format", "sarif", "pattern.txt")));
        });
        await all.test("the text after its safe hints", async () => {
            const text = example("weights").replace("BEGIN_VALUES", "Begin_Values");
            const fixed = await page.evaluate((asked) => engine.fixed(asked), text);
            assert.equal(fixed.text, inFolder({ "pattern.txt": text }, (folder) =>
                said(folder, "fix", "--output", "-", "pattern.txt")));
            assert.equal(fixed.text, example("weights"));
            assert.deepEqual([fixed.changes, fixed.isGivenUp], [1, false]);
        });
        await all.test("the differences of two texts", async () => {
            const left = example("weights");
            const right = left.replace("1:3", "1:4").replace("RANDOM", "");
            const found = await page.evaluate(([a, b]) => engine.diff(a, b), [left, right]);
            const { differences } = inFolder({ left, right }, (folder) =>
                JSON.parse(said(folder, "diff", "--json", "left", "right")));
            assert.deepEqual(found.differences,
                differences.map(({ of, ...rest }) => ({ ...rest, ink: of })));
            assert.match(found.textual, /^-1 1:3 .*\n\+1 1:4 /m);
            const same = await page.evaluate((a) => engine.diff(a, a), left);
            assert.deepEqual(same, { differences: [], textual: "" });
        });
    });
});
