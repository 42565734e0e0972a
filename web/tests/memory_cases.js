import { equal, randomBytes, refuses } from "./expect.js";
import { exampleText } from "./pattern_cases.js";

function useOnce(pelkraft, i) {
    const shape = { width: 1 + (i % 300), channels: 4, bits: 8, planar: false };
    const source = { ...shape, data: randomBytes(4 * shape.width, i) };
    pelkraft.convertRow(source, { ...shape, planar: true });
    pelkraft.convertRow(source, shape, { map: [3, 2, 1, 9] });
    refuses(() => pelkraft.convertRow(source, shape, { repeat: 3 }), "Error",
        "zvk::Pelkraft::ImageRow::FillFromWithPixelRepeat unsupported conversion");
    if (i % 10 === 0) {
        const pattern = new pelkraft.Pattern(exampleText, ["x86", "sse", "reference"][i % 3]);
        pattern.apply(new Uint8Array(2 * shape.width));
        pattern.reset();
        pattern.free();
        pelkraft.explainPattern(exampleText);
        refuses(() => new pelkraft.Pattern(exampleText.replace("3+", "9")), "Error",
            "step out of range in pattern");
    }
}

export default {
    "ten thousand calls leave nothing behind": async ({ load }) => {
        const pelkraft = await load();
        for (let i = 0; i < 300; ++i) {
            useOnce(pelkraft, i);
        }
        const before = [pelkraft.memoryInUse(), pelkraft.memoryBytes()];
        for (let i = 0; i < 10_000; ++i) {
            useOnce(pelkraft, i);
        }
        equal([pelkraft.memoryInUse(), pelkraft.memoryBytes()], before, "the memory");
    },
    "a pattern takes memory until it is freed": async ({ load }) => {
        const pelkraft = await load();
        new pelkraft.Pattern(exampleText).free();
        const before = pelkraft.memoryInUse();
        const pattern = new pelkraft.Pattern(exampleText);
        equal(pelkraft.memoryInUse() > before, true, "it takes memory");
        pattern.free();
        equal(pelkraft.memoryInUse(), before, "the memory after it");
    },
    "each library has a memory and a level of its own": async ({ load }) => {
        const [one, other] = [await load(), await load()];
        one.limitSseLevel(0);
        equal([one.sseLevel(), other.sseLevel()], [0, 3], "the levels");
        const before = other.memoryInUse();
        const pattern = new one.Pattern(exampleText);
        equal(other.memoryInUse(), before, "the other's memory");
        pattern.free();
    },
    "the version is that of the package": async ({ load, version }) => {
        equal((await load()).version, version);
    },
};
