# SPDX-License-Identifier: Apache-2.0
"""Pictures made at random, written and read, and their samples taken apart bit by bit."""


import numpy

from pelkraft.pages import Channel, Picture, Tags
from pelkraft.pages.picture import pack_samples
from pelkraft.pages.tiff_reader import TiffPage
from pelkraft.pages.tiff_writer import tiff_pieces


def read(path, page=None):
    with TiffPage(str(path), page) as opened:
        return opened.read()[0]


def levels_of(picture):
    """A value for each sample, in rows of pixels, taken apart bit by bit."""
    if picture.bits >= 8:
        return picture.pixels.transpose(0, 2, 1) if picture.planar else picture.pixels
    found = numpy.zeros((picture.height, picture.width, len(picture.channels)), numpy.uint8)
    for row, column, channel in numpy.ndindex(found.shape):
        first = column * picture.bits
        byte = int(picture.pixels[row, channel, first // 8])
        found[row, column, channel] = byte >> (8 - picture.bits - first % 8) & \
            ((1 << picture.bits) - 1)
    return found


def write(path, picture):
    path.write_bytes(b"".join(map(bytes, tiff_pieces(picture))))


def random_picture(seed, bits, planar, width=13, height=5, channels=3, compressed=False,
                   inks=None):
    rng = numpy.random.default_rng(seed)
    names = tuple(map(Channel, inks or (f"Ink{i}" for i in range(channels))))
    tags = Tags(5, 2, tuple(channel.name for channel in names), ((300, 1), (600, 7)), 2, 1)
    if bits < 8:
        levels = rng.integers(0, 1 << bits, (height, channels, width), numpy.uint8)
        pixels = pack_samples(levels, bits)
    else:
        shape = (height, channels, width) if planar else (height, width, channels)
        pixels = rng.integers(0, 1 << bits, shape).astype(f"u{bits // 8}")
    return Picture(pixels, width, bits, planar, names, tags, compressed)
