// The guide's links open the very patterns that stand above them.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";

import { load, root } from "./sources.js";

const { decodeLink } = await load("src/links.ts");
const { examples } = await load("src/examples.ts");

const guide = readFileSync(join(root, "docs/patterns.md"), "utf8");
const addresses = new Map([...guide.matchAll(/^\[(\w+)\]: (\S+)$/gm)]
    .map(([, name, address]) => [name, new URL(address)]));
const blocks = [...guide.matchAll(
    /<!-- examples\/patterns\/(\w+)\.txt -->\n```text\n([^]*?)^```\n(.*\n.*)/gm)];

test("each pattern of the guide has its link below", () => {
    assert.ok(blocks.length >= 6);
    for (const [, name, text, below] of blocks) {
        assert.equal(below, `\n[Open it in the browser][${name}]`);
        assert.equal(decodeLink(addresses.get(name).hash).text, text);
    }
});

test("the links lead to the address that the script serves at", () => {
    const script = readFileSync(join(root, "scripts/web.sh"), "utf8");
    const port = /^port=(\d+)$/m.exec(script)[1];
    for (const { origin, pathname } of addresses.values()) {
        assert.equal(origin + pathname, `http://127.0.0.1:${port}/`);
    }
});

test("the page has the patterns that the guide links to", () => {
    assert.deepEqual([...addresses.keys()], Object.keys(examples));
    for (const [name, { hash }] of addresses) {
        assert.equal(decodeLink(hash).text, examples[name]);
        const file = readFileSync(join(root, `examples/patterns/${name}.txt`), "utf8");
        assert.equal(examples[name], file);
    }
});
