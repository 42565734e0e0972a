/**
 * Makes a tree of elements like a fresh one, and keeps every element that may stay, so that neither
 * the focus nor a click that has begun is lost. Listeners aren't moved: those who use this listen
 * at the root.
 */
export function morph(old: Element, fresh: Element): void {
    const said = defaultOf(old);
    copyAttributes(old, fresh);
    morphChildren(old, fresh);
    copyState(old, fresh, said);
}

export function morphChildren(old: Element, fresh: ParentNode): void {
    const freshNodes = [...fresh.childNodes];
    freshNodes.forEach((node, index) => {
        const present = old.childNodes[index];
        if (present === undefined) {
            old.append(node);
        } else if (present instanceof Element && node instanceof Element && alike(present, node)) {
            morph(present, node);
        } else if (present instanceof Text && node instanceof Text) {
            present.data = node.data;
        } else {
            present.replaceWith(node);
        }
    });
    while (old.childNodes.length > freshNodes.length) {
        old.lastChild!.remove();
    }
}

function alike(old: Element, fresh: Element): boolean {
    return old.nodeName === fresh.nodeName
        && old.getAttribute("type") === fresh.getAttribute("type");
}

function copyAttributes(old: Element, fresh: Element): void {
    for (const { name } of [...old.attributes]) {
        if (name !== "style" && name !== "open" && !fresh.hasAttribute(name)) {
            old.removeAttribute(name);
        }
    }
    for (const { name, value } of fresh.attributes) {
        if (name !== "style" && old.getAttribute(name) !== value) {
            old.setAttribute(name, value);
        }
    }
    if (old instanceof HTMLElement && fresh instanceof HTMLElement
        && old.style.cssText !== fresh.style.cssText) {
        old.style.cssText = fresh.style.cssText;
    }
}

/** A field shows this while nobody has changed it. */
function defaultOf(field: Element): string | null {
    if (field instanceof HTMLSelectElement) {
        return [...field.options].find((option) => option.defaultSelected)?.value ?? null;
    }
    return field instanceof HTMLInputElement ? field.defaultValue : null;
}

/**
 * A person's input isn't among the attributes of its field. A field in use keeps it as long as the
 * text says the same as before, and so does one that says nothing of the text.
 */
function copyState(old: Element, fresh: Element, said: string | null): void {
    if (old === document.activeElement && said === defaultOf(fresh)) {
        return;
    }
    if (!(fresh instanceof HTMLInputElement) || fresh.hasAttribute("value")) {
        showDefault(old);
    }
}

/** Makes a field show what the text says, whatever a person has put into it. */
export function showDefault(field: Element): void {
    if (field instanceof HTMLInputElement && field.value !== field.defaultValue) {
        field.value = field.defaultValue;
    } else if (field instanceof HTMLSelectElement) {
        field.selectedIndex = [...field.options].findIndex((option) => option.defaultSelected);
    }
}
