import { svg } from "./dom.js";
import type { Severity } from "./engine/index.js";

/** A shape for each severity, so that nobody needs to tell colours apart. */
export function severityIcon(severity: Severity): SVGSVGElement {
    const shapes = {
        error: "M5 1h6l4 4v6l-4 4H5l-4-4V5z",
        warning: "M8 1l7.5 14H.5z",
        note: "M8 1a7 7 0 1 0 0 14A7 7 0 0 0 8 1z",
    };
    const marks = { error: "M5 5l6 6M11 5l-6 6", warning: "M8 6v4M8 12v1", note: "M8 7v5M8 4v1" };
    return svg("svg", { class: `icon ${severity}`, viewBox: "0 0 16 16", "aria-hidden": "true" },
        svg("path", { class: "shape", d: shapes[severity] }),
        svg("path", { class: "mark", d: marks[severity] }));
}

/** The cross in a circle by which printers lay one ink over the other. */
export function registerMark(): SVGSVGElement {
    return svg("svg", { class: "register", viewBox: "0 0 24 24", "aria-hidden": "true" },
        svg("circle", { cx: 12, cy: 12, r: 6.5 }), svg("path", { d: "M12 1v22M1 12h22" }),
        svg("circle", { class: "centre", cx: 12, cy: 12, r: 3 }));
}
