# SPDX-License-Identifier: Apache-2.0
"""The records of a page job, which say what the bytes of an output depend on."""

from __future__ import annotations

import hashlib
import json
from dataclasses import dataclass, field
from typing import Any, Mapping, Optional, Sequence, Union

from .. import Constant, PelkraftError
from .errors import JobError

# A later version that gives other bytes for the same job must raise this number.
JOB_VERSION = 2

# The ways from samples to the steps of a pattern.
DITHER = "dither"
QUANTIZE = "quantize"
RAW = "raw"
TONES = ("coverage", "equal")

# A new channel is an old one by number, counted from 0, or by name; "-" is an empty one, and a
# constant holds one sample everywhere, as it stands in the new picture.
ChannelEntry = Union[int, str, Constant]


@dataclass(frozen=True)
class Conversion:
    """A change of layout, depth and channels. What is None stays as it is in the page."""

    layout: Optional[str] = None
    bits: Optional[int] = None
    channels: Optional[tuple[ChannelEntry, ...]] = None
    repeat: int = 1
    mirror: bool = False
    samples: Optional[str] = None
    invert: bool = False

    def __post_init__(self) -> None:
        _one_of("layout", self.layout, (None, "interleaved", "planar"))
        _one_of("bits", self.bits, (None, 1, 2, 8, 16))
        _one_of("repeat", self.repeat, (1, 2, 4))
        _one_of("samples", self.samples, (None, "fill", "tones", "levels"))
        _one_of("mirror", self.mirror, (False, True))
        _one_of("invert", self.invert, (False, True))
        if self.channels is not None:
            object.__setattr__(self, "channels", tuple(map(_checked_entry, self.channels)))
            if not 0 < len(self.channels) < 65536:
                raise JobError(f"channels has {len(self.channels)} entries; 1 to 65535 would do")


@dataclass(frozen=True)
class Simulation:
    """A dot pattern in place of the tones. `text` is the pattern itself, `name` where it stood.

    `levels` is "dither", "quantize" or "raw"; None dithers in-colours of fewer steps than the page
    has tones, and quantizes the others. `tone` has the inks of steps for the dither: "coverage",
    which None means too, "equal", or the bytes of a table, which stood in `tone_name`.
    """

    text: bytes
    engine: str = "automatic"
    levels: Optional[str] = None
    name: str = field(default="pattern", compare=False)
    tone: Union[None, str, bytes] = None
    tone_name: str = field(default="table", compare=False)

    def __post_init__(self) -> None:
        if not isinstance(self.text, bytes):
            raise JobError("text is no bytes; the bytes of a pattern file would do")
        _one_of("engine", self.engine, ("automatic", "x86", "sse"))
        _one_of("levels", self.levels, (None, DITHER, QUANTIZE, RAW))
        if not isinstance(self.tone, bytes):
            _one_of("tone", self.tone, (None, *TONES))
        if self.tone is not None and self.levels in (QUANTIZE, RAW):
            raise JobError(f"tone is about the dither, which levels {self.levels!r} does without; "
                           "leave one of them out")


Step = Union[Conversion, Simulation]


@dataclass(frozen=True)
class PageJob:
    """One page of a TIFF file, the steps that it goes through, and the file that it becomes.

    `page` counts from 1. None stands for the only page of a file, and a file with more is refused.
    """

    input: str
    output: str
    steps: tuple[Step, ...]
    page: Optional[int] = None

    def __post_init__(self) -> None:
        for name in ("input", "output"):
            path = getattr(self, name)
            if not isinstance(path, str) or not path or "\0" in path:
                raise JobError(f"{name} is {path!r}; the path of a file would do")
        if self.page is not None and (type(self.page) is not int or self.page < 1):
            raise JobError(f"page is {self.page!r}; a number from 1 would do")
        object.__setattr__(self, "steps", tuple(self.steps))
        if not self.steps or not all(isinstance(step, (Conversion, Simulation))
                                     for step in self.steps):
            raise JobError("steps must be one or more conversions and simulations")

    def digest(self) -> str:
        """A digest of all that turns the input page into the output, but not of the paths."""
        record = {"version": JOB_VERSION, "steps": [_canonical(step) for step in self.steps]}
        text = json.dumps(record, sort_keys=True, separators=(",", ":"))
        return hashlib.sha256(text.encode()).hexdigest()


def _one_of(name: str, value: Any, choices: Sequence[Any]) -> None:
    # Compared with the type: 1 is no True and 8.0 no 8 in a list of jobs.
    if not any(type(value) is type(choice) and value == choice for choice in choices):
        words = ", ".join("nothing" if choice is None else json.dumps(choice) for choice in choices)
        raise JobError(f"{name} is {value!r}; {words} would do")


def _checked_entry(entry: Any) -> ChannelEntry:
    if isinstance(entry, Mapping) and set(entry) == {"constant"}:
        try:
            return Constant(entry["constant"])
        except (TypeError, PelkraftError) as error:
            raise JobError(f"a constant channel is {entry['constant']!r}; 0 to 65535 would "
                           "do") from error
    if isinstance(entry, Constant):
        return entry
    if (type(entry) is int and entry >= 0) or (isinstance(entry, str) and entry):
        return entry
    raise JobError(f'a channel is {entry!r}; a number from 0, a name, "-" or '
                   '{"constant": 255} would do')


def _canonical(step: Step) -> dict[str, Any]:
    if isinstance(step, Simulation):
        tone = step.tone or TONES[0]
        return {"simulate": {"text": hashlib.sha256(step.text).hexdigest(),
                             "engine": step.engine, "levels": step.levels,
                             "tone": tone if isinstance(tone, str) else
                             {"table": hashlib.sha256(tone).hexdigest()}}}
    channels = step.channels and [
        {"constant": entry.sample} if isinstance(entry, Constant) else entry
        for entry in step.channels]
    return {"convert": {"layout": step.layout, "bits": step.bits, "channels": channels,
                        "repeat": step.repeat, "mirror": step.mirror, "samples": step.samples,
                        "invert": step.invert}}
