// Keeps all files of the page, so that it opens without a network after the first time. A new build
// has a store of another name, and takes the place of the old one when no page is open. Where there
// is a network the page itself comes from there, so that a new build is seen at once.
interface ServiceWorkerEvents {
    addEventListener(
        type: "install" | "activate",
        listen: (event: { waitUntil(work: Promise<unknown>): void }) => void,
    ): void;
    addEventListener(
        type: "fetch",
        listen: (event: {
            readonly request: Request;
            respondWith(response: Promise<Response>): void;
        }) => void,
    ): void;
}

const worker = globalThis as unknown as ServiceWorkerEvents;
const prefix = STORE.replace(/-[^-]*$/, "-");

async function fill(): Promise<void> {
    const store = await caches.open(STORE);
    // The browser's own store may hold the page of an older build.
    await store.addAll(FILES.map((file) => new Request(file, { cache: "no-cache" })));
}

async function dropOlder(): Promise<void> {
    for (const name of await caches.keys()) {
        if (name.startsWith(prefix) && name !== STORE) {
            await caches.delete(name);
        }
    }
}

async function answer(request: Request): Promise<Response> {
    const store = await caches.open(STORE);
    const kept = await store.match(request, { ignoreSearch: true });
    if (kept === undefined || request.mode === "navigate") {
        return fetch(request).catch((failure: unknown) => {
            if (kept === undefined) {
                throw failure;
            }
            return kept;
        });
    }
    return kept;
}

worker.addEventListener("install", (event) => event.waitUntil(fill()));
worker.addEventListener("activate", (event) => event.waitUntil(dropOlder()));
worker.addEventListener("fetch", (event) => {
    const isOwn = new URL(event.request.url).origin === location.origin;
    if (event.request.method === "GET" && isOwn) {
        event.respondWith(answer(event.request));
    }
});
