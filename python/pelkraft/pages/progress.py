# SPDX-License-Identifier: Apache-2.0
"""A line on the standard error stream that says how far the pages are."""

from __future__ import annotations

import math
import sys
import time
from typing import Callable, TextIO

PAUSE = 0.1


class Progress:
    """Shown on a terminal, or where `wanted` is "always"; with "never" nowhere."""

    def __init__(self, total: int, wanted: str = "auto", stream: TextIO = sys.stderr,
                 clock: Callable[[], float] = time.monotonic) -> None:
        self._total = total
        self._stream = stream
        self._clock = clock
        self._shown = wanted == "always" or (wanted == "auto" and stream.isatty())
        self._start = clock()
        self._last = -math.inf
        self._width = 0

    def show(self, done: int, kept: int, failed: int) -> None:
        now = self._clock()
        if not self._shown or (now - self._last < PAUSE and done < self._total):
            return
        self._last = now
        # Kept pages took no time worth counting on.
        worked = done - kept
        line = f"pelkraft.pages: {done} of {self._total} pages"
        if worked and now > self._start:
            rate = worked / (now - self._start)
            left = (self._total - done) / rate
            line += f", {60 * rate:.0f} a minute, {_duration(left)} left"
        if failed:
            line += f", {failed} failed"
        self._print(line)

    def wipe(self) -> None:
        if self._width:
            self._print("")
            self._stream.write("\r")
            self._stream.flush()

    def _print(self, line: str) -> None:
        self._stream.write("\r" + line.ljust(self._width))
        self._stream.flush()
        self._width = len(line)


def _duration(seconds: float) -> str:
    whole = round(seconds)
    if whole < 60:
        return f"{whole} s"
    if whole < 3600:
        return f"{whole // 60} min {whole % 60:02d} s"
    return f"{whole // 3600} h {whole % 3600 // 60:02d} min"
