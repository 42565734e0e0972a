# SPDX-License-Identifier: Apache-2.0
"""Files appear whole or not at all, also on a disk that is full."""

import ctypes
import os
import resource

import numpy
import pytest
import xxhash
from conftest import write_cmyk

from pelkraft.pages import Conversion, PageError, PageJob, run_pages
from pelkraft.pages.output import new_file, remove_leftovers
from pelkraft.pages.stamp import Stamp, read_stamp

PIECES = [b"head", memoryview(numpy.arange(100000, dtype=numpy.uint8)), b"tail"]
BYTES = b"".join(map(bytes, PIECES))


def test_a_file_appears_at_the_end_of_its_context(tmp_path):
    path = tmp_path / "a.tif"
    with new_file(str(path), PIECES) as digest:
        assert not path.exists()
        assert digest == xxhash.xxh3_128_hexdigest(BYTES)
    assert path.read_bytes() == BYTES
    assert os.listdir(tmp_path) == ["a.tif"]


def test_an_earlier_file_stays_where_the_new_one_fails(tmp_path):
    path = tmp_path / "a.tif"
    path.write_bytes(b"earlier")
    with pytest.raises(RuntimeError):
        with new_file(str(path), PIECES):
            raise RuntimeError
    assert path.read_bytes() == b"earlier"
    assert os.listdir(tmp_path) == ["a.tif"]


@pytest.mark.parametrize("damage", [
    lambda file: os.pwrite(file, b"!", 50000),
    lambda file: os.truncate(file, 90000),
    lambda file: os.pwrite(file, b"!", len(BYTES))])
def test_a_file_that_reads_back_otherwise_is_refused(tmp_path, monkeypatch, damage):
    words = "reads back otherwise than it was written"
    forced = os.fsync

    def damaging(file):
        forced(file)
        damage(file)

    monkeypatch.setattr(os, "fsync", damaging)
    with pytest.raises(PageError, match=words) as caught:
        with new_file(str(tmp_path / "a.tif"), PIECES):
            raise AssertionError("the damage was not seen")
    assert caught.value.kind == "write"
    assert os.listdir(tmp_path) == []


def test_the_file_and_its_folder_are_forced_to_the_disk(tmp_path, monkeypatch):
    forced, path = [], tmp_path / "a.tif"

    def noting(file):
        forced.append((os.readlink(f"/proc/self/fd/{file}"), path.exists()))

    monkeypatch.setattr(os, "fsync", noting)
    with new_file(str(path), PIECES):
        pass
    (file, was_there), (folder, is_there) = forced
    assert file.startswith(str(tmp_path / ".a.tif.")) and not was_there
    assert (folder, is_there) == (str(tmp_path), True)


def test_leftovers_of_the_files_in_question_are_removed(tmp_path):
    for name in (".a.tif.0123456789ab.part", ".b.tif.0123456789ab.part", ".a.tif.0123.part",
                 "a.tif", ".a.tif.stamp.0123456789ab.part"):
        (tmp_path / name).touch()
    paths = [tmp_path / "a.tif", tmp_path / "a.tif.stamp", tmp_path / "none" / "c.tif"]
    assert remove_leftovers(map(str, paths)) == 2
    assert sorted(os.listdir(tmp_path)) == [".a.tif.0123.part", ".b.tif.0123456789ab.part",
                                            "a.tif"]


@pytest.mark.parametrize("text", ["", "{", "[]", "7", '{"stamp": 1}', '{"stamp": 2}',
                                  '{"stamp": 2, "job": "", "input": "", "output": "", '
                                  '"warnings": 3, "notes": []}',
                                  '{"stamp": 1, "job": "", "input": "", "output": "", '
                                  '"warnings": [], "notes": []}'])
def test_a_stamp_that_is_none_is_no_stamp(tmp_path, text):
    (tmp_path / "a.tif.stamp").write_text(text)
    assert read_stamp(str(tmp_path / "a.tif")) is None


def test_a_stamp_is_read_again(tmp_path):
    stamp = Stamp("j", "i", "o", ("w",), "r", ("n",))
    stamp.write(str(tmp_path / "a.tif"))
    assert read_stamp(str(tmp_path / "a.tif")) == stamp


def two_jobs(tmp_path, folder):
    for name, height in (("big", 3000), ("small", 3)):
        write_cmyk(tmp_path / f"{name}.tif", 1, height, 100)
    return [PageJob(str(tmp_path / f"{name}.tif"), str(folder / f"{name}.tif"),
                    (Conversion(mirror=True),)) for name in ("big", "small")]


def check_that_only_the_small_one_is_there(results, folder, words):
    assert [result.status for result in results] == ["failed", "made"]
    assert (results[0].kind, results[0].attempts) == ("write", 3)
    assert results[0].message == f"{folder / 'big.tif'}: cannot be written: {words}"
    assert sorted(os.listdir(folder)) == ["small.tif", "small.tif.stamp"]


def test_a_file_that_may_not_grow_fails_alone(tmp_path):
    folder = tmp_path / "out"
    folder.mkdir()
    jobs = two_jobs(tmp_path, folder)
    before = resource.getrlimit(resource.RLIMIT_FSIZE)
    # Python ignores the signal that comes with it.
    resource.setrlimit(resource.RLIMIT_FSIZE, (100000, before[1]))
    try:
        results = list(run_pages(jobs))
    finally:
        resource.setrlimit(resource.RLIMIT_FSIZE, before)
    check_that_only_the_small_one_is_there(results, folder, "File too large")


def test_a_full_disk_fails_alone(tmp_path):
    folder = tmp_path / "full"
    folder.mkdir()
    jobs = two_jobs(tmp_path, folder)
    libc = ctypes.CDLL(None, use_errno=True)
    if libc.mount(b"none", bytes(folder), b"tmpfs", 0, b"size=256k") != 0:
        pytest.skip(f"no disk can be mounted here: {os.strerror(ctypes.get_errno())}")
    try:
        check_that_only_the_small_one_is_there(list(run_pages(jobs)), folder,
                                               "No space left on device")
    finally:
        libc.umount(bytes(folder))
