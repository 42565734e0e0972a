# SPDX-License-Identifier: Apache-2.0
"""Every verb looks at the tag Orientation. All but preview take rows as they are stored."""

import re

import numpy
import pytest
import tifffile

from pictures import SHORT, random_samples, write_plate

ORIENTATION = 274
WHERE = {2: "top, right", 3: "bottom, right", 4: "bottom, left", 5: "left, top", 6: "right, top",
         7: "right, bottom", 8: "left, bottom"}

# Each does to a stored picture what the words say; rot90 turns counterclockwise.
ACTIONS = {"mirrored left to right": numpy.fliplr, "mirrored top to bottom": numpy.flipud,
           "turned by 180 degrees": lambda seen: numpy.rot90(seen, 2),
           "turned by 90 degrees clockwise": lambda seen: numpy.rot90(seen, -1),
           "turned by 90 degrees counterclockwise": numpy.rot90}
PATTERN = """DotWeavePattern VERSION 2 BEGIN_OUT_INKS Cyan END_OUT_INKS
BEGIN_IN_COLORS Cyan END_IN_COLORS
BEGIN_IN_COLOR Cyan BEGIN_INKS Cyan END_INKS BEGIN_VALUES 1 1 0-255 END_VALUES END_IN_COLOR
"""


def write(path, samples, orientation, photometric="separated"):
    tifffile.imwrite(path, samples, photometric=photometric, metadata=None,
                     extratags=[(ORIENTATION, SHORT, 1, orientation, True)])


def told(orientation):
    return f"Orientation is {orientation}, which puts the first row and its first pixel at " + \
        WHERE[orientation] + ": a person sees the page "


def seen_by(words, stored):
    """The stored picture as a person sees it, by words such as "mirrored ..., then turned ..."."""
    for action in words.split(", then "):
        stored = ACTIONS[action](stored)
    return stored


def side_of_ones(picture):
    sides = {"top": picture[0], "bottom": picture[-1], "left": picture[:, 0],
             "right": picture[:, -1]}
    (side,) = (name for name, line in sides.items() if line.all())
    return side


@pytest.mark.parametrize("orientation", WHERE)
def test_pages_are_taken_as_they_are_stored(tmp_path, run, succeed, orientation):
    samples = numpy.zeros((4, 6, 4), numpy.uint8)
    samples[3, 1] = 255
    write(tmp_path / "in.tif", samples, orientation)
    (file,) = succeed("info", "--json", "in.tif").json["files"]
    assert file["pages"][0]["orientation"] == orientation
    assert WHERE[orientation] in succeed("info", "in.tif").output
    outcome = run("coverage", "in.tif", "--limit", "400", "--window", "1px")
    assert told(orientation) in outcome.errors
    assert outcome.errors.endswith("; places and the map are those of the stored pixels\n")
    assert "maximum at x 1, y 3\n" in outcome.output
    # The place that coverage tells is the part that a crop shows.
    succeed("preview", "in.tif", "out.png", "--crop", "1,3,1,1")
    assert b"IHDR" + (1).to_bytes(4, "big") * 2 in (tmp_path / "out.png").read_bytes()
    assert run("convert", "in.tif", "out.tif", "--mirror").code == 0
    with tifffile.TiffFile(tmp_path / "out.tif") as new:
        assert new.pages[0].tags[ORIENTATION].value == orientation
        assert numpy.array_equal(new.pages[0].asarray(), samples[:, ::-1])


@pytest.mark.parametrize("orientation", WHERE)
def test_words_say_how_a_person_sees_the_page(tmp_path, succeed, orientation):
    write(tmp_path / "in.tif", numpy.zeros((4, 6, 4), numpy.uint8), orientation)
    (line,) = re.findall(r"^  orientation +(.*)$", succeed("info", "in.tif").output, re.MULTILINE)
    words = re.fullmatch(f"{orientation}, which puts .* at {WHERE[orientation]}: a person sees the page "
                         "(.*)", line)[1]
    first_row, first_pixels = numpy.zeros((2, 4, 6), int)
    first_row[0], first_pixels[:, 0] = 1, 1
    assert [side_of_ones(seen_by(words, first_row)), side_of_ones(seen_by(words, first_pixels))] \
        == WHERE[orientation].split(", ")


@pytest.mark.parametrize("options, words", [
    (["--mirror"], "--mirror turns"), (["--flip"], "--flip turns"),
    (["--mirror", "--flip"], "--mirror and --flip turn")])
def test_a_turn_of_stored_pixels_keeps_the_tag_and_says_so_once(tmp_path, run, succeed, options,
                                                                words):
    with tifffile.TiffWriter(tmp_path / "in.tif") as writer:
        for orientation in (1, 3, 3):
            writer.write(random_samples(1, (4, 6, 4), 8), photometric="separated", metadata=None,
                         extratags=[(ORIENTATION, SHORT, 1, orientation, True)])
    succeed("convert", "in.tif", "out.tif")
    succeed("convert", "in.tif", "out.tif", *options, "--page", "1")
    outcome = run("convert", "in.tif", "out.tif", *options)
    assert (outcome.code, outcome.errors.count("\n")) == (0, 1)
    assert "warning: 2 pages: " in outcome.errors
    assert told(3) + "turned by 180 degrees; " + words + " the stored pixels and keep" in \
        outcome.errors


def test_a_press_does_not_look_at_the_tag(tmp_path, run):
    (tmp_path / "pattern.txt").write_text(PATTERN)
    said = []
    for orientation in (1, 8):
        write(tmp_path / "in.tif", random_samples(1, (4, 6), 8), orientation, "miniswhite")
        outcome = run("simulate", "pattern.txt", "in.tif", "out.tif")
        said.append(outcome.errors.splitlines())
    added = [line for line in said[1] if line not in said[0]]
    assert len(added) == len(said[1]) - len(said[0]) == 1
    assert "a press doesn't look at the tag" in added[0]


def test_check_advises_no_more_than_the_program_can_do(tmp_path, run):
    write(tmp_path / "in.tif", random_samples(1, (4, 6, 4), 8), 6)
    (result,) = run("check", "in.tif", "--rules", "orientation", "--format",
                    "json").json["files"][0]["findings"]
    for word in ("write it upright", "preview", "--mirror", "--flip", "keep the tag"):
        assert word in result["advice"]
    assert "set it to 1" not in result["advice"]


def test_pages_that_stand_as_they_are_stored_need_no_word(tmp_path, succeed):
    write(tmp_path / "in.tif", random_samples(1, (4, 6, 4), 8), 1)
    assert "orientation" not in succeed("info", "in.tif").output
    succeed("coverage", "in.tif", "--limit", "400", "--window", "1px")
    succeed("preview", "in.tif", "out.png")


def test_plates_of_a_page_have_the_same(tmp_path, succeed, refuse):
    for ink, orientation in (("Cyan", 6), ("Magenta", 6), ("Yellow", 1)):
        write(tmp_path / f"p({ink}).tif", random_samples(1, (4, 6), 8), orientation, "minisblack")
    succeed("join", "out.tif", "p(Cyan).tif", "p(Magenta).tif")
    with tifffile.TiffFile(tmp_path / "out.tif") as new:
        assert new.pages[0].tags[ORIENTATION].value == 6
    refuse(3, ["p(Yellow).tif: has Orientation 1, and p(Cyan).tif has 6; plates of a page"],
           "join", "other.tif", "p(Cyan).tif", "p(Yellow).tif")
    # Without the tag a page stands as it is stored.
    write_plate(tmp_path / "p(Black).tif", random_samples(1, (4, 6), 8))
    succeed("join", "out.tif", "p(Yellow).tif", "p(Black).tif")
