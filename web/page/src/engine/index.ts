export * from "./api.js";
export { createEngine } from "./client.js";
export { commandOf } from "./command.js";
export { limits } from "./limits.js";
export { registerServiceWorker } from "./service_worker.js";
