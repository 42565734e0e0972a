# SPDX-License-Identifier: Apache-2.0
"""One page job, done by whichever worker it comes to. One task owns one file."""

from __future__ import annotations

import os
import socket
import time
from dataclasses import dataclass, field
from typing import Callable, Optional

from .convert import convert_page
from .errors import MEMORY, READ, WRITE, PageError
from .file_digest import file_digest
from .jobs import PageJob
from .notes import part
from .output import new_file
from .picture import Picture
from .stamp import Stamp, read_stamp
from .tiff_reader import TiffPage
from .tiff_writer import tiff_pieces

MADE = "made"
KEPT = "kept"
FAILED = "failed"
LEFT = "left"

# A page's picture goes through such a function, which leaves it as it is and answers a new one,
# and warnings, some of which may be notes.
Converter = Callable[[PageJob, Picture], tuple[Picture, tuple[str, ...]]]


@dataclass(frozen=True)
class PageResult:
    """The fate of a page.

    `status` is "made", "kept" (it was there already), "failed" or "left" (not tried, since the
    cluster went away). `warnings` are about pixels, `notes` about all else. Of a failed page `kind` and `message` say why; `attempts` counts how often
    it was begun and `losses` how often its worker was lost.
    """

    number: int
    job: PageJob
    status: str
    kind: str = ""
    message: str = ""
    warnings: tuple[str, ...] = ()
    input_digest: str = ""
    output_digest: str = ""
    seconds: float = 0.0
    worker: str = ""
    attempts: int = 1
    losses: int = 0
    notes: tuple[str, ...] = ()


@dataclass(frozen=True)
class Task:
    """A job as it is sent to a worker."""

    number: int
    job: PageJob
    run: str = ""
    redo: bool = False
    convert: Optional[Converter] = field(default=None, compare=False)


def make_page(task: Task) -> PageResult:
    """Makes a page, or keeps what is there. What another attempt may cure is raised, anything else
    is a result."""
    start = time.monotonic()
    facts = {"number": task.number, "job": task.job,
             "worker": f"{socket.gethostname()}:{os.getpid()}"}
    try:
        status, stamp = _make_or_keep(task)
        facts.update(warnings=stamp.warnings, notes=stamp.notes, input_digest=stamp.input,
                     output_digest=stamp.output)
    except PageError as error:
        if error.kind in (READ, WRITE):
            raise
        status = FAILED
        facts.update(kind=error.kind, message=error.message)
    except MemoryError:
        status = FAILED
        facts.update(kind=MEMORY, message=f"{task.job.input}: does not fit into memory")
    return PageResult(status=status, seconds=time.monotonic() - start, **facts)


def _make_or_keep(task: Task) -> tuple[str, Stamp]:
    job = task.job
    with TiffPage(job.input, job.page) as page:
        picture, input_digest = page.read()
    job_digest = job.digest()
    stamp = read_stamp(job.output)
    if stamp and (stamp.run == task.run or not task.redo) and stamp.job == job_digest and \
            stamp.input == input_digest and stamp.output == _present_digest(job.output):
        # An earlier attempt may have made the page before its worker was lost.
        return MADE if stamp.run == task.run else KEPT, stamp
    result, said = (task.convert or convert_page)(job, picture)
    warnings, notes = part(said)
    with new_file(job.output, tiff_pieces(result)) as output_digest:
        stamp = Stamp(job_digest, input_digest, output_digest, warnings, task.run, notes)
        # Before the file takes its place: a worker that is killed in between leaves a stamp that
        # fits no file, and one that is killed later a page that need not be made again.
        stamp.write(job.output)
    return MADE, stamp


def _present_digest(path: str) -> Optional[str]:
    try:
        return file_digest(path)
    except OSError:
        return None
