/** The kinds of pictures that the page reads. */
export type PictureKind = "PNG" | "JPEG" | "TIFF";

export interface PictureSize {
    readonly width: number;
    readonly height: number;
}

const marks: readonly (readonly [PictureKind, readonly number[]])[] = [
    ["PNG", [0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a]],
    ["JPEG", [0xff, 0xd8, 0xff]],
    ["TIFF", [0x49, 0x49, 0x2a, 0]], ["TIFF", [0x4d, 0x4d, 0, 0x2a]],
    ["TIFF", [0x49, 0x49, 0x2b, 0]], ["TIFF", [0x4d, 0x4d, 0, 0x2b]],
];

export function kindOf(bytes: Uint8Array): PictureKind | null {
    const found = marks.find(([, mark]) => mark.every((byte, place) => bytes[place] === byte));
    return found?.[0] ?? null;
}

function pngSize(view: DataView): PictureSize | null {
    return view.byteLength < 24 ? null : { width: view.getUint32(16), height: view.getUint32(20) };
}

// Walks over the segments to the one that begins a frame.
function jpegSize(view: DataView): PictureSize | null {
    let at = 2;
    while (at + 9 <= view.byteLength && view.getUint8(at) === 0xff) {
        const marker = view.getUint8(at + 1);
        const isFrame = marker >= 0xc0 && marker <= 0xcf && ![0xc4, 0xc8, 0xcc].includes(marker);
        if (isFrame) {
            return { height: view.getUint16(at + 5), width: view.getUint16(at + 7) };
        }
        // Fill bytes may precede a marker.
        at += marker === 0xff ? 1 : 2 + view.getUint16(at + 2);
    }
    return null;
}

/**
 * The size that a PNG or JPEG file says it has: the browser would decode it whole before it told.
 */
export function sizeOf(kind: "PNG" | "JPEG", bytes: Uint8Array): PictureSize | null {
    const view = new DataView(bytes.buffer, bytes.byteOffset, bytes.byteLength);
    return kind === "PNG" ? pngSize(view) : jpegSize(view);
}
