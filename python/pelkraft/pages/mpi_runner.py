# SPDX-License-Identifier: Apache-2.0
"""Makes pages on the ranks of an MPI job: rank 0 hands them out, the others make them."""

from __future__ import annotations

import signal
from typing import Any, Callable

from mpi4py import MPI
from mpi4py.futures import MPICommExecutor

from .errors import ClusterLost, JobError
from .exit_codes import CLUSTER_LOST
from .runners import Runner


class MpiRunner(Runner):
    """All ranks enter the context. On those that only serve, `leads` is False, and entering lasts
    until rank 0 leaves.

    A rank that is lost takes the whole job with it, as MPI has it; a rerun keeps what was done.
    """

    def __init__(self) -> None:
        self._world = MPI.COMM_WORLD
        if self._world.size < 2:
            raise JobError("MPI has one rank; start with mpirun -n 3, one rank more than workers")
        self.leads = self._world.rank == 0
        self.window = 2 * (self._world.size - 1)
        self._context = MPICommExecutor(self._world, root=0)
        self._executor: Any = None
        self._under_way: set[Any] = set()
        self._frozen = False

    def __enter__(self) -> MpiRunner:
        if not self.leads:
            # An interrupt from the terminal reaches all ranks; the first one decides.
            signal.signal(signal.SIGINT, signal.SIG_IGN)
        self._executor = self._context.__enter__()
        return self

    def __exit__(self, *error: object) -> None:
        if self._frozen:
            self._world.Abort(CLUSTER_LOST)
        self._context.__exit__(None, None, None)

    def submit(self, function: Callable[[Any], Any], task: Any, retries: int) -> Any:
        future = self._executor.submit(function, task)
        self._under_way.add(future)
        future.add_done_callback(self._under_way.discard)
        return future

    def unfreeze(self, future: Any, seconds: float) -> None:
        # No rank can be ended alone, and the executor would wait for this one for ever.
        self._frozen = True
        raise ClusterLost(f"a rank has kept a page for {seconds:g} s, so that the job is ended")

    def stop(self) -> None:
        for future in tuple(self._under_way):
            future.cancel()
