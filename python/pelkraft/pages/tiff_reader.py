# SPDX-License-Identifier: Apache-2.0
"""Reads a page of a TIFF file: tifffile finds its way through the tags, and the pixels are taken
from the strips and tiles as they stand, packed samples included."""

from __future__ import annotations

import json
import logging
import lzma
import os
import zlib
from dataclasses import replace
from typing import Any, BinaryIO, Optional

import numpy
import tifffile

from . import lzw
from .errors import INPUT, READ, UNSUPPORTED, PageError
from .file_digest import digest_of
from .file_kind import START_BYTES, words_of_other
from .ink_codes import is_ink
from .picture import (INK_SET_CMYK, MIN_IS_BLACK, MIN_IS_WHITE, PALETTE, RGB, SEPARATED,
                      UNSPECIFIED_EXTRA, Channel, DotRange, Picture, Tags, pack_samples, row_bytes,
                      unpack_samples)
from .tiff_writer import Piece

NONE = 1
LZW = 5
DEFLATE = (8, 32946)
LZMA = 34925
PACKBITS = 32773
NO_PREDICTOR = 1
HORIZONTAL = 2
UNSIGNED_SAMPLES = (1, 4)
# No compression that pictures use does better over a whole page.
LARGEST_EXPANSION = 65536

COLOURS = {MIN_IS_WHITE: 1, MIN_IS_BLACK: 1, RGB: 3, PALETTE: 1, 4: 4, SEPARATED: 4, 6: 3, 8: 3,
           9: 3, 10: 3}
GRAY = "Gray"
USUAL_NAMES = {SEPARATED: ("Cyan", "Magenta", "Yellow", "Black"), RGB: ("Red", "Green", "Blue"),
               MIN_IS_WHITE: (GRAY,), MIN_IS_BLACK: (GRAY,)}

REVERSED_BITS = bytes(int(f"{byte:08b}"[::-1], 2) for byte in range(256))

# A damaged file is told by an error of ours; a worker's log is no place for it.
logging.getLogger("tifffile").setLevel(logging.CRITICAL + 1)


class TiffPage:
    """An open page. Everything that its tags claim has been held against the file's size."""

    def __init__(self, path: str, number: Optional[int]) -> None:
        self.path = path
        self._file = _open(path)
        try:
            self._refuse_other_kind()
            self._page = self._find(number)
            self._read_shape()
            self._refuse_unserved()
            self._refuse_missing_data()
            self.channels = self._read_channels()
            self.tags = self._read_tags()
        except BaseException as error:
            self._file.close()
            raise _told(error, path) from error

    def __enter__(self) -> TiffPage:
        return self

    def __exit__(self, *_: object) -> None:
        self._file.close()

    def read(self) -> tuple[Picture, str]:
        """The page, whose pixels are read-only, and a digest of all that it was made of."""
        try:
            raw = numpy.empty((self._planes, self.height, self._row_bytes), numpy.uint8)
            pieces = [self._description(), *self._fill(raw)]
            raw.flags.writeable = False
            return self._picture(raw), digest_of(pieces)
        except Exception as error:
            raise _told(error, self.path) from error

    def _refuse_other_kind(self) -> None:
        words = words_of_other(self._file.read(START_BYTES))
        if words:
            raise PageError(INPUT, f"{self.path}: {words}")
        self._file.seek(0)

    def _find(self, number: Optional[int]) -> Any:
        pages = tifffile.TiffFile(self._file, name=os.path.basename(self.path)).pages
        if number is None and _has(pages, 1):
            raise PageError(INPUT, f"{self.path}: has {len(pages)} pages; say which one to take")
        index = 0 if number is None else number - 1
        if not _has(pages, index):
            raise PageError(INPUT, f"{self.path}: has no page {number}; its last is {len(pages)}")
        page = pages[index]
        return page if isinstance(page, tifffile.TiffPage) else page.aspage()

    def _number(self, name: str, otherwise: int = 0) -> int:
        value = self._page.tags.valueof(name, otherwise)
        return int(value[0] if isinstance(value, tuple) else value)

    def _read_shape(self) -> None:
        self.width = self._number("ImageWidth")
        self.height = self._number("ImageLength")
        self.count = self._number("SamplesPerPixel", 1)
        bits = self._page.tags.valueof("BitsPerSample", 1)
        self.bits = bits if isinstance(bits, int) else bits[0]
        if self.width < 1 or self.height < 1 or self.count < 1:
            raise PageError(INPUT, f"{self.path}: declares a picture without pixels")
        if not isinstance(bits, int) and len(set(bits)) != 1:
            raise PageError(UNSUPPORTED, f"{self.path}: has samples of {bits} bits; supported "
                                         "are channels of one depth")
        self.separate = self._number("PlanarConfiguration", 1) == 2
        self.photometric = self._number("PhotometricInterpretation", MIN_IS_BLACK)
        self.compression = self._number("Compression", NONE)
        # Without a compression a predictor is only a word.
        self.predictor = NO_PREDICTOR if self.compression in (NONE, PACKBITS) else \
            self._number("Predictor", NO_PREDICTOR)
        self._reversed = self._number("FillOrder", 1) == 2
        self._planes = self.count if self.separate else 1
        self._samples = self.width * (1 if self.separate else self.count)
        self._row_bytes = row_bytes(self._samples, self.bits)
        self._tiled = "TileWidth" in self._page.tags
        if self._tiled:
            self._segment_width = self._number("TileWidth")
            self._segment_rows = self._number("TileLength")
        else:
            self._segment_width = self.width
            self._segment_rows = min(self._number("RowsPerStrip", self.height), self.height)
        if self._segment_width < 1 or self._segment_rows < 1:
            raise PageError(INPUT, f"{self.path}: declares strips or tiles without pixels")

    def _refuse_unserved(self) -> None:
        def refuse(has: str, supported: str) -> None:
            raise PageError(UNSUPPORTED, f"{self.path}: has {has}; supported are {supported}")

        if self.bits not in (1, 2, 8, 16):
            refuse(f"samples of {self.bits} bits", "1, 2, 8 and 16")
        if self._number("SampleFormat", 1) not in UNSIGNED_SAMPLES:
            refuse("signed, floating or complex samples", "unsigned integers")
        if self.photometric in (32844, 32845):
            refuse("logarithmic samples", "unsigned integers")
        subsampling = self._page.tags.valueof("YCbCrSubSampling", (2, 2))
        if self.photometric == 6 and tuple(subsampling) != (1, 1):
            refuse("YCbCr samples with subsampled colour", "YCbCr samples without")
        if self._tiled and self.bits < 8:
            refuse(f"tiles of samples of {self.bits} bits", "tiles of 8 and 16")
        if self.predictor != NO_PREDICTOR and (self.predictor != HORIZONTAL or self.bits < 8):
            refuse(f"predictor {self.predictor} on samples of {self.bits} bits",
                   "horizontal differences of 8 and 16 bits")
        if self.compression == LZW and not (_tifffile_reads(LZW) or lzw.is_there()):
            refuse("LZW, which Pillow (python3-pil) reads, and it is not here",
                   "none, PackBits, LZMA, and Deflate, which pelkraft convert --compress zip writes")
        if self.compression != LZW and not _tifffile_reads(self.compression):
            refuse(f"compression {self.compression}, which this tifffile does not read",
                   "none, PackBits, Deflate, LZMA and LZW")

    def _refuse_missing_data(self) -> None:
        size = os.fstat(self._file.fileno()).st_size
        self._across = -(-self.width // self._segment_width)
        self._down = -(-self.height // self._segment_rows)
        wanted = self._across * self._down * self._planes
        self._offsets = tuple(self._page.dataoffsets)
        self._counts = tuple(self._page.databytecounts)
        if len(self._offsets) < wanted or len(self._counts) < wanted:
            raise PageError(INPUT, f"{self.path}: does not say where all of its data are")
        for number in range(wanted):
            offset, count = self._offsets[number], self._counts[number]
            if count < 1 or offset < 1 or offset + count > size:
                raise PageError(INPUT, f"{self.path}: ends before its block {number + 1} of "
                                       f"{wanted}; it may be truncated")
        total = self._planes * self.height * self._row_bytes
        if total > size * (1 if self.compression == NONE else LARGEST_EXPANSION):
            raise PageError(INPUT, f"{self.path}: declares {total} bytes of pixels, which a file "
                                   f"of {size} bytes can't hold")

    def _read_names(self) -> tuple[str, ...]:
        names = self._page.tags.valueof("InkNames", "")
        if isinstance(names, bytes):
            names = names.decode("utf-8", "replace")
        listed = tuple(names.rstrip("\0").split("\0")) if names else ()
        return listed[:self._number("NumberOfInks", len(listed))]

    def _read_channels(self) -> tuple[Channel, ...]:
        kinds = self._page.tags.valueof("ExtraSamples", ())
        kinds = tuple(int(kind) for kind in (kinds if isinstance(kinds, tuple) else (kinds,)))
        known = COLOURS.get(self.photometric, self.count)
        missing = max(self.count - len(kinds) - known, 0)
        kinds = ((UNSPECIFIED_EXTRA,) * missing + kinds)[:self.count]
        colours = self.count - len(kinds)
        names = self._read_names()
        if self.photometric == SEPARATED:
            inks = self._number("NumberOfInks", len(names))
            colours = max(colours, min(inks, self.count))
        if not names and (self.photometric != SEPARATED or
                          self._number("InkSet", INK_SET_CMYK) == INK_SET_CMYK):
            names = USUAL_NAMES.get(self.photometric, ())
        first_kind = self.count - len(kinds)
        channels = tuple(Channel(names[i] if i < len(names) else "",
                                 kinds[i - first_kind] if i >= colours else None)
                         for i in range(self.count))
        # Beside other inks nobody knows which one the first is.
        inks = sum(is_ink(channel, self.photometric) for channel in channels)
        if inks != 1 or channels[0].name != GRAY:
            return channels
        return (replace(channels[0], name="Black", other_name=GRAY), *channels[1:])

    def _read_tags(self) -> Tags:
        value = self._page.tags.valueof
        across, down = value("XResolution"), value("YResolution")
        profile, palette = value("InterColorProfile", b""), value("ColorMap")
        return Tags(self.photometric, value("InkSet") and self._number("InkSet"),
                    self._read_names(),
                    (tuple(across), tuple(down)) if across and down else None,
                    value("ResolutionUnit") and self._number("ResolutionUnit"),
                    value("Orientation") and self._number("Orientation"),
                    profile if isinstance(profile, bytes) else b"",
                    b"" if palette is None else numpy.asarray(palette, "<u2").tobytes(),
                    self._read_dot_ranges())

    def _read_dot_ranges(self) -> tuple[DotRange, ...]:
        value = self._page.tags.valueof("DotRange", ())
        # A tag of another form tells nothing, and is no reason to refuse the page.
        if not isinstance(value, (tuple, bytes)) or len(value) not in (2, 2 * self.count):
            return ()
        numbers = tuple(map(int, value))
        return tuple(zip(numbers[::2], numbers[1::2]))

    def _description(self) -> bytes:
        facts = [self.width, self.height, self.count, self.bits, self.separate, self.compression,
                 self.predictor, self._page.parent.byteorder, self._reversed,
                 self._tiled, self._segment_width, self._segment_rows,
                 [[channel.name, channel.extra] for channel in self.channels],
                 repr(self.tags)]
        return json.dumps(facts).encode()

    def _fill(self, raw: numpy.ndarray) -> list[Piece]:
        """Answers the bytes of the file that the pixels came from."""
        if self.compression != NONE or self._tiled or self._reversed or \
                not self._lies_in_one_piece(raw.nbytes):
            return self._fill_by_segments(raw)
        self._file.seek(self._offsets[0])
        self._read_into(memoryview(raw).cast("B"))
        return [memoryview(raw).cast("B")]

    def _lies_in_one_piece(self, total: int) -> bool:
        count = self._down * self._planes
        ends = [self._offsets[i] + self._counts[i] for i in range(count)]
        return ends[-1] - self._offsets[0] == total and \
            all(ends[i] == self._offsets[i + 1] for i in range(count - 1))

    def _read_into(self, target: memoryview) -> None:
        done = 0
        while done < len(target):
            count = self._file.readinto(target[done:])
            if not count:
                raise PageError(INPUT, f"{self.path}: ends inside its pixels")
            done += count

    def _fill_by_segments(self, raw: numpy.ndarray) -> list[Piece]:
        pieces: list[Piece] = []
        pixel_samples = 1 if self.separate else self.count
        sample_bytes = max(self.bits // 8, 1)
        for number in range(self._across * self._down * self._planes):
            plane, place = divmod(number, self._across * self._down)
            down, across = divmod(place, self._across)
            top = down * self._segment_rows
            rows = min(self._segment_rows, self.height - top)
            # A tile is whole beyond the picture's edges, a strip ends with it.
            held = self._segment_rows if self._tiled else rows
            self._file.seek(self._offsets[number])
            pieces.append(self._file.read(self._counts[number]))
            segment = self._segment(pieces[-1], number, held, row_bytes(
                self._segment_width * pixel_samples, self.bits))
            left = across * self._segment_width * pixel_samples * sample_bytes
            taken = min(segment.shape[1], self._row_bytes - left)
            raw[plane, top:top + rows, left:left + taken] = segment[:rows, :taken]
        return pieces

    def _segment(self, data: bytes, number: int, rows: int, width: int) -> numpy.ndarray:
        if self._reversed:
            data = data.translate(REVERSED_BITS)
        if self.compression == LZW and not _tifffile_reads(LZW):
            data = lzw.decompress(data, rows, width)
        else:
            data = _decompress(self.compression, data, rows * width)
        if len(data) < rows * width:
            raise PageError(INPUT, f"{self.path}: block {number + 1} is damaged or too short")
        segment = numpy.frombuffer(data, numpy.uint8, rows * width).reshape(rows, width)
        if self.predictor != HORIZONTAL:
            return segment
        samples = segment.view(self._sample_type()).reshape(
            rows, -1, 1 if self.separate else self.count)
        native = samples.dtype.newbyteorder("=")
        summed = numpy.cumsum(samples, axis=1, dtype=native).astype(samples.dtype)
        return summed.view(numpy.uint8).reshape(rows, width)

    def _sample_type(self) -> numpy.dtype:
        return numpy.dtype("u1" if self.bits == 8 else self._page.parent.byteorder + "u2")

    def _picture(self, raw: numpy.ndarray) -> Picture:
        if self.bits < 8:
            if not self.separate and self.count > 1:
                levels = unpack_samples(raw[0], self._samples, self.bits)
                levels = levels.reshape(self.height, self.width, self.count)
                pixels = pack_samples(levels.transpose(0, 2, 1), self.bits)
            else:
                pixels = raw.transpose(1, 0, 2)
        else:
            samples = raw.view(self._sample_type())
            samples = samples.astype(samples.dtype.newbyteorder("="), copy=False)
            pixels = samples.transpose(1, 0, 2) if self.separate else \
                samples.reshape(self.height, self.width, self.count)
        return Picture(pixels, self.width, self.bits, self.separate, self.channels, self.tags,
                       self.compression != NONE)


def _tifffile_reads(compression: int) -> bool:
    return compression in tifffile.TIFF.DECOMPRESSORS and \
        compression not in tifffile.TIFF.IMAGE_COMPRESSIONS


def _open(path: str) -> BinaryIO:
    try:
        return open(path, "rb", buffering=0)
    except OSError as error:
        raise PageError(READ, f"{path}: cannot be read: {error.strerror}") from error


def _has(pages: Any, index: int) -> bool:
    try:
        pages[index]
    except IndexError:
        return False
    return True


def _told(error: BaseException, path: str) -> BaseException:
    """The same failure in words for people, whatever a damaged file makes a decoder say."""
    if isinstance(error, (PageError, MemoryError)) or not isinstance(error, Exception):
        return error
    if isinstance(error, OSError) and error.errno is not None:
        return PageError(READ, f"{path}: cannot be read: {error.strerror}")
    return PageError(INPUT, f"{path}: is no sound TIFF file: {error or type(error).__name__}")


def _decompress(compression: int, data: bytes, limit: int) -> bytes:
    if compression == NONE:
        return data
    if compression in DEFLATE:
        return zlib.decompressobj().decompress(data, limit)
    if compression == LZMA:
        return lzma.LZMADecompressor().decompress(data, limit)
    return tifffile.TIFF.DECOMPRESSORS[compression](data)
