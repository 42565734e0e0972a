# SPDX-License-Identifier: Apache-2.0
"""Takes a picture through the steps of a job, with the bytes that the program `pelkraft` gives."""

from __future__ import annotations

from functools import lru_cache
from typing import Optional, Sequence

import numpy

from .. import Constant, Format, Pattern, PelkraftError, Plan
from .channels import Entry, choose_channels, find_channels, plan_tags, shown
from .errors import PATTERN, UNSUPPORTED, PageError
from .ink_codes import is_ink, plan_range, read_codes, refuse_other_colours
from .ink_steps import StepChoice, StepRows
from .jobs import RAW, Conversion, PageJob, Simulation
from .notes import Note
from .picture import (INK_SET_OTHER, SEPARATED, Channel, Picture, Tags, format_of, row_bytes,
                      unpack_samples)

# Rows that stay in the processor's cache from the conversion to the pattern.
BAND_SAMPLES = 1 << 18


def convert_page(job: PageJob, picture: Picture) -> tuple[Picture, tuple[str, ...]]:
    """The new picture, warnings about its pixels, and notes."""
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
    warnings += map(Note, losses)
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
            if isinstance(entry, int) and
            is_ink(picture.channels[entry], picture.tags.photometric)]
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
    refuse_other_colours(picture, path)
    if step.levels == RAW and picture.bits == 16:
        raise PageError(UNSUPPORTED, f"{path}: has samples of 16 bits; raw levels support 1, 2 "
                                     "and 8")
    channels = choose_channels(pattern.in_colours, picture, path)
    choice = StepChoice(step, pattern, read_codes(picture, path))
    warnings += map(Note, channels.notes)
    warnings += [f"channel {shown(picture.channels, channel)} is not used: no in-colour of the "
                 "pattern takes it" for channel in channels.unused]
    warnings += choice.warnings
    inks = tuple(pattern.out_inks)
    pixels = numpy.empty((picture.height, picture.width, len(inks)), numpy.uint8)
    band = max(BAND_SAMPLES // (picture.width * max(len(channels.entries), 1)), 1)
    rows = StepRows(picture, channels.entries, choice, min(band, picture.height))
    for first in range(0, picture.height, band):
        steps = rows.steps(first, min(first + band, picture.height))
        pattern(steps, first_row=first, out=pixels[first:first + len(steps)])
    if rows.saw_high_step:
        warnings.append("samples are above the top step of their in-colour; quantized levels "
                        "divide tones over the steps")
    old = picture.tags
    tags = Tags(SEPARATED, INK_SET_OTHER, inks, old.resolution, old.resolution_unit,
                old.orientation, dot_ranges=((0, min(pattern.full_ink, 255)),))
    return Picture(pixels, picture.width, 8, False, tuple(map(Channel, inks)), tags,
                   picture.compressed)
