import { EngineFailure, type Engine } from "./api.js";

/** The engine begins with its first request. */
export function createEngine(): Engine {
    throw new EngineFailure("broken", "this build of the page has no engine");
}
