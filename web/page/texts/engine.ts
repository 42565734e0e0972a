/** The engine says this where neither the library nor the program has words for it. */

function grouped(count: number): string {
    return count.toLocaleString("en");
}

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
    superseded: "A newer request took its place.",
    aborted: "It was stopped.",
    closed: "The engine is closed.",
    notLoaded: (file: string) => `${file} couldn't be loaded; is the network there?`,
};
