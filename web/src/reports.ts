import { textBytes } from "./checks.js";
import type { Memory } from "./memory.js";

export interface Finding {
    readonly severity: "note" | "warning" | "error";
    /** Short words joined by dashes, the same for the same kind of finding. */
    readonly kind: string;
    /** From 1; a character of several bytes counts once. */
    readonly line: number;
    readonly column: number;
    readonly message: string;
    readonly hint: string;
    readonly text: string;
}

export interface Alternative {
    readonly weight: number;
    readonly probability: number;
    readonly values: readonly {
        readonly position: number;
        readonly ink: string | null;
        readonly value: number;
    }[];
}

export interface InColor {
    readonly name: string;
    readonly described: boolean;
    readonly topStep: number | null;
    readonly feeds: readonly (string | null)[];
    readonly combinations: Use;
    readonly steps: readonly {
        readonly step: number;
        readonly listed: boolean;
        readonly alternatives: readonly Alternative[];
    }[];
}

export interface Use {
    readonly used: number;
    readonly limit: number;
}

/** What "pelkraft pattern explain --json" prints. */
export interface PatternReport {
    readonly file: string;
    readonly version: {
        readonly parser: number;
        readonly check: number | null;
        readonly generation: number;
    };
    readonly seed: number;
    readonly inColours: readonly InColor[];
    readonly outInks: readonly { readonly name: string; readonly fedBy: readonly string[] }[];
    readonly limits: {
        readonly combinations: Use;
        readonly obstacle?: string;
        readonly places?: Use & { readonly combination: number };
        readonly commonDenominator?: number;
        readonly fieldEntries?: number;
    };
    readonly engines: readonly {
        readonly name: string;
        readonly loads: boolean;
        readonly refusal: string | null;
    }[];
    readonly findings: readonly Finding[];
}

export function explainPattern(
    memory: Memory,
    text: string | Uint8Array,
    file = "pattern",
): PatternReport {
    const bytes = textBytes(text, "the pattern text");
    const name = textBytes(file, "the file's name");
    const place = 4 + bytes.length;
    return memory.withBlock(place + name.length, (block) => {
        memory.write(block + 4, bytes, bytes.length);
        memory.write(block + place, name, name.length);
        const { explain_pattern, release } = memory.exports;
        memory.refuse(explain_pattern(block + 4, bytes.length - 1, block + place, block));
        const report = memory.readNumber(block);
        try {
            return JSON.parse(memory.readText(report)) as PatternReport;
        } finally {
            release(report);
        }
    });
}
