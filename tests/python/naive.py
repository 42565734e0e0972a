"""Conversions sample by sample in plain NumPy, from their definitions and without the package."""

import numpy as np


def memory_bits(bits, planar):
    """The depth at which an array holds a sample."""
    if planar:
        return bits
    return 8 if bits <= 8 else 16


def shape_of(rows, width, channels, bits, planar):
    """The shape of an array of such rows."""
    if not planar:
        return (rows, width, channels)
    return (rows, channels, (width * bits + 7) // 8 if bits < 8 else width)


def dtype_of(bits):
    return np.uint8 if bits <= 8 else np.uint16


def read(array, width, bits, planar):
    """The samples of rows as (rows, width, channels) of int64."""
    if not planar:
        return array.astype(np.int64)
    if bits >= 8:
        return array.transpose(0, 2, 1).astype(np.int64)
    rows, channels, size = array.shape
    digits = np.unpackbits(array, axis=2).reshape(rows, channels, size * 8 // bits, bits)
    weights = 1 << np.arange(bits - 1, -1, -1)
    samples = (digits * weights).sum(axis=3)[:, :, :width]
    return samples.transpose(0, 2, 1)


def write(samples, bits, planar):
    """The inverse of read, with zeros after the last pixel of a packed plane."""
    if not planar:
        return samples.astype(dtype_of(bits))
    planes = samples.transpose(0, 2, 1)
    if bits >= 8:
        return planes.astype(dtype_of(bits))
    digits = planes[..., np.newaxis] >> np.arange(bits - 1, -1, -1) & 1
    rows, channels, width, _ = digits.shape
    return np.packbits(digits.reshape(rows, channels, width * bits).astype(np.uint8), axis=2)


def narrow_to_8(samples):
    """16 bits to 8: nearly the nearest, with an odd half."""
    return ((samples * 65281 >> 16) + 127) >> 8


def as_fill(samples, bits, new_bits):
    if bits == new_bits:
        return samples
    if bits == 16:
        samples = narrow_to_8(samples)
    if new_bits == 16:
        return samples * 257
    return samples % (1 << new_bits)


def as_tones(samples, bits, new_bits):
    if bits == new_bits:
        return samples
    if bits == 16:
        samples = narrow_to_8(samples)
    elif bits < 8:
        samples = samples * 255 // ((1 << bits) - 1)
    if new_bits == 16:
        return samples * 257
    if new_bits == 8:
        return samples
    return (samples * ((1 << new_bits) - 1) + 127) // 255


def as_levels(samples, bits, new_bits):
    return samples % (1 << new_bits)


WAYS = {"fill": as_fill, "tones": as_tones, "levels": as_levels}


def convert(rows, source, target, out=None, *, map=None, repeat=1, mirror=False, samples="fill",
            invert=False):
    """What a plan makes of rows of the format `source`, (width, channels, bits, planar).

    An entry of the map is a channel, None or ("constant", sample). Where `out` is given, it shows
    what stood in the target before, and pixels without a counterpart stay.
    """
    old_bits = memory_bits(source[2], source[3])
    new_bits = memory_bits(target[2], target[3])
    pixels = read(rows, source[0], source[2], source[3])
    if mirror:
        pixels = pixels[:, ::-1]
    pixels = np.repeat(pixels, repeat, axis=1)[:, : target[0]]
    new = WAYS[samples](pixels, old_bits, new_bits)
    if invert:
        new = (1 << new_bits) - 1 - new
    if map is not None:
        new = np.stack([channel_of(new, entry) for entry in map], axis=2) if map else new[:, :, :0]
    result = write(new, target[2], target[3])
    if out is None:
        return result
    whole = out.copy()
    if target[3]:
        whole[:, :, : result.shape[2]] = result
    else:
        whole[:, : result.shape[1]] = result
    return whole


def channel_of(samples, entry):
    if entry is None:
        return np.zeros_like(samples[:, :, 0] if samples.shape[2] else samples.sum(axis=2))
    if isinstance(entry, tuple):
        return np.full(samples.shape[:2], entry[1])
    return samples[:, :, entry]
