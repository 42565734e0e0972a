# SPDX-License-Identifier: Apache-2.0
"""Puts a picture into the bytes of a TIFF file of one page.

tifffile writes neither samples of 2 bits nor several packed planes without further packages, and a
page job must know each byte of its file beforehand to verify what was written.
"""

from __future__ import annotations

import struct
import sys
import zlib
from typing import Iterable, Union

import numpy

from .picture import SEPARATED, Picture, pack_samples, unpack_samples

Piece = Union[bytes, memoryview]

SHORT = 3
LONG = 4
RATIONAL = 5
ASCII = 2
UNDEFINED = 7
LONG8 = 16
UNCOMPRESSED = 1
DEFLATED = 8
COMPRESSED_STRIP_BYTES = 1 << 18
PLAIN_STRIP_BYTES = 1 << 23
# Readers expect four inks and want each further one announced as an extra sample.
EXPECTED_INKS = 4
# Offsets of 32 bits end here, with room for the tags.
LARGEST_CLASSIC = (1 << 32) - (1 << 24)

BYTE_ORDER = "<" if sys.byteorder == "little" else ">"
TYPE_CODES = {SHORT: "H", LONG: "I", LONG8: "Q", RATIONAL: "I"}


def tiff_pieces(picture: Picture) -> list[Piece]:
    """The whole file in its order: header, strips and tags. Pixels that stand in memory as they
    will in the file are not copied."""
    planes = _file_planes(picture)
    width_bytes = planes[0].shape[1] if planes else 0
    wanted = COMPRESSED_STRIP_BYTES if picture.compressed else PLAIN_STRIP_BYTES
    strip_rows = min(max(wanted // max(width_bytes, 1), 1), max(picture.height, 1))
    strips: list[Piece] = []
    for plane in planes:
        for top in range(0, picture.height, strip_rows):
            strip = memoryview(plane[top:top + strip_rows]).cast("B")
            strips.append(zlib.compress(strip) if picture.compressed else strip)
    total = sum(map(len, strips))
    big = total > LARGEST_CLASSIC
    start = 16 if big else 8
    offsets, end = [], start
    for strip in strips:
        offsets.append(end)
        end += len(strip)
    pad = -end % 8
    entries = sorted(_entries(picture, strip_rows, offsets, list(map(len, strips)), big))
    return [_header(big, end + pad), *strips, bytes(pad), _directory(entries, end + pad, big)]


def _file_planes(picture: Picture) -> list[numpy.ndarray]:
    """The rows of each of the file's planes as bytes; a file of whole pixels has one."""
    pixels = picture.pixels
    count = len(picture.channels)
    if picture.bits < 8 and not picture.planar and count > 1:
        levels = unpack_samples(pixels, picture.width, picture.bits).transpose(0, 2, 1)
        woven = levels.reshape(picture.height, picture.width * count)
        planes = [pack_samples(woven, picture.bits)]
    elif picture.bits < 8 or picture.planar:
        planes = [pixels[:, channel] for channel in range(count)]
    else:
        planes = [pixels.reshape(picture.height, picture.width * count)]
    return [numpy.ascontiguousarray(plane).view(numpy.uint8) for plane in planes]


def _entries(picture: Picture, strip_rows: int, offsets: list[int], lengths: list[int],
             big: bool) -> Iterable[tuple[int, int, bytes, int]]:
    """Each tag with its type, its values in bytes, and their number."""
    place = LONG8 if big else LONG

    def numbers(tag: int, kind: int, *values: int) -> tuple[int, int, bytes, int]:
        data = struct.pack(f"{BYTE_ORDER}{len(values)}{TYPE_CODES[kind]}", *values)
        return tag, kind, data, len(values) // (2 if kind == RATIONAL else 1)

    tags, count = picture.tags, len(picture.channels)
    yield numbers(256, LONG, picture.width)
    yield numbers(257, LONG, picture.height)
    yield numbers(258, SHORT, *[picture.bits] * count)
    yield numbers(259, SHORT, DEFLATED if picture.compressed else UNCOMPRESSED)
    yield numbers(262, SHORT, tags.photometric)
    yield numbers(273, place, *offsets)
    if tags.orientation:
        yield numbers(274, SHORT, tags.orientation)
    yield numbers(277, SHORT, count)
    yield numbers(278, LONG, strip_rows)
    yield numbers(279, place, *lengths)
    if tags.resolution:
        for tag, (over, under) in zip((282, 283), tags.resolution):
            yield numbers(tag, RATIONAL, over, under)
    yield numbers(284, SHORT, 2 if picture.planar else 1)
    if tags.resolution_unit:
        yield numbers(296, SHORT, tags.resolution_unit)
    if tags.palette:
        values = numpy.frombuffer(tags.palette, "<u2").tolist()
        yield numbers(320, SHORT, *values)
    inks = [channel for channel in picture.channels if channel.extra is None]
    extras = [channel.extra for channel in picture.channels if channel.extra is not None]
    if tags.photometric == SEPARATED:
        if tags.ink_set:
            yield numbers(332, SHORT, tags.ink_set)
            yield numbers(334, SHORT, len(inks))
        if tags.ink_names:
            names = "".join(name + "\0" for name in tags.ink_names).encode("utf-8")
            yield 333, ASCII, names, len(names)
        extras = [0] * max(len(inks) - EXPECTED_INKS, 0) + extras
    if tags.dot_ranges:
        yield numbers(336, SHORT, *(code for pair in tags.dot_ranges for code in pair))
    if extras:
        yield numbers(338, SHORT, *extras)
    if tags.profile:
        yield 34675, UNDEFINED, tags.profile, len(tags.profile)


def _header(big: bool, directory: int) -> bytes:
    mark = b"II" if BYTE_ORDER == "<" else b"MM"
    if big:
        return mark + struct.pack(BYTE_ORDER + "HHHQ", 43, 8, 0, directory)
    return mark + struct.pack(BYTE_ORDER + "HI", 42, directory)


def _directory(entries: list[tuple[int, int, bytes, int]], start: int, big: bool) -> bytes:
    """The table of tags, and after it the values that a table's entry does not hold."""
    room, word = (8, "Q") if big else (4, "I")
    table = struct.pack(BYTE_ORDER + ("Q" if big else "H"), len(entries))
    end = start + len(table) + len(entries) * (4 + 2 * room) + room
    values = b""
    for tag, kind, data, count in entries:
        table += struct.pack(BYTE_ORDER + "HH" + word, tag, kind, count)
        if len(data) <= room:
            table += data.ljust(room, b"\0")
            continue
        # An offset to an odd byte is legal nowhere.
        values += bytes((end + len(values)) % 2)
        table += struct.pack(BYTE_ORDER + word, end + len(values))
        values += data
    return table + struct.pack(BYTE_ORDER + word, 0) + values

