# SPDX-License-Identifier: Apache-2.0
"""Pages for the tests, written by tifffile, which knows nothing of this project."""

import os
import pathlib
import sys

import numpy
import pytest
import tifffile

from pelkraft.pages import Conversion, PageJob

SOURCE = pathlib.Path(__file__).resolve().parents[2]
# The naive dither stands there.
sys.path.append(str(SOURCE / "tests" / "python"))


@pytest.fixture
def pattern_path():
    return SOURCE / "examples" / "patterns" / "six_ink.txt"


@pytest.fixture(scope="session")
def tool():
    """The program, whose pixels are those to meet."""
    path = os.environ.get("PELKRAFT_TOOL")
    if not path:
        pytest.skip("PELKRAFT_TOOL does not name the program")
    return path


def write_cmyk(path, seed, height=5, width=7, channels=4, kind=numpy.uint8):
    pixels = numpy.random.default_rng(seed).integers(
        0, numpy.iinfo(kind).max, (height, width, channels), kind, endpoint=True)
    tifffile.imwrite(path, pixels, photometric="separated", metadata=None)
    return pixels


@pytest.fixture
def make_jobs(tmp_path):
    """A function that writes so many small pages and answers the jobs that mirror them."""
    def make(count, steps=(Conversion(mirror=True),), out="out"):
        (tmp_path / "in").mkdir(exist_ok=True)
        (tmp_path / out).mkdir(exist_ok=True)
        jobs = []
        for number in range(1, count + 1):
            source = tmp_path / "in" / f"{number}.tif"
            if not source.exists():
                write_cmyk(source, number)
            jobs.append(PageJob(str(source), str(tmp_path / out / f"{number}.tif"), steps))
        return jobs
    return make


def check_mirrored(jobs):
    """Each output holds its input's pixels, mirrored, and nothing lies beside the files."""
    for job in jobs:
        assert numpy.array_equal(tifffile.imread(job.output), tifffile.imread(job.input)[:, ::-1])
    for folder in {os.path.dirname(job.output) for job in jobs}:
        wanted = {os.path.basename(job.output) for job in jobs
                  if os.path.dirname(job.output) == folder}
        assert set(os.listdir(folder)) == wanted | {name + ".stamp" for name in wanted}
