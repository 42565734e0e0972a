# SPDX-License-Identifier: Apache-2.0
"""Pictures of tifffile for the tests."""

import numpy
import tifffile

INK_SET, INK_NAMES, NUMBER_OF_INKS, DOT_RANGE, PROFILE = 332, 333, 334, 336, 34675
ASCII, SHORT, UNDEFINED = 2, 3, 7


def random_samples(seed, shape, bits):
    kind = numpy.uint16 if bits == 16 else numpy.uint8
    return numpy.random.default_rng(seed).integers(0, 1 << bits, shape, kind)


def ink_tags(names, dot_range=None):
    text = "".join(name + "\0" for name in names)
    tags = [(INK_SET, SHORT, 1, 2, True), (INK_NAMES, ASCII, len(text), text, True),
            (NUMBER_OF_INKS, SHORT, 1, len(names), True)]
    if dot_range:
        tags.append((DOT_RANGE, SHORT, 2, dot_range, True))
    return tags


def write_inks(path, samples, names, dot_range=None, **options):
    """A separated page: height x width x inks."""
    extra = ["unspecified"] * max(0, len(names) - 4)
    options.setdefault("metadata", None)
    options.setdefault("extrasamples", extra)
    tifffile.imwrite(path, samples, photometric="separated",
                     extratags=ink_tags(names, dot_range), **options)


def write_plate(path, samples, photometric="minisblack", **options):
    """A page of one channel: height x width."""
    options.setdefault("metadata", None)
    tifffile.imwrite(path, samples, photometric=photometric, **options)


def reverse_strips(path):
    """Puts the strips of a file's first page after its end, the last one first."""
    with tifffile.TiffFile(path) as file:
        page = file.pages[0]
        offsets, counts = page.dataoffsets, page.databytecounts
        tag = page.tags["StripOffsets"]
    data = bytearray(path.read_bytes())
    moved = {}
    for number in reversed(range(len(offsets))):
        moved[number] = len(data)
        data += data[offsets[number]:offsets[number] + counts[number]]
    size = {3: 2, 4: 4, 16: 8}[tag.dtype]
    for number in range(len(offsets)):
        place = tag.valueoffset + size * number
        data[place:place + size] = moved[number].to_bytes(size, "little")
    path.write_bytes(data)
