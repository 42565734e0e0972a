import { autocompletion, completionKeymap } from "@codemirror/autocomplete";
import { defaultKeymap, history, historyKeymap, redo, undo } from "@codemirror/commands";
import { forEachDiagnostic, lintGutter, lintKeymap, setDiagnostics, type Diagnostic }
    from "@codemirror/lint";
import { EditorSelection, EditorState } from "@codemirror/state";
import { drawSelection, EditorView, highlightActiveLine, highlightActiveLineGutter, keymap,
    lineNumbers, type ViewUpdate } from "@codemirror/view";

import type { Edit, Finding } from "../engine/index.js";
import { h } from "../dom.js";
import { smallest } from "../pattern/edits.js";
import { en } from "../../texts/en.js";
import { completePattern } from "./completions.js";
import { explanations } from "./explanations.js";
import { patternLanguage } from "./language.js";
import { theme } from "./theme.js";

const severities = { error: "error", warning: "warning", note: "info" } as const;

function diagnosticOf(finding: Finding, length: number): Diagnostic {
    const from = Math.min(finding.place.from, length);
    const to = Math.min(Math.max(finding.place.to, from), length);
    const { fix } = finding;
    return {
        from,
        to,
        severity: severities[finding.severity],
        message: finding.message,
        renderMessage: () => h("div", {},
            h("strong", {}, `${en.findings.severity[finding.severity]}: `), finding.message,
            finding.hint !== "" && h("div", {}, en.findings.hint(finding.hint))),
        actions: fix === null ? [] : [{
            name: en.findings.fix(fix.insert),
            // The text may have changed since, and the place moved with it.
            apply: (view, start, end) => view.dispatch({
                changes: { from: start + fix.from - from, to: end + fix.to - to,
                    insert: fix.insert },
                userEvent: "input.fix",
            }),
        }],
    };
}

/** Takes the first fix of what is found at the cursor. */
function fixAtCursor(view: EditorView): boolean {
    const { head } = view.state.selection.main;
    let taken = false;
    forEachDiagnostic(view.state, (diagnostic, from, to) => {
        if (!taken && diagnostic.actions?.[0] !== undefined && head >= from && head <= to) {
            taken = true;
            diagnostic.actions[0].apply(view, from, to);
        }
    });
    return taken;
}

/**
 * The editor of a pattern text. It lives in a shadow root, where its styles need no exception from
 * the page's policy. The key Tab leaves it.
 */
export class PatternEditor extends HTMLElement {
    readonly #view: EditorView;
    onChange: (text: string) => void = () => {};
    onCursor: (place: number) => void = () => {};
    /** Asked for with the key that goes from a line to its bar. */
    onShow: () => boolean = () => false;

    constructor(label: string, text: string) {
        super();
        const root = this.attachShadow({ mode: "open" });
        this.#view = new EditorView({
            root,
            parent: root,
            state: EditorState.create({ doc: text, extensions: this.#extensions(label) }),
        });
    }

    #extensions(label: string) {
        return [
            lineNumbers(), lintGutter(), history(), drawSelection(), highlightActiveLine(),
            highlightActiveLineGutter(), patternLanguage, explanations, theme,
            autocompletion({ override: [completePattern], icons: false }),
            EditorState.phrases.of(en.editor.phrases),
            EditorView.contentAttributes.of({
                "aria-label": label, "aria-multiline": "true", "tabindex": "0",
                "spellcheck": "false", "autocapitalize": "off", "autocorrect": "off",
            }),
            EditorView.updateListener.of((update) => this.#tell(update)),
            keymap.of([
                { key: "Mod-.", run: fixAtCursor },
                { key: "Mod-Enter", run: () => this.onShow() },
                ...lintKeymap, ...completionKeymap, ...historyKeymap, ...defaultKeymap,
            ]),
        ];
    }

    #tell(update: ViewUpdate): void {
        if (update.docChanged) {
            this.onChange(this.text);
        }
        if (update.docChanged || update.selectionSet) {
            this.onCursor(update.state.selection.main.head);
        }
    }

    get text(): string {
        return this.#view.state.doc.toString();
    }

    get selectedText(): string {
        const { from, to } = this.#view.state.selection.main;
        return this.#view.state.sliceDoc(from, to);
    }

    /** The number of the line that holds a place of the text, from 1. */
    lineNumber(place: number): number {
        const { doc } = this.#view.state;
        return doc.lineAt(Math.min(place, doc.length)).number;
    }

    /** Takes another text; the old one comes back with undo. */
    replaceText(text: string): void {
        this.#view.dispatch({
            changes: { from: 0, to: this.#view.state.doc.length, insert: text },
            selection: EditorSelection.cursor(0),
            userEvent: "input.replace",
        });
    }

    /** Writes what was changed beside the text, as one step to undo. */
    applyEdits(edits: readonly Edit[]): void {
        const { text } = this;
        const changes = edits.map((edit) => smallest(text, edit));
        this.#view.dispatch({ changes, userEvent: "input.table" });
    }

    /** Takes the last change back, wherever it was made; false if there is none. */
    undo(): boolean {
        return undo(this.#view);
    }

    /** Makes the change again that was taken back last; false if there is none. */
    redo(): boolean {
        return redo(this.#view);
    }

    showFindings(findings: readonly Finding[]): void {
        const { state } = this.#view;
        const diagnostics = findings.map((finding) => diagnosticOf(finding, state.doc.length));
        this.#view.dispatch(setDiagnostics(state, diagnostics));
    }

    /** Goes to a piece of the text and shows it. */
    goTo(from: number, to = from): void {
        const { length } = this.#view.state.doc;
        const selection = EditorSelection.range(Math.min(from, length), Math.min(to, length));
        this.#view.dispatch({
            selection,
            effects: EditorView.scrollIntoView(selection, { y: "center" }),
        });
        this.#view.focus();
    }

    override focus(): void {
        this.#view.focus();
    }
}

customElements.define("pattern-editor", PatternEditor);
