# SPDX-License-Identifier: Apache-2.0
"""Rows of a picture as steps of a pattern's in-colours, by the ways of the program `pelkraft`."""

from __future__ import annotations

from functools import lru_cache
from typing import Optional, Sequence, Union

import numpy

from .. import Dither, Format, Pattern, PelkraftError, Plan, Tones
from .._core import _flat_step
from .errors import INPUT, PATTERN, PageError
from .jobs import DITHER, QUANTIZE, RAW, Simulation
from .picture import DotRange, Picture, format_of

NO_STEPS = 255

Inks = tuple[tuple[int, ...], ...]


def top_steps(pattern: Pattern) -> list[int]:
    """An in-colour that is listed but not described has step 0 alone."""
    return [0 if top == NO_STEPS else top for top in pattern.top_steps]


@lru_cache(maxsize=4)
def _inks_of(pattern: Pattern, tone: Union[None, str, bytes]) -> Inks:
    if isinstance(tone, bytes):
        return pattern.read_step_inks(tone)
    return pattern.step_inks(tone or "coverage")


class StepChoice:
    """The way of each in-colour from a sample to a step, and what is to be said of it."""

    def __init__(self, step: Simulation, pattern: Pattern, codes: DotRange) -> None:
        self.tops = top_steps(pattern)
        self.codes = codes
        self.warnings: list[str] = []
        if step.levels in (RAW, QUANTIZE):
            self.ways = [step.levels] * len(self.tops)
            return
        try:
            self.inks = _inks_of(pattern, step.tone)
        except PelkraftError as error:
            raise PageError(INPUT, str(error).replace("table", step.tone_name, 1)) from error
        self.ways = [self._way_of(step, name, top, inks) for name, top, inks in
                     zip(pattern.in_colours, self.tops, self.inks)]

    def _way_of(self, step: Simulation, name: str, top: int, inks: Sequence[int]) -> str:
        none, full = self.codes
        if step.levels is None and abs(full - none) <= top:
            return QUANTIZE
        flat = _flat_step(inks)
        if not flat:
            return DITHER
        words = f"{step.name}: in-colour {name}: {flat}"
        advice = "a dither wants more ink at each step, which the tone equal or a CSV file may give"
        if step.levels == DITHER:
            raise PageError(PATTERN, f"{words}; {advice}")
        self.warnings.append(f"{words}, so that its tones are quantized: {advice}")
        return QUANTIZE

    def dither(self, bits: int, stretch: int) -> Dither:
        """In-colours that are not dithered get a single step, which another way takes."""
        none, full = (code * stretch for code in self.codes)
        return Dither([Tones(inks if way == DITHER else (0,), none, full)
                       for way, inks in zip(self.ways, self.inks)], bits)


class StepRows:
    """Makes steps a band at a time. A band's memory is that of the one before: new pages of memory
    would cost more than the work. The steps last until the next band."""

    def __init__(self, picture: Picture, entries: list[int], choice: StepChoice,
                 band: int) -> None:
        self._by_level: Optional[_LevelRows] = None
        self._by_dither: Optional[_DitherRows] = None
        self._dithered = [i for i, way in enumerate(choice.ways) if way == DITHER]
        if self._dithered:
            self._by_dither = _DitherRows(picture, entries, choice, band)
        # A pattern without in-colours has rows all the same.
        if not self._dithered or len(self._dithered) < len(choice.ways):
            self._by_level = _LevelRows(picture, entries, choice, band)

    @property
    def saw_high_step(self) -> bool:
        return self._by_level is not None and self._by_level.saw_high_step

    def steps(self, first: int, end: int) -> numpy.ndarray:
        if self._by_level is None:
            return self._by_dither.steps(first, end)
        steps = self._by_level.steps(first, end)
        if self._by_dither is not None:
            dithered = self._by_dither.steps(first, end)
            steps[..., self._dithered] = dithered[..., self._dithered]
        return steps


class _Samples:
    """Rows of the channels that in-colours take, interleaved."""

    def __init__(self, picture: Picture, entries: list[int], bits: int, kind: str,
                 band: int) -> None:
        self._pixels = picture.pixels
        self._plan = None
        if picture.planar or picture.bits != bits or \
                entries != list(range(len(picture.channels))):
            self._plan = Plan(format_of(picture), Format(picture.width, len(entries), bits),
                              map=entries, samples=kind)
            self._rows = numpy.empty((band, picture.width, len(entries)),
                                     numpy.uint16 if bits == 16 else numpy.uint8)

    def rows(self, first: int, end: int) -> numpy.ndarray:
        rows = self._pixels[first:end]
        return rows if self._plan is None else self._plan(rows, out=self._rows[:end - first])


class _DitherRows:
    def __init__(self, picture: Picture, entries: list[int], choice: StepChoice,
                 band: int) -> None:
        bits = max(picture.bits, 8)
        # Levels are stretched to tones, and their codes too.
        stretch = ((1 << bits) - 1) // ((1 << picture.bits) - 1)
        self._dither = choice.dither(bits, stretch)
        self._samples = _Samples(picture, entries, bits, "tones", band)
        self._steps = numpy.empty((band, picture.width, len(entries)), numpy.uint8)

    def steps(self, first: int, end: int) -> numpy.ndarray:
        rows = self._samples.rows(first, end)
        return self._dither(rows, y=first, out=self._steps[:end - first])


class _LevelRows:
    def __init__(self, picture: Picture, entries: list[int], choice: StepChoice,
                 band: int) -> None:
        self.saw_high_step = False
        self._raw = RAW in choice.ways
        self._tops = numpy.array(choice.tops, numpy.uint8)
        self._factors = numpy.tile(numpy.array(choice.tops, numpy.uint16) + 1, picture.width)
        self._table = None
        bits, kind = 8, "fill" if self._raw else "tones"
        if not self._raw and choice.codes != (0, (1 << picture.bits) - 1):
            self._table = _tone_table(picture.bits, choice.codes)
            bits, kind = max(picture.bits, 8), "levels"
        self._samples = _Samples(picture, entries, bits, kind, band)
        shape = (band, picture.width, len(entries))
        self._wide = numpy.empty((band, picture.width * len(entries)), numpy.uint16)
        self._steps = numpy.empty(shape, numpy.uint8)

    def steps(self, first: int, end: int) -> numpy.ndarray:
        rows, count = self._samples.rows(first, end), end - first
        if self._raw:
            self.saw_high_step = self.saw_high_step or bool((rows > self._tops).any())
            return rows
        if self._table is not None:
            rows = self._table[rows]
        # 0 to 255 is divided evenly over the steps.
        wide = numpy.multiply(rows.reshape(count, -1), self._factors, out=self._wide[:count])
        steps = self._steps[:count]
        numpy.right_shift(wide, 8, out=steps.reshape(count, -1), casting="unsafe")
        return steps


def _tone_table(bits: int, codes: DotRange) -> numpy.ndarray:
    """The tone of each sample, from 0 for no ink to 255 for full ink, to the nearest, half up."""
    none, full = codes
    run = abs(full - none)
    samples = numpy.arange(1 << bits, dtype=numpy.int64)
    distance = numpy.clip(samples - none if none < full else none - samples, 0, run)
    return ((2 * 255 * distance + run) // (2 * run)).astype(numpy.uint8)
