import { type Remote, transfer, wrap } from "comlink";

import {
    type BuiltInPicture, type Differences, type Dots, type Engine, type EngineCounts, EngineFailure,
    type FixedText, type Levels, type Picture, type PictureJob, type Plot, type PreviewImage,
    type PreviewJob, type Reading,
} from "./api.js";
import { engineTexts } from "../../texts/en.js";
import { type DotsJob, sliceOf } from "./dots_work.js";
import { openText } from "./open_text.js";
import { type Outcome, Refusal } from "./refusal.js";
import { writeTiff } from "./tiff_writer.js";
import type { Work } from "./worker.js";

interface Request {
    readonly key: string;
    readonly send: (work: Remote<Work>) => Promise<Outcome<unknown>>;
    readonly resolve: (value: never) => void;
    readonly reject: (failure: Error) => void;
}

function failureOf(failure: unknown): EngineFailure {
    if (failure instanceof EngineFailure) {
        return failure;
    }
    const words = failure instanceof Error ? failure.message : String(failure);
    return failure instanceof Refusal
        ? new EngineFailure("refused", words)
        : new EngineFailure("broken", engineTexts.workerDied(words));
}

/** The worker needs this of a job. A picture stays here: its part is cut when it is sent. */
function dotsJobOf(job: PictureJob): DotsJob {
    const origin = job.origin ?? { x: 0, y: 0 };
    const window = job.window ?? null;
    const { picture } = job;
    const slice = "kind" in picture
        ? { builtIn: picture, window }
        : sliceOf(picture, window, origin);
    const { text, levels = "automatic", tone = "coverage" } = job;
    const cut = "samples" in slice ? [slice.samples.buffer as ArrayBuffer] : [];
    return transfer({ text, levels, tone, origin, slice }, cut);
}

/** One worker, and the requests that wait for it. */
class Client implements Engine {
    readonly #onBusy: (busy: boolean) => void;
    readonly #waiting = new Map<string, Request>();
    #worker: Worker | null = null;
    #remote: Remote<Work> | null = null;
    #current: Request | null = null;
    #isClosed = false;
    #counts = { sent: 0, superseded: 0, workersStarted: 0, memory: 0 };

    constructor(onBusy: (busy: boolean) => void) {
        this.#onBusy = onBusy;
    }

    read(text: string, slot = ""): Promise<Reading> {
        return this.#request(`read ${slot}`, (work) => work.read(text));
    }

    plot(text: string, title = "pattern", slot = ""): Promise<Plot> {
        return this.#request(`plot ${slot}`, (work) => work.plot(text, title));
    }

    diff(left: string, right: string, slot = ""): Promise<Differences> {
        return this.#request(`diff ${slot}`, (work) => work.diff(left, right));
    }

    fixed(text: string, slot = ""): Promise<FixedText> {
        return this.#request(`fixed ${slot}`, (work) => work.fixed(text));
    }

    sarif(text: string, file = "pattern.txt", slot = ""): Promise<string> {
        return this.#request(`sarif ${slot}`, (work) => work.sarif(text, file));
    }

    run(job: PictureJob, slot = ""): Promise<Dots> {
        return this.#request(`run ${slot}`, (work) => work.run(dotsJobOf(job)));
    }

    preview(job: PreviewJob, slot = ""): Promise<PreviewImage> {
        const { looks, order, shown, gain, longestSide } = job;
        const all = { looks, order, shown, gain, longestSide };
        const given = Object.fromEntries(
            Object.entries(all).filter(([, value]) => value !== undefined),
        );
        return this.#request(`preview ${slot}`, (work) => work.preview(dotsJobOf(job), given));
    }

    async openText(bytes: Uint8Array): Promise<string> {
        try {
            return openText(bytes);
        } catch (failure) {
            throw failureOf(failure);
        }
    }

    readPicture(bytes: Uint8Array, slot = ""): Promise<Picture> {
        return this.#request(`readPicture ${slot}`, (work) =>
            work.readPicture(transfer(bytes, [bytes.buffer as ArrayBuffer])));
    }

    builtIn(
        text: string, picture: BuiltInPicture, levels: Levels = "automatic", slot = "",
    ): Promise<Picture> {
        return this.#request(`builtIn ${slot}`, (work) => work.builtIn(text, picture, levels));
    }

    tiff(picture: Picture): Uint8Array {
        return writeTiff(picture);
    }

    abort(): void {
        this.#end(new EngineFailure("aborted", engineTexts.aborted));
    }

    close(): void {
        this.#isClosed = true;
        this.abort();
    }

    counts(): EngineCounts {
        return { ...this.#counts };
    }

    #request<Value>(key: string, send: Request["send"]): Promise<Value> {
        if (this.#isClosed) {
            return Promise.reject(new EngineFailure("aborted", engineTexts.closed));
        }
        return new Promise<Value>((resolve, reject) => {
            const older = this.#waiting.get(key);
            // The newest one waits at the end: others aren't held up by one that comes often.
            this.#waiting.delete(key);
            if (older !== undefined) {
                ++this.#counts.superseded;
                older.reject(new EngineFailure("superseded", engineTexts.superseded));
            }
            this.#waiting.set(key, { key, send, resolve, reject });
            this.#next();
        });
    }

    #next(): void {
        if (this.#current !== null) {
            return;
        }
        const [request] = this.#waiting.values();
        if (request === undefined) {
            this.#onBusy(false);
            return;
        }
        this.#waiting.delete(request.key);
        this.#current = request;
        this.#onBusy(true);
        void this.#serve(request);
    }

    async #serve(request: Request): Promise<void> {
        let failure: Error | null = null;
        try {
            const remote = this.#start();
            ++this.#counts.sent;
            const outcome = await request.send(remote);
            if (this.#current !== request) {
                return;
            }
            if ("fault" in outcome) {
                this.#end(failureOf(new Error(outcome.fault)));
                return;
            }
            this.#counts.memory = outcome.memory;
            if ("value" in outcome) {
                request.resolve(outcome.value as never);
            } else {
                failure = new EngineFailure("refused", outcome.refusal);
            }
        } catch (thrown) {
            failure = failureOf(thrown);
        }
        if (this.#current === request) {
            if (failure !== null) {
                request.reject(failure);
            }
            this.#current = null;
            this.#next();
        }
    }

    #start(): Remote<Work> {
        if (this.#remote === null) {
            const worker = new Worker(new URL(WORKER, import.meta.url), { type: "module" });
            worker.addEventListener("error", (event) => {
                event.preventDefault();
                if (worker === this.#worker) {
                    this.#end(failureOf(new Error(event.message || engineTexts.workerEnded)));
                }
            });
            ++this.#counts.workersStarted;
            this.#worker = worker;
            this.#remote = wrap<Work>(worker);
        }
        return this.#remote;
    }

    /** The worker ends, and with it what it does; what waits fails for the same reason. */
    #end(failure: EngineFailure): void {
        this.#worker?.terminate();
        this.#worker = null;
        this.#remote = null;
        const requests = [...(this.#current === null ? [] : [this.#current]),
            ...this.#waiting.values()];
        this.#current = null;
        this.#waiting.clear();
        for (const request of requests) {
            request.reject(failure);
        }
        this.#onBusy(false);
    }
}

/** The engine begins with its first request. onBusy hears when work begins and when all is done. */
export function createEngine(onBusy: (busy: boolean) => void = () => undefined): Engine {
    return new Client(onBusy);
}
