// Runs all cases in Node.js. The variable PELKRAFT_MODULE names the folder of the module that was
// built, PELKRAFT_VERSION its version.
import { test } from "node:test";
import { pathToFileURL } from "node:url";

import cases from "./cases.js";

const folder = `${pathToFileURL(process.env.PELKRAFT_MODULE).href}/`;
const { loadPelkraft } = await import(`${folder}pelkraft.js`);
const version = process.env.PELKRAFT_VERSION;
const address = `${folder}pelkraft.wasm`;

for (const [words, check] of Object.entries(cases)) {
    test(words, () => check({ load: loadPelkraft, version, address }));
}
