# SPDX-License-Identifier: Apache-2.0
"""Samples of no ink and of full ink, beside the program's."""

import subprocess
from dataclasses import replace

import numpy
import pytest
import tifffile
from pictures import random_picture, read, write

from pelkraft.pages import Channel, Conversion, PageError, PageJob, Tags, run_pages
from pelkraft.pages.digest import pixel_digest
from pelkraft.pages.ink_codes import plan_range, read_codes


def picture_of(photometric, bits=8, ranges=(), channels=4):
    picture = random_picture(5, bits, False, 9, 5, channels=channels)
    return replace(picture, tags=Tags(photometric, dot_ranges=ranges))


@pytest.mark.parametrize("photometric, bits, ranges, codes", [
    (5, 8, (), (0, 255)), (0, 2, (), (0, 3)), (1, 16, (), (65535, 0)), (1, 1, ((0, 9),), (1, 0)),
    (5, 8, ((26, 217),), (26, 217)), (5, 8, ((217, 26),), (217, 26)),
    (5, 8, ((9, 90),) * 4, (9, 90)), (0, 8, ((9, 90),), (0, 255))])
def test_a_page_tells_its_samples_of_no_ink_and_of_full_ink(photometric, bits, ranges, codes):
    assert read_codes(picture_of(photometric, bits, ranges), "a.tif") == codes


@pytest.mark.parametrize("ranges, kind, words", [
    (((7, 7),), "input", "a.tif: dot range 7,7 is empty or exceeds the samples, which reach 255"),
    (((0, 256),), "input", "dot range 0,256 is empty or exceeds"),
    (((0, 255),) * 2 + ((0, 254),) + ((0, 255),), "unsupported",
     "a.tif: has another dot range in channel 2 than in channel 0")])
def test_ranges_without_sense_are_refused(ranges, kind, words):
    with pytest.raises(PageError) as caught:
        read_codes(picture_of(5, 8, ranges), "a.tif")
    assert caught.value.kind == kind and words in caught.value.message


# By hand: 26 of 255 is 6682 of 65535 and 0.3 of 3; 230 is 2.7 of 3.
@pytest.mark.parametrize("ranges, bits, invert, fresh, empty, lost", [
    ((), 16, False, (), 0, ""), ((), 2, True, ((3, 0),), 3, ""),
    (((26, 230),), 8, False, ((26, 230),), 0, ""),
    (((26, 230),), 16, False, ((6682, 59110),), 0, ""),
    (((26, 230),), 2, False, ((0, 3),), 0, ""), (((230, 26),), 8, False, ((230, 26),), 230, ""),
    (((26, 230),), 8, True, ((229, 25),), 229, ""),
    (((100, 120),), 1, False, (), 0, "DotRange is not kept: the dot range 100,120 has no room"),
    (((5, 5),), 8, False, ((5, 5),), 0, ""),
    (((5, 5),), 2, False, (), 0, "DotRange 5,5 is not kept: it is empty or exceeds the samples"),
    (((0, 9),) * 3 + ((0, 8),), 8, False, (), 0, "DotRange is not kept: it has a pair for each")])
def test_a_range_of_dots_follows_the_samples(ranges, bits, invert, fresh, empty, lost):
    found = plan_range(picture_of(5, 8, ranges), bits, invert)
    assert (found.photometric, found.dot_ranges) == (5, fresh)
    assert found.empty == empty or fresh == ()
    assert "".join(found.losses).startswith(lost) and bool(found.losses) == bool(lost)


@pytest.mark.parametrize("photometric, turned, empty, lost", [
    (0, 1, 255, 0), (1, 0, 0, 0), (2, 2, 0, 1), (3, 3, 0, 1)])
def test_an_inversion_turns_what_a_tag_can_tell(photometric, turned, empty, lost):
    found = plan_range(picture_of(photometric, 8, ((1, 2),)), 8, True)
    assert (found.photometric, found.empty, found.dot_ranges) == (turned, empty, ())
    assert len(found.losses) == lost + 1 and found.losses[0] == \
        "DotRange is not kept: the samples change"
    assert plan_range(picture_of(photometric, 8, ((1, 2),)), 8, False).dot_ranges == ((1, 2),)


@pytest.mark.parametrize("photometric", [0, 1, 2, 5])
@pytest.mark.parametrize("ranges", [(), ((26, 217),), ((3, 3),), ((0, 255),) * 3 + ((1, 255),)])
@pytest.mark.parametrize("options, step", [
    ([], {}), (["--bits", "16"], {"bits": 16}), (["--bits", "2"], {"bits": 2}),
    (["--invert"], {"invert": True}), (["--invert", "--bits", "16"], {"invert": True, "bits": 16}),
    (["--invert", "--channels", "2,-,1"], {"invert": True, "channels": (2, "-", 1)})])
def test_a_conversion_says_of_its_samples_what_the_program_says(tmp_path, tool, photometric,
                                                                ranges, options, step):
    write(tmp_path / "in.tif", picture_of(photometric, 8, ranges))
    subprocess.run([tool, "convert", tmp_path / "in.tif", tmp_path / "tool.tif", *options],
                   capture_output=True, check=True)
    result, = run_pages([PageJob(str(tmp_path / "in.tif"), str(tmp_path / "page.tif"),
                                 (Conversion(**step),))])
    assert result.status == "made", result.message
    ours, theirs = read(tmp_path / "page.tif"), read(tmp_path / "tool.tif")
    assert pixel_digest(ours) == pixel_digest(theirs)
    # Beside other pages, where a tag means nothing, the program writes its first pair.
    assert (ours.tags.photometric, ours.tags.dot_ranges[:1]) == \
        (theirs.tags.photometric, theirs.tags.dot_ranges)


@pytest.mark.parametrize("photometric, extra, inverted", [
    (5, 2, [0, 1]), (5, 0, [0, 1, 2]), (1, 0, [0, 1, 2]), (2, 0, [0, 1, 2])])
@pytest.mark.parametrize("bits, planar", [(2, False), (8, False), (8, True), (16, False)])
def test_alpha_is_not_inverted(tmp_path, tool, photometric, extra, inverted, bits, planar):
    colours = {5: 2, 1: 1, 2: 3}[photometric]
    count = max(3, colours + 1)
    picture = random_picture(5, bits, planar, 9, 5, channels=count)
    kinds = tuple(Channel("", None if i < colours else extra) for i in range(count))
    if photometric == 5:
        names = ("A", "B")
        kinds = (Channel("A"), Channel("B"), Channel("", extra))
        picture.tags = Tags(5, 2, names)
    else:
        picture.tags = Tags(photometric)
    picture.channels = kinds
    write(tmp_path / "in.tif", picture)
    subprocess.run([tool, "convert", tmp_path / "in.tif", tmp_path / "tool.tif", "--invert"],
                   capture_output=True, check=True)
    result, = run_pages([PageJob(str(tmp_path / "in.tif"), str(tmp_path / "page.tif"),
                                 (Conversion(invert=True),))])
    assert result.status == "made", result.message
    assert pixel_digest(read(tmp_path / "page.tif")) == pixel_digest(read(tmp_path / "tool.tif"))
    if bits == 8:
        old = tifffile.imread(tmp_path / "in.tif")
        new = tifffile.imread(tmp_path / "page.tif")
        axis = 0 if planar else 2
        found = [i for i in range(count) if numpy.array_equal(
            new.take(i, axis), 255 - old.take(i, axis))]
        assert found == inverted


@pytest.mark.parametrize("kind, values, ranges", [
    (3, (26, 217), ((26, 217),)), (1, (26, 217), ((26, 217),)),
    (3, (0, 255, 1, 254, 2, 253, 3, 252), ((0, 255), (1, 254), (2, 253), (3, 252))),
    (3, (7,), ()), (3, (0, 1, 2), ()), (3, (0, 255) * 3, ())])
def test_a_range_of_another_form_tells_nothing(tmp_path, kind, values, ranges):
    tifffile.imwrite(tmp_path / "in.tif", numpy.zeros((2, 3, 4), numpy.uint8), metadata=None,
                     photometric="separated", extratags=[(336, kind, len(values), values, True)])
    assert read(tmp_path / "in.tif").tags.dot_ranges == ranges
