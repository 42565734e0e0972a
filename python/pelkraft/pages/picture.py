# SPDX-License-Identifier: Apache-2.0
"""A page in memory."""

from __future__ import annotations

import string
from dataclasses import dataclass, field
from typing import Optional

import numpy

from .. import Format

MIN_IS_WHITE = 0
MIN_IS_BLACK = 1
RGB = 2
PALETTE = 3
MASK = 4
SEPARATED = 5
INK_SET_CMYK = 1
INK_SET_OTHER = 2
UNSPECIFIED_EXTRA = 0

UPPER_CASE = str.maketrans(string.ascii_lowercase, string.ascii_uppercase)

# The samples of no ink and of full ink.
DotRange = tuple[int, int]


@dataclass(frozen=True)
class Channel:
    """A channel's name, or "", its kind among a TIFF file's extra samples, None for an ink or a
    colour, and a second name that finds it, or ""."""

    name: str = ""
    extra: Optional[int] = None
    other_name: str = ""

    def bears(self, name: str) -> bool:
        """Names count in any case of letters."""
        return bool(name) and _upper(name) in (_upper(self.name), _upper(self.other_name))


@dataclass(frozen=True)
class Tags:
    """Tags tell more of the pixels than their form."""

    photometric: int = MIN_IS_BLACK
    ink_set: Optional[int] = None
    ink_names: tuple[str, ...] = ()
    # Pixels for each resolution unit, across and down, as fractions.
    resolution: Optional[tuple[tuple[int, int], tuple[int, int]]] = None
    resolution_unit: Optional[int] = None
    orientation: Optional[int] = None
    profile: bytes = b""
    palette: bytes = b""
    # One for all channels, or one for each; none where the page doesn't tell.
    dot_ranges: tuple[DotRange, ...] = ()


@dataclass
class Picture:
    """Rows of pixels in the shape that plans take.

    Samples of 8 and 16 bits stand as (rows, width, channels) or, where `planar`, as (rows,
    channels, width). Those of 1 and 2 bits always stand as (rows, channels, bytes of a plane),
    and `planar` says only how a file holds them.
    """

    pixels: numpy.ndarray
    width: int
    bits: int
    planar: bool
    channels: tuple[Channel, ...]
    tags: Tags = field(default_factory=Tags)
    compressed: bool = False

    @property
    def height(self) -> int:
        return self.pixels.shape[0]


def _upper(name: str) -> str:
    return name.translate(UPPER_CASE)


def format_of(picture: Picture) -> Format:
    """The form of the picture's rows."""
    return Format(picture.width, len(picture.channels), picture.bits,
                  picture.bits < 8 or picture.planar)


def row_bytes(samples: int, bits: int) -> int:
    return (samples * bits + 7) // 8


def unpack_samples(packed: numpy.ndarray, samples: int, bits: int) -> numpy.ndarray:
    """A byte for each sample of 1 or 2 bits, the first of which stands in the top bits."""
    if bits == 1:
        return numpy.unpackbits(packed, axis=-1, count=samples)
    shifts = numpy.array([6, 4, 2, 0], numpy.uint8)
    spread = (packed[..., None] >> shifts) & 3
    return spread.reshape(*packed.shape[:-1], -1)[..., :samples]


def pack_samples(samples: numpy.ndarray, bits: int) -> numpy.ndarray:
    """The way back, with unused low bits of 0."""
    if bits == 1:
        return numpy.packbits(samples, axis=-1)
    count = row_bytes(samples.shape[-1], bits)
    full = numpy.zeros((*samples.shape[:-1], count * 4), numpy.uint8)
    full[..., :samples.shape[-1]] = samples
    quads = full.reshape(*samples.shape[:-1], count, 4)
    return quads[..., 0] << 6 | quads[..., 1] << 4 | quads[..., 2] << 2 | quads[..., 3]
