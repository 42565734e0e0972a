// A frame of a page, and a context of Node.js, have classes of their own: none of their objects is
// an instance of a class here.
import { equal, refuses, sameBytes } from "./expect.js";
import { exampleText } from "./pattern_cases.js";

const inPage = globalThis.document !== undefined;

// A context of Node.js has no URL of its own.
async function otherRealm() {
    if (inPage) {
        const frame = document.createElement("iframe");
        document.body.append(frame);
        return frame.contentWindow;
    }
    const { runInNewContext } = await import("node:vm");
    return runInNewContext("globalThis");
}

async function read(address) {
    if (inPage) {
        return (await fetch(address)).arrayBuffer();
    }
    const { readFile } = await import("node:fs/promises");
    return readFile(new URL(address));
}

function convertsARow(pelkraft, what) {
    const row = { width: 2, channels: 2, bits: 8, planar: false };
    const source = { ...row, data: Uint8Array.of(1, 2, 3, 4) };
    sameBytes(pelkraft.convertRow(source, row), [1, 2, 3, 4], what);
}

export default {
    "bytes of another realm are taken": async ({ load }) => {
        const pelkraft = await load();
        const realm = await otherRealm();
        equal(new realm.Uint8Array(1) instanceof Uint8Array, false, "another realm");
        const row = { width: 2, channels: 2, bits: 8, planar: false };
        for (const name of ["Uint8Array", "Uint8ClampedArray"]) {
            const data = realm[name].of(1, 2, 3, 4);
            const before = realm[name].of(9, 9, 9, 9, 9, 9);
            sameBytes(pelkraft.convertRow({ ...row, data }, { ...row, width: 3, data: before }),
                [1, 2, 3, 4, 9, 9], name);
        }
        const text = realm.Uint8Array.from(new TextEncoder().encode(exampleText));
        const pattern = new pelkraft.Pattern(text);
        sameBytes(pattern.apply(realm.Uint8Array.of(1, 1)), [0, 64, 255], "a pattern's row");
        equal(pelkraft.explainPattern(text).seed, 1234, "the seed");
    },
    "what is no array of bytes in another realm is refused": async ({ load }) => {
        const { convertRow } = await load();
        const realm = await otherRealm();
        const row = { width: 2, channels: 2, bits: 8, planar: false };
        const named = { [Symbol.toStringTag]: "Uint8Array", length: 4 };
        for (const [data, name] of [
            [realm.Uint16Array.of(1, 2), "Uint16Array"], [realm.Array.of(1, 2, 3, 4), "Array"],
            [new realm.ArrayBuffer(4), "ArrayBuffer"], [named, "Object"],
        ]) {
            refuses(() => convertRow({ ...row, data }, row), "TypeError",
                `source.data must be a Uint8Array, not an object of the class ${name}`);
        }
    },
    "a file of another realm is loaded": async ({ load, address }) => {
        const realm = await otherRealm();
        const bytes = await read(address);
        const files = {
            "its bytes": realm.Uint8Array.from(new Uint8Array(bytes)),
            "what it was compiled to": await realm.WebAssembly.compile(bytes),
            "its address": new (realm.URL ?? URL)(address),
        };
        for (const [what, wasm] of Object.entries(files)) {
            convertsARow(await load({ wasm }), what);
        }
    },
    "an address in a text begins at the module": async ({ load, address }) => {
        convertsARow(await load({ wasm: "pelkraft.wasm" }), "beside the module");
        convertsARow(await load({ wasm: address }), "an address that is whole");
    },
};
