/**
 * Keeps the page for use without a network. Answers whether it will: pages from a file and private
 * windows of some browsers can't.
 */
export async function registerServiceWorker(): Promise<boolean> {
    if (!("serviceWorker" in navigator)) {
        return false;
    }
    try {
        await navigator.serviceWorker.register("./sw.js");
        return true;
    } catch {
        return false;
    }
}
