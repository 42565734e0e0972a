// Reads and writes the simplest PNG files, for comparison.
import { deflateSync, inflateSync } from "node:zlib";

function crc32(bytes) {
    let sum = 0xffffffff;
    for (const byte of bytes) {
        sum ^= byte;
        for (let bit = 0; bit < 8; ++bit) {
            sum = (sum >>> 1) ^ (sum & 1 ? 0xedb88320 : 0);
        }
    }
    return ~sum >>> 0;
}

function paeth(left, above, corner) {
    const guess = left + above - corner;
    const [a, b, c] = [left, above, corner].map((value) => Math.abs(guess - value));
    return a <= b && a <= c ? left : b <= c ? above : corner;
}

/** The pixels of a file of red, green and blue, 8 bits each. */
export function readPng(file) {
    const width = file.readUInt32BE(16);
    const height = file.readUInt32BE(20);
    if (file[24] !== 8 || file[25] !== 2 || file[28] !== 0) {
        throw new Error("no file of red, green and blue");
    }
    const parts = [];
    for (let at = 8; at < file.length; at += 12 + file.readUInt32BE(at)) {
        if (file.toString("latin1", at + 4, at + 8) === "IDAT") {
            parts.push(file.subarray(at + 8, at + 8 + file.readUInt32BE(at)));
        }
    }
    const rows = inflateSync(Buffer.concat(parts));
    const rowBytes = width * 3;
    const pixels = Buffer.alloc(rowBytes * height);
    for (let y = 0; y < height; ++y) {
        const filter = rows[y * (rowBytes + 1)];
        for (let x = 0; x < rowBytes; ++x) {
            const place = y * rowBytes + x;
            const left = x < 3 ? 0 : pixels[place - 3];
            const above = y === 0 ? 0 : pixels[place - rowBytes];
            const corner = x < 3 || y === 0 ? 0 : pixels[place - rowBytes - 3];
            const said = [0, left, above, (left + above) >> 1, paeth(left, above, corner)][filter];
            pixels[place] = rows[y * (rowBytes + 1) + 1 + x] + said;
        }
    }
    return { width, height, pixels };
}

function chunk(kind, data) {
    const bytes = Buffer.alloc(12 + data.length);
    bytes.writeUInt32BE(data.length, 0);
    bytes.write(kind, 4, "latin1");
    data.copy(bytes, 8);
    bytes.writeUInt32BE(crc32(bytes.subarray(4, 8 + data.length)), 8 + data.length);
    return bytes;
}

/** A file of so many channels, 8 bits each; chunks are [kind, bytes] ahead of the pixels. */
export function writePng(width, height, channels, pixels, chunks = []) {
    const header = Buffer.alloc(13);
    header.writeUInt32BE(width, 0);
    header.writeUInt32BE(height, 4);
    header.set([8, { 1: 0, 3: 2, 4: 6 }[channels], 0, 0, 0], 8);
    const rowBytes = width * channels;
    const rows = Buffer.alloc((rowBytes + 1) * height);
    for (let y = 0; y < height; ++y) {
        rows.set(pixels.subarray(y * rowBytes, (y + 1) * rowBytes), y * (rowBytes + 1) + 1);
    }
    return Buffer.concat([
        Buffer.from([0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a]), chunk("IHDR", header),
        ...chunks.map(([kind, data]) => chunk(kind, data)),
        chunk("IDAT", deflateSync(rows)), chunk("IEND", Buffer.alloc(0)),
    ]);
}
