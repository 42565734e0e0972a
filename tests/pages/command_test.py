# SPDX-License-Identifier: Apache-2.0
"""The command python3 -m pelkraft.pages: options, exit codes, report, progress, interrupts."""

import json
import os
import re
import signal
import subprocess
import sys
import time

import numpy
import pytest
import tifffile
from conftest import check_mirrored, write_cmyk

import pelkraft
from pelkraft.pages import exit_codes
from pelkraft.pages.progress import Progress


def command(*options):
    return [sys.executable, "-m", "pelkraft.pages", *map(str, options)]


def run(*options, **others):
    environment = {**os.environ, "PYTHONPATH": os.pathsep.join(sys.path)}
    return subprocess.run(command(*options), capture_output=True, text=True, timeout=300,
                          env=environment, **others)


def pages_of(report):
    *pages, summary = map(json.loads, report.read_text().splitlines())
    return pages, summary


@pytest.mark.parametrize("runner", ["serial", "processes", "dask"])
def test_a_folder_of_pages_is_made_and_kept(make_jobs, tmp_path, runner):
    if runner == "dask":
        pytest.importorskip("distributed")
    jobs = make_jobs(5)
    report = tmp_path / "report.jsonl"
    options = (tmp_path / "in", "--to", tmp_path / "out", "--mirror", "--runner", runner,
               "--report", report, *(["--workers", 2] if runner != "serial" else []))
    ended = run(*options)
    # Dask itself may tell of folders that killed workers have left.
    assert (ended.returncode, ended.stdout) == (0, "")
    assert "pelkraft.pages:" not in ended.stderr
    assert ended.stderr == "" or runner == "dask"
    pages, summary = pages_of(report)
    assert [(page["number"], page["status"], page["input"], page["output"]) for page in pages] == \
        [(number, "made", job.input, job.output) for number, job in enumerate(jobs, 1)]
    assert (summary["pages"], summary["made"], summary["kept"]) == (5, 5, 0)
    check_mirrored(jobs)
    before = {name: os.stat(tmp_path / "out" / name).st_ino
              for name in os.listdir(tmp_path / "out")}
    assert run(*options).returncode == 0
    assert pages_of(report)[1]["kept"] == 5
    assert before == {name: os.stat(tmp_path / "out" / name).st_ino
                      for name in os.listdir(tmp_path / "out")}


def test_the_same_bytes_come_from_each_runner(make_jobs, tmp_path):
    make_jobs(6)
    pytest.importorskip("distributed")
    digests = []
    for runner in ("serial", "processes", "dask"):
        (tmp_path / runner).mkdir()
        report = tmp_path / f"{runner}.jsonl"
        assert run(tmp_path / "in", "--to", tmp_path / runner, "--channels", "3,-,=9,Cyan",
                   "--runner", runner, "--report", report).returncode == 0
        digests.append([page["output_digest"] for page in pages_of(report)[0]])
    assert digests[0] == digests[1] == digests[2] and len(set(digests[0])) == 6


def change_input(job):
    write_cmyk(job.input, 77)


def change_output(job):
    with open(job.output, "r+b") as file:
        file.seek(100)
        file.write(b"!")


def remove_output(job):
    os.unlink(job.output)


def change_stamp(job):
    with open(job.output + ".stamp", "w") as file:
        file.write("{}")


@pytest.mark.parametrize("change", [change_input, change_output, remove_output, change_stamp])
def test_a_rerun_makes_what_does_not_match(make_jobs, tmp_path, change):
    jobs = make_jobs(3)
    report = tmp_path / "report.jsonl"
    options = (tmp_path / "in", "--to", tmp_path / "out", "--mirror", "--runner", "serial",
               "--report", report)
    run(*options)
    change(jobs[1])
    assert run(*options).returncode == 0
    assert [page["status"] for page in pages_of(report)[0]] == ["kept", "made", "kept"]
    check_mirrored(jobs)
    assert run(*options, "--repeat", 2).returncode == 0
    assert [page["status"] for page in pages_of(report)[0]] == ["made"] * 3
    assert run(*options, "--repeat", 2, "--redo").returncode == 0
    assert [page["status"] for page in pages_of(report)[0]] == ["made"] * 3


def test_an_unreadable_page_fails_and_the_others_are_made(make_jobs, tmp_path):
    jobs = make_jobs(5)
    (tmp_path / "in" / "2.tif").write_bytes((tmp_path / "in" / "1.tif").read_bytes()[:200])
    (tmp_path / "in" / "4.tif").unlink()
    (tmp_path / "in" / "4.tif").symlink_to(tmp_path / "nowhere")
    report = tmp_path / "report.jsonl"
    ended = run(tmp_path / "in", "--to", tmp_path / "out", "--mirror", "--workers", 2,
                "--report", report)
    assert ended.returncode == exit_codes.PAGES_FAILED
    pages, summary = pages_of(report)
    assert [page["status"] for page in pages] == ["made", "failed", "made", "failed", "made"]
    assert (pages[1]["kind"], pages[3]["kind"]) == ("input", "read")
    assert (pages[1]["attempts"], pages[3]["attempts"]) == (1, 3)
    assert summary["failed"] == 2
    *lines, last = ended.stderr.splitlines()
    assert lines == [f"pelkraft.pages: {pages[number]['message']}" for number in (1, 3)]
    assert last == "pelkraft.pages: 2 of 5 pages failed"
    check_mirrored([jobs[0], jobs[2], jobs[4]])


def test_a_warning_about_pixels_has_an_exit_code(tmp_path):
    write_cmyk(tmp_path / "a.tif", 1)
    (tmp_path / "out").mkdir()
    options = (tmp_path / "a.tif", "--to", tmp_path / "out", "--bits", 1, "--samples", "fill",
               "--runner", "serial")
    words = (f"pelkraft.pages: {tmp_path / 'a.tif'}: samples exceed the levels of 1 bit, and "
             "only their lowest bits were kept; tones would be rounded to levels\n")
    for _ in ("made", "kept"):
        ended = run(*options)
        assert (ended.returncode, ended.stderr) == (exit_codes.WARNINGS, words)


def test_a_note_about_tags_has_none(tmp_path):
    tifffile.imwrite(tmp_path / "a.tif", numpy.zeros((3, 5, 4), numpy.uint8), metadata=None,
                     photometric="separated", extratags=[(34675, 7, 7, b"profile", True)])
    (tmp_path / "out").mkdir()
    report = tmp_path / "report.jsonl"
    words = "the inks have changed; written without the colour profile"
    for status in ("made", "kept"):
        ended = run(tmp_path / "a.tif", "--to", tmp_path / "out", "--channels", "3,0",
                    "--runner", "serial", "--report", report)
        assert (ended.returncode, ended.stderr) == \
            (exit_codes.DONE, f"pelkraft.pages: {tmp_path / 'a.tif'}: {words}\n")
        page, = pages_of(report)[0]
        assert (page["status"], page["notes"], "warnings" in page) == (status, [words], False)


def test_what_a_file_is_called_does_not_act_on_a_terminal(tmp_path):
    name = "a\x1b[31m\u202e\n\udce4\u00e9.tif"
    (tmp_path / "out").mkdir()
    (tmp_path / name).write_bytes(b"no picture")
    ended = run(tmp_path / name, "--to", tmp_path / "out", "--mirror", "--runner", "serial")
    assert ended.returncode == exit_codes.PAGES_FAILED
    assert ended.stderr.startswith(f"pelkraft.pages: {tmp_path}/a?[31m???\u00e9.tif: ")


def test_the_tone_of_the_command_line_is_that_of_a_list(make_jobs, tmp_path, pattern_path):
    job, = make_jobs(1)
    table = tmp_path / "inks.csv"
    table.write_text("".join(f"{name},{step},{step}\n" for name, top in
                             (("Cyan", 5), ("Magenta", 5), ("Yellow", 3), ("Black", 3))
                             for step in range(top + 1)))
    for tone in ([], ["--tone", "coverage"], ["--tone", "equal"], ["--tone", table]):
        for levels in ([], ["--levels", "dither"]):
            options = (tmp_path / "in", "--to", tmp_path / "out", "--runner", "serial",
                       "--pattern", pattern_path, *tone, *levels)
            assert run(*options).returncode == 0
            fields = dict(zip(("tone", "levels"), [*tone[1:], *levels[1:]] if tone else
                              [None, *levels[1:]]))
            step = {"simulate": {"pattern": str(pattern_path),
                                 **{name: value and str(value) for name, value in fields.items()}}}
            (tmp_path / "jobs.json").write_text(json.dumps(
                {"input": job.input, "output": job.output, "steps": [step]}))
            # The stamp tells that it was the same job.
            report = tmp_path / "report.jsonl"
            assert run("--list", tmp_path / "jobs.json", "--report", report).returncode == 0
            assert pages_of(report)[1]["kept"] == 1


def test_a_list_has_steps_of_its_own(make_jobs, tmp_path):
    one, two = make_jobs(2)
    records = [{"input": one.input, "output": one.output},
               {"input": two.input, "output": two.output, "page": 1,
                "steps": [{"convert": {"mirror": True}}]}]
    (tmp_path / "jobs.jsonl").write_text("\n".join(map(json.dumps, records)))
    assert run("--list", tmp_path / "jobs.jsonl", "--mirror").returncode == 0
    check_mirrored([one, two])


@pytest.mark.parametrize("options, words", [
    ([], "files and --to FOLDER are needed, or --list FILE"),
    (["in/1.tif", "--to", "out"], "there is nothing to do to the pages"),
    (["in/1.tif", "--mirror"], "files and --to FOLDER are needed"),
    (["in/1.tif", "--to", "nowhere", "--mirror"], "nowhere: there is no such folder; make it first"),
    (["in/1.tif", "--to", "in/1.tif", "--mirror"], "in/1.tif: is no folder"),
    (["in/1.tif", "--to", "in", "--mirror"], "is an input of the list"),
    (["--list", "jobs.json", "in/1.tif"], "--list names all files"),
    (["--list", "jobs.json"], "jobs.json: cannot be read: No such file"),
    (["in", "--to", "out", "--mirror", "--scheduler", "a", "--runner", "mpi"],
     "--scheduler and --scheduler-file go with"),
    (["in", "--to", "out", "--mirror", "--scheduler", "a", "--scheduler-file", "b"],
     "--scheduler and --scheduler-file say the same thing; one would do"),
    (["in", "--to", "out", "--mirror", "--workers", "2", "--runner", "serial"], "--workers goes"),
    (["in", "--to", "out", "--mirror", "--workers", "-2"], "--workers is -2; 1 or more"),
    (["in", "--to", "out", "--mirror", "--window", "0"], "window is 0; 1 or more would do"),
    (["in", "--to", "out", "--pattern", "none.txt"], "none.txt: cannot be read"),
    (["in", "--to", "out", "--mirror", "--tone", "equal"], "--levels and --tone are about a pattern"),
    (["in", "--to", "out", "--mirror", "--levels", "raw"], "--levels and --tone are about a pattern"),
    (["in", "--to", "out", "--pattern", "in/1.tif", "--tone", "none.csv"],
     "tone is 'none.csv', neither a kind of tone nor a file"),
    (["in", "--to", "out", "--pattern", "in/1.tif", "--tone", "equal", "--levels", "raw"],
     "tone is about the dither, which levels 'raw' does without"),
    (["in", "--to", "out", "--channels", "0,,1"], "a channel is ''"),
    (["in", "--to", "out", "--page", "0", "--mirror"], "page is 0; a number from 1 would do")])
def test_wrong_usage_is_told_and_nothing_begun(make_jobs, tmp_path, options, words):
    make_jobs(2)
    ended = run(*options, cwd=tmp_path)
    assert ended.returncode == exit_codes.USAGE
    assert words in ended.stderr
    assert os.listdir(tmp_path / "out") == []


def test_a_list_with_a_missing_folder_names_it(make_jobs, tmp_path):
    job, = make_jobs(1)
    (tmp_path / "jobs.json").write_text(json.dumps(
        {"input": job.input, "output": "none/1.tif", "steps": [{"convert": {"mirror": True}}]}))
    ended = run("--list", tmp_path / "jobs.json", "--runner", "serial")
    assert ended.returncode == exit_codes.PAGES_FAILED
    assert (f"pelkraft.pages: {tmp_path / 'none' / '1.tif'}: cannot be written: there is no folder "
            f"{tmp_path / 'none'}; make it first\n") in ended.stderr


@pytest.mark.parametrize("there, lacking", [
    ([], "numpy"), (["numpy"], "xxhash"), (["numpy", "xxhash"], "tifffile")])
def test_a_python_without_a_module_says_so_in_a_sentence(tmp_path, there, lacking):
    for name in there:
        (tmp_path / name).symlink_to(os.path.dirname(sys.modules[name].__file__))
    package = os.path.dirname(os.path.dirname(pelkraft.__file__))
    environment = {**os.environ, "PYTHONPATH": os.pathsep.join([package, str(tmp_path)])}

    def run_bare(*options):
        return subprocess.run([sys.executable, "-S", *options], capture_output=True, text=True,
                              env=environment, check=False)

    ended = run_bare("-m", "pelkraft.pages", "--help")
    assert (ended.returncode, ended.stdout) == (exit_codes.USAGE, "")
    assert ended.stderr.startswith(f"pelkraft: this Python, {sys.executable}, has no module "
                                   f"{lacking}; Debian's package python3-{lacking} ")
    assert ended.stderr.count("\n") == 1
    # A program that imports the package can catch what is wrong.
    caught = run_bare("-c", "try:\n    import pelkraft.pages\n"
                            "except ModuleNotFoundError as error:\n    print(error.name)")
    assert (caught.returncode, caught.stdout, caught.stderr) == (0, lacking + "\n", "")


def test_no_cluster_has_an_exit_code(make_jobs, tmp_path, monkeypatch):
    pytest.importorskip("distributed")
    monkeypatch.setenv("DASK_DISTRIBUTED__COMM__TIMEOUTS__CONNECT", "1s")
    make_jobs(1)
    ended = run(tmp_path / "in", "--to", tmp_path / "out", "--mirror",
                "--scheduler", "tcp://127.0.0.1:9")
    assert ended.returncode == exit_codes.CLUSTER_LOST
    assert "no scheduler with a worker at tcp://127.0.0.1:9" in ended.stderr
    for text in ("", "[]", "{}", '{"address": 7}'):
        (tmp_path / "cluster.json").write_text(text)
        ended = run(tmp_path / "in", "--to", tmp_path / "out", "--mirror",
                    "--scheduler-file", tmp_path / "cluster.json")
        assert ended.returncode == exit_codes.CLUSTER_LOST
        assert f"no scheduler with a worker at {tmp_path / 'cluster.json'}: " in ended.stderr


def test_a_report_that_cannot_be_written_has_an_exit_code(make_jobs, tmp_path):
    jobs = make_jobs(2)
    options = (tmp_path / "in", "--to", tmp_path / "out", "--mirror", "--runner", "serial")
    ended = run(*options, "--report", tmp_path / "nowhere" / "report")
    assert ended.returncode == exit_codes.REPORT
    assert f"cannot be written: there is no folder {tmp_path / 'nowhere'}; make it first\n" in \
        ended.stderr
    assert os.listdir(tmp_path / "out") == []
    ended = run(*options, "--report", "/dev/full")
    assert ended.returncode == exit_codes.REPORT
    assert "/dev/full: cannot be written: No space left on device" in ended.stderr
    check_mirrored(jobs)


def test_help_lists_each_exit_code():
    codes = [value for name, value in vars(exit_codes).items() if name.isupper() and
             isinstance(value, int)]
    listed = re.findall(r"^  (\d+) ", run("--help").stdout.split("exit codes:")[1], re.M)
    assert sorted(map(int, listed)) == sorted(codes)


@pytest.mark.parametrize("sent", [signal.SIGINT, signal.SIGTERM])
@pytest.mark.parametrize("runner", ["serial", "processes", "dask"])
def test_an_interrupt_leaves_no_half_file(make_jobs, tmp_path, sent, runner):
    if runner == "dask":
        pytest.importorskip("distributed")
    jobs = make_jobs(400)
    report = tmp_path / "report.jsonl"
    options = (tmp_path / "in", "--to", tmp_path / "out", "--mirror", "--runner", runner,
               "--report", report)
    with subprocess.Popen(command(*options), stderr=subprocess.PIPE, text=True,
                          env={**os.environ, "PYTHONPATH": os.pathsep.join(sys.path)}) as running:
        deadline = time.monotonic() + 60
        while len(os.listdir(tmp_path / "out")) < 10 and time.monotonic() < deadline:
            time.sleep(0.01)
        running.send_signal(sent)
        told = running.stderr.read()
    assert running.returncode == exit_codes.INTERRUPTED, told
    # Dask's workers may say something after it.
    assert "pelkraft.pages: interrupted; a rerun keeps what is done" in told.splitlines()
    there = [job for job in jobs if os.path.exists(job.output)]
    assert 0 < len(there) < 400
    assert not [name for name in os.listdir(tmp_path / "out") if name.startswith(".")]
    made = pages_of(report)[1]["made"]
    assert run(*options).returncode == 0
    assert pages_of(report)[1]["kept"] >= made > 0
    check_mirrored(jobs)


class Screen:
    def __init__(self, terminal):
        self.terminal, self.text = terminal, ""

    def isatty(self):
        return self.terminal

    def write(self, text):
        self.text += text

    def flush(self):
        pass


def test_progress_counts_pages_a_minute_and_time_left():
    screen, now = Screen(True), [100.0]
    progress = Progress(1000, "auto", screen, lambda: now[0])
    progress.show(100, 100, 0)
    assert screen.text == "\rpelkraft.pages: 100 of 1000 pages"
    now[0] += 0.05
    progress.show(101, 100, 0)
    assert screen.text.count("\r") == 1
    now[0] += 19.95
    progress.show(150, 100, 2)
    assert screen.text.split("\r")[-1] == \
        "pelkraft.pages: 150 of 1000 pages, 150 a minute, 5 min 40 s left, 2 failed"
    progress.wipe()
    assert screen.text.split("\r")[-2].strip() == ""


@pytest.mark.parametrize("terminal, wanted, shown", [
    (True, "auto", True), (False, "auto", False), (False, "always", True),
    (True, "never", False)])
def test_progress_is_shown_where_it_is_wanted(terminal, wanted, shown):
    screen = Screen(terminal)
    progress = Progress(2, wanted, screen)
    progress.show(1, 0, 0)
    progress.wipe()
    assert bool(screen.text) == shown
