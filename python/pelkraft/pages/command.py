# SPDX-License-Identifier: Apache-2.0
"""The command python3 -m pelkraft.pages."""

from __future__ import annotations

import argparse
import os
import signal
import sys
import time
import unicodedata
from typing import Optional, Sequence

from . import exit_codes
from .driver import DEFAULT_RETRIES, DEFAULT_TIMEOUT, check_jobs, run_pages
from .errors import ClusterLost, JobError
from .job_list import StepFiles, jobs_for_files, read_job_list
from .jobs import DITHER, QUANTIZE, RAW, Conversion, PageJob, Simulation, Step
from .output import making_words
from .progress import Progress
from .report import Report
from .runners import ProcessRunner, Runner, SerialRunner
from .task import FAILED, KEPT, LEFT

# Control characters, those that turn the direction of writing, what is no text, and line ends.
ACTING = ("Cc", "Cf", "Cs", "Zl", "Zp")


def main(arguments: Optional[Sequence[str]] = None) -> int:
    options = _parser().parse_args(arguments)
    # The same road for a terminal's interrupt and for one of the system.
    signal.signal(signal.SIGTERM, _interrupt)
    try:
        jobs = _jobs(options)
        check_jobs(jobs)
        with _runner(options) as runner:
            return _run(jobs, runner, options) if runner.leads else exit_codes.DONE
    except JobError as error:
        _say(str(error))
        return exit_codes.USAGE
    except ClusterLost as error:
        _say(str(error))
        return exit_codes.CLUSTER_LOST
    except KeyboardInterrupt:
        _say("interrupted")
        return exit_codes.INTERRUPTED


def _run(jobs: Sequence[PageJob], runner: Runner, options: argparse.Namespace) -> int:
    try:
        report = Report(options.report)
    except OSError as error:
        _say(f"{options.report}: cannot be written: {making_words(error, options.report)}")
        return exit_codes.REPORT
    progress = Progress(len(jobs), options.progress)
    start = time.monotonic()
    results = run_pages(jobs, runner, retries=options.retries, window=options.window,
                        timeout=options.timeout, redo=options.redo)
    interrupted = False
    try:
        for done, result in enumerate(results, 1):
            report.add(result)
            said = (*result.notes, *result.warnings)
            if result.status in (FAILED, LEFT) or said:
                progress.wipe()
            if result.status == FAILED:
                _say(result.message)
            for words in said:
                _say(f"{result.job.input}: {words}")
            progress.show(done, report.counts[KEPT], report.counts[FAILED])
    except KeyboardInterrupt:
        interrupted = True
    finally:
        results.close()
        progress.wipe()
        report.close(len(jobs), time.monotonic() - start)
    return _told(report, interrupted, len(jobs))


def _told(report: Report, interrupted: bool, pages: int) -> int:
    if report.failure:
        _say(report.failure)
    if interrupted:
        _say("interrupted; a rerun keeps what is done")
        return exit_codes.INTERRUPTED
    if report.counts[LEFT]:
        _say(f"the cluster went away; {report.counts[LEFT]} of {pages} pages are left, and a "
             "rerun keeps what is done")
        return exit_codes.CLUSTER_LOST
    if report.counts[FAILED]:
        _say(f"{report.counts[FAILED]} of {pages} pages failed")
        return exit_codes.PAGES_FAILED
    if report.failure:
        return exit_codes.REPORT
    return exit_codes.WARNINGS if report.warned else exit_codes.DONE


def _say(text: str) -> None:
    """Names in files may hold anything; a terminal must not act on it."""
    shown = "".join("?" if unicodedata.category(letter) in ACTING and letter != "\t" else letter
                    for letter in text)
    print(f"pelkraft.pages: {shown}", file=sys.stderr)


def _interrupt(*_: object) -> None:
    raise KeyboardInterrupt


def _runner(options: argparse.Namespace) -> Runner:
    scheduler = options.scheduler or options.scheduler_file
    kind = options.runner or ("dask" if scheduler else "processes")
    if scheduler and kind != "dask":
        raise JobError("--scheduler and --scheduler-file go with --runner dask alone")
    if options.scheduler and options.scheduler_file:
        raise JobError("--scheduler and --scheduler-file say the same thing; one would do")
    if options.workers is not None and options.workers < 1:
        raise JobError(f"--workers is {options.workers}; 1 or more would do")
    if options.workers and (scheduler or kind in ("serial", "mpi")):
        raise JobError("--workers goes with processes, and with dask without a scheduler")
    if kind == "serial":
        return SerialRunner()
    if kind == "processes":
        return ProcessRunner(options.workers)
    try:
        if kind == "dask":
            from .dask_runner import DaskRunner
            return DaskRunner(options.scheduler, options.workers, options.scheduler_file)
        from .mpi_runner import MpiRunner
        return MpiRunner()
    except ImportError as error:
        package = {"dask": "python3-distributed", "mpi": "python3-mpi4py"}[kind]
        raise JobError(f"--runner {kind} needs the package {package}: {error}") from error


def _jobs(options: argparse.Namespace) -> list[PageJob]:
    steps = _steps(options)
    if options.list:
        if options.files or options.to or options.page is not None:
            raise JobError("--list names all files and pages, so that no others go with it")
        return read_job_list(options.list, steps)
    if not options.files or not options.to:
        raise JobError("files and --to FOLDER are needed, or --list FILE")
    if not steps:
        raise JobError("there is nothing to do to the pages; --pattern or an option of the "
                       "conversion would do")
    if not os.path.exists(options.to):
        raise JobError(f"{options.to}: there is no such folder; make it first")
    if not os.path.isdir(options.to):
        raise JobError(f"{options.to}: is no folder")
    return jobs_for_files(options.files, options.to, steps, options.page)


def _steps(options: argparse.Namespace) -> list[Step]:
    steps: list[Step] = []
    conversion = Conversion(options.layout, options.bits, _channels(options.channels),
                            options.repeat, options.mirror, options.samples, options.invert)
    if conversion != Conversion():
        steps.append(conversion)
    if options.pattern:
        files = StepFiles()
        tone = {} if options.tone is None else files.read_tone(options.tone)
        steps.append(Simulation(files.read(options.pattern), options.engine, options.levels,
                                options.pattern, **tone))
    elif options.levels or options.tone is not None:
        raise JobError("--levels and --tone are about a pattern, and there is none without "
                       "--pattern")
    return steps


def _channels(text: Optional[str]) -> Optional[tuple]:
    if text is None:
        return None
    entries = [entry.strip() for entry in text.split(",")]
    return tuple(int(entry) if entry.isascii() and entry.isdigit() else
                 {"constant": int(entry[1:])} if entry[:1] == "=" and entry[1:].isdigit() else
                 entry for entry in entries)


def _parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(
        prog="python3 -m pelkraft.pages", formatter_class=argparse.RawDescriptionHelpFormatter,
        description="Sends pages of TIFF files through conversions and dot patterns, on as many "
                    "workers as there are.\nA file appears whole or not at all, and a rerun keeps "
                    "what is done.", epilog=exit_codes.HELP)
    parser.add_argument("files", nargs="*", metavar="IN.tif",
                        help="a TIFF file, or a folder of them")
    parser.add_argument("--to", metavar="FOLDER", help="the folder of the new files")
    parser.add_argument("--page", type=int, metavar="NUMBER",
                        help="the page of each file, counted from 1; without it, a file of "
                             "several pages is refused")
    parser.add_argument("--list", metavar="FILE", help="jobs in JSON or JSON lines")
    _add_steps(parser)
    _add_work(parser)
    return parser


def _add_steps(parser: argparse.ArgumentParser) -> None:
    group = parser.add_argument_group("steps, for files and for jobs without their own")
    group.add_argument("--layout", choices=("interleaved", "planar"))
    group.add_argument("--bits", type=int, choices=(1, 2, 8, 16))
    group.add_argument("--channels", metavar="LIST",
                       help="new channels, each by the number or name of an old one, - for an "
                            "empty one or =NUMBER for a constant: 2,1,0,3 or Cyan,-,=255")
    group.add_argument("--repeat", type=int, choices=(1, 2, 4), default=1)
    group.add_argument("--mirror", action="store_true")
    group.add_argument("--samples", choices=("fill", "tones", "levels"),
                       help="what happens to samples where the depth changes; tones by default "
                            "where only one side has less than 8 bits, else fill")
    group.add_argument("--invert", action="store_true")
    group.add_argument("--pattern", metavar="FILE", help="the dot pattern, after the conversion")
    group.add_argument("--engine", choices=("automatic", "x86", "sse"), default="automatic")
    group.add_argument("--levels", choices=(DITHER, QUANTIZE, RAW),
                       help="dither mixes the two steps about a tone, by a mask; quantize divides "
                            "tones evenly over the steps; raw takes samples as steps; without it, "
                            "dither where there are more tones than steps, else quantize")
    group.add_argument("--tone", metavar="TONE",
                       help="ink of each step for the dither: coverage, by the shares and values "
                            "of the pattern, the default; equal, in equal distances; or a CSV file "
                            "with lines of an in-colour, a step and its ink")


def _add_work(parser: argparse.ArgumentParser) -> None:
    group = parser.add_argument_group("work")
    group.add_argument("--runner", choices=("serial", "processes", "dask", "mpi"),
                       help="where pages are made; processes by default, dask with a scheduler")
    group.add_argument("--workers", type=int, metavar="COUNT",
                       help="processes, or workers of a Dask cluster of its own")
    group.add_argument("--scheduler", metavar="ADDRESS", help="the scheduler of a Dask cluster")
    group.add_argument("--scheduler-file", metavar="FILE",
                       help="the file that the scheduler of a Dask cluster writes")
    group.add_argument("--retries", type=int, default=DEFAULT_RETRIES, metavar="COUNT",
                       help="how often a page is begun anew after a failure that may pass; "
                            "%(default)s by default")
    group.add_argument("--window", type=int, metavar="COUNT",
                       help="pages that are under way or wait for their turn; twice the workers "
                            "by default")
    group.add_argument("--timeout", type=float, default=DEFAULT_TIMEOUT, metavar="SECONDS",
                       help="for how long a page may keep its worker; %(default)g by default")
    group.add_argument("--redo", action="store_true", help="make pages again that are there")
    group.add_argument("--report", metavar="FILE", help="write a line of JSON for each page")
    group.add_argument("--progress", choices=("auto", "always", "never"), default="auto")
