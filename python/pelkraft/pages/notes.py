# SPDX-License-Identifier: Apache-2.0
"""Words about a page that is made in which no pixel lost anything."""

from __future__ import annotations

from typing import Iterable


class Note(str):
    """Stands among the warnings of a converter, and makes no exit code."""


def part(said: Iterable[str]) -> tuple[tuple[str, ...], tuple[str, ...]]:
    """The warnings, and the notes."""
    said = tuple(said)
    return (tuple(words for words in said if not isinstance(words, Note)),
            tuple(str(words) for words in said if isinstance(words, Note)))
