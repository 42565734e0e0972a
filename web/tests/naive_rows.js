// These loops convert sample by sample from the definition. They use nothing of the module.

export function isPacked(row) {
    return row.planar && row.bits % 8 !== 0;
}

export function rowBytes({ width, channels, bits, planar }) {
    return planar
        ? channels * Math.ceil((width * bits) / 8)
        : channels * width * Math.ceil(bits / 8);
}

// Finds the first bit of a sample, counted from the highest bit of the row's first byte.
function firstBit(row, pixel, channel) {
    if (!row.planar) {
        return (pixel * row.channels + channel) * Math.ceil(row.bits / 8) * 8;
    }
    return channel * Math.ceil((row.width * row.bits) / 8) * 8 + pixel * row.bits;
}

function readSample(row, data, pixel, channel) {
    const first = firstBit(row, pixel, channel);
    if (!isPacked(row)) {
        return data[first / 8] + (row.bits > 8 ? 256 * data[first / 8 + 1] : 0);
    }
    let value = 0;
    for (let bit = first; bit < first + row.bits; ++bit) {
        value = 2 * value + ((data[bit >> 3] >> (7 - (bit & 7))) & 1);
    }
    return value;
}

function writeSample(row, data, pixel, channel, value) {
    const first = firstBit(row, pixel, channel);
    if (!isPacked(row)) {
        data[first / 8] = value & 255;
        if (row.bits > 8) {
            data[first / 8 + 1] = value >> 8;
        }
        return;
    }
    for (let i = 0; i < row.bits; ++i) {
        const bit = first + i;
        const weight = 128 >> (bit & 7);
        const isSet = (value >> (row.bits - 1 - i)) & 1;
        data[bit >> 3] = isSet ? data[bit >> 3] | weight : data[bit >> 3] & ~weight;
    }
}

function changeDepth(value, from, to) {
    if (from === to) {
        return value;
    }
    const narrow =
        from === 16 ? Math.floor((Math.floor((value * 65281) / 65536) + 127) / 256) : value;
    return to === 16 ? narrow * 257 : narrow % 2 ** to;
}

export function naiveConvert(source, target, { map, repeat = 1 } = {}) {
    const times = Math.abs(repeat);
    const result = Uint8Array.from(target.data ?? new Uint8Array(rowBytes(target)));
    const pixels = Math.min(source.width * times, target.width);
    for (let pixel = 0; pixel < pixels; ++pixel) {
        const nth = Math.floor(pixel / times);
        const from = repeat < 0 ? source.width - 1 - nth : nth;
        for (let channel = 0; channel < target.channels; ++channel) {
            const entry = map === undefined ? channel : map[channel];
            const value = entry < 0 ? 0 : readSample(source, source.data, from, entry);
            writeSample(target, result, pixel, channel,
                changeDepth(value, source.bits, target.bits));
        }
    }
    // Of a byte that is written the bits after the last pixel are zeros.
    for (let pixel = pixels; isPacked(target) && (pixel * target.bits) % 8 !== 0; ++pixel) {
        for (let channel = 0; channel < target.channels; ++channel) {
            writeSample(target, result, pixel, channel, 0);
        }
    }
    return result;
}

// Says why no way leads from one kind of row to the other, or nothing if there is one.
export function refusal(source, target, { map, repeat } = {}) {
    const operation = repeat === undefined ? "FillFrom" : "FillFromWithPixelRepeat";
    if (map === undefined && source.channels !== target.channels) {
        return `zvk::Pelkraft::ImageRow::${operation} unsupported conversion`;
    }
    if (repeat !== undefined && ![1, 2, 4, -1, -2, -4].includes(repeat)) {
        return `zvk::Pelkraft::ImageRow::${operation} unsupported conversion`;
    }
    for (const { bits } of [source, target]) {
        if (![1, 2, 8, 10, 16].includes(bits)) {
            return "zvk::Pelkraft::ImageRowFormat unsupported bit depth";
        }
    }
    const [from, to] = [source.bits, target.bits];
    const other = "zvk::Pelkraft::Convert unsupported conversion";
    // No step packs or unpacks samples of one depth.
    if (from === to) {
        return isPacked(source) === isPacked(target) ? undefined : other;
    }
    if ((from === 8 && to === 16) || (from === 16 && to === 8)) {
        return undefined;
    }
    const toSixteen = "zvk::Pelkraft::Convert unsupported conversion to 16 bit";
    const fromSixteen = "zvk::Pelkraft::Convert unsupported conversion from 16 bit";
    if (to === 16 && !isPacked(source)) {
        return toSixteen;
    }
    if (from === 16 && !isPacked(target)) {
        return fromSixteen;
    }
    if (from !== 16 && from !== 8 && !isPacked(source)) {
        return other;
    }
    return to !== 16 && to !== 8 && !isPacked(target) ? other : undefined;
}
