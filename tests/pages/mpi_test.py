# SPDX-License-Identifier: Apache-2.0
"""The command under MPI: rank 0 hands pages out, two others make them."""

import json
import os
import shutil
import subprocess
import sys

import pytest
from conftest import check_mirrored

MPIRUN = ["mpirun", "--allow-run-as-root", "--oversubscribe"]

pytest.importorskip("mpi4py")
if not shutil.which("mpirun"):
    pytest.skip("there is no mpirun", allow_module_level=True)


def run(ranks, *options):
    return subprocess.run(
        [*MPIRUN, "-n", str(ranks), sys.executable, "-m", "pelkraft.pages", "--runner", "mpi",
         "--mirror", *map(str, options)],
        capture_output=True, text=True, timeout=120,
        env={**os.environ, "PYTHONPATH": os.pathsep.join(sys.path)})


def test_two_ranks_make_the_pages_of_a_third(make_jobs, tmp_path):
    jobs = make_jobs(12)
    report = tmp_path / "report.jsonl"
    ended = run(3, tmp_path / "in", "--to", tmp_path / "out", "--report", report)
    assert ended.returncode == 0, ended.stderr
    *pages, summary = map(json.loads, report.read_text().splitlines())
    assert [page["number"] for page in pages] == list(range(1, 13))
    assert (summary["made"], summary["failed"]) == (12, 0)
    assert len({page["worker"] for page in pages}) == 2
    check_mirrored(jobs)


def test_a_page_that_fails_is_told_and_the_others_are_made(make_jobs, tmp_path):
    jobs = make_jobs(5)
    (tmp_path / "in" / "3.tif").write_bytes(b"no picture")
    ended = run(3, tmp_path / "in", "--to", tmp_path / "out")
    assert "3.tif: is not a TIFF file" in ended.stderr
    assert "1 of 5 pages failed" in ended.stderr
    assert ended.returncode == 10
    check_mirrored(jobs[:2] + jobs[3:])


def test_one_rank_is_refused(make_jobs, tmp_path):
    make_jobs(1)
    ended = run(1, tmp_path / "in", "--to", tmp_path / "out")
    assert ended.returncode == 2
    assert "MPI has one rank" in ended.stderr


def test_a_lost_rank_ends_the_job_and_a_rerun_makes_the_rest(make_jobs, tmp_path):
    jobs = make_jobs(8)
    script = tmp_path / "lost.py"
    script.write_text("""
import sys
from converters import Killed
from pelkraft.pages import Conversion, jobs_for_files, run_pages
from pelkraft.pages.mpi_runner import MpiRunner

folder = sys.argv[1]
jobs = jobs_for_files([folder + "/in"], folder + "/out", [Conversion(mirror=True)])
with MpiRunner() as runner:
    for result in run_pages(jobs, runner, convert=Killed(folder, frozenset({"5.tif"}))):
        print(result.status, flush=True)
""")
    path = os.pathsep.join([os.path.dirname(__file__), *sys.path])
    ended = subprocess.run([*MPIRUN, "-n", "3", sys.executable, script, tmp_path],
                           capture_output=True, text=True, timeout=120,
                           env={**os.environ, "PYTHONPATH": path})
    assert ended.returncode != 0
    ended = run(3, tmp_path / "in", "--to", tmp_path / "out")
    assert ended.returncode == 0, ended.stderr
    check_mirrored(jobs)
