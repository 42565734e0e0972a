# SPDX-License-Identifier: Apache-2.0
"""Samples of no ink and of full ink, and the range of dots that tells them."""

from __future__ import annotations

from dataclasses import dataclass

from .errors import INPUT, UNSUPPORTED, PageError
from .picture import (MASK, MIN_IS_BLACK, MIN_IS_WHITE, PALETTE, RGB, SEPARATED, UNSPECIFIED_EXTRA,
                      Channel, DotRange, Picture)

INKS = (SEPARATED, MIN_IS_WHITE, MIN_IS_BLACK)
# Samples of other kinds are numbers, or differences.
AMOUNTS = (*INKS, RGB)
NAMES = {MIN_IS_WHITE: "MinIsWhite", MIN_IS_BLACK: "MinIsBlack", RGB: "RGB", PALETTE: "palette",
         MASK: "transparency mask", 6: "YCbCr", 8: "Lab", 9: "Lab", 10: "Lab"}
TURNED = {MIN_IS_WHITE: MIN_IS_BLACK, MIN_IS_BLACK: MIN_IS_WHITE}


def kind_of(photometric: int) -> str:
    return NAMES.get(photometric, f"photometric {photometric}")


def refuse_other_colours(picture: Picture, path: str) -> None:
    if picture.tags.photometric not in INKS:
        raise PageError(UNSUPPORTED, f"{path}: holds {kind_of(picture.tags.photometric)}; "
                                     "supported are pages of inks: separated, MinIsWhite and "
                                     "MinIsBlack; a program that knows colour profiles makes inks "
                                     "of it")


def is_ink(channel: Channel, photometric: int) -> bool:
    """Alpha is no ink. Beside colours extra samples of no told kind mean something else too."""
    return channel.extra is None or \
        (channel.extra == UNSPECIFIED_EXTRA and photometric in INKS)


def read_codes(picture: Picture, path: str) -> DotRange:
    """The samples of no ink and of full ink of a page of inks. None is the greater one where ink
    is low."""
    highest = (1 << picture.bits) - 1
    ranges = picture.tags.dot_ranges if picture.tags.photometric == SEPARATED else ()
    for none, full in ranges:
        if not _has_sense((none, full), highest):
            raise PageError(INPUT, f"{path}: dot range {none},{full} is empty or exceeds the "
                                   f"samples, which reach {highest}")
    for channel, range_ in enumerate(ranges):
        if range_ != ranges[0]:
            raise PageError(UNSUPPORTED, f"{path}: has another dot range in channel {channel} than "
                                         "in channel 0; pelkraft convert --dot-range full maps "
                                         "each to all samples")
    if picture.tags.photometric == MIN_IS_BLACK:
        return highest, 0
    return ranges[0] if ranges else (0, highest)


@dataclass(frozen=True)
class NewRange:
    """What a converted page says of its samples."""

    photometric: int
    dot_ranges: tuple[DotRange, ...]
    # The sample of an empty channel.
    empty: int
    losses: tuple[str, ...]


def plan_range(picture: Picture, bits: int, invert: bool) -> NewRange:
    """Samples that are inverted keep their meaning as far as tags can tell it."""
    photometric = picture.tags.photometric
    highest = (1 << bits) - 1
    if photometric == SEPARATED:
        return _plan_ink_range(picture, bits, invert)
    losses = []
    ranges = picture.tags.dot_ranges
    if ranges and (bits != picture.bits or invert):
        ranges = ()
        losses.append("DotRange is not kept: the samples change")
    if invert and photometric not in TURNED:
        losses.append("invert makes a negative: no tag turns the meaning of a page of "
                      f"{kind_of(photometric)}")
    empty = highest if photometric in (MIN_IS_BLACK, RGB) else 0
    if invert and photometric in AMOUNTS:
        empty = highest - empty
    return NewRange(TURNED.get(photometric, photometric) if invert else photometric, ranges,
                    empty, tuple(losses))


def _plan_ink_range(picture: Picture, bits: int, invert: bool) -> NewRange:
    old_highest, highest = (1 << picture.bits) - 1, (1 << bits) - 1
    ranges = picture.tags.dot_ranges
    losses = []
    none, full, told = 0, highest, False
    if len(set(ranges)) > 1:
        losses.append("DotRange is not kept: it has a pair for each channel, and one for all is "
                      "written")
    elif ranges and not _has_sense(ranges[0], old_highest):
        if bits == picture.bits and not invert:
            return NewRange(SEPARATED, ranges[:1], 0, ())
        losses.append(f"DotRange {_words(ranges[0])} is not kept: it is empty or exceeds the "
                      "samples")
    elif ranges:
        told = True
        # Half up.
        none, full = ((2 * code * highest + old_highest) // (2 * old_highest)
                      for code in ranges[0])
        if none == full:
            losses.append(f"DotRange is not kept: the dot range {_words(ranges[0])} has no room "
                          f"in {bits} bit{'s' if bits > 1 else ''}")
    if invert:
        none, full, told = highest - none, highest - full, True
    kept = ((none, full),) if told and none != full else ()
    return NewRange(SEPARATED, kept, 0 if none < full else none, tuple(losses))


def _has_sense(range_: DotRange, highest: int) -> bool:
    none, full = range_
    return none != full and 0 <= none <= highest and 0 <= full <= highest


def _words(range_: DotRange) -> str:
    return f"{range_[0]},{range_[1]}"
