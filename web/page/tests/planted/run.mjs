// Plants defects into a copy of the page, one at a time, and sees its tests fail:
//   node web/page/tests/planted/run.mjs MODULES [WORDS]    those whose name has the words
// MODULES holds the built WebAssembly. The list is defects.txt beside this file: a name, a file of
// web/page/, the tests, and the lines of the source with what takes their place; white space stands
// for any other. It exits with 1 where a defect survives or no longer fits.
import { spawnSync } from "node:child_process";
import { cpSync, readFileSync, rmSync, symlinkSync, writeFileSync } from "node:fs";
import { basename, dirname, join, resolve } from "node:path";
import { fileURLToPath } from "node:url";

const here = dirname(fileURLToPath(import.meta.url));
const root = resolve(here, "../../../..");
const copy = join(root, "build/planted");
const [modules, words = ""] = process.argv.slice(2);
if (modules === undefined) {
    console.error("usage: node web/page/tests/planted/run.mjs MODULES [WORDS]");
    process.exit(2);
}

function defectOf(paragraph) {
    const of = (mark) => paragraph.split("\n").filter((line) => line.startsWith(mark))
        .map((line) => line.slice(mark.length).trim());
    return {
        name: of("name:")[0], file: of("file:")[0], tests: of("tests:")[0].split(" "),
        before: of("-").join(" "), after: of("+").join("\n"),
    };
}

function copyTree() {
    rmSync(copy, { recursive: true, force: true });
    const isOwn = (path) => basename(path) !== "node_modules";
    for (const folder of ["web", "examples", "docs", "scripts"]) {
        cpSync(join(root, folder), join(copy, folder), { recursive: true, filter: isOwn });
    }
    symlinkSync(join(root, "web/node_modules"), join(copy, "web/node_modules"));
}

/** Puts what is wrong in the place of what is right; null unless that stands in one place. */
function plant(text, { before, after }) {
    const pattern = before.split(/\s+/)
        .map((word) => word.replace(/[\\^$.*+?()[\]{}|]/g, "\\$&")).join("\\s+");
    const found = [...text.matchAll(new RegExp(pattern, "g"))];
    return found.length === 1 ? text.replace(found[0][0], () => after) : null;
}

function run(...command) {
    return spawnSync("node", command, {
        cwd: copy, env: { ...process.env, PELKRAFT_WEB: join(copy, "build/web") },
    }).status === 0;
}

function isCaught(tests) {
    if (!run("web/page/build.mjs", resolve(modules), "build/web")) {
        return false;
    }
    return !run("--test", ...tests.map((name) => `web/page/tests/${name}.test.js`));
}

function tryDefect(defect) {
    const path = join(copy, "web/page", defect.file);
    const text = readFileSync(path, "utf8");
    const planted = plant(text, defect);
    if (planted === null) {
        return "doesn't fit";
    }
    writeFileSync(path, planted);
    const caught = isCaught(defect.tests);
    writeFileSync(path, text);
    return caught ? "caught" : "SURVIVES";
}

const defects = readFileSync(join(here, "defects.txt"), "utf8").split(/\n\n+/)
    .filter((paragraph) => paragraph.startsWith("name:")).map(defectOf)
    .filter(({ name }) => name.includes(words));
copyTree();
const tests = [...new Set(defects.flatMap((defect) => defect.tests))];
if (isCaught(tests)) {
    console.error("the tests fail without any defect");
    process.exit(1);
}
for (const defect of defects) {
    const outcome = tryDefect(defect);
    console.log(`${outcome}: ${defect.name}`);
    if (outcome !== "caught") {
        process.exitCode = 1;
    }
}
