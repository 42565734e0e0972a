export * from "./api.js";
export { createEngine } from "./client.js";
export { commandOf } from "./command.js";
