# SPDX-License-Identifier: Apache-2.0
"""Records of jobs and lists of them."""

import json
import pickle

import pytest

from pelkraft import Constant
from pelkraft.pages import (Conversion, JobError, PageJob, Simulation, jobs_for_files,
                            read_job_list)

STEP = Conversion(mirror=True)


def digest(*steps, **fields):
    return PageJob("a", "b", steps or (STEP,), **fields).digest()


def test_a_digest_depends_on_each_field_of_each_step():
    steps = [Conversion(), Conversion("planar"), Conversion(bits=8), Conversion(channels=(0,)),
             Conversion(channels=("0",)), Conversion(channels=(Constant(0),)),
             Conversion(repeat=2), Conversion(mirror=True), Conversion(samples="fill"),
             Conversion(invert=True), Simulation(b"a"), Simulation(b"b"),
             Simulation(b"a", engine="x86"), Simulation(b"a", levels="raw"),
             Simulation(b"a", levels="dither"), Simulation(b"a", levels="quantize"),
             Simulation(b"a", tone="equal"), Simulation(b"a", tone=b"equal"),
             Simulation(b"a", tone=b"x")]
    digests = [digest(step) for step in steps] + [digest(steps[0], steps[1]),
                                                  digest(steps[1], steps[0])]
    assert len(set(digests)) == len(digests)


def test_a_digest_does_not_depend_on_paths_and_pages():
    assert digest() == PageJob("c", "d", (STEP,), page=3).digest()
    assert digest(Simulation(b"a", name="one")) == digest(Simulation(b"a", name="two"))
    assert digest(Simulation(b"a", tone=b"", tone_name="a")) == digest(Simulation(b"a", tone=b""))
    assert digest(Simulation(b"a", tone="coverage")) == digest(Simulation(b"a"))


def test_jobs_are_records():
    job = PageJob("a", "b", [Conversion(channels=[{"constant": 3}, "-", 1])], 2)
    assert job.steps[0].channels == (Constant(3), "-", 1)
    assert pickle.loads(pickle.dumps(job)) == job
    assert hash(pickle.loads(pickle.dumps(job))) == hash(job)


@pytest.mark.parametrize("make, words", [
    (lambda: Conversion(layout="plane"),
     "layout is 'plane'; nothing, \"interleaved\", \"planar\" would do"),
    (lambda: Conversion(bits=4), "bits is 4; nothing, 1, 2, 8, 16 would do"),
    (lambda: Conversion(bits=8.0), "bits is 8.0"),
    (lambda: Conversion(repeat=3), "repeat is 3; 1, 2, 4 would do"),
    (lambda: Conversion(repeat=True), "repeat is True"),
    (lambda: Conversion(mirror=1), "mirror is 1; false, true would do"),
    (lambda: Conversion(invert=None), "invert is None"),
    (lambda: Conversion(samples="tone"), "samples is 'tone'"),
    (lambda: Conversion(channels=()), "channels has 0 entries; 1 to 65535 would do"),
    (lambda: Conversion(channels=(-1,)), "a channel is -1; a number from 0"),
    (lambda: Conversion(channels=("",)), "a channel is ''"),
    (lambda: Conversion(channels=(True,)), "a channel is True"),
    (lambda: Conversion(channels=({"constant": 70000},)), "a constant channel is 70000"),
    (lambda: Conversion(channels=({"constant": "x"},)), "a constant channel is 'x'"),
    (lambda: Simulation("text"), "text is no bytes"),
    (lambda: Simulation(b"", engine="reference"), "engine is 'reference'"),
    (lambda: Simulation(b"", levels="scale"), "levels is 'scale'"),
    (lambda: PageJob("", "b", (STEP,)), "input is ''"),
    (lambda: PageJob("a", "b\0", (STEP,)), "output is"),
    (lambda: PageJob("a", "b", ()), "steps must be one or more"),
    (lambda: PageJob("a", "b", ("mirror",)), "steps must be one or more"),
    (lambda: PageJob("a", "b", (STEP,), 0), "page is 0; a number from 1 would do"),
    (lambda: PageJob("a", "b", (STEP,), True), "page is True")])
def test_a_wrong_field_is_refused_by_name(make, words):
    with pytest.raises(JobError) as caught:
        make()
    assert words in str(caught.value)


def list_of(tmp_path, text):
    (tmp_path / "jobs.json").write_text(text)
    return read_job_list(str(tmp_path / "jobs.json"))


def test_a_list_is_read(tmp_path):
    (tmp_path / "p.txt").write_bytes(b"pattern")
    (tmp_path / "inks.csv").write_bytes(b"table")
    steps = [{"convert": {"channels": [0, "Black", "-", {"constant": 7}], "bits": 8}},
             {"simulate": {"pattern": "p.txt", "levels": "raw"}}]
    record = {"steps": [{"convert": {"mirror": True}}],
              "jobs": [{"input": "a.tif", "output": "out/a.tif"},
                       {"input": "/b.tif", "output": "/o.tif", "page": 2, "steps": steps}]}
    one, two = list_of(tmp_path, json.dumps(record))
    assert one == PageJob(str(tmp_path / "a.tif"), str(tmp_path / "out/a.tif"), (STEP,))
    assert two == PageJob("/b.tif", "/o.tif", (
        Conversion(bits=8, channels=(0, "Black", "-", Constant(7))),
        Simulation(b"pattern", levels="raw")), 2)
    assert list_of(tmp_path, json.dumps(record["jobs"][1:])) == [two]
    assert list_of(tmp_path, json.dumps(record["jobs"][1])) == [two]
    for tone, fields in ((None, {}), ("equal", {"tone": "equal"}),
                         ("inks.csv", {"tone": b"table", "tone_name": str(tmp_path / "inks.csv")})):
        simulate = {"pattern": "p.txt", "levels": None, "tone": tone}
        job, = list_of(tmp_path, json.dumps({**record["jobs"][0],
                                             "steps": [{"simulate": simulate}]}))
        assert job.steps == (Simulation(b"pattern", **fields),)
    line = json.dumps(record["jobs"][1])
    assert list_of(tmp_path, f"{line}\n\n{line}\n") == [two, two]


@pytest.mark.parametrize("text, words", [
    ("[", "Expecting value: line 1 column 2"),
    ('{"input": "a", "output": "b", "steps": []}\n{"input"\n', "line 1: steps must be one"),
    ('{"input": "a", "output": "b", "steps": [{"convert": {}}]}\n{"input"\n', "line 2: Expecting"),
    ("[3]", "job 1 is a number; an object with input and output would do"),
    ('[{"input": "a"}]', "job 1: output is None; the path of a file would do"),
    ('[{"input": "a", "output": 3}]', "job 1: output is 3"),
    ('[{"input": "a", "output": "b"}]', "job 1: steps must be one or more"),
    ('[{"input": "a", "output": "b", "stepps": []}]',
     "job 1: there is no 'stepps'; input, output, page, steps would do"),
    ('{"jobs": [], "step": 1}', "the list: there is no 'step'; jobs, steps would do"),
    ('{"jobs": [], "steps": 1}', "the list: steps is a number; a list would do"),
    ('[{"input": "a", "output": "b", "steps": [{"invert": {}}]}]', "job 1: a step is {'invert'"),
    ('[{"input": "a", "output": "b", "steps": [{"convert": {"bit": 8}}]}]',
     "job 1: convert: there is no 'bit'"),
    ('[{"input": "a", "output": "b", "steps": [{"convert": {"bits": 7}}]}]', "job 1: bits is 7"),
    ('[{"input": "a", "output": "b", "steps": [{"convert": {"channels": "01"}}]}]',
     "job 1: channels is a text; a list would do"),
    ('[{"input": "a", "output": "b", "steps": [{"simulate": {}}]}]', "job 1: pattern is None"),
    ('[{"input": "a", "output": "b", "steps": [{"simulate": {"pattern": "none.txt"}}]}]',
     "none.txt: cannot be read: No such file"),
    ('[{"input": "a", "output": "b", "steps": [{"simulate": {"pattern": "jobs.json", "tone": 1}}]}]',
     "job 1: tone is a number; coverage, equal or the path of a table would do"),
    ('[{"input": "a", "output": "b", "steps": [{"simulate": {"pattern": "jobs.json", '
     '"tone": "equla"}}]}]', "job 1: tone is 'equla', neither a kind of tone nor a file; coverage, "
     "equal or the path of a table would do"),
    ('[{"input": "a", "output": "b", "steps": [{"simulate": {"pattern": "jobs.json", '
     '"tone": "equal", "levels": "raw"}}]}]', "job 1: tone is about the dither"),
    ('[{"input": "a", "output": "b", "page": "1", "steps": [{"convert": {}}]}]',
     "job 1: page is '1'")])
def test_a_wrong_list_is_refused_with_its_place(tmp_path, text, words):
    with pytest.raises(JobError) as caught:
        list_of(tmp_path, text)
    assert words in str(caught.value)


def test_files_and_folders_become_jobs(tmp_path):
    (tmp_path / "in").mkdir()
    for name in ("b.TIF", "a.tiff", "c.txt", ".d.tif"):
        (tmp_path / "in" / name).touch()
    jobs = jobs_for_files([str(tmp_path / "x.tif"), str(tmp_path / "in")], str(tmp_path / "out"),
                          [STEP], 2)
    assert [(job.input, job.output) for job in jobs] == [
        (str(tmp_path / name), str(tmp_path / "out" / name.split("/")[-1]))
        for name in ("x.tif", "in/a.tiff", "in/b.TIF")]
    assert {(job.steps, job.page) for job in jobs} == {((STEP,), 2)}
    (tmp_path / "empty").mkdir()
    with pytest.raises(JobError, match="empty: has no TIFF file"):
        jobs_for_files([str(tmp_path / "empty")], "out", [STEP])
