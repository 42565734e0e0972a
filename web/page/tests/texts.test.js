// Whoever translates the page finds all that it says in one file.
import assert from "node:assert/strict";
import { readFileSync, readdirSync } from "node:fs";
import { extname, join } from "node:path";
import { test } from "node:test";

import ts from "typescript";

import { root } from "./sources.js";

const folder = join(root, "web/page/src");
// These hold words for machines: names of classes, places in an SVG, types of files.
const machines = ["class", "d", "viewBox", "accept", "sandbox"];
const styles = join("editor", "theme.ts");

function isForMachines(node) {
    const { parent } = node;
    if (ts.isConditionalExpression(parent)) {
        return isForMachines(parent);
    }
    return ts.isImportDeclaration(parent)
        || (ts.isPropertyAssignment(parent) && machines.includes(parent.name.text));
}

/** Yields what a person could read of a file: texts of several words. */
function* sentences(node) {
    const isText = ts.isStringLiteralLike(node) || ts.isTemplateHead(node)
        || ts.isTemplateMiddleOrTemplateTail(node);
    if (isText && /[A-Za-z]{2,} [a-z]{2,}/.test(node.text) && !isForMachines(node)) {
        yield node.text;
    }
    const children = [];
    ts.forEachChild(node, (child) => {
        children.push(child);
    });
    for (const child of children) {
        yield* sentences(child);
    }
}

function sentencesOf(path) {
    const text = readFileSync(path, "utf8");
    return [...sentences(ts.createSourceFile(path, text, ts.ScriptTarget.ES2022, true))];
}

test("the page's English stands in one file", () => {
    const files = readdirSync(folder, { recursive: true })
        .filter((name) => extname(name) === ".ts" && name !== styles);
    assert.ok(files.length > 40);
    for (const file of files) {
        assert.deepEqual(sentencesOf(join(folder, file)), [], file);
    }
    assert.deepEqual(readdirSync(join(root, "web/page/texts")), ["en.ts"]);
    assert.ok(sentencesOf(join(root, "web/page/texts/en.ts")).length > 100);
});
