# SPDX-License-Identifier: Apache-2.0
"""Every verb looks at the tag Orientation. All but preview take rows as they are stored."""

import numpy
import pytest
import tifffile

from pictures import SHORT, random_samples, write_plate

ORIENTATION = 274
WHERE = {2: "top, right", 3: "bottom, right", 4: "bottom, left", 5: "left, top", 6: "right, top",
         7: "right, bottom", 8: "left, bottom"}


def write(path, samples, orientation, photometric="separated"):
    tifffile.imwrite(path, samples, photometric=photometric, metadata=None,
                     extratags=[(ORIENTATION, SHORT, 1, orientation, True)])


def told(orientation):
    return f"Orientation is {orientation}, which puts the first row and its first pixel at " + \
        WHERE[orientation]


@pytest.mark.parametrize("orientation", WHERE)
def test_pages_are_taken_as_they_are_stored(tmp_path, run, succeed, orientation):
    samples = numpy.zeros((4, 6, 4), numpy.uint8)
    samples[3, 1] = 255
    write(tmp_path / "in.tif", samples, orientation)
    (file,) = succeed("info", "--json", "in.tif").json["files"]
    assert file["pages"][0]["orientation"] == orientation
    assert WHERE[orientation] in succeed("info", "in.tif").output
    outcome = run("coverage", "in.tif", "--limit", "400", "--window", "1px")
    assert told(orientation) + "; places and the map are those of the stored pixels" in \
        outcome.errors
    assert "maximum at x 1, y 3\n" in outcome.output
    # The place that coverage tells is the part that a crop shows.
    succeed("preview", "in.tif", "out.png", "--crop", "1,3,1,1")
    assert b"IHDR" + (1).to_bytes(4, "big") * 2 in (tmp_path / "out.png").read_bytes()
    succeed("convert", "in.tif", "out.tif", "--mirror")
    with tifffile.TiffFile(tmp_path / "out.tif") as new:
        assert new.pages[0].tags[ORIENTATION].value == orientation
        assert numpy.array_equal(new.pages[0].asarray(), samples[:, ::-1])


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
