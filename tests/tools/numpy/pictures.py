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
    text = "".join(name + "\0" for name in names).encode()
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
    options.setdefault("planarconfig", "contig")
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


def cut(path, size):
    path.write_bytes(path.read_bytes()[:size])


class InkPage:
    """A page as its tags and samples stand in the file, bits taken apart by NumPy."""

    def __init__(self, page, with_samples):
        tags = page.tags
        self.photometric = int(tags["PhotometricInterpretation"].value)
        self.ink_set = tags["InkSet"].value if "InkSet" in tags else None
        self.number_of_inks = tags["NumberOfInks"].value if "NumberOfInks" in tags else None
        self.dot_range = tags[DOT_RANGE].value if DOT_RANGE in tags else None
        self.names = None
        if INK_NAMES in tags:
            page.parent.filehandle.seek(tags[INK_NAMES].valueoffset)
            text = page.parent.filehandle.read(tags[INK_NAMES].count)
            self.names = text.decode("utf-8", "surrogateescape").split("\0")[:-1]
        self.bits = tags["BitsPerSample"].value
        self.bits = self.bits[0] if isinstance(self.bits, tuple) else self.bits
        if not with_samples:
            return
        channels = tags["SamplesPerPixel"].value
        if self.bits == 1 and channels > 1:
            self.samples = woven_bits(page, channels)
        else:
            self.samples = page.asarray().reshape(page.imagelength, page.imagewidth, channels)


def woven_bits(page, channels):
    """Strips of bits that follow each other through the pixels of a row, however compressed."""
    row_bytes = (page.imagewidth * channels + 7) // 8
    data = b""
    for offset, count in zip(page.dataoffsets, page.databytecounts):
        page.parent.filehandle.seek(offset)
        strip = page.parent.filehandle.read(count)
        data += decompressed(strip, int(page.compression))
    rows = numpy.frombuffer(data, numpy.uint8).reshape(page.imagelength, row_bytes)
    bits = numpy.unpackbits(rows, axis=1)[:, :page.imagewidth * channels]
    return bits.reshape(page.imagelength, page.imagewidth, channels)


def decompressed(strip, compression):
    return strip if compression == 1 else bytes(tifffile.TIFF.DECOMPRESSORS[compression](strip))


def read_inks(path, with_samples=True):
    with tifffile.TiffFile(path) as file:
        return [InkPage(page, with_samples) for page in file.pages]
