import { type Bytes, lengthOf } from "./bytes.js";
import { requireBoolean, requireBytes, requireInteger, requireRecord } from "./checks.js";
import { aligned, type Memory } from "./memory.js";

/**
 * The shape of a row. Interleaved: pixel after pixel, each sample in whole bytes. Planar: a
 * bit-packed plane for each channel, rounded up to a byte. Samples of 16 bits have the low byte
 * first.
 */
export interface RowGeometry {
    readonly width: number;
    readonly channels: number;
    /** 1, 2, 8, 10 or 16. */
    readonly bits: number;
    readonly planar: boolean;
}

export interface SourceRow extends RowGeometry {
    readonly data: Bytes;
}

export interface TargetRow extends RowGeometry {
    /** The row as it is before, for pixels that the conversion leaves alone; zeros without it. */
    readonly data?: Bytes | undefined;
}

export interface ConversionOptions {
    /** For each channel of the target the channel of the source, or a negative number for zeros. */
    readonly map?: ArrayLike<number> | undefined;
    /**
     * 1, 2, 4, -1, -2 or -4: how often each pixel is written; negative ones read the source from
     * its last pixel to its first.
     */
    readonly repeat?: number | undefined;
    /** True takes the road without vector instructions. */
    readonly portable?: boolean | undefined;
}

const largestRow = 0x7fffffff;
const recordBytes = 14 * 4;
const operations = { fill: 0, map: 1, repeat: 2 };

function checkGeometry(row: RowGeometry, name: string): RowGeometry {
    requireRecord(row, name);
    const { width, channels, bits, planar } = row;
    requireInteger(width, `${name}.width`);
    requireInteger(channels, `${name}.channels`);
    requireInteger(bits, `${name}.bits`);
    requireBoolean(planar, `${name}.planar`);
    return { width, channels, bits, planar };
}

// Counts the bytes of a row. One that the library refuses whatever the other row is has none: the
// library says so in its own words, and touches no data.
function rowBytes({ width, channels, bits, planar }: RowGeometry): number {
    if (width < 0 || channels < 0 || bits < 1 || bits > 16) {
        return 0;
    }
    const bytes = planar
        ? channels * Math.ceil((width * bits) / 8)
        : channels * width * Math.ceil(bits / 8);
    return bytes <= largestRow ? bytes : 0;
}

function checkData(data: unknown, geometry: RowGeometry, name: string): Bytes {
    requireBytes(data, `${name}.data`);
    const bytes = rowBytes(geometry);
    const length = lengthOf(data);
    if (length !== bytes) {
        const { width, channels, bits, planar } = geometry;
        throw new RangeError(
            `${name}.data has ${length} bytes, but a row of ${width} pixels of ` +
                `${channels} x ${bits} bits ${planar ? "planar" : "interleaved"} has ${bytes}`,
        );
    }
    return data;
}

function checkMap(map: ArrayLike<number>, channels: number): Int32Array {
    requireRecord(map, "map");
    const { length } = map;
    if (length !== Math.max(channels, 0)) {
        throw new RangeError(`map has ${length} entries, but the target has ${channels} channels`);
    }
    const entries = new Int32Array(length);
    for (let i = 0; i < length; ++i) {
        const entry = map[i] as number;
        requireInteger(entry, `map[${i}]`);
        entries[i] = entry;
    }
    return entries;
}

function checkOptions(options: ConversionOptions, channels: number) {
    requireRecord(options, "the options");
    const { map, repeat, portable = false } = options;
    requireBoolean(portable, "portable");
    if (map !== undefined && repeat !== undefined) {
        throw new TypeError("map and repeat exclude each other");
    }
    if (repeat !== undefined) {
        requireInteger(repeat, "repeat");
        return { operation: operations.repeat, factor: repeat, portable };
    }
    if (map !== undefined) {
        return { operation: operations.map, map: checkMap(map, channels), factor: 1, portable };
    }
    return { operation: operations.fill, factor: 1, portable };
}

export function convertRow(
    memory: Memory,
    source: SourceRow,
    target: TargetRow,
    options: ConversionOptions = {},
): Uint8Array {
    const from = checkGeometry(source, "source");
    const to = checkGeometry(target, "target");
    const { operation, map, factor, portable } = checkOptions(options, to.channels);
    // Reading a property may run the caller's code, which may change the length of either array.
    // From the checks on none runs.
    const { data } = source;
    const { data: before } = target;
    const sourceData = checkData(data, from, "source");
    const targetData = before === undefined ? undefined : checkData(before, to, "target");

    const sourceBytes = rowBytes(from);
    const targetBytes = rowBytes(to);
    const sourcePlace = aligned(recordBytes);
    const targetPlace = sourcePlace + aligned(sourceBytes);
    const mapPlace = targetPlace + aligned(targetBytes);
    return memory.withBlock(mapPlace + (map?.byteLength ?? 0), (block) => {
        const record = [from, to].flatMap((row, i) => [
            row.width, row.channels, row.bits, Number(row.planar),
            block + (i === 0 ? sourcePlace : targetPlace),
        ]);
        memory.writeNumbers(block, [
            ...record, operation, block + mapPlace, factor, Number(portable),
        ]);
        memory.write(block + sourcePlace, sourceData, sourceBytes);
        if (targetData !== undefined) {
            memory.write(block + targetPlace, targetData, targetBytes);
        } else {
            memory.clear(block + targetPlace, targetBytes);
        }
        if (map !== undefined) {
            memory.writeNumbers(block + mapPlace, map);
        }
        memory.refuse(memory.exports.convert_row(block));
        return memory.copy(block + targetPlace, targetBytes);
    });
}
