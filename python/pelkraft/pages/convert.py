# SPDX-License-Identifier: Apache-2.0
"""Takes a picture through the steps of a job, with the bytes that the program `pelkraft` gives."""

from __future__ import annotations

from functools import lru_cache
from typing import Optional, Sequence

import numpy

from .. import Constant, Format, Pattern, PelkraftError, Plan
from .channels import Entry, choose_channels, find_channels, plan_tags, shown
from .errors import PATTERN, UNSUPPORTED, PageError
from .ink_codes import is_ink, plan_range
from .jobs import Conversion, PageJob, Simulation
from .picture import (INK_SET_OTHER, SEPARATED, Channel, Picture, Tags, format_of, row_bytes,
                      unpack_samples)

# Rows that stay in the processor's cache from the conversion to the pattern.
BAND_SAMPLES = 1 << 18
NO_STEPS = 255


def convert_page(job: PageJob, picture: Picture) -> tuple[Picture, tuple[str, ...]]:
    """The new picture, and warnings about its pixels."""
    warnings: list[str] = []
    for step in job.steps:
        try:
            if isinstance(step, Conversion):
                picture = _convert(step, picture, job.input, warnings)
            else:
                picture = _simulate(step, picture, job.input, warnings)
        except PelkraftError as error:
            raise PageError(UNSUPPORTED, f"{job.input}: {error}") from error
    return picture, tuple(warnings)


def _convert(step: Conversion, picture: Picture, path: str, warnings: list[str]) -> Picture:
    bits = step.bits or picture.bits
    planar = picture.planar if step.layout is None else step.layout == "planar"
    entries = None if step.channels is None else \
        find_channels(step.channels, picture.channels, path)
    range_ = plan_range(picture, bits, step.invert)
    channels, tags, losses = plan_tags(picture, entries, bits, step.repeat, range_)
    warnings += losses
    empty = Constant(range_.empty)
    filled = None if entries is None else [empty if entry is None else entry for entry in entries]
    width = picture.width * step.repeat
    levels_meet_tones = (picture.bits < 8) != (bits < 8)
    samples = step.samples or ("tones" if levels_meet_tones else "fill")
    if bits < min(picture.bits, 8) and samples != "tones" and \
            _exceeds(picture, entries, bits, samples):
        depth = "1 bit" if bits == 1 else f"{bits} bits"
        warnings.append(f"samples exceed the levels of {depth}, and only their lowest bits were "
                        "kept; tones would be rounded to levels")
    inks, others = _find_inks(picture, entries)
    plan = Plan(format_of(picture), Format(width, len(channels), bits, bits < 8 or planar),
                map=filled, repeat=step.repeat, mirror=step.mirror, samples=samples,
                invert=step.invert and not others)
    pixels = _empty_rows(picture.height, width, len(channels), bits, planar)
    plan(picture.pixels, out=pixels)
    if step.invert and others:
        planes = pixels if bits < 8 or planar else pixels.transpose(0, 2, 1)
        planes[:, inks] ^= numpy.iinfo(pixels.dtype).max
    return Picture(pixels, width, bits, planar, channels, tags, picture.compressed)


def _find_inks(picture: Picture,
               entries: Optional[Sequence[Entry]]) -> tuple[list[int], bool]:
    """The new channels that hold samples of inks or colours, and whether others hold samples of
    something else, which an inversion leaves as they are."""
    taken = range(len(picture.channels)) if entries is None else entries
    inks = [i for i, entry in enumerate(taken)
            if isinstance(entry, int) and is_ink(picture, entry)]
    return inks, len(inks) < sum(isinstance(entry, int) for entry in taken)


def _empty_rows(height: int, width: int, channels: int, bits: int, planar: bool) -> numpy.ndarray:
    """Rows of planes lie in memory as in a file, one plane after the other."""
    kind = numpy.uint16 if bits == 16 else numpy.uint8
    if bits >= 8 and not planar:
        return numpy.empty((height, width, channels), kind)
    samples = row_bytes(width, bits) if bits < 8 else width
    return numpy.empty((channels, height, samples), kind).transpose(1, 0, 2)


def _exceeds(picture: Picture, entries: Optional[Sequence[Entry]], bits: int,
             samples: str) -> bool:
    used = range(len(picture.channels)) if entries is None else \
        {entry for entry in entries if isinstance(entry, int)}
    pixels = picture.pixels
    if picture.bits < 8:
        pixels = unpack_samples(pixels, picture.width, picture.bits)
    elif picture.bits == 16 and samples == "fill":
        # These are narrowed to 8 bits before their low bits are taken.
        form = format_of(picture)
        pixels = Plan(form, Format(form.width, form.channels, 8, form.planar))(pixels)
    axis = 1 if picture.planar or picture.bits < 8 else 2
    return any(pixels.take(channel, axis).max() >= 1 << bits for channel in used)


@lru_cache(maxsize=4)
def _pattern_of(text: bytes, engine: str) -> Pattern:
    return Pattern(text, engine)


def _simulate(step: Simulation, picture: Picture, path: str, warnings: list[str]) -> Picture:
    try:
        pattern = _pattern_of(step.text, step.engine)
    except PelkraftError as error:
        raise PageError(PATTERN, f"{step.name}: {error}") from error
    if step.levels == "raw" and picture.bits == 16:
        raise PageError(UNSUPPORTED, f"{path}: has samples of 16 bits; raw levels support 1, 2 "
                                     "and 8")
    choice = choose_channels(pattern.in_colours, picture, path)
    entries = choice.entries
    warnings += choice.notes
    warnings += [f"channel {shown(picture.channels, channel)} is not used: no in-colour of the "
                 "pattern takes it" for channel in choice.unused]
    tops = [0 if top == NO_STEPS else top for top in pattern.top_steps]
    inks = tuple(pattern.out_inks)
    pixels = numpy.empty((picture.height, picture.width, len(inks)), numpy.uint8)
    band = max(BAND_SAMPLES // (picture.width * max(len(entries), 1)), 1)
    rows = _InkRows(picture, entries, tops, step.levels, min(band, picture.height))
    for first in range(0, picture.height, band):
        steps = rows.steps(first, min(first + band, picture.height))
        pattern(steps, first_row=first, out=pixels[first:first + len(steps)])
    if rows.saw_high_step:
        warnings.append("samples are above the top step of their in-colour; quantized levels "
                        "divide tones over the steps")
    old = picture.tags
    tags = Tags(SEPARATED, INK_SET_OTHER, inks, old.resolution, old.resolution_unit,
                old.orientation)
    return Picture(pixels, picture.width, 8, False, tuple(map(Channel, inks)), tags,
                   picture.compressed)


class _InkRows:
    """Rows of a picture as steps of a pattern's in-colours, a band at a time. A band's memory is
    that of the one before: new pages of memory would cost more than the work."""

    def __init__(self, picture: Picture, entries: list[int], tops: list[int], levels: str,
                 band: int) -> None:
        self.saw_high_step = False
        self._picture = picture
        self._quantizes = levels == "quantize"
        self._tops = numpy.array(tops, numpy.uint8)
        self._factors = numpy.tile(numpy.array(tops, numpy.uint16) + 1, picture.width)
        shape = (band, picture.width, len(entries))
        self._tones = numpy.empty(shape, numpy.uint8)
        self._wide = numpy.empty((band, picture.width * len(entries)), numpy.uint16)
        self._steps = numpy.empty(shape, numpy.uint8)
        in_place = not picture.planar and picture.bits == 8 and \
            entries == list(range(len(picture.channels)))
        # A level counts as a tone where tones are divided over steps.
        self._plan = None if in_place else Plan(
            format_of(picture), Format(picture.width, len(entries), 8, False), map=entries,
            samples="tones" if self._quantizes else "fill")

    def steps(self, first: int, end: int) -> numpy.ndarray:
        rows, count = self._picture.pixels[first:end], end - first
        if self._plan is not None:
            rows = self._plan(rows, out=self._tones[:count])
        if not self._quantizes:
            self.saw_high_step = self.saw_high_step or bool((rows > self._tops).any())
            return rows
        # 0 to 255 is divided evenly over the steps.
        wide = numpy.multiply(rows.reshape(count, -1), self._factors, out=self._wide[:count])
        steps = self._steps[:count]
        numpy.right_shift(wide, 8, out=steps.reshape(count, -1), casting="unsafe")
        return steps
