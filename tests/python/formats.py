"""Formats and plans of every kind, for hypothesis and for plain loops."""

from typing import NamedTuple

import naive
import numpy as np
from hypothesis import strategies as st

import pelkraft

KINDS = [
    (1, False), (2, False), (8, False), (10, False), (16, False),
    (1, True), (2, True), (8, True), (16, True),
]


def has_full_scale(kind):
    return kind[1] or kind[0] in (8, 16)


class Job(NamedTuple):
    """A plan to be made, and the rows to run it on."""

    source: tuple
    target: tuple
    rows: int
    map: object
    repeat: int
    mirror: bool
    samples: str
    invert: bool
    clip: bool
    stream: bool
    road: str
    seed: int

    def plan(self):
        return pelkraft.Plan(
            pelkraft.Format(*self.source),
            pelkraft.Format(*self.target),
            map=None if self.map is None else [to_entry(entry) for entry in self.map],
            repeat=self.repeat,
            mirror=self.mirror,
            samples=self.samples,
            invert=self.invert,
            clip=self.clip,
            stream=self.stream,
            road=self.road,
        )

    def source_rows(self):
        return random_rows(self.rows, self.source, self.seed)

    def old_target(self):
        return random_rows(self.rows, self.target, self.seed + 1)

    def expected(self, rows, out=None):
        return naive.convert(
            rows, self.source, self.target, out, map=self.map, repeat=self.repeat,
            mirror=self.mirror, samples=self.samples, invert=self.invert,
        )


def to_entry(entry):
    return pelkraft.Constant(entry[1]) if isinstance(entry, tuple) else entry


def random_rows(rows, form, seed):
    """Any bytes, those after the last pixel of a packed plane too."""
    dtype = naive.dtype_of(form[2])
    largest = np.iinfo(dtype).max
    shape = naive.shape_of(rows, *form)
    return np.random.default_rng(seed).integers(0, largest, shape, dtype, endpoint=True)


WIDTHS = st.one_of(st.integers(0, 70), st.sampled_from([127, 128, 129, 255, 256, 257, 1000]))


@st.composite
def jobs(draw, clip=False):
    old_kind = draw(st.sampled_from(KINDS))
    new_kind = draw(st.sampled_from(KINDS))
    samples, invert = "fill", False
    if has_full_scale(old_kind) and has_full_scale(new_kind):
        samples = draw(st.sampled_from(["fill", "tones", "levels"]))
        invert = draw(st.booleans())
    elif draw(st.booleans()):
        samples = "levels"
    channels = draw(st.integers(0, 6))
    repeat = draw(st.sampled_from([1, 2, 4]))
    width = draw(WIDTHS)
    new_width = draw(WIDTHS) if clip else width * repeat
    entries, new_channels = None, channels
    if draw(st.booleans()):
        largest = (1 << naive.memory_bits(*new_kind)) - 1
        kinds = [st.none(), st.tuples(st.just("constant"), st.integers(0, largest))]
        if channels:
            kinds.append(st.integers(0, channels - 1))
        entries = draw(st.lists(st.one_of(kinds), max_size=7))
        new_channels = len(entries)
    return Job(
        source=(width, channels, *old_kind),
        target=(new_width, new_channels, *new_kind),
        rows=draw(st.integers(0, 4)),
        map=entries,
        repeat=repeat,
        mirror=draw(st.booleans()),
        samples=samples,
        invert=invert,
        clip=clip,
        stream=draw(st.booleans()),
        road=draw(st.sampled_from(["automatic", "portable"])),
        seed=draw(st.integers(0, 2**32 - 1)),
    )
