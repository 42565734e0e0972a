# SPDX-License-Identifier: Apache-2.0
"""Makes pages on a cluster of Dask distributed."""

from __future__ import annotations

import asyncio
import json
import time
import uuid
from concurrent.futures import CancelledError
from typing import Any, Callable, Optional

import dask
import distributed
from dask.utils import parse_timedelta
from distributed import KilledWorker

from .errors import ClusterLost
from .runners import Runner, Verdict

RESTART_SECONDS = 10
# A result stands on its worker until it is asked for, and is made again where that one is lost.
RESULT_SECONDS = 60
# So long may all workers be away: they start again, or a cluster that grows has none yet.
WORKERLESS_SECONDS = 60
OWN_CLUSTER = {
    # A cluster gives up a worker that is away some seconds after it was lost, although it may have
    # come back in between and be starting once more.
    "distributed.deploy.lost-worker-timeout": "1d",
    # It looks at what a page's thread is doing a hundred times a second, which nobody asks for.
    "distributed.worker.profile.enabled": False,
}
GONE = "the scheduler went away"


class DaskRunner(Runner):
    """Makes pages on the workers of a scheduler, given by its address or by the file that it
    writes, or, without either, on a cluster of its own on this machine.

    Every worker must see the files under the same paths as this process. The package must be
    installed on each, in the same version. A cluster of its own has one thread in each worker.
    """

    retries_itself = True

    def __init__(self, scheduler: Optional[str] = None, workers: Optional[int] = None,
                 scheduler_file: Optional[str] = None) -> None:
        self._address = scheduler
        self._file = scheduler_file
        self._worker_count = workers
        self._settings: Any = None
        self._workerless_since: Optional[float] = None
        self._cluster: Optional[distributed.LocalCluster] = None
        self._client: Optional[distributed.Client] = None
        self._under_way: dict[str, distributed.Future] = {}
        self._frozen: dict[str, str] = {}

    def __enter__(self) -> DaskRunner:
        try:
            if self._file is not None:
                with open(self._file, encoding="utf-8") as file:
                    self._address = json.load(file)["address"]
            if self._address is None:
                self._settings = dask.config.set(OWN_CLUSTER)
                self._cluster = distributed.LocalCluster(
                    n_workers=self._worker_count, threads_per_worker=1, processes=True,
                    dashboard_address=":0", silence_logs=50)
            self._client = distributed.Client(self._cluster or self._address,
                                              set_as_default=False)
            patience = dask.config.get("distributed.comm.timeouts.connect")
            self._client.wait_for_workers(1, timeout=parse_timedelta(patience))
        except (OSError, ValueError, KeyError, TypeError, asyncio.TimeoutError) as error:
            self.__exit__()
            place = self._file or self._address or "this machine"
            raise ClusterLost(f"no scheduler with a worker at {place}: {error}") from error
        return self

    def __exit__(self, *_: object) -> None:
        for owner in (self._client, self._cluster):
            if owner is not None:
                owner.close(timeout=RESTART_SECONDS)
        self._client = self._cluster = None
        if self._settings is not None:
            self._settings.__exit__(None, None, None)
            self._settings = None

    @property
    def window(self) -> int:
        # A worker has its next page before it asks for it. Workers come and go.
        workers = self._client.scheduler_info()["workers"].values()
        return 2 * max(sum(worker["nthreads"] for worker in workers), 1)

    def submit(self, function: Callable[[Any], Any], task: Any, retries: int) -> Any:
        self.check()
        # A key of its own: the scheduler would answer an old one with what it remembers.
        key = f"page-{task.number}-{uuid.uuid4().hex}"
        future = self._client.submit(function, task, key=key, retries=retries, pure=False)
        self._under_way[key] = future
        return future

    def verdict(self, future: Any) -> tuple[Verdict, Any]:
        self._under_way.pop(future.key, None)
        if future.key in self._frozen:
            return Verdict.WORKER_LOST, self._frozen.pop(future.key)
        if future.cancelled():
            return Verdict.CLUSTER_LOST, GONE
        try:
            return Verdict.DONE, future.result(timeout=RESULT_SECONDS)
        except KilledWorker:
            return Verdict.WORKER_LOST, "its workers ended"
        except (Exception, CancelledError) as error:
            if future.status == "error":
                return Verdict.FAILED, error
            if self._client.status != "running":
                return Verdict.CLUSTER_LOST, GONE
            return Verdict.WORKER_LOST, "its worker did not give the result"

    def check(self) -> None:
        if self._client.status != "running":
            raise ClusterLost(GONE)
        if self._client.scheduler_info()["workers"]:
            self._workerless_since = None
        elif self._workerless_since is None:
            self._workerless_since = time.monotonic()
        elif time.monotonic() - self._workerless_since > WORKERLESS_SECONDS:
            raise ClusterLost("the cluster has lost all its workers")

    def unfreeze(self, future: Any, seconds: float) -> None:
        holders = [worker for worker, keys in self._client.processing().items()
                   if future.key in keys]
        self._frozen[future.key] = f"it kept its worker for {seconds:g} s, which was ended"
        future.cancel()
        try:
            self._client.restart_workers(holders, timeout=RESTART_SECONDS)
        except (KeyError, ValueError, OSError, asyncio.TimeoutError):
            # A worker without a nanny is the scheduler's to give up.
            pass

    def stop(self) -> None:
        if self._client.status == "running":
            self._client.cancel(list(self._under_way.values()))
        if self._cluster is not None:
            self.__exit__()
