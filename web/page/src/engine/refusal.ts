/** Something can't be served. The message is a sentence for the author. */
export class Refusal extends Error {}

/** The answer of the worker: an error's class doesn't come across. */
export type Outcome<Value> =
    | { readonly value: Value; readonly memory: number }
    | { readonly refusal: string; readonly memory: number }
    | { readonly fault: string };
