import { decodeLink, encodeLink } from "../../src/links.js";
import {
    commandOf, createEngine, type EngineFailure, registerServiceWorker,
} from "../../src/engine/index.js";

function toBase64(bytes: Uint8Array): string {
    let letters = "";
    for (let start = 0; start < bytes.length; start += 8192) {
        letters += String.fromCharCode(...bytes.subarray(start, start + 8192));
    }
    return btoa(letters);
}

function fromBase64(letters: string): Uint8Array {
    return Uint8Array.from(atob(letters), (letter) => letter.charCodeAt(0));
}

/** Tells what became of a request, in a form that goes from the page to the test. */
async function outcomeOf(work: Promise<unknown>): Promise<unknown> {
    try {
        return { value: await work };
    } catch (failure) {
        const { code, message } = failure as EngineFailure;
        return { code, message };
    }
}

// The tests drive the engine by these.
Object.assign(globalThis, {
    engine: createEngine(), commandOf, createEngine, decodeLink, encodeLink, fromBase64, outcomeOf,
    registerServiceWorker, toBase64,
});
