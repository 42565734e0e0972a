/** All that the page says, in English. The library and the program say the rest in their words. */

const plural = (count: number, one: string, many: string) => `${count} ${count === 1 ? one : many}`;

function grouped(count: number): string {
    return count.toLocaleString("en");
}

export const en = {
    title: "Pelkraft: write a dot pattern",
    brand: "Pelkraft",
    subtitle: "Dot patterns",
    skip: "Skip to the pattern text",

    // The text that "New" begins with; it is a whole pattern.
    newPattern: `DotWeavePattern
VERSION 3

# The inks of the machine, and the colours of the picture.
BEGIN_OUT_INKS Black END_OUT_INKS
BEGIN_IN_COLORS Black END_IN_COLORS

BEGIN_IN_COLOR Black
# The inks that this colour prints with; the first one is at position 0.
BEGIN_INKS Black END_INKS
BEGIN_VALUES
# At step 1 every other pixel gets a drop, at step 2 each one.
1 1:1 0-255 0-0
2 1   0-255
END_VALUES
END_IN_COLOR
`,

    menu: {
        examples: "Examples",
        file: "Open a file…",
        fresh: "New",
        label: "Patterns",
    },

    examples: {
        one_drop: "One drop",
        drop_sizes: "Three drop sizes",
        weights: "Weights",
        light_ink: "A second ink",
        two_colours: "A second colour",
        percent: "Percentages",
        six_ink: "Six inks for a whole page",
    },

    editor: {
        label: "Pattern text",
        place: (line: number) => `Line ${line}`,
        placeOf: (line: number, step: string) => `Line ${line}: ${step}`,
        show: "Show its shares",
        keys: "Keys",
        keyList: [
            ["Tab", "leaves the text, and Shift+Tab goes back"],
            ["Escape", "closes suggestions and explanations"],
            ["Ctrl+Space", "suggests keywords and names"],
            ["F8", "goes to the next finding and explains it"],
            ["Ctrl+.", "takes the fix of the finding at the cursor"],
            ["Ctrl+Enter", "goes from a value line to its bars; Enter on the bars goes back"],
            ["Ctrl+Z", "takes a change back, in the text and in the table; Ctrl+Y makes it again"],
        ],
        phrases: {
            "Control character": "Control character",
            "Selection deleted": "Selection deleted",
            "Completions": "Suggestions",
            "current match": "current match",
            "Diagnostics": "Findings",
            "No diagnostics": "No findings",
            "close": "close",
        },
    },

    hover: {
        step: (colour: string, step: number) => `${colour}, step ${step}`,
        alternative: (share: string, ink: string, value: number) =>
            value === 0 ? `${share}: no drop of ${ink}` : `${share}: ${ink} ${value}`,
    },

    keywords: {
        DotWeavePattern: "The first word of every pattern.",
        VERSION: "2 or 3. It stands before the first value line; 3 makes finer shares than 2.",
        RANDOM_SEED: "Where the draws start; 42 if it isn't given. Another seed gives other "
            + "pixels with the same shares.",
        BEGIN_OUT_INKS: "The inks of the machine, up to 16.",
        END_OUT_INKS: "Ends the list of the machine's inks.",
        BEGIN_IN_COLORS: "The colours of the picture, up to 16.",
        END_IN_COLORS: "Ends the list of the picture's colours.",
        BEGIN_IN_COLOR: "Describes one colour of the picture: its name, its inks and its values.",
        END_IN_COLOR: "Ends the description of an in-colour.",
        BEGIN_INKS: "The inks that this in-colour uses. The first is at position 0.",
        END_INKS: "Ends the list of inks of this in-colour.",
        BEGIN_VALUES: "A line for each step: the step, the weights, and for each weight an entry "
            + "position-value.",
        END_VALUES: "Ends the value lines of this in-colour.",
    },

    findings: {
        title: "Findings",
        waiting: "Reading the pattern…",
        severity: { error: "Error", warning: "Warning", note: "Note" },
        place: (severity: string, line: number) => `${severity} in line ${line}:`,
        hint: (hint: string) => `Hint: ${hint}`,
        fix: (insert: string) => (insert === "" ? "Remove it" : `Write ${insert}`),
        fixAll: "Take all fixes",
        more: (count: number) => `and ${plural(count, "more finding", "more findings")}`,
        summary: (errors: number, warnings: number, notes: number) => {
            if (errors + warnings + notes === 0) {
                return "Nothing is wrong with this pattern.";
            }
            const parts = [
                errors > 0 && plural(errors, "error", "errors"),
                warnings > 0 && plural(warnings, "warning", "warnings"),
                notes > 0 && plural(notes, "note", "notes"),
            ].filter((part) => part !== false);
            return `${parts.join(", ")}.`;
        },
        refused: (summary: string) => `This text makes no dots yet: ${summary}`,
    },

    tabs: {
        label: "Views of the pattern",
        table: "Table",
        shares: "Shares",
        dots: "Dots",
        compare: "Compare",
        take: "Take away",
    },

    table: {
        lead: "The same pattern as the text: a change here writes there. A step is how dark the "
            + "picture is; each of its alternatives comes at its share of the pixels.",
        signs: "The signs − and × remove what they stand at.",
        undo: "Undo",
        redo: "Redo",
        undone: "The last change is undone.",
        redone: "The change is made again.",
        removed: (what: string) => `Removed: ${what}. Undo brings it back.`,
        inColour: (name: string) => `in-colour ${name}`,
        inkOfMachine: (ink: string, uses: number) => `${ink} as an ink of the machine; ${uses === 0
            ? "nothing printed it" : `${plural(uses, "alternative", "alternatives")} that printed it `
            + `${uses === 1 ? "gives" : "give"} no drop now`}`,
        inkOfColour: (ink: string, colour: string) => `${ink} as an ink of ${colour}`,
        nothingToUndo: "There is nothing to undo.",
        nothingToRedo: "There is nothing to redo.",
        outInks: "Inks of the machine",
        inkName: (number: number) => `Name of ink ${number} of the machine`,
        newInk: "Name of a new ink",
        removeOutInk: (ink: string, uses: number) => `Remove ${ink} from the machine${uses === 0 ? ""
            : `, which ${plural(uses, "alternative prints", "alternatives print")}`}`,
        addInk: "Add an ink",
        addInkTo: (colour: string) => `Add an ink to ${colour}`,
        version: "Random source",
        versions: { 2: "Version 2", 3: "Version 3, finer" },
        seed: "Seed",
        newColour: "Name of a new in-colour",
        addColour: "Add an in-colour",
        nameOf: (colour: string) => `Name of in-colour ${colour}`,
        removeColour: (colour: string) => `Remove in-colour ${colour}`,
        feeds: "prints with",
        removeInk: (ink: string, colour: string) => `Take ${ink} from ${colour}`,
        positionOf: "position ",
        noInk: (position: number) => `position ${position}: no ink`,
        head: {
            step: "Step", ink: "Ink", value: "Value", weight: "Weight", share: "Share %",
            tools: "Change",
        },
        caption: (colour: string) => `Steps of ${colour}`,
        step: (colour: string, step: number) => `${colour} step ${step}`,
        alternative: (colour: string, step: number, number: number) =>
            `${colour} step ${step}, alternative ${number}`,
        stepOf: (name: string) => `Number of ${name}`,
        inkOf: (name: string) => `Ink of ${name}`,
        valueOf: (name: string) => `Value of ${name}`,
        weightOf: (name: string) => `Weight of ${name}`,
        shareOf: (name: string) => `Share of ${name} in percent`,
        always: "always",
        addAlternative: (name: string) => `Add an alternative to ${name}`,
        removeAlternative: (name: string) => `Remove ${name}`,
        removeStep: (name: string) => `Remove ${name}`,
        goToLine: (line: number) => `Go to line ${line}`,
        // They stand beside the signs of buttons, whose labels hold them too.
        line: (line: number) => `line ${line}`,
        word: { alternative: "alternative", step: "step", colour: "in-colour" },
        addStep: (step: number) => `Add step ${step}`,
        newStep: (ink: string, value: number, goesOn: boolean) => `It begins with ${ink} ${value} at `
            + `every pixel${goesOn ? ", which goes on from the last step" : ""}.`,
        unfinished: "This line isn't finished.",
        noValues: "It has no value lines yet.",
        noHeader: "A pattern begins with the word DotWeavePattern.",
        begin: "Begin a new pattern",
        noInks: "The pattern has no inks yet.",
        undescribed: (colour: string) => `Nothing says yet what ${colour} does.`,
        describe: "Describe it",
        tooLarge: "This text is larger than any pattern can be (1 MB), so it has no table.",
    },

    shares: {
        lead: "The upper bar of each pair is what the text asks for, the lower one what the pixels "
            + "get. A bar leads to its line.",
        nothing: "There are no shares to show until the text has an in-colour with values.",
        head: {
            step: "Step", ink: "Ink", value: "Value", expected: "Expected", measured: "Measured",
            power: "Power",
        },
        step: (step: number) => `step ${step}`,
        piece: (value: number, share: string) => `${value}: ${share}`,
        measured: "measured ",
        goTo: (line: number) => `Go to line ${line}`,
        tableOf: (colour: string) => `Shares of ${colour} as a table`,
        curves: "Ink and grain",
        inkLead: "The mean ink is the tone that the dither takes a step for, unless told otherwise.",
        inkCounts: (ink: string, strength: number) =>
            `In it ${ink} counts ${strength} of a full ink.`,
        inkTitle: (colour: string) => `Mean ink of ${colour} by step, in percent of full ink`,
        inkLabel: (colour: string) =>
            `Curve of the mean ink of ${colour} over its steps; the table below has the numbers`,
        inkTable: (colour: string) => `Mean ink of ${colour} as a table`,
        spectrumTitle: (colour: string, step: number, ink: string) =>
            `Spectrum of ${ink}, ${colour} step ${step}`,
        spectrumLabel: (title: string, highest: string) =>
            `${title}: its highest power is ${highest}; the table below has the numbers`,
        spectrumTable: "Spectrum as a table",
        spectrumLead: "Waves that are much above 1 would be seen as stripes or clouds.",
        waves: "Waves on 256 pixels",
    },

    dots: {
        viewer: "Dots; the arrow keys move the part that is seen",
        picture: "Picture",
        ramp: "Ramp",
        patches: "Patches",
        own: "Own picture",
        file: "PNG, JPEG or TIFF",
        noPicture: "No picture is chosen yet. Choose a PNG, JPEG or TIFF file above, or drop one here. "
            + "An RGB picture becomes C, M, Y = 255 − R, G, B and K = 0.",
        noPictureElsewhere: "No picture is chosen yet. Choose one in the view Dots.",
        zoom: "Size of a dot",
        shown: "Show",
        allInks: "All inks in print",
        only: (ink: string) => `${ink} alone`,
        levels: "Tones",
        levelNames: {
            automatic: "As the program does", dither: "Dithered", quantize: "Quantized",
            raw: "Samples are steps",
        },
        tone: "Ink of the steps",
        toneNames: { coverage: "By the pattern", equal: "Equal distances" },
        press: "On press",
        order: "Printed in this order",
        word: { earlier: "earlier", later: "later" },
        earlier: (ink: string) => `Print ${ink} earlier`,
        later: (ink: string) => `Print ${ink} later`,
        gain: "Dot gain",
        gainSaid: (gain: number) => `half a tone covers ${50 + gain} %`,
        origin: (axis: string) => `First pixel, ${axis}`,
        label: (inks: string, { x, y, width, height }: {
            x: number; y: number; width: number; height: number;
        }, zoom: number) =>
            `${inks}: ${width} x ${height} dots from ${x}, ${y}, at ${zoom} to 1`,
        nothing: "No dots",
        refused: "There are dots as soon as the text can be loaded: see the findings.",
        numbers: "What is seen, in numbers",
        numbersOf: (width: number, height: number) => `Inks on the ${width} x ${height} dots seen`,
        numberHeads: ["Ink", "Of full ink", "Mean value", "Values and their shares"],
        valueShare: (value: number, share: string) => `${value}: ${share}`,
    },

    compare: {
        title: "Differences",
        zoom: "Size of a dot in both",
        lead: "A second pattern beside this one: what they do in different ways, and how that looks.",
        editor: "Other pattern text",
        take: "Take this text as it is now",
        example: "Example to compare with",
        open: "Open",
        file: "Open a file…",
        sameText: "Both texts are the same.",
        count: (count: number) => (count === 0 ? "The texts differ, but they do the same."
            : `${plural(count, "difference", "differences")} in what they do.`),
        heads: ["Difference", "Place", "This pattern", "Other pattern"],
        kinds: {
            "random-source": "Random source", "seed": "Seed", "in-colours": "In-colours",
            "out-inks": "Inks", "steps": "Steps", "alternative": "Alternative", "share": "Share",
            "mean-ink": "Mean ink",
        },
        letters: "Differences in letters",
        refused: (line: number, message: string) => `No dots yet. Line ${line}: ${message}.`,
        dotsOfThis: "Dots of this pattern",
        dotsOfOther: "Dots of the other pattern",
    },

    take: {
        link: "A link with the pattern",
        linkLead: (length: number) =>
            `The pattern itself is in the link, ${length} characters long; no server keeps it.`,
        linkTooLong: "This text is too long for a link. Save it as a file.",
        copyLink: "Copy the link",
        command: "The same dots by a command",
        commandLead: "With the two files beside it, this line gives the same bytes as the page.",
        copyCommand: "Copy as command",
        saveText: "Save pattern.txt",
        savePicture: "Save picture.tif",
        files: "Other files",
        saveSvg: "Plot as SVG",
        savePng: "Dots as PNG",
        saveSarif: "Findings as SARIF",
        copied: "Copied.",
        notCopied: "The browser doesn't let the page copy: select the text and copy it yourself.",
        saved: (name: string) => `Saved as ${name}.`,
    },

    status: {
        working: "Working…",
        stop: "Stop",
        stopped: "Stopped. The next change begins anew.",
        dismiss: "Dismiss",
        notKept: "This browser doesn't let the page keep your text: save it before you leave.",
        putAside: "Another pattern took the place of your text, which is put aside.",
        bringBack: "Bring it back",
        linkFaults: {
            damaged: "The link is damaged: no pattern could be read from it.",
            newer: "The link was made by a newer page. Load this page anew.",
            large: "The link holds a text that is too large for a pattern.",
        },
    },
} as const;

/** The engine says this where neither the library nor the program has words for it. */
export const engineTexts = {
    textTooLarge: (bytes: number, most: number) =>
        `The text has ${grouped(bytes)} bytes; a pattern may have up to ${grouped(most)}.`,
    fileIsBinary: (line: number) =>
        `This file is no text: line ${grouped(line)} holds bytes that no text in UTF-8 has. ` +
        "Open a pattern text, or save it as UTF-8 first.",
    fileIsWide: (code: string) =>
        `This file is text in ${code}, which patterns aren't read from; save it as UTF-8 first.`,
    unknownPicture: "This file is no picture that the page reads: those are PNG, JPEG and TIFF.",
    damagedPicture: (kind: string, why: string) => `This ${kind} file is damaged: ${why}.`,
    cannotDecode: (kind: string) =>
        `The browser can't read this ${kind} file. It may be damaged or cut off.`,
    pictureTooLarge: (width: number, height: number, channels: number, most: number) =>
        `The picture has ${grouped(width)} × ${grouped(height)} pixels of ${channels} inks, which ` +
        `is ${grouped(width * height * channels)} bytes; this page takes up to ` +
        `${grouped(most)}. Cut it, or run the command on the whole.`,
    fileTooLarge: (bytes: number, most: number) =>
        `The file has ${grouped(bytes)} bytes; this page opens pictures of up to ` +
        `${grouped(most)}. Cut it, or run the command on the whole.`,
    tooManyDots: (width: number, height: number, inks: number, most: number) =>
        `The part has ${grouped(width)} × ${grouped(height)} pixels of ${inks} inks, which are ` +
        `${grouped(width * height * inks)} dots; this page shows up to ${grouped(most)} at once. ` +
        "Choose a smaller one.",
    tooManyPixels: (width: number, height: number, most: number) =>
        `The part has ${grouped(width)} × ${grouped(height)} pixels; this page shows up to ` +
        `${grouped(most)} at once. Choose a smaller one.`,
    badSize: (width: number, height: number) =>
        `A picture can't have ${width} × ${height} pixels; at least one each way is needed.`,
    badWindow: "The part lies outside the picture.",
    badNumber: (name: string, value: number) =>
        `The origin's ${name} can't be ${value}; it must be a whole number that 32 bits hold.`,
    badGain: (gain: number) => `The gain can't be ${gain} %; it must be from 0 to 50 %.`,
    badColour: (colour: string) =>
        `The word "${colour}" is no colour; colours look like #009ee0.`,
    unknownInk: (name: string) => `The pattern has no out-ink "${name}", or it is named twice.`,
    tiffUnsupported: (what: string) =>
        `This TIFF file has ${what}, which the page doesn't read. It reads files of 8 and 16 bits ` +
        "a sample, grey, RGB and inks, not compressed or by LZW, deflate or PackBits.",
    tiffTiles: "tiles in place of rows",
    tiffCompression: (code: number) => `a compression of number ${code}`,
    tiffBits: (bits: number) => `samples of ${bits} bits`,
    tiffFormat: "samples that aren't whole numbers",
    tiffColours: (code: number) => `colours of kind ${code}`,
    noteRgb: (kind: string) => `${kind}, RGB: C, M, Y are 255 less R, G, B, and K is 0`,
    noteGrey: (kind: string) => `${kind}, grey: K is 255 less the grey`,
    noteInks: (kind: string) => `${kind}, inks`,
    noteSixteen: "16 bits became 8",
    noteAlpha: "what lets paper through was laid on white",
    noteExtras: (count: number) => `${count} channels beside the colours were left out`,
    noteFirstPage: "only the first page was read",
    workerDied: (why: string) =>
        `The work broke off: ${why}. The next change begins anew; if it breaks off again, the ` +
        "text or the picture takes more memory than there is.",
    workerEnded: "its worker ended",
    moduleEnded: (code: number) => `it ended with ${code}`,
    noMemory: (bytes: number) => `there is no memory for ${grouped(bytes)} bytes`,
    noCanvas: "there is no memory for a canvas",
    superseded: "A newer request took its place.",
    aborted: "It was stopped.",
    closed: "The engine is closed.",
    notLoaded: (file: string) => `${file} couldn't be loaded; is the network there?`,
};
