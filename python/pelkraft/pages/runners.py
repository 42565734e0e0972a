# SPDX-License-Identifier: Apache-2.0
"""Runners make pages in this process or in others on this machine. Those for Dask and MPI stand in
files of their own, since their packages may be missing."""

from __future__ import annotations

import enum
import multiprocessing
import os
import signal
import threading
from concurrent.futures import BrokenExecutor, CancelledError, Future, ProcessPoolExecutor
from typing import Any, Callable, Optional


class Verdict(enum.Enum):
    """The meanings of a future's end."""

    DONE = 1
    FAILED = 2
    WORKER_LOST = 3
    CLUSTER_LOST = 4


class Runner:
    """The common part of all runners, and their defaults."""

    # Pages that are submitted at once.
    window = 1
    # The runner itself begins a page again after an exception.
    retries_itself = False
    # A rank of MPI that only serves has no results to give.
    leads = True

    def __enter__(self) -> Any:
        return self

    def __exit__(self, *_: object) -> None:
        pass

    def submit(self, function: Callable[[Any], Any], task: Any, retries: int) -> Any:
        """A future with add_done_callback, of one call."""
        raise NotImplementedError

    def verdict(self, future: Any) -> tuple[Verdict, Any]:
        """The verdict on a future that is done, with its value, its exception or a reason."""
        try:
            return Verdict.DONE, future.result()
        except Exception as error:
            return Verdict.FAILED, error

    def check(self) -> None:
        """Raises ClusterLost if nothing can come any more."""

    def unfreeze(self, future: Any, seconds: float) -> None:
        """Ends the worker that has kept a page for too long. The future ends as one whose worker
        is lost."""

    def stop(self) -> None:
        """Ends what is under way; nothing of it is wanted any more."""


class SerialRunner(Runner):
    """Makes page after page in this process, which a page that crashes takes with it."""

    def submit(self, function: Callable[[Any], Any], task: Any, retries: int) -> Any:
        future: Future[Any] = Future()
        try:
            future.set_result(function(task))
        except Exception as error:
            future.set_exception(error)
        return future


class ProcessRunner(Runner):
    """Makes pages in processes of this machine, as many as it has processors by default."""

    def __init__(self, workers: Optional[int] = None) -> None:
        self.workers = workers or len(os.sched_getaffinity(0))
        self.window = 2 * self.workers
        self._pool: Optional[ProcessPoolExecutor] = None
        self._why = ""

    def __enter__(self) -> ProcessRunner:
        self._pool = self._new_pool()
        return self

    def __exit__(self, *_: object) -> None:
        if self._pool is not None:
            self._pool.shutdown(cancel_futures=True)
            self._pool = None

    def submit(self, function: Callable[[Any], Any], task: Any, retries: int) -> Any:
        try:
            return self._pool.submit(function, task)
        except BrokenExecutor:
            self._pool.shutdown(wait=False)
            self._pool = self._new_pool()
            self._why = ""
            return self._pool.submit(function, task)

    def verdict(self, future: Any) -> tuple[Verdict, Any]:
        verdict, value = super().verdict(future)
        if isinstance(value, (BrokenExecutor, CancelledError)):
            return Verdict.WORKER_LOST, self._why or "its worker process ended"
        return verdict, value

    def unfreeze(self, future: Any, seconds: float) -> None:
        self._why = f"it kept its worker process for {seconds:g} s, which was ended"
        self._kill()

    def stop(self) -> None:
        self._kill()

    def _new_pool(self) -> ProcessPoolExecutor:
        # Started afresh: a copy of a process with threads may hold locks that nobody gives back.
        context = multiprocessing.get_context("forkserver")
        context.set_forkserver_preload(["pelkraft.pages.task"])
        return ProcessPoolExecutor(self.workers, context, _become_worker)

    def _kill(self) -> None:
        # A frozen process hears no other signal, and an executor of Python 3.11 ends no worker.
        for process in list((self._pool._processes or {}).values()):
            process.kill()


def _become_worker() -> None:
    # An interrupt from the terminal reaches all processes; the first one decides.
    signal.signal(signal.SIGINT, signal.SIG_IGN)
    threading.Thread(target=_end_with_parent, daemon=True).start()


def _end_with_parent() -> None:
    multiprocessing.parent_process().join()
    os._exit(1)
