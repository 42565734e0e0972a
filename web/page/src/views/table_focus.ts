/** An element of the table is about this, as its data attributes say. */
type About = Readonly<Record<string, string | undefined>>;

const places = ["block", "line", "alternative", "position"] as const;

function aboutOf(table: Element): About | null {
    const focused = document.activeElement;
    const owner = focused !== null && table.contains(focused)
        ? focused.closest<HTMLElement>("[data-do]") : null;
    return owner === null ? null : { ...owner.dataset };
}

/** Finds what does this; a form takes the focus into its field. */
function find(table: Element, about: About): HTMLElement | null {
    const wanted = ["do", ...places].map((name) => about[name] === undefined
        ? `:not([data-${name}])` : `[data-${name}="${CSS.escape(about[name])}"]`).join("");
    const found = table.querySelector<HTMLElement>(wanted);
    return found instanceof HTMLFormElement ? found.querySelector("input") : found;
}

function oneLess(number: string): string {
    return String(Number(number) - 1);
}

/** Tells what comes nearest to something, itself first. */
function* neighbours(about: About): Generator<About> {
    yield about;
    const { do: action, block, line } = about;
    const last = places.filter((place) => about[place] !== undefined).at(-1);
    if (last !== undefined) {
        yield { ...about, [last]: oneLess(about[last]!) };
    }
    if (line !== undefined) {
        yield { do: "add-alternative", block, line };
        yield { do: action, block, line: oneLess(line) };
        yield { do: "add-step", block };
    }
    if (action === "remove-out-ink") {
        yield { do: "add-out-ink" };
    }
    if (block !== undefined) {
        yield { do: "add-ink", block };
        yield { do: "rename-colour", block };
        yield { do: "rename-colour", block: oneLess(block) };
    }
    yield { do: "add-colour" };
}

/**
 * Keeps the focus at what it is about while the table is made anew. What is gone leaves it to what
 * comes nearest, so that a person at the keyboard goes on from there.
 */
export function keepFocus(table: Element, renew: () => void): void {
    const before = aboutOf(table);
    renew();
    if (before === null || aboutOf(table)?.["do"] === before["do"]) {
        return;
    }
    for (const about of neighbours(before)) {
        const found = find(table, about);
        if (found !== null) {
            found.focus({ preventScroll: true });
            return;
        }
    }
}
