// Reads and writes the simplest TIFF files, for comparison.

const sizes = { 1: 1, 2: 1, 3: 2, 4: 4 };

function valuesAt(view, entry) {
    const type = view.getUint16(entry + 2, true);
    const count = view.getUint32(entry + 4, true);
    const place = sizes[type] * count <= 4 ? entry + 8 : view.getUint32(entry + 8, true);
    return Array.from({ length: count }, (_, index) =>
        type === 4 ? view.getUint32(place + 4 * index, true)
        : type === 3 ? view.getUint16(place + 2 * index, true)
        : view.getUint8(place + index));
}

/** The fields of the first directory by tag, and all strips one after the other. */
export function readTiff(file) {
    const view = new DataView(file.buffer, file.byteOffset, file.byteLength);
    const directory = view.getUint32(4, true);
    const fields = new Map();
    for (let index = 0; index < view.getUint16(directory, true); ++index) {
        const entry = directory + 2 + 12 * index;
        fields.set(view.getUint16(entry, true), valuesAt(view, entry));
    }
    if ((fields.get(259)?.[0] ?? 1) !== 1) {
        throw new Error("the strips are compressed");
    }
    const counts = fields.get(279);
    const samples = Buffer.concat(fields.get(273).map((start, strip) =>
        Buffer.from(file.subarray(start, start + counts[strip]))));
    return { directory, fields, samples };
}

/** A file of the fields, [tag, type, values], and one strip. */
export function writeTiff(fields, samples) {
    const all = [...fields, [273, 4, [0]], [279, 4, [samples.length]]].sort((a, b) => a[0] - b[0]);
    const start = 8 + 2 + 12 * all.length + 4;
    const tails = all.map(([, type, values]) =>
        sizes[type] * values.length <= 4 ? 0 : sizes[type] * values.length + values.length % 2);
    const data = start + tails.reduce((sum, bytes) => sum + bytes, 0);
    const file = Buffer.alloc(data + samples.length);
    file.write("II*\0", "latin1");
    file.writeUInt32LE(8, 4);
    file.writeUInt16LE(all.length, 8);
    let tail = start;
    all.forEach(([tag, type, values], index) => {
        const entry = 10 + 12 * index;
        file.writeUInt16LE(tag, entry);
        file.writeUInt16LE(type, entry + 2);
        file.writeUInt32LE(values.length, entry + 4);
        let place = entry + 8;
        if (tails[index] !== 0) {
            file.writeUInt32LE(tail, entry + 8);
            place = tail;
            tail += tails[index];
        }
        const said = tag === 273 ? [data] : values;
        said.forEach((value, at) => file.writeUIntLE(value, place + sizes[type] * at, sizes[type]));
    });
    Buffer.from(samples).copy(file, data);
    return file;
}
