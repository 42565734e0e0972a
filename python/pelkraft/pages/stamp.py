# SPDX-License-Identifier: Apache-2.0
"""A stamp beside each output says what it was made of, so that a rerun keeps what is done."""

from __future__ import annotations

import json
from dataclasses import asdict, dataclass
from typing import Optional

from .output import write_note

STAMP_VERSION = 2


@dataclass(frozen=True)
class Stamp:
    """Digests of a page's input, of its job and of the output's bytes, what was said of it, and
    the run that made it."""

    job: str
    input: str
    output: str
    warnings: tuple[str, ...] = ()
    run: str = ""
    notes: tuple[str, ...] = ()

    def write(self, output_path: str) -> None:
        record = {"stamp": STAMP_VERSION, **asdict(self)}
        write_note(stamp_path(output_path), (json.dumps(record) + "\n").encode())


def stamp_path(output_path: str) -> str:
    return output_path + ".stamp"


def read_stamp(output_path: str) -> Optional[Stamp]:
    """The stamp of an output, or None where there is none that can be understood."""
    try:
        with open(stamp_path(output_path), "rb") as file:
            record = json.loads(file.read())
        if record.pop("stamp") != STAMP_VERSION:
            return None
        return Stamp(**{**record, "warnings": tuple(record["warnings"]),
                        "notes": tuple(record["notes"])})
    except (OSError, ValueError, TypeError, KeyError, AttributeError):
        return None
