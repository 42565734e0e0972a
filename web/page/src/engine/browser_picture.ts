import type { Picture } from "./api.js";
import { engineTexts } from "../../texts/en.js";
import { requireSize } from "./built_in.js";
import { sizeOf } from "./picture_header.js";
import { Refusal } from "./refusal.js";

export const rgbChannels = ["Cyan", "Magenta", "Yellow", "Black"] as const;

// Pixels that are copied out of the browser's picture at once.
const stripPixels = 1 << 20;

/** Writes pixels of red, green and blue as amounts of ink. */
export function inksOfRgb(
    colours: ArrayLike<number>, stride: number, pixels: number, samples: Uint8Array, start: number,
): void {
    for (let pixel = 0; pixel < pixels; ++pixel) {
        for (let colour = 0; colour < 3; ++colour) {
            samples[start + pixel * 4 + colour] = 255 - (colours[pixel * stride + colour] ?? 0);
        }
    }
}

// The numbers of the file, whatever profile it names: inks are told apart by numbers.
async function decode(bytes: Uint8Array, kind: string): Promise<ImageBitmap> {
    try {
        return await createImageBitmap(new Blob([bytes as BlobPart]), {
            colorSpaceConversion: "none", premultiplyAlpha: "none",
        });
    } catch {
        throw new Refusal(engineTexts.cannotDecode(kind));
    }
}

function copyStrips(bitmap: ImageBitmap, samples: Uint8Array): boolean {
    const { width, height } = bitmap;
    const rows = Math.max(1, Math.min(height, Math.floor(stripPixels / width)));
    const canvas = new OffscreenCanvas(width, rows);
    const context = canvas.getContext("2d", { willReadFrequently: true });
    if (context === null) {
        throw new RangeError(engineTexts.noCanvas);
    }
    let hasAlpha = false;
    for (let y = 0; y < height; y += rows) {
        context.clearRect(0, 0, width, rows);
        context.drawImage(bitmap, 0, -y);
        hasAlpha ||= isTransparent(context, width, Math.min(rows, height - y));
        context.globalCompositeOperation = "destination-over";
        context.fillStyle = "#fff";
        context.fillRect(0, 0, width, rows);
        context.globalCompositeOperation = "source-over";
        const count = Math.min(rows, height - y);
        const { data } = context.getImageData(0, 0, width, count);
        inksOfRgb(data, 4, width * count, samples, y * width * 4);
    }
    return hasAlpha;
}

function isTransparent(
    context: OffscreenCanvasRenderingContext2D, width: number, rows: number,
): boolean {
    const { data } = context.getImageData(0, 0, width, rows);
    for (let place = 3; place < data.length; place += 4) {
        if (data[place] !== 255) {
            return true;
        }
    }
    return false;
}

/** Reads a PNG or JPEG file by the browser's own decoder. */
export async function readBrowserPicture(
    kind: "PNG" | "JPEG", bytes: Uint8Array,
): Promise<Picture> {
    const size = sizeOf(kind, bytes);
    if (size === null) {
        throw new Refusal(engineTexts.cannotDecode(kind));
    }
    requireSize(size.width, size.height, rgbChannels.length);
    const bitmap = await decode(bytes, kind);
    try {
        const { width, height } = bitmap;
        const samples = new Uint8Array(width * height * rgbChannels.length);
        const notes = [engineTexts.noteRgb(kind)];
        if (copyStrips(bitmap, samples)) {
            notes.push(engineTexts.noteAlpha);
        }
        return { width, height, channels: rgbChannels, samples, notes };
    } finally {
        bitmap.close();
    }
}
