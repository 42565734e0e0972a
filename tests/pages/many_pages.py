# SPDX-License-Identifier: Apache-2.0
"""Many small pages on two workers, one of which is killed again and again.

    many_pages.py PAGES EVERY RUNNER

makes so many pages on a runner, "processes" or "dask", and kills a worker after every so many
results. Each page must be right and made once in the end, with the bytes of a serial run. The last
line gives the figure.
"""

import ctypes
import os
import pathlib
import signal
import struct
import sys
import tempfile
import time
from collections import Counter

import numpy
import tifffile

from pelkraft.pages import (Conversion, PageJob, ProcessRunner, SerialRunner, Simulation,
                            run_pages)

PATTERN = pathlib.Path(__file__).resolve().parents[2] / "examples" / "patterns" / "six_ink.txt"
MOVED_TO = 0x80
EVENT = struct.Struct("iIII")


class Arrivals:
    """Counts, by the kernel's own account, how often a file has taken its place in a folder."""

    def __init__(self, folder):
        self._libc = ctypes.CDLL(None, use_errno=True)
        self._file = self._libc.inotify_init1(os.O_NONBLOCK)
        if self._file < 0 or self._libc.inotify_add_watch(self._file, bytes(folder), MOVED_TO) < 0:
            raise OSError(ctypes.get_errno(), "inotify")
        self.counts = Counter()

    def read(self):
        while True:
            try:
                data = os.read(self._file, 1 << 16)
            except BlockingIOError:
                return
            while data:
                _, mask, _, length = EVENT.unpack_from(data)
                if mask & 0x4000:
                    raise OSError("events were lost")
                name = data[EVENT.size:EVENT.size + length].rstrip(b"\0").decode()
                self.counts[name] += 1
                data = data[EVENT.size + length:]


def make_inputs(folder, pages):
    """Small pages, none like another."""
    rng = numpy.random.default_rng(7)
    for number in range(pages):
        tifffile.imwrite(folder / f"{number:06}.tif",
                         rng.integers(0, 255, (24, 40, 4), numpy.uint8),
                         photometric="separated", metadata=None)


def jobs_of(folder, output, pages):
    steps = (Conversion(mirror=True), Simulation(PATTERN.read_bytes()))
    output.mkdir()
    return [PageJob(str(folder / f"{number:06}.tif"), str(output / f"{number:06}.tif"), steps)
            for number in range(pages)]


def run_with_kills(jobs, runner, every, arrivals):
    """The results, and how many workers were killed."""
    results, kills = [], 0
    for result in run_pages(jobs, runner):
        results.append(result)
        arrivals.read()
        if len(results) % every == 0 and len(results) < len(jobs):
            # The worker of the page that has just come is at its next one.
            try:
                os.kill(int(result.worker.split(":")[1]), signal.SIGKILL)
                kills += 1
            except ProcessLookupError:
                pass
    arrivals.read()
    return results, kills


def compare(jobs, results, serial, arrivals):
    """Words for what is wrong, none if nothing is."""
    wrong = [f"{result.job.output}: {result.status} {result.message}"
             for result in results if result.status != "made"]
    if [result.job for result in results] != jobs:
        wrong.append("the results are not those of the list in its order")
    for result, expected in zip(results, serial):
        if result.output_digest != expected.output_digest:
            wrong.append(f"{result.job.output}: other bytes than in the serial run")
        elif pathlib.Path(result.job.output).read_bytes() != \
                pathlib.Path(expected.job.output).read_bytes():
            wrong.append(f"{result.job.output}: other bytes than its digest says")
        made = arrivals.counts[os.path.basename(result.job.output)]
        if made != 1:
            wrong.append(f"{result.job.output}: took its place {made} times")
    folder = os.path.dirname(jobs[0].output)
    if len(os.listdir(folder)) != 2 * len(jobs):
        wrong.append(f"{folder}: holds more than the pages and their stamps")
    if len({result.output_digest for result in serial}) != len(jobs):
        wrong.append("pages of the serial run are alike")
    return wrong


def runner_of(kind):
    if kind == "dask":
        from pelkraft.pages.dask_runner import DaskRunner
        return DaskRunner(workers=2)
    return ProcessRunner(2)


def try_many(pages, every, kind):
    """Answers what is wrong, how many workers were killed, and how many pages were begun anew."""
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "in").mkdir()
        make_inputs(folder / "in", pages)
        serial = list(run_pages(jobs_of(folder / "in", folder / "serial", pages),
                                SerialRunner()))
        jobs = jobs_of(folder / "in", folder / "out", pages)
        arrivals = Arrivals(folder / "out")
        with runner_of(kind) as runner:
            results, kills = run_with_kills(jobs, runner, every, arrivals)
        again = sum(result.losses > 0 for result in results)
        return compare(jobs, results, serial, arrivals), kills, again


def main(pages, every, kind):
    start = time.monotonic()
    wrong, kills, _ = try_many(int(pages), int(every), kind)
    for words in wrong[:20]:
        print(words)
    seconds = round(time.monotonic() - start)
    print(f"{pages} pages on 2 workers of {kind}, {kills} of them killed; {len(wrong)} pages "
          f"wrong, missing or made twice, {seconds // 60} min {seconds % 60:02} s")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
