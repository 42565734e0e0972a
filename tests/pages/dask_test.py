# SPDX-License-Identifier: Apache-2.0
"""The same on Dask distributed, and a scheduler that goes away."""

import json
import os
import signal
import subprocess
import sys
import time

import pytest
from conftest import check_mirrored
from converters import Frozen, Killed, Raising, Segfaulting, attempts

from pelkraft.pages import ClusterLost, run_pages

dask = pytest.importorskip("dask")
DaskRunner = pytest.importorskip("pelkraft.pages.dask_runner").DaskRunner


@pytest.fixture
def notes(tmp_path):
    (tmp_path / "notes").mkdir()
    return str(tmp_path / "notes")


@pytest.fixture(scope="module")
def runner():
    with DaskRunner(workers=2) as runner:
        yield runner


def statuses(results):
    return [result.status for result in results]


def test_pages_are_made_on_workers(make_jobs, runner):
    jobs = make_jobs(10)
    results = list(run_pages(jobs, runner))
    assert statuses(results) == ["made"] * 10
    assert [result.number for result in results] == list(range(1, 11))
    assert str(os.getpid()) not in {result.worker.split(":")[1] for result in results}
    check_mirrored(jobs)


def test_a_page_whose_worker_was_killed_once_is_made(make_jobs, notes, runner):
    jobs = make_jobs(8)
    convert = Killed(notes, frozenset({"2.tif", "5.tif"}), times=1, seconds=0.1)
    assert statuses(run_pages(jobs, runner, convert=convert)) == ["made"] * 8
    check_mirrored(jobs)


@pytest.mark.parametrize("crash", [Killed, Segfaulting])
def test_a_page_that_ends_its_workers_is_blamed_and_no_other(make_jobs, notes, runner, crash):
    jobs = make_jobs(8)
    results = list(run_pages(jobs, runner, convert=crash(notes, frozenset({"3.tif"}))))
    assert statuses(results) == ["made"] * 2 + ["failed"] + ["made"] * 5
    assert results[2].kind == "lost"
    assert "its workers ended, twice while no other page was under way" in results[2].message
    # The scheduler begins a page four times before it gives it up.
    assert attempts(notes, "3.tif") == 4 * 3
    check_mirrored(jobs[:2] + jobs[3:])


def test_a_frozen_page_is_ended_and_blamed(make_jobs, notes, runner):
    jobs = make_jobs(6)
    convert = Frozen(notes, frozenset({"2.tif"}))
    results = list(run_pages(jobs, runner, timeout=2, convert=convert))
    assert statuses(results) == ["made", "failed"] + ["made"] * 4
    assert "it kept its worker for 2 s, which was ended" in results[1].message
    check_mirrored([jobs[0], *jobs[2:]])
    # The workers are whole again.
    assert statuses(run_pages(make_jobs(4, out="later"), runner)) == ["made"] * 4


def test_a_page_that_raises_is_begun_again(make_jobs, notes, runner):
    convert = Raising(notes, frozenset({"1.tif"}), times=2)
    jobs = make_jobs(3)
    assert statuses(run_pages(jobs, runner, retries=2, convert=convert)) == ["made"] * 3
    assert attempts(notes, "1.tif") == 3
    results = list(run_pages(jobs, runner, retries=1, redo=True,
                             convert=Raising(notes, frozenset({"2.tif"}))))
    assert statuses(results) == ["made", "failed", "made"]
    assert (results[1].kind, results[1].attempts) == ("error", 2)
    assert results[1].message == f"{jobs[1].input}: RuntimeError: out of paper"


class Cluster:
    """A scheduler and workers in processes of their own, as on other machines."""

    def __init__(self, workers, folder):
        self._folder = folder
        self.processes = []
        self.file = address_file = folder / "scheduler.json"
        address_file.unlink(missing_ok=True)
        self._start("scheduler", "--host", "127.0.0.1", "--port", "0", "--no-dashboard",
                    "--scheduler-file", address_file)
        for _ in range(workers):
            self._start("worker", "--nthreads", "1", "--no-dashboard", "--scheduler-file",
                        address_file)
        deadline = time.monotonic() + 30
        while not address_file.exists() and time.monotonic() < deadline:
            time.sleep(0.1)
        self.address = json.loads(address_file.read_text())["address"]

    def _start(self, kind, *options):
        path = os.pathsep.join([os.path.dirname(__file__), *sys.path])
        self.processes.append(subprocess.Popen(
            [sys.executable, "-m", f"distributed.cli.dask_{kind}", *options],
            env={**os.environ, "PYTHONPATH": path}, cwd=self._folder,
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for process in reversed(self.processes):
            process.terminate()
        for process in self.processes:
            try:
                process.wait(10)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()


def test_a_scheduler_that_goes_away_leaves_pages_that_a_rerun_makes(make_jobs, notes, tmp_path):
    jobs = make_jobs(30)
    convert = Killed(notes, frozenset(), seconds=0.2)
    with Cluster(1, tmp_path) as cluster, DaskRunner(cluster.address) as runner:
        results = []
        for result in run_pages(jobs, runner, convert=convert):
            results.append(result)
            if len(results) == 3:
                cluster.processes[0].kill()
    found = statuses(results)
    assert len(found) == 30 and found[:3] == ["made"] * 3
    first_left = found.index("left")
    assert found[first_left:] == ["left"] * (30 - first_left)
    assert results[-1].message == "the scheduler went away"
    with Cluster(2, tmp_path) as cluster, DaskRunner(scheduler_file=cluster.file) as runner:
        results = list(run_pages(jobs, runner))
    assert statuses(results[:3]) == ["kept"] * 3
    assert set(statuses(results)) == {"kept", "made"}
    check_mirrored(jobs)


def test_a_cluster_that_loses_all_workers_leaves_pages(make_jobs, notes, tmp_path, monkeypatch):
    monkeypatch.setattr("pelkraft.pages.dask_runner.WORKERLESS_SECONDS", 1)
    jobs = make_jobs(20)
    convert = Killed(notes, frozenset(), seconds=0.2)
    results = []
    with Cluster(1, tmp_path) as cluster, DaskRunner(cluster.address) as runner:
        for result in run_pages(jobs, runner, convert=convert):
            results.append(result)
            if len(results) == 2:
                # The process that would start the worker again, and the worker.
                cluster.processes[1].kill()
                os.kill(int(result.worker.split(":")[1]), signal.SIGKILL)
    found = statuses(results)
    first_left = found.index("left")
    assert found == ["made"] * first_left + ["left"] * (20 - first_left)
    assert results[-1].message == "the cluster has lost all its workers"


def test_no_scheduler_is_told():
    with dask.config.set({"distributed.comm.timeouts.connect": "1s"}):
        with pytest.raises(ClusterLost, match="no scheduler with a worker at tcp://127.0.0.1:9"):
            with DaskRunner("tcp://127.0.0.1:9"):
                pass


def test_a_scheduler_without_a_worker_is_told(tmp_path):
    with Cluster(0, tmp_path) as cluster, \
            dask.config.set({"distributed.comm.timeouts.connect": "2s"}), \
            pytest.raises(ClusterLost, match="no scheduler with a worker at tcp"):
        with DaskRunner(cluster.address):
            pass
