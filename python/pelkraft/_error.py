"""The exception of the package."""

# SPDX-License-Identifier: Apache-2.0
from __future__ import annotations

import enum


class Status(enum.IntEnum):
    """What kind of failure it was, as the library's C interface numbers them.

    INVALID      an argument has a value that none may have
    UNSUPPORTED  each argument is valid, but nothing serves all of them together
    TOO_NEW      a record holds something that a later version of the library understands
    TOO_SMALL    a buffer ends before the bytes that are needed
    OVERLAP      rows share bytes that are to be written
    NO_MEMORY    never seen here, since a MemoryError is raised
    BAD_TEXT     a pattern text breaks a rule of its format
    BAD_RECORD   a saved record is damaged or is none
    """

    OK = 0
    INVALID = 1
    UNSUPPORTED = 2
    TOO_NEW = 3
    TOO_SMALL = 4
    OVERLAP = 5
    NO_MEMORY = 6
    BAD_TEXT = 7
    BAD_RECORD = 8


class PelkraftError(ValueError):
    """A refusal, found before anything was written.

    str() gives a sentence that names the field, what it was and what would do.

    status        the kind of failure, a Status
    field         the argument or the field of one, such as "target.bits", or ""
    given         the number that it had, and
    needed        one that would do; both are 0 where there is no number to name
    line, column  the place in the text of a pattern, counted from 1, or 0 where there is none
    """

    def __init__(
        self,
        text: str,
        status: int = Status.INVALID,
        field: str = "",
        given: int = 0,
        needed: int = 0,
        line: int = 0,
        column: int = 0,
    ) -> None:
        super().__init__(text)
        self.status = Status(status)
        self.field = field
        self.given = given
        self.needed = needed
        self.line = line
        self.column = column
