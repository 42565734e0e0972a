# SPDX-License-Identifier: Apache-2.0
"""Workers on this machine that are killed, crash, freeze or raise."""

import itertools
import os
import subprocess
import sys
import time

import pytest
from conftest import check_mirrored
from converters import Frozen, Killed, Raising, Segfaulting, attempts

from pelkraft.pages import ProcessRunner, run_pages


@pytest.fixture
def notes(tmp_path):
    (tmp_path / "notes").mkdir()
    return str(tmp_path / "notes")


def statuses(results):
    return [result.status for result in results]


def test_pages_are_made_in_other_processes(make_jobs):
    jobs = make_jobs(8)
    with ProcessRunner(2) as runner:
        results = list(run_pages(jobs, runner))
    assert statuses(results) == ["made"] * 8
    assert [result.number for result in results] == list(range(1, 9))
    assert f"{os.getpid()}" not in {result.worker.split(":")[1] for result in results}
    check_mirrored(jobs)


@pytest.mark.parametrize("crash", [Killed, Segfaulting])
def test_a_page_that_ends_its_worker_is_blamed_and_no_other(make_jobs, notes, crash):
    jobs = make_jobs(8)
    with ProcessRunner(2) as runner:
        results = list(run_pages(jobs, runner, convert=crash(notes, frozenset({"3.tif"}))))
    assert statuses(results) == ["made"] * 2 + ["failed"] + ["made"] * 5
    assert (results[2].kind, results[2].losses) == ("lost", 3)
    assert "its worker process ended, twice while no other page was under way" in results[2].message
    # Once in company and twice alone.
    assert attempts(notes, "3.tif") == 3
    check_mirrored(jobs[:2] + jobs[3:])


def test_a_page_whose_worker_was_killed_once_is_made(make_jobs, notes):
    jobs = make_jobs(6)
    convert = Killed(notes, frozenset({"2.tif", "5.tif"}), times=1)
    with ProcessRunner(2) as runner:
        results = list(run_pages(jobs, runner, convert=convert))
    assert statuses(results) == ["made"] * 6
    # The fifth page may be lost with the second one before it begins.
    assert results[1].losses == 1 and results[4].losses in (1, 2)
    check_mirrored(jobs)


def test_a_frozen_page_is_ended_and_blamed(make_jobs, notes):
    jobs = make_jobs(6)
    convert = Frozen(notes, frozenset({"2.tif"}))
    with ProcessRunner(2) as runner:
        results = list(run_pages(jobs, runner, timeout=2, convert=convert))
    assert statuses(results) == ["made", "failed"] + ["made"] * 4
    assert results[1].kind == "lost"
    assert "it kept its worker process for 2 s, which was ended" in results[1].message
    check_mirrored([jobs[0], *jobs[2:]])


def test_a_page_that_raises_is_begun_again(make_jobs, notes):
    convert = Raising(notes, frozenset({"1.tif", "2.tif"}), times=2)
    jobs = make_jobs(3)
    with ProcessRunner(2) as runner:
        results = list(run_pages(jobs, runner, retries=2, convert=convert))
        assert [(result.status, result.attempts) for result in results] == \
            [("made", 3), ("made", 3), ("made", 1)]
        results = list(run_pages(jobs, runner, retries=1, redo=True,
                                 convert=Raising(notes, frozenset({"1.tif"}))))
    assert statuses(results) == ["failed", "made", "made"]
    assert (results[0].kind, results[0].attempts) == ("error", 2)
    assert results[0].message == f"{jobs[0].input}: RuntimeError: out of paper"


def test_an_abandoned_run_leaves_no_half_file(make_jobs, notes, tmp_path):
    jobs = make_jobs(12)
    convert = Killed(notes, frozenset(), seconds=0.2)
    with ProcessRunner(2) as runner:
        results = run_pages(jobs, runner, convert=convert)
        first = list(itertools.islice(results, 2))
        results.close()
    assert statuses(first) == ["made", "made"]
    made = sorted(os.listdir(tmp_path / "out"))
    assert not [name for name in made if name.startswith(".")]
    whole = [job for job in jobs if os.path.exists(job.output)]
    assert 2 <= len(whole) < 12
    with ProcessRunner(2) as runner:
        results = list(run_pages(jobs, runner))
    assert {result.job for result in results if result.status == "kept"} >= \
        {result.job for result in first}
    check_mirrored(jobs)


ORPHANS = """
import sys
from converters import Killed
from pelkraft.pages import ProcessRunner, jobs_for_files, run_pages, Conversion

if __name__ == "__main__":
    folder = sys.argv[1]
    jobs = jobs_for_files([folder + "/in"], folder + "/out", [Conversion(mirror=True)])
    with ProcessRunner(2) as runner:
        for result in run_pages(jobs, runner, convert=Killed(folder, frozenset(), seconds=1)):
            print(result.worker.split(":")[1], flush=True)
"""


def test_workers_end_with_a_parent_that_was_killed(make_jobs, tmp_path):
    make_jobs(6)
    script = tmp_path / "orphans.py"
    script.write_text(ORPHANS)
    path = os.pathsep.join([os.path.dirname(__file__), *sys.path])
    with subprocess.Popen([sys.executable, script, tmp_path], stdout=subprocess.PIPE,
                          env={**os.environ, "PYTHONPATH": path}) as parent:
        worker = int(parent.stdout.readline())
        parent.kill()
    deadline = time.monotonic() + 20
    while os.path.exists(f"/proc/{worker}") and time.monotonic() < deadline:
        time.sleep(0.05)
    assert not os.path.exists(f"/proc/{worker}")
