# SPDX-License-Identifier: Apache-2.0
"""Times page jobs beside the same work in C.

    compare_pages.py PAGES_IN_C [PAGES [DPI]]

makes so many A4 pages of CMYK, and prints for splitting them into planes and for turning them into
six inks: the time of C, which reads, converts, writes, forces to the disk and renames; the page
jobs' time on each runner, and what they take on top of C; and how much faster two workers are than
one. Runs take turns, and the best of three counts. Starting workers is not part of a run.
"""

import os
import pathlib
import subprocess
import sys
import tempfile
import time

import numpy
import tifffile

from pelkraft.pages import Conversion, PageJob, ProcessRunner, SerialRunner, Simulation, run_pages
from pelkraft.pages.dask_runner import DaskRunner

PATTERN = pathlib.Path(__file__).resolve().parents[2] / "examples" / "patterns" / "six_ink.txt"
ROUNDS = 3
STEPS = {"split into planes": (Conversion(layout="planar"),),
         "six inks": (Simulation(PATTERN.read_bytes(), levels="quantize"),)}


def make_pages(folder, count, dpi):
    """Smooth tones with some noise; every page is another part of one picture."""
    height, width = round(11.69 * dpi), round(8.27 * dpi)
    rng = numpy.random.default_rng(3)
    ramp = numpy.linspace(0, 220, width, dtype=numpy.uint8)[None, :, None]
    picture = ramp + rng.integers(0, 30, (height, width, 4), numpy.uint8)
    for number in range(count):
        tifffile.imwrite(folder / f"{number}.tif", numpy.roll(picture, 97 * number, axis=0),
                         photometric="separated", metadata=None)
    os.sync()


def time_c(program, folder, out, count, steps, workers=1):
    """Each process has its share of the pages."""
    words = [str(PATTERN)] if isinstance(steps[0], Simulation) else []
    bounds = [round(count * part / workers) for part in range(workers + 1)]
    start = time.monotonic()
    running = [subprocess.Popen([program, folder, out, str(first), str(end), *words],
                                stdout=subprocess.DEVNULL)
               for first, end in zip(bounds, bounds[1:])]
    if any(process.wait() for process in running):
        raise SystemExit("pages_in_c failed")
    return time.monotonic() - start


def time_jobs(folder, out, count, steps, runner):
    jobs = [PageJob(str(folder / f"{number}.tif"), str(out / f"{number}.tif"), steps)
            for number in range(count)]
    start = time.monotonic()
    results = list(run_pages(jobs, runner, redo=True))
    seconds = time.monotonic() - start
    if {result.status for result in results} != {"made"}:
        raise SystemExit(f"pages failed: {results}")
    return seconds


def best_times(ways):
    """Turn by turn, so that other work on the machine meets all alike."""
    for way in ways.values():
        way()
    return {name: min(times) for name, times in zip(ways, zip(*[
        [way() for way in ways.values()] for _ in range(ROUNDS)]))}


def report(name, pages, times):
    print(f"{name}, {pages} pages:")
    for way, seconds in times.items():
        c = times["C, 2 processes" if "2" in way else "C"]
        print(f"  {way:<24}{1000 * seconds / pages:8.1f} ms a page"
              f"{100 * seconds / c - 100:+8.1f} %")
    for one, two in (("C", "C, 2 processes"), ("Dask, 1 worker", "Dask, 2 workers"),
                     ("processes, 1 worker", "processes, 2 workers")):
        print(f"  {two:<24}{times[one] / times[two]:8.2f} times as fast as one")


def main(program, pages="16", dpi="300"):
    count = int(pages)
    with tempfile.TemporaryDirectory(dir=".") as name, \
            DaskRunner(workers=1) as dask_one, DaskRunner(workers=2) as dask_two, \
            ProcessRunner(1) as one, ProcessRunner(2) as two:
        folder, out = pathlib.Path(name, "in").absolute(), pathlib.Path(name, "out").absolute()
        folder.mkdir()
        out.mkdir()
        make_pages(folder, count, float(dpi))
        for title, steps in STEPS.items():
            report(title, count, best_times({
                "C": lambda: time_c(program, folder, out, count, steps),
                "C, 2 processes": lambda: time_c(program, folder, out, count, steps, 2),
                "in one process": lambda: time_jobs(folder, out, count, steps, SerialRunner()),
                "processes, 1 worker": lambda: time_jobs(folder, out, count, steps, one),
                "processes, 2 workers": lambda: time_jobs(folder, out, count, steps, two),
                "Dask, 1 worker": lambda: time_jobs(folder, out, count, steps, dask_one),
                "Dask, 2 workers": lambda: time_jobs(folder, out, count, steps, dask_two)}))


if __name__ == "__main__":
    main(*sys.argv[1:])
