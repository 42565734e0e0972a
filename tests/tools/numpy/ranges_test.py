# SPDX-License-Identifier: Apache-2.0
"""A dot range of its own for each channel, and the strips of a file as they stand in it."""

from fractions import Fraction

import numpy
import pytest
import tifffile

from pictures import DOT_RANGE, SHORT, random_samples, read_inks, write_inks

RANGES = [(5, 250), (0, 255), (250, 5), (100, 120)]


def write(path, samples, ranges, **options):
    numbers = [number for pair in ranges for number in pair]
    tifffile.imwrite(path, samples, photometric="separated", metadata=None, planarconfig="contig",
                     extratags=[(DOT_RANGE, SHORT, len(numbers), numbers, True)], **options)


def full(sample, none, all_of_it):
    """To the nearest, half up, within the samples."""
    value = Fraction((int(sample) - none) * 255, all_of_it - none)
    return min(max((2 * value + 1).__floor__() // 2, 0), 255)


@pytest.mark.parametrize("order", ["<", ">"])
@pytest.mark.parametrize("big", [False, True])
def test_each_channel_has_its_own_codes(tmp_path, succeed, order, big):
    samples = random_samples(1, (9, 7, 4), 8)
    write(tmp_path / "in.tif", samples, RANGES, byteorder=order, bigtiff=big)
    (file,) = succeed("info", "--json", "--stats", "in.tif").json["files"]
    inks = file["pages"][0]["inks"]
    assert [(ink["code_0"], ink["code_100"]) for ink in inks] == RANGES
    for channel, (none, all_of_it) in enumerate(RANGES):
        plane = samples[..., channel].astype(int)
        used = plane > none if none < all_of_it else plane < none
        assert inks[channel]["used"] == pytest.approx(used.mean(), rel=1e-12)


def test_full_maps_each_channel_by_its_own(tmp_path, succeed):
    samples = random_samples(2, (9, 7, 4), 8)
    write(tmp_path / "in.tif", samples, RANGES)
    succeed("convert", "in.tif", "out.tif", "--dot-range", "full")
    wanted = [[[full(pixel[i], *RANGES[i]) for i in range(4)] for pixel in row] for row in samples]
    with tifffile.TiffFile(tmp_path / "out.tif") as new:
        assert numpy.array_equal(new.pages[0].asarray(), wanted)
        assert tuple(new.pages[0].tags[DOT_RANGE].value) == (0, 255)


def test_what_cannot_be_kept_is_told(tmp_path, run, refuse):
    samples = random_samples(3, (9, 7, 4), 8)
    write(tmp_path / "in.tif", samples, RANGES)
    outcome = run("convert", "in.tif", "out.tif")
    assert outcome.code == 0
    assert outcome.errors.count("\n") == 1
    assert "DotRange is not kept: it has a pair for each channel" in outcome.errors
    assert numpy.array_equal(tifffile.imread(tmp_path / "out.tif"), samples)
    refuse(5, ["supported is --dot-range full"], "convert", "in.tif", "no.tif", "--dot-range",
           "scale", "--bits", "16")
    for verb in (["coverage", "in.tif"], ["split", "in.tif", "p"], ["preview", "in.tif", "p.png"]):
        refuse(5, ["another dot range in channel 1", "convert --dot-range full"], *verb)


def test_equal_pairs_are_one(tmp_path, succeed):
    samples = random_samples(4, (9, 7, 4), 8)
    write(tmp_path / "many.tif", samples, [(5, 250)] * 4)
    write(tmp_path / "one.tif", samples, [(5, 250)])
    said = [succeed("coverage", name, "--limit", "400", "--window", "2px").output.splitlines()[1:]
            for name in ("many.tif", "one.tif")]
    assert said[0] == said[1]
    for name in ("many.tif", "one.tif"):
        succeed("convert", name, "to_" + name)
    assert (tmp_path / "to_many.tif").read_bytes() == (tmp_path / "to_one.tif").read_bytes()


@pytest.mark.parametrize("rows, words", [(None, "strips of 300 rows"), (7, "strips of 7 rows"),
                                         (1, "strips of 1 row,"), (1000, "strips of 300 rows")])
def test_strips_are_those_of_the_file(tmp_path, succeed, rows, words):
    tifffile.imwrite(tmp_path / "in.tif", random_samples(5, (300, 400), 8), metadata=None,
                     photometric="minisblack", rowsperstrip=rows or 300)
    assert words in succeed("info", "in.tif").output


@pytest.mark.parametrize("options, moves", [
    (["5,250", "scale"], False), (["scale", "5,250"], False), (["scale"], False),
    (["5,250", "full"], True)])
def test_a_range_that_moves_no_sample_says_so(tmp_path, run, options, moves):
    samples = random_samples(3, (9, 11, 4), 8)
    write_inks(tmp_path / "in.tif", samples, ["Cyan", "Magenta", "Yellow", "Black"])
    words = [word for option in options for word in ("--dot-range", option)]
    outcome = run("convert", "in.tif", "out.tif", *words)
    assert outcome.code == 0
    assert ("--dot-range scale moves no sample" in outcome.errors) == (not moves)
    assert ("--dot-range full maps it to all samples" in outcome.errors) == (not moves)
    assert numpy.array_equal(read_inks(tmp_path / "out.tif")[0].samples, samples) == (not moves)
    outcome = run("convert", "in.tif", "out.tif", *words, "--bits", "16")
    assert "moves no sample" not in outcome.errors
