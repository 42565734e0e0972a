import { h, refill } from "../dom.js";
import type { PatternEditor } from "../editor/pattern_editor.js";
import type { Finding, Reading } from "../engine/index.js";
import { severityIcon } from "../icons.js";
import { en } from "../../texts/en.js";
import type { Workbench } from "../workbench.js";

const mostShown = 50;

function findingItem(finding: Finding, index: number, editor: PatternEditor): HTMLElement {
    const { place, severity, fix } = finding;
    const words = en.findings.severity[severity];
    return h("li", { class: `finding ${severity}` },
        h("button", {
            class: "plain", "data-key": `finding-${index}`,
            click: () => editor.goTo(place.from, place.to),
        }, severityIcon(severity), h("span", {},
            h("span", { class: "where" }, en.findings.place(words, place.line)), " ",
            finding.message,
            finding.hint !== "" && h("span", { class: "hint" }, en.findings.hint(finding.hint)))),
        fix !== null && h("button", {
            class: "small", "data-key": `fix-${index}`,
            click: () => editor.applyEdits([fix]),
        }, en.findings.fix(fix.insert)));
}

/** Tells in one sentence how a text stands; a live region repeats it. */
function summaryOf({ counts, runs }: Reading): string {
    const summary = en.findings.summary(counts.errors, counts.warnings, counts.notes);
    return runs ? summary : en.findings.refused(summary);
}

/** Takes all hints that are certain, as "pelkraft pattern fix" does. */
async function fixAll(workbench: Workbench, editor: PatternEditor): Promise<void> {
    const { text } = editor;
    const fixed = await workbench.ask(workbench.engine.fixed(text));
    if (fixed !== null && !fixed.isGivenUp && text === editor.text) {
        editor.replaceText(fixed.text);
    }
}

/** All findings of the text as a list below the editor. */
export function findingsList(workbench: Workbench, editor: PatternEditor): HTMLElement {
    const heading = h("h2", {}, en.findings.title);
    const summary = h("p", { class: "summary", role: "status" });
    const list = h("ol", { class: "findings" });
    const all = h("button", { class: "small", click: () => void fixAll(workbench, editor) },
        en.findings.fixAll);
    workbench.reading.follow((reading) => {
        const findings = reading?.result.findings ?? [];
        const words = reading === null ? en.findings.waiting : summaryOf(reading.result);
        if (summary.textContent !== words) {
            summary.textContent = words;
        }
        refill(list, ...findings.slice(0, mostShown)
            .map((finding, index) => findingItem(finding, index, editor)),
        findings.length > mostShown
            && h("li", {}, en.findings.more(findings.length - mostShown)));
        list.hidden = findings.length === 0;
        all.hidden = findings.filter(({ fix }) => fix !== null).length < 2;
    });
    return h("section", { class: "found", "aria-label": en.findings.title }, heading, summary, list,
        all);
}
