import type { Picture } from "./api.js";
import { rgbChannels } from "./browser_picture.js";

const types = { ascii: 2, short: 3, long: 4 } as const;

interface Field {
    readonly tag: number;
    readonly type: keyof typeof types;
    readonly values: ArrayLike<number>;
}

const sizes = { ascii: 1, short: 2, long: 4 } as const;

function bytesOf({ type, values }: Field): Uint8Array {
    const bytes = new Uint8Array(values.length * sizes[type]);
    const view = new DataView(bytes.buffer);
    for (let index = 0; index < values.length; ++index) {
        const value = values[index] ?? 0;
        if (type === "ascii") {
            view.setUint8(index, value);
        } else if (type === "short") {
            view.setUint16(index * 2, value, true);
        } else {
            view.setUint32(index * 4, value, true);
        }
    }
    return bytes;
}

function inkFields(channels: readonly string[]): Field[] {
    const isCmyk = channels.length === rgbChannels.length &&
        channels.every((name, index) => name === rgbChannels[index]);
    if (isCmyk) {
        return [{ tag: 332, type: "short", values: [1] }];
    }
    const names = new TextEncoder().encode(channels.map((name) => `${name}\0`).join(""));
    return [
        { tag: 332, type: "short", values: [2] },
        { tag: 333, type: "ascii", values: names },
        { tag: 334, type: "short", values: [channels.length] },
    ];
}

function fieldsOf({ width, height, channels, samples }: Picture, dataStart: number): Field[] {
    return [
        { tag: 256, type: "long", values: [width] },
        { tag: 257, type: "long", values: [height] },
        { tag: 258, type: "short", values: channels.map(() => 8) },
        { tag: 259, type: "short", values: [1] },
        { tag: 262, type: "short", values: [5] },
        { tag: 273, type: "long", values: [dataStart] },
        { tag: 277, type: "short", values: [channels.length] },
        { tag: 278, type: "long", values: [height] },
        { tag: 279, type: "long", values: [samples.length] },
        { tag: 284, type: "short", values: [1] },
        ...inkFields(channels),
    ];
}

function even(place: number): number {
    return place + (place & 1);
}

/** A TIFF file of inks: not compressed, with the directory first and the samples in one strip. */
export function writeTiff(picture: Picture): Uint8Array {
    const count = fieldsOf(picture, 0).length;
    const directory = 8;
    const tail = directory + 2 + count * 12 + 4;
    const extra = fieldsOf(picture, 0)
        .map((field) => bytesOf(field).length)
        .reduce((sum, bytes) => (bytes > 4 ? even(sum + bytes) : sum), 0);
    const dataStart = even(tail + extra);
    const file = new Uint8Array(dataStart + picture.samples.length);
    const view = new DataView(file.buffer);
    file.set([0x49, 0x49, 42, 0]);
    view.setUint32(4, directory, true);
    view.setUint16(directory, count, true);
    let beyond = tail;
    fieldsOf(picture, dataStart).forEach((field, index) => {
        const at = directory + 2 + index * 12;
        const bytes = bytesOf(field);
        view.setUint16(at, field.tag, true);
        view.setUint16(at + 2, types[field.type], true);
        view.setUint32(at + 4, field.values.length, true);
        if (bytes.length <= 4) {
            file.set(bytes, at + 8);
        } else {
            view.setUint32(at + 8, beyond, true);
            file.set(bytes, beyond);
            beyond = even(beyond + bytes.length);
        }
    });
    file.set(picture.samples, dataStart);
    return file;
}
