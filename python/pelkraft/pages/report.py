# SPDX-License-Identifier: Apache-2.0
"""A report in JSON lines: one object for each page in the list's order, then one that counts."""

from __future__ import annotations

import json
from collections import Counter
from typing import Any, Optional, TextIO

from .task import PageResult


class Report:
    """Writes each line as soon as it is known. Without a path it only counts.

    A disk that takes no more lines does not stop the pages; `failure` says so afterwards."""

    def __init__(self, path: Optional[str]) -> None:
        self.failure = ""
        self.counts: Counter[str] = Counter()
        self.warned = False
        self._path = path
        # Opened before the first page, so that a wrong path costs nothing.
        self._file: Optional[TextIO] = open(path, "w", encoding="utf-8") if path else None

    def add(self, result: PageResult) -> None:
        self.counts[result.status] += 1
        self.warned = self.warned or bool(result.warnings)
        self._write(page_record(result))

    def close(self, pages: int, seconds: float) -> None:
        counts = {status: self.counts[status] for status in ("made", "kept", "failed", "left")}
        self._write({"pages": pages, **counts, "seconds": round(seconds, 3)})
        if self._file is not None:
            self._guarded(self._file.close)

    def _write(self, record: dict[str, Any]) -> None:
        def write() -> None:
            self._file.write(json.dumps(record) + "\n")
            self._file.flush()

        if self._file is not None:
            self._guarded(write)

    def _guarded(self, action: Any) -> None:
        try:
            action()
        except OSError as error:
            self.failure = f"{self._path}: cannot be written: {error.strerror}"
            self._file = None


def page_record(result: PageResult) -> dict[str, Any]:
    job = result.job
    record: dict[str, Any] = {"number": result.number, "input": job.input, "output": job.output,
                              "status": result.status}
    if job.page is not None:
        record["page"] = job.page
    for name in ("kind", "message", "input_digest", "output_digest", "worker"):
        if value := getattr(result, name):
            record[name] = value
    for name in ("warnings", "notes"):
        if said := getattr(result, name):
            record[name] = list(said)
    record.update(attempts=result.attempts, losses=result.losses,
                  seconds=round(result.seconds, 4))
    return record
