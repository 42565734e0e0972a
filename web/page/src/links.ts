import { deflateSync, Inflate, inflateSync, strToU8 } from "fflate";

// The first byte of a link says how the rest is read. A version that has been given out is read for
// ever; the tests hold a link of each.
const version = 1;

// A pattern text has at most so many bytes for the program too.
const mostBytes = 1 << 20;

function base64url(bytes: Uint8Array): string {
    let letters = "";
    for (const byte of bytes) {
        letters += String.fromCharCode(byte);
    }
    return btoa(letters).replaceAll("+", "-").replaceAll("/", "_").replace(/=+$/, "");
}

function bytesOf(letters: string): Uint8Array {
    const plain = atob(letters.replaceAll("-", "+").replaceAll("_", "/"));
    return Uint8Array.from(plain, (letter) => letter.charCodeAt(0));
}

class TooLarge extends Error {}

// In pieces: a short link may stand for very much text.
function requireSmall(packed: Uint8Array): void {
    const pieceBytes = 1024;
    let length = 0;
    const stream = new Inflate((part) => {
        length += part.length;
        if (length > mostBytes) {
            throw new TooLarge();
        }
    });
    for (let start = 0; start < packed.length; start += pieceBytes) {
        stream.push(packed.subarray(start, start + pieceBytes));
    }
}

/** The hash of a link that holds the text, without its "#". */
export function encodeLink(text: string): string {
    const packed = deflateSync(strToU8(text), { level: 9 });
    const bytes = new Uint8Array(packed.length + 1);
    bytes[0] = version;
    bytes.set(packed, 1);
    return base64url(bytes);
}

/** Why a link holds no text that can be shown. */
export type LinkFault = "none" | "damaged" | "newer" | "large";

export type LinkAnswer =
    | { readonly text: string; readonly fault?: undefined }
    | { readonly text?: undefined; readonly fault: LinkFault };

/** Reads the hash of an address, with or without its "#". */
export function decodeLink(hash: string): LinkAnswer {
    const letters = hash.replace(/^#/, "");
    if (letters === "") {
        return { fault: "none" };
    }
    try {
        const bytes = bytesOf(letters);
        if (bytes[0] !== version) {
            return { fault: (bytes[0] ?? 0) > version ? "newer" : "damaged" };
        }
        const packed = bytes.subarray(1);
        if (packed.length === 0) {
            return { fault: "damaged" };
        }
        requireSmall(packed);
        const decoder = new TextDecoder("utf-8", { fatal: true, ignoreBOM: true });
        return { text: decoder.decode(inflateSync(packed)) };
    } catch (failure) {
        return { fault: failure instanceof TooLarge ? "large" : "damaged" };
    }
}
