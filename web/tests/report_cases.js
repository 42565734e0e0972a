import { equal } from "./expect.js";
import { exampleText } from "./pattern_cases.js";

const findingsOf = ({ findings }) =>
    findings.map(({ severity, kind, line, column }) => `${line}:${column} ${severity} ${kind}`);

export default {
    "a report tells what a pattern means": async ({ load }) => {
        const report = (await load()).explainPattern(exampleText, "example.txt");
        equal(report.file, "example.txt", "the file");
        equal(report.version, { parser: 2, check: 2, generation: 1 }, "the version");
        equal(report.seed, 1234, "the seed");
        equal(report.outInks, [
            { name: "Cyan", fedBy: ["Cyan"] },
            { name: "LightCyan", fedBy: ["Cyan"] },
            { name: "Black", fedBy: ["Black"] },
        ], "the out-inks");
        const [cyan, black] = report.inColours;
        equal([cyan.name, cyan.topStep, cyan.feeds], ["Cyan", 3, ["Cyan", "LightCyan"]]);
        equal([black.name, black.topStep, black.feeds], ["Black", 1, ["Black"]]);
        equal(cyan.steps.map(({ listed }) => listed), [false, true, true, true], "the steps");
        equal(cyan.steps[2].alternatives, [
            { weight: 1, probability: 0.25,
                values: [{ position: 1, ink: "LightCyan", value: 128 }] },
            { weight: 3, probability: 0.75, values: [{ position: 0, ink: "Cyan", value: 40 }] },
        ], "step 2");
        equal(report.limits.combinations, { used: 2, limit: 1024 }, "the combinations");
        equal(report.engines.map(({ name, loads }) => [name, loads]),
            [["reference", true], ["x86", true], ["sse", true]], "the engines");
    },
    "a report finds each fault at its place": async ({ load }) => {
        const pelkraft = await load();
        const faults = [
            ["RANDOM_SEED", "RANDOM_SEAD", "3:1 warning keyword-misspelt"],
            ["2 1:3", "2 0:0", "18:3 error weight-sum"],
            ["2 1:3 1-128 0-40", "2 1:3 1-128", "18:3 error entry-missing"],
            ["END_IN_COLORS", "END_IN_COLOR", "10:1 error section-closed-wrongly"],
            ["Cyan Black\nEND_IN", "\u00c9tain Cyan\nEND_IN", "9:1 warning in-colour-undescribed"],
            ["DotWeavePattern\n", "", "1:1 error header-missing"],
        ];
        for (const [from, to, found] of faults) {
            const findings = findingsOf(pelkraft.explainPattern(exampleText.replace(from, to)));
            equal(findings.includes(found), true, `${found} among ${findings}`);
        }
    },
    "a report has the words in which an engine refuses": async ({ load }) => {
        const text = exampleText.replace("VERSION 2", "VERSION 1");
        const { engines } = (await load()).explainPattern(text);
        const words = "unsupported pattern version";
        equal(engines.map(({ refusal }) => refusal), [null, words, words], "the refusals");
    },
    "a report takes any bytes": async ({ load }) => {
        const pelkraft = await load();
        equal(findingsOf(pelkraft.explainPattern("")).includes("1:1 error header-missing"), true);
        const bytes = Uint8Array.from({ length: 256 }, (_, i) => 255 - i);
        equal(pelkraft.explainPattern(bytes, "b\u00fcro").file, "b\u00fcro", "the file");
        const large = pelkraft.explainPattern(`${exampleText} \u00e9"x`.repeat(5000));
        equal(large.findings.length, 1000, "the findings of a large text");
    },
};
