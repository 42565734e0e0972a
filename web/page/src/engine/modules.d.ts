/** The build gives the address of the file. */
declare module "module:*" {
    const address: string;
    export default address;
}

/** The build puts in the address of the worker's script. */
declare const WORKER: string;
/** And what the service worker keeps, and under what name. */
declare const FILES: readonly string[];
declare const STORE: string;
