type Child = Node | string | number | null | undefined | false;
type Value = string | number | boolean | null | undefined | ((event: never) => void);
type Properties = Readonly<Record<string, Value>>;

function setProperty(element: Element, name: string, value: Value): void {
    if (typeof value === "function") {
        element.addEventListener(name, value as unknown as EventListener);
    } else if (value === true) {
        element.setAttribute(name, "");
    } else if (value !== false && value !== null && value !== undefined) {
        element.setAttribute(name, String(value));
    }
}

function fill<E extends Element>(element: E, properties: Properties, children: Child[]): E {
    for (const [name, value] of Object.entries(properties)) {
        setProperty(element, name, value);
    }
    element.append(...children
        .filter((child) => child !== null && child !== undefined && child !== false)
        .map((child) => (child instanceof Node ? child : String(child))));
    return element;
}

/** An element with its attributes, listeners (functions, by the event's name) and children. */
export function h<K extends keyof HTMLElementTagNameMap>(
    tag: K, properties: Properties = {}, ...children: Child[]
): HTMLElementTagNameMap[K] {
    return fill(document.createElement(tag), properties, children);
}

const svgNames = "http://www.w3.org/2000/svg";

export function svg<K extends keyof SVGElementTagNameMap>(
    tag: K, properties: Properties = {}, ...children: Child[]
): SVGElementTagNameMap[K] {
    return fill(document.createElementNS(svgNames, tag), properties, children);
}

/** The policy of the page allows styles that scripts set one by one, and no attribute. */
export function styled<E extends HTMLElement | SVGElement>(
    element: E, styles: Readonly<Record<string, string>>,
): E {
    for (const [name, value] of Object.entries(styles)) {
        element.style.setProperty(name, value);
    }
    return element;
}

let lastNumber = 0;

/** A name that no other element has. */
export function freshId(stem: string): string {
    return `${stem}-${++lastNumber}`;
}

/** Replaces what an element shows, and gives the focus back to what has the same key there. */
export function refill(element: Element, ...children: Child[]): void {
    const key = keyOfFocus(element);
    element.replaceChildren();
    fill(element, {}, children);
    if (key !== null) {
        const twin = element.querySelector<HTMLElement>(`[data-key="${CSS.escape(key)}"]`);
        (twin ?? element.querySelector<HTMLElement>("[data-key]"))?.focus({ preventScroll: true });
    }
}

/** Lets a live region speak: it does when its content changes, so the same sentence comes anew. */
export function announce(region: Element, sentence: string): void {
    refill(region, h("span", {}, sentence));
}

function keyOfFocus(element: Element): string | null {
    const focused = document.activeElement;
    return focused !== null && element.contains(focused) ? focused.getAttribute("data-key") : null;
}

/** Runs a function once nobody has called for this time. */
export function afterPause(milliseconds: number, run: () => void): () => void {
    let timer: ReturnType<typeof setTimeout> | undefined;
    return () => {
        clearTimeout(timer);
        timer = setTimeout(run, milliseconds);
    };
}
