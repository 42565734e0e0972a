import { h } from "./dom.js";

/** Saves what the page has made under a name. */
export function save(name: string, content: BlobPart, type: string): void {
    const address = URL.createObjectURL(new Blob([content], { type }));
    const link = h("a", { href: address, download: name });
    link.click();
    setTimeout(() => URL.revokeObjectURL(address), 10_000);
}

/** False if the browser doesn't let a page write to the clipboard. */
export async function copy(text: string): Promise<boolean> {
    try {
        await navigator.clipboard.writeText(text);
        return true;
    } catch {
        return false;
    }
}

/** A button by which a file is chosen; it looks like the other buttons. */
export function fileButton(label: string, accept: string, take: (file: File) => void)
    : HTMLElement {
    const field = h("input", { type: "file", accept, tabindex: -1, hidden: true });
    field.addEventListener("change", () => {
        const file = field.files?.[0];
        if (file !== undefined) {
            take(file);
        }
        field.value = "";
    });
    return h("span", { class: "file-button" }, field,
        h("button", { type: "button", click: () => field.click() }, label));
}
