# SPDX-License-Identifier: Apache-2.0
"""Hands the pages of a list to a runner and takes the results back in the list's order.

Scheduling and transport are the runner's. Decided here is only how many pages are under way at
once, and which page is to blame when a worker is lost.
"""

from __future__ import annotations

import os
import secrets
import time
from collections import deque
from dataclasses import dataclass, replace
from queue import Empty, SimpleQueue
from typing import Any, Iterable, Iterator, Optional

from .errors import ERROR, LOST, ClusterLost, JobError, PageError
from .jobs import PageJob
from .output import remove_leftovers
from .runners import Runner, SerialRunner, Verdict
from .stamp import stamp_path
from .task import FAILED, LEFT, Converter, PageResult, Task, make_page

# No page of a book or of a poster takes so long.
DEFAULT_TIMEOUT = 600.0
DEFAULT_RETRIES = 2
LONGEST_WAIT = 1.0
# A worker may be ended by chance, even that of a page on its own.
LONELY_LOSSES = 2


def run_pages(jobs: Iterable[PageJob], runner: Optional[Runner] = None, *,
              retries: int = DEFAULT_RETRIES, window: Optional[int] = None,
              timeout: float = DEFAULT_TIMEOUT, redo: bool = False,
              convert: Optional[Converter] = None) -> Iterator[PageResult]:
    """Makes the pages of a list, and yields a result for each in the list's order.

    `runner` is a SerialRunner if none is given; others must have been entered as a context.
    `retries` is how often a page is begun anew after an exception, `window` how many pages may be
    under way or wait for their turn, `timeout` for how many seconds one page may keep a worker.
    With `redo` pages are made again although they are there. `convert` takes the place of the
    steps: a callable of job and picture that answers a picture and warnings. It is pickled.

    Raises JobError where the jobs cannot stand in one list. Nothing has been written then. What
    happens to a page later is never raised, but stands in its result.
    """
    jobs = tuple(jobs)
    check_jobs(jobs)
    runner = SerialRunner() if runner is None else runner
    if retries < 0:
        raise JobError(f"retries is {retries}; 0 or more would do")
    if window is not None and window < 1:
        raise JobError(f"window is {window}; 1 or more would do")
    if not timeout > 0:
        raise JobError(f"timeout is {timeout}; more than 0 seconds would do")
    run = secrets.token_hex(8)
    tasks = [Task(number, job, run, redo, convert) for number, job in enumerate(jobs, 1)]
    return _Run(tasks, runner, retries, window, timeout).results()


def check_jobs(jobs: Iterable[PageJob]) -> None:
    """Refuses jobs that would write over one another's files."""
    jobs = tuple(jobs)
    inputs = {os.path.realpath(job.input) for job in jobs}
    taken: dict[str, int] = {}
    for number, job in enumerate(jobs, 1):
        output = os.path.realpath(job.output)
        for path in (output, stamp_path(output)):
            if path in inputs:
                raise JobError(f"job {number}: {path} would be written, and is an input of the "
                               "list")
            if path in taken:
                raise JobError(f"job {number}: {path} is written by job {taken[path]} already")
            taken[path] = number


@dataclass
class _Page:
    """A page on its way."""

    task: Task
    attempts: int = 0
    losses: int = 0
    lonely_losses: int = 0
    alone: bool = False
    future: Any = None


class _Run:
    def __init__(self, tasks: list[Task], runner: Runner, retries: int,
                 window: Optional[int], timeout: float) -> None:
        self._tasks = tasks
        self._waiting = deque(map(_Page, tasks))
        self._runner = runner
        self._retries = retries
        self._window = window
        self._timeout = timeout
        # In the order in which they were submitted, which is that in which they are begun.
        self._under_way: dict[int, _Page] = {}
        self._suspects: deque[_Page] = deque()
        self._finished: dict[int, PageResult] = {}
        self._arrivals: SimpleQueue[tuple[int, Any]] = SimpleQueue()
        self._oldest: Optional[int] = None
        self._oldest_since = 0.0

    def results(self) -> Iterator[PageResult]:
        if not self._runner.leads:
            return
        self._remove_leftovers()
        whole = False
        try:
            for number in range(1, len(self._tasks) + 1):
                try:
                    while number not in self._finished:
                        self._submit()
                        self._receive()
                except ClusterLost as error:
                    self._leave_the_rest(str(error))
                yield self._finished.pop(number)
            whole = True
        finally:
            if not whole:
                self._runner.stop()
            self._remove_leftovers()

    def _remove_leftovers(self) -> None:
        outputs = [task.job.output for task in self._tasks]
        remove_leftovers([*outputs, *map(stamp_path, outputs)])

    def _submit(self) -> None:
        # A suspect gets a worker when all others are done, and none is begun before it is done, so
        # that it can only blame itself.
        if any(page.alone for page in self._under_way.values()):
            return
        if self._suspects:
            if not self._under_way:
                page = self._suspects.popleft()
                page.alone = True
                self._send(page)
            return
        window = self._window or self._runner.window
        while self._waiting and len(self._under_way) + len(self._finished) < window:
            self._send(self._waiting.popleft())

    def _send(self, page: _Page) -> None:
        number = page.task.number
        self._under_way[number] = page
        page.attempts += 1
        page.future = self._runner.submit(make_page, page.task, self._retries)
        page.future.add_done_callback(lambda future: self._arrivals.put((number, future)))

    def _receive(self) -> None:
        try:
            number, future = self._arrivals.get(timeout=min(LONGEST_WAIT, self._timeout / 4))
        except Empty:
            self._runner.check()
            self._look_for_frozen()
            return
        page = self._under_way.get(number)
        if page is not None and page.future is future:
            del self._under_way[number]
            self._settle(page, future)

    def _settle(self, page: _Page, future: Any) -> None:
        verdict, value = self._runner.verdict(future)
        if verdict is Verdict.DONE:
            self._finish(page, value)
        elif verdict is Verdict.CLUSTER_LOST:
            self._under_way[page.task.number] = page
            raise ClusterLost(str(value))
        elif verdict is Verdict.WORKER_LOST:
            page.losses += 1
            page.lonely_losses += page.alone
            if page.lonely_losses == LONELY_LOSSES:
                self._fail(page, LOST, f"{page.task.job.input}: {value}, twice while no other "
                                       "page was under way")
            else:
                self._suspects.append(page)
        elif page.attempts <= self._retries and not self._runner.retries_itself:
            self._send(page)
        else:
            if self._runner.retries_itself:
                page.attempts += self._retries
            self._fail(page, *_words(page.task.job, value))

    def _look_for_frozen(self) -> None:
        oldest = next(iter(self._under_way), None)
        now = time.monotonic()
        if oldest != self._oldest:
            self._oldest, self._oldest_since = oldest, now
        elif oldest is not None and now - self._oldest_since > self._timeout:
            self._oldest = None
            self._runner.unfreeze(self._under_way[oldest].future, self._timeout)

    def _finish(self, page: _Page, result: PageResult) -> None:
        self._finished[page.task.number] = replace(result, attempts=page.attempts,
                                                   losses=page.losses)

    def _fail(self, page: _Page, kind: str, message: str) -> None:
        self._finish(page, PageResult(page.task.number, page.task.job, FAILED, kind, message))

    def _leave_the_rest(self, why: str) -> None:
        while True:
            try:
                number, future = self._arrivals.get_nowait()
            except Empty:
                break
            page = self._under_way.get(number)
            if page is not None and page.future is future:
                verdict, value = self._runner.verdict(future)
                if verdict is Verdict.DONE:
                    del self._under_way[number]
                    self._finish(page, value)
        for page in (*self._under_way.values(), *self._suspects, *self._waiting):
            self._finish(page, PageResult(page.task.number, page.task.job, LEFT, LOST, why))
        self._under_way.clear()
        self._suspects.clear()
        self._waiting.clear()


def _words(job: PageJob, error: BaseException) -> tuple[str, str]:
    if isinstance(error, PageError):
        return error.kind, error.message
    return ERROR, f"{job.input}: {type(error).__name__}: {error}"
