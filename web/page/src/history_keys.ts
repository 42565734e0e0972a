export type Turn = "undo" | "redo";

/** The key that was pressed takes a change back or makes it again; null for any other. */
function turnOf({ key, altKey, ctrlKey, metaKey, shiftKey }: KeyboardEvent): Turn | null {
    if (altKey || ctrlKey === metaKey) {
        return null;
    }
    const letter = key.toLowerCase();
    if (letter === "z") {
        return shiftKey ? "redo" : "undo";
    }
    return letter === "y" ? "redo" : null;
}

/** The key is about what is being typed there, or about a field that says nothing of the text. */
function isOwn(element: Element, table: Element): boolean {
    if (!element.matches("input, select, textarea, pattern-editor")) {
        return false;
    }
    return !table.contains(element)
        || (element instanceof HTMLInputElement && element.value !== element.defaultValue);
}

/** Hears the keys of the editor's history on the whole page, not in the text alone. */
export function followHistoryKeys(table: Element, take: (turn: Turn) => void): void {
    addEventListener("keydown", (event) => {
        const turn = turnOf(event);
        if (turn !== null && !event.defaultPrevented && !isOwn(event.target as Element, table)) {
            event.preventDefault();
            take(turn);
        }
    });
}
