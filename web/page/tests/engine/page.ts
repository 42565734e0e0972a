import { createEngine, registerServiceWorker } from "../../src/engine/index.js";

// The tests drive the engine by these.
Object.assign(globalThis, { createEngine, registerServiceWorker });
