# SPDX-License-Identifier: Apache-2.0
"""Makes jobs of a list in JSON or JSON lines, or of files and folders."""

from __future__ import annotations

import json
import os
from typing import Any, Iterable, Mapping, Optional, Sequence

from .errors import JobError
from .jobs import TONES, Conversion, PageJob, Simulation, Step

TIFF_ENDINGS = (".tif", ".tiff")


class StepFiles:
    """The bytes of pattern texts and tables of inks, each file read once."""

    def __init__(self) -> None:
        self._texts: dict[str, bytes] = {}

    def read(self, path: str) -> bytes:
        if path not in self._texts:
            try:
                with open(path, "rb") as file:
                    self._texts[path] = file.read()
            except OSError as error:
                raise JobError(f"{path}: cannot be read: {error.strerror}") from error
        return self._texts[path]

    def read_tone(self, tone: str, folder: str = "") -> dict[str, Any]:
        """The fields of a simulation for a kind of tone, or for the path of a table."""
        if tone in TONES:
            return {"tone": tone}
        path = os.path.join(folder, tone)
        if not os.path.exists(path):
            raise JobError(f"tone is {tone!r}, neither a kind of tone nor a file; "
                           f"{', '.join(TONES)} or the path of a table would do")
        return {"tone": self.read(path), "tone_name": path}


def read_job_list(path: str, steps: Sequence[Step] = ()) -> list[PageJob]:
    """The jobs of a list, in its order. A job without steps of its own takes those of the list, or
    else the given ones. Paths that are not absolute begin at the list's folder."""
    try:
        with open(path, encoding="utf-8") as file:
            text = file.read()
    except (OSError, UnicodeDecodeError) as error:
        words = getattr(error, "strerror", None) or "it is no text in UTF-8"
        raise JobError(f"{path}: cannot be read: {words}") from error
    return _ListReader(path, steps).read(text)


def jobs_for_files(paths: Iterable[str], folder: str, steps: Sequence[Step],
                   page: Optional[int] = None) -> list[PageJob]:
    """A job for each file, and for each TIFF file in a folder by name. Outputs have the same names
    in another folder."""
    jobs = []
    for path in paths:
        for file in _files_of(path):
            output = os.path.join(folder, os.path.basename(file))
            jobs.append(PageJob(os.path.abspath(file), os.path.abspath(output), tuple(steps),
                                page))
    return jobs


def _files_of(path: str) -> list[str]:
    if not os.path.isdir(path):
        return [path]
    names = sorted(name for name in os.listdir(path)
                   if name.lower().endswith(TIFF_ENDINGS) and not name.startswith("."))
    if not names:
        raise JobError(f"{path}: has no TIFF file")
    return [os.path.join(path, name) for name in names]


class _ListReader:
    def __init__(self, path: str, steps: Sequence[Step]) -> None:
        self._path = path
        self._folder = os.path.dirname(os.path.abspath(path))
        self._steps = tuple(steps)
        self._files = StepFiles()

    def read(self, text: str) -> list[PageJob]:
        try:
            document = json.loads(text)
        except ValueError as error:
            return self._read_lines(text, error)
        if isinstance(document, dict) and "jobs" in document:
            self._refuse_unknown(document, {"jobs", "steps"}, "the list")
            if "steps" in document:
                self._steps = self._read_steps(document["steps"], "the list")
            document = document["jobs"]
        records = document if isinstance(document, list) else [document]
        return [self._read_job(record, f"job {number}")
                for number, record in enumerate(records, 1)]

    def _read_lines(self, text: str, whole: ValueError) -> list[PageJob]:
        jobs = []
        for number, line in enumerate(text.splitlines(), 1):
            if not line.strip():
                continue
            try:
                record = json.loads(line)
            except ValueError as error:
                # A list over many lines that is broken was meant as one document.
                told = error if jobs else whole
                raise JobError(f"{self._path}: {told}" if not jobs else
                               f"{self._path}: line {number}: {told}") from error
            jobs.append(self._read_job(record, f"line {number}"))
        return jobs

    def _read_job(self, record: Any, where: str) -> PageJob:
        if not isinstance(record, dict):
            raise JobError(f"{self._path}: {where} is {_kind(record)}; an object with input and "
                           "output would do")
        self._refuse_unknown(record, {"input", "output", "page", "steps"}, where)
        for name in ("input", "output"):
            if not isinstance(record.get(name), str) or not record[name]:
                raise JobError(f"{self._path}: {where}: {name} is {record.get(name)!r}; the path "
                               "of a file would do")
        steps = self._read_steps(record["steps"], where) if "steps" in record else self._steps
        return self._told(where, PageJob, os.path.join(self._folder, record["input"]),
                          os.path.join(self._folder, record["output"]), steps,
                          record.get("page"))

    def _read_steps(self, records: Any, where: str) -> tuple[Step, ...]:
        if not isinstance(records, list):
            raise JobError(f"{self._path}: {where}: steps is {_kind(records)}; a list would do")
        return tuple(self._read_step(record, where) for record in records)

    def _read_step(self, record: Any, where: str) -> Step:
        kind, fields = next(iter(record.items())) if isinstance(record, dict) and \
            len(record) == 1 else (None, None)
        if kind not in ("convert", "simulate") or not isinstance(fields, dict):
            raise JobError(f'{self._path}: {where}: a step is {record!r}; {{"convert": {{...}}}} '
                           'or {"simulate": {...}} would do')
        if kind == "convert":
            self._refuse_unknown(fields, Conversion.__dataclass_fields__, f"{where}: convert")
            if isinstance(fields.get("channels"), list):
                fields = {**fields, "channels": tuple(fields["channels"])}
            elif fields.get("channels") is not None:
                raise JobError(f"{self._path}: {where}: channels is "
                               f"{_kind(fields['channels'])}; a list would do")
            return self._told(where, Conversion, **fields)
        self._refuse_unknown(fields, {"pattern", "engine", "levels", "tone"}, f"{where}: simulate")
        fields = dict(fields)
        name = fields.pop("pattern", None)
        if not isinstance(name, str) or not name:
            raise JobError(f"{self._path}: {where}: pattern is {name!r}; the path of a file would "
                           "do")
        path = os.path.join(self._folder, name)
        tone = fields.pop("tone", None)
        if isinstance(tone, str):
            fields |= self._told(where, self._files.read_tone, tone, self._folder)
        elif tone is not None:
            raise JobError(f"{self._path}: {where}: tone is {_kind(tone)}; {', '.join(TONES)} or "
                           "the path of a table would do")
        return self._told(where, Simulation, self._files.read(path), name=path, **fields)

    def _told(self, where: str, make: Any, *values: Any, **fields: Any) -> Any:
        try:
            return make(*values, **fields)
        except JobError as error:
            raise JobError(f"{self._path}: {where}: {error}") from error

    def _refuse_unknown(self, record: Mapping[str, Any], known: Iterable[str],
                        where: str) -> None:
        for name in record:
            if name not in known:
                words = ", ".join(sorted(known))
                raise JobError(f"{self._path}: {where}: there is no {name!r}; {words} would do")


def _kind(value: Any) -> str:
    words = {dict: "an object", list: "a list", str: "a text", bool: "true or false",
             type(None): "null"}
    return words.get(type(value), "a number")
