// Runs one case after the other when the test asks for it.
import { loadPelkraft } from "/module/pelkraft.js";

import cases from "./cases.js";

globalThis.caseNames = () => Object.keys(cases);
const address = new URL("/module/pelkraft.wasm", location).href;
globalThis.runCase = (words, version) => cases[words]({ load: loadPelkraft, version, address });
