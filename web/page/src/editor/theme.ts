import { HighlightStyle, syntaxHighlighting } from "@codemirror/language";
import { EditorView } from "@codemirror/view";
import { tags } from "@lezer/highlight";

const underline = (style: string, colour: string) => ({
    backgroundImage: "none",
    textDecoration: `underline ${style} var(${colour})`,
    textDecorationSkipInk: "none",
    textUnderlineOffset: "3px",
    textDecorationThickness: style === "wavy" ? "1.5px" : "2px",
});

/** The page's colours, which reach into the shadow root as custom properties. */
const sheet = EditorView.theme({
    "&": { height: "100%", color: "var(--ink)", backgroundColor: "transparent" },
    "&.cm-focused": { outline: "none" },
    ".cm-scroller": { fontFamily: "var(--mono)", fontSize: "0.875rem", lineHeight: "1.6" },
    ".cm-content": { caretColor: "var(--ink)", padding: "0.75rem 0" },
    ".cm-cursor": { borderLeftColor: "var(--ink)", borderLeftWidth: "2px" },
    ".cm-gutters": {
        backgroundColor: "transparent", color: "var(--soft)", border: "none",
        fontVariantNumeric: "tabular-nums",
    },
    ".cm-activeLine, .cm-activeLineGutter": { backgroundColor: "var(--wash)" },
    ".cm-activeLineGutter": { color: "var(--ink)" },
    "&.cm-focused > .cm-scroller > .cm-selectionLayer .cm-selectionBackground": {
        backgroundColor: "var(--selection)",
    },
    ".cm-selectionBackground": { backgroundColor: "var(--selection)" },
    ".cm-tooltip": {
        backgroundColor: "var(--sheet)", color: "var(--ink)", border: "1px solid var(--rule)",
        borderRadius: "4px", maxWidth: "min(32rem, 92vw)", fontFamily: "var(--sans)",
        fontSize: "0.875rem", boxShadow: "0 4px 16px rgb(0 0 0 / 18%)",
    },
    ".cm-tooltip-autocomplete > ul > li": { fontFamily: "var(--mono)" },
    ".cm-tooltip-autocomplete > ul > li[aria-selected]": {
        backgroundColor: "var(--accent)", color: "var(--on-accent)",
    },
    ".cm-diagnostic": { padding: "0.5rem 0.75rem", borderLeftWidth: "4px" },
    ".cm-diagnostic-error": { borderLeftColor: "var(--error)" },
    ".cm-diagnostic-warning": { borderLeftColor: "var(--warning)" },
    ".cm-diagnostic-info": { borderLeftColor: "var(--note)" },
    ".cm-diagnosticAction": {
        backgroundColor: "var(--accent)", color: "var(--on-accent)", borderRadius: "3px",
        padding: "0.25rem 0.6rem", margin: "0.4rem 0.5rem 0 0", fontSize: "0.8125rem",
    },
    ".cm-lintRange-error": underline("wavy", "--error"),
    ".cm-lintRange-warning": underline("dashed", "--warning"),
    ".cm-lintRange-info": underline("dotted", "--note"),
    ".cm-lintRange-active": { backgroundColor: "var(--wash)" },
    ".explanation": { padding: "0.5rem 0.75rem" },
    ".explanation p": { margin: "0" },
    ".explanation p + p": { marginTop: "0.35rem" },
    ".explanation strong": { fontFamily: "var(--mono)", fontWeight: "600" },
});

const colours = HighlightStyle.define([
    { tag: tags.definitionKeyword, color: "var(--code-keyword)", fontWeight: "600" },
    { tag: tags.keyword, color: "var(--code-keyword)" },
    { tag: tags.variableName, color: "var(--code-name)" },
    { tag: tags.number, color: "var(--code-value)" },
    { tag: tags.labelName, color: "var(--ink)", fontWeight: "700" },
    { tag: tags.operator, color: "var(--code-weight)" },
    { tag: tags.attributeName, color: "var(--soft)" },
    { tag: tags.lineComment, color: "var(--soft)", fontStyle: "italic" },
    { tag: tags.invalid, color: "var(--soft)", textDecoration: "line-through" },
]);

export const theme = [sheet, syntaxHighlighting(colours)];
