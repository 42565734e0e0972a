# SPDX-License-Identifier: Apache-2.0
"""Tones of pages become steps as the formulas say, and as they do in the program."""

import subprocess
from dataclasses import replace

import numpy
import pytest
from naive_dither import step_of
from pictures import levels_of, random_picture, read, write

import pelkraft
from pelkraft.pages import Channel, JobError, PageJob, Simulation, Tags, run_pages
from pelkraft.pages.digest import pixel_digest

# Cyan lays down 0, 10, 20 and 30, Black 0 and 200, and nothing is drawn.
TEXT = b"""DotWeavePattern VERSION 2
BEGIN_OUT_INKS Black Cyan Spot END_OUT_INKS
BEGIN_IN_COLORS Cyan Black END_IN_COLORS
BEGIN_IN_COLOR Cyan BEGIN_INKS Cyan Spot END_INKS
BEGIN_VALUES 1 1 0-10 2 1 0-20 3 1 1-30 END_VALUES END_IN_COLOR
BEGIN_IN_COLOR Black BEGIN_INKS Black END_INKS
BEGIN_VALUES 1 1 0-200 END_VALUES END_IN_COLOR
"""
INKS = ((0, 10, 20, 30), (0, 200))
FLAT = TEXT.replace(b"2 1 0-20", b"2 1 0-10")
CYAN = numpy.array([[0, 0, 0], [0, 10, 0], [0, 20, 0], [0, 0, 30]])
BLACK = numpy.array([[0, 0, 0], [200, 0, 0]])
MASK = pelkraft.dither_mask()
NAMES = ("Cyan", "Black")


def page_of(bits, planar=False, photometric=5, ranges=(), width=70, height=60):
    picture = random_picture(7, bits, planar, width, height, channels=2, inks=NAMES)
    names = NAMES if photometric == 5 else ()
    return replace(picture, tags=replace(picture.tags, photometric=photometric, ink_names=names,
                                         ink_set=2 if names else None, dot_ranges=ranges),
                   channels=picture.channels if names else (Channel(), Channel("", 0)))


def simulate(folder, picture, text=TEXT, **fields):
    write(folder / "in.tif", picture)
    return run_pages([PageJob(str(folder / "in.tif"), str(folder / "page.tif"),
                              (Simulation(text, **fields),))])


def naive_inks(samples, codes, ways, inks=INKS):
    """Samples and codes of a picture, and the way of each in-colour."""
    none, full = codes
    rows = numpy.zeros((*samples.shape[:2], 3), numpy.int64)
    for y, x, channel in numpy.ndindex(samples.shape):
        sample = int(samples[y, x, channel])
        if ways[channel] == "dither":
            step = step_of(sample, inks[channel], none, full, channel, x, y, MASK)
        elif ways[channel] == "raw":
            step = sample
        else:
            run = abs(full - none)
            above = min(max(sample - none if full > none else none - sample, 0), run)
            tone = (2 * 255 * above + run) // (2 * run)
            step = tone * len(inks[channel]) // 256
        rows[y, x] += (CYAN, BLACK)[channel][step]
    return rows


# 2 bits have as many tones as Cyan has steps, and 1 bit as many as Black has.
@pytest.mark.parametrize("bits, photometric, ranges, codes, ways", [
    (8, 5, (), (0, 255), ("dither", "dither")), (8, 1, (), (255, 0), ("dither", "dither")),
    (8, 0, (), (0, 255), ("dither", "dither")), (16, 5, (), (0, 65535), ("dither", "dither")),
    (16, 1, (), (65535, 0), ("dither", "dither")),
    (8, 5, ((26, 217),), (26, 217), ("dither", "dither")),
    (16, 5, ((60000, 900),) * 2, (60000, 900), ("dither", "dither")),
    (2, 5, (), (0, 3), ("quantize", "dither")), (2, 1, (), (3, 0), ("quantize", "dither")),
    (2, 5, ((1, 3),), (1, 3), ("quantize", "dither")), (1, 1, (), (1, 0), ("quantize",) * 2),
    (8, 5, ((10, 13),), (10, 13), ("quantize", "dither")),
    (8, 5, ((10, 14),), (10, 14), ("dither", "dither"))])
@pytest.mark.parametrize("planar", [False, True])
def test_pages_are_dithered_by_default(tmp_path, tool, bits, photometric, ranges, codes, ways,
                                       planar):
    picture = page_of(bits, planar, photometric, ranges)
    result, = simulate(tmp_path, picture)
    assert result.status == "made", result.message
    found = read(tmp_path / "page.tif")
    numpy.testing.assert_array_equal(found.pixels, naive_inks(levels_of(picture), codes, ways))
    # Full ink is the highest value of the pattern.
    assert found.tags == Tags(5, 2, ("Black", "Cyan", "Spot"), picture.tags.resolution, 2, 1,
                              dot_ranges=((0, 200),))
    (tmp_path / "text").write_bytes(TEXT)
    subprocess.run([tool, "simulate", tmp_path / "text", tmp_path / "in.tif",
                    tmp_path / "tool.tif"], capture_output=True, check=True)
    theirs = read(tmp_path / "tool.tif")
    assert pixel_digest(found) == pixel_digest(theirs)
    # The program's fractions are those of a floating number.
    assert found.tags == replace(theirs.tags, resolution=picture.tags.resolution)
    assert found.channels == theirs.channels


@pytest.mark.parametrize("bits, photometric, ranges, codes", [
    (8, 1, (), (255, 0)), (8, 5, ((30, 220),), (30, 220)), (16, 5, ((900, 60000),), (900, 60000)),
    (16, 1, (), (65535, 0)), (2, 5, ((3, 0),), (3, 0))])
@pytest.mark.parametrize("levels", ["quantize", "dither", "raw"])
def test_each_way_counts_ink_from_its_samples(tmp_path, bits, photometric, ranges, codes, levels):
    picture = page_of(bits, False, photometric, ranges)
    result, = simulate(tmp_path, picture, levels=levels)
    if levels == "raw" and bits == 16:
        assert (result.status, result.kind) == ("failed", "unsupported")
        return
    found = read(tmp_path / "page.tif").pixels
    samples = levels_of(picture)
    if levels == "raw" and bits == 8:
        assert "samples are above the top step" in result.warnings[-1]
        inside = (samples <= numpy.array([3, 1])).all(axis=2)
        samples = numpy.where(inside[..., None], samples, 0)
        found = numpy.where(inside[..., None], found, 0)
    elif levels == "raw":
        # Black has no more than step 1.
        samples = samples[:, :, :1]
        found = numpy.where(numpy.array([False, True, True]), found, 0)
    numpy.testing.assert_array_equal(found, naive_inks(samples, codes, [levels] * 2))


TABLE = b"# measured\ncyan,0,0\nCyan,1,0.125\nCyan,2,0.5\nCyan,3,90\nBlack,0,0\nBlack,1,1\n"


@pytest.mark.parametrize("tone, inks", [
    ("coverage", INKS), ("equal", ((0, 1, 2, 3), (0, 1))), (TABLE, ((0, 125, 500, 90000), (0, 9)))])
def test_a_tone_tells_the_inks_of_steps(tmp_path, tool, tone, inks):
    text = TEXT.replace(b"2 1 0-20", b"2 1 0-21")
    picture = page_of(8)
    result, = simulate(tmp_path, picture, text, tone=tone)
    assert (result.status, result.warnings) == ("made", ())
    if tone == "coverage":
        inks = ((0, 10, 21, 30), (0, 200))
    expected = naive_inks(levels_of(picture), (0, 255), ["dither"] * 2, inks)
    expected[..., 1][expected[..., 1] == 20] = 21
    found = read(tmp_path / "page.tif")
    numpy.testing.assert_array_equal(found.pixels, expected)
    (tmp_path / "text").write_bytes(text)
    if isinstance(tone, bytes):
        (tmp_path / "table").write_bytes(tone)
        tone = tmp_path / "table"
    subprocess.run([tool, "simulate", "--tone", tone, tmp_path / "text", tmp_path / "in.tif",
                    tmp_path / "tool.tif"], capture_output=True, check=True)
    assert pixel_digest(found) == pixel_digest(read(tmp_path / "tool.tif"))


def test_inks_that_do_not_rise_are_quantized_with_a_warning(tmp_path):
    picture = page_of(8)
    result, = simulate(tmp_path, picture, FLAT, name="flat.txt")
    words = "flat.txt: in-colour Cyan: step 2 has no more ink than step 1, 10.000 after 10.000"
    assert len(result.warnings) == 1
    assert result.warnings[0].startswith(words + ", so that its tones are quantized: ")
    expected = naive_inks(levels_of(picture), (0, 255), ["quantize", "dither"])
    expected[..., 1][expected[..., 1] == 20] = 10
    numpy.testing.assert_array_equal(read(tmp_path / "page.tif").pixels, expected)
    (tmp_path / "page.tif").unlink()
    result, = simulate(tmp_path, picture, FLAT, name="flat.txt", levels="dither")
    assert (result.status, result.kind) == ("failed", "pattern")
    assert result.message.startswith(words + "; ") and not (tmp_path / "page.tif").exists()
    for fields in ({"levels": "quantize"}, {"tone": "equal"}, {"tone": "equal", "levels": "dither"}):
        result, = simulate(tmp_path, picture, FLAT, **fields)
        assert (result.status, result.warnings) == ("made", ())


def test_as_many_tones_as_steps_are_quantized(tmp_path):
    # Their inks are not those of four even levels.
    text = TEXT.replace(b"2 1 0-20", b"2 1 0-25")
    picture = page_of(2)
    expected = {}
    for levels, way in ((None, "quantize"), ("dither", "dither")):
        result, = simulate(tmp_path, picture, text, levels=levels)
        assert result.status == "made", result.message
        expected[way] = naive_inks(levels_of(picture), (0, 3), [way, "dither"],
                                   ((0, 10, 25, 30), (0, 200)))
        expected[way][..., 1][expected[way][..., 1] == 20] = 25
        numpy.testing.assert_array_equal(read(tmp_path / "page.tif").pixels, expected[way])
    assert (expected["quantize"] != expected["dither"]).any()


def test_levels_without_tones_to_lose_need_no_rising_inks(tmp_path):
    result, = simulate(tmp_path, page_of(1), FLAT)
    assert (result.status, result.warnings) == ("made", ())


# A band of a page as wide holds few rows.
def test_bands_of_a_page_are_dithered_where_they_stand(tmp_path, pattern_path, tool):
    picture = random_picture(3, 16, True, 30_011, 11, channels=4,
                             inks=("Black", "Yellow", "Magenta", "Cyan"))
    result, = simulate(tmp_path, picture, pattern_path.read_bytes())
    assert (result.status, result.warnings) == ("made", ())
    subprocess.run([tool, "simulate", pattern_path, tmp_path / "in.tif", tmp_path / "tool.tif"],
                   capture_output=True, check=True)
    assert pixel_digest(read(tmp_path / "page.tif")) == pixel_digest(read(tmp_path / "tool.tif"))


@pytest.mark.parametrize("photometric, name", [(2, "RGB"), (8, "Lab")])
def test_pages_of_other_colours_are_refused_as_by_the_program(tmp_path, tool, photometric, name):
    picture = random_picture(3, 8, False, 9, 5)
    picture.tags = Tags(photometric)
    result, = simulate(tmp_path, picture)
    words = (f"holds {name}; supported are pages of inks: separated, MinIsWhite and MinIsBlack; a "
             "program that knows colour profiles makes inks of it")
    assert (result.status, result.kind) == ("failed", "unsupported")
    assert result.message == f"{tmp_path / 'in.tif'}: {words}"
    (tmp_path / "text").write_bytes(TEXT)
    ended = subprocess.run([tool, "simulate", tmp_path / "text", tmp_path / "in.tif",
                            tmp_path / "tool.tif"], capture_output=True, text=True)
    assert ended.returncode == 5 and words in ended.stderr


def test_alpha_is_no_ink_as_in_the_program(tmp_path, tool):
    picture = random_picture(3, 8, False, 9, 5)
    (tmp_path / "text").write_bytes(TEXT)
    for alphas in (1, 2):
        picture.channels = tuple(Channel("", 2 if i >= 3 - alphas else None) for i in range(3))
        picture.tags = Tags(5, 2)
        result, = simulate(tmp_path, picture)
        ended = subprocess.run([tool, "simulate", tmp_path / "text", tmp_path / "in.tif",
                                tmp_path / "tool.tif"], capture_output=True, text=True)
        if alphas == 1:
            assert (result.status, ended.returncode) == ("made", 0)
            assert result.warnings == () and \
                any("channel 2 is alpha, which is no ink" in words for words in result.notes)
            assert pixel_digest(read(tmp_path / "page.tif")) == \
                pixel_digest(read(tmp_path / "tool.tif"))
        else:
            assert (result.status, ended.returncode) == ("failed", 3)
            words = result.message.split(": ", 1)[1]
            assert words.startswith("has 3 channels, of which alpha is no ink: 1, 2; ")
            assert words in ended.stderr


@pytest.mark.parametrize("table, words", [
    (b"Cyan,1", "measured.csv: line 1 has no two commas"),
    (TABLE[:-10], "measured.csv: has no line for step 1 of Black")])
def test_a_table_that_does_not_fit_fails_its_pages(tmp_path, table, words):
    result, = simulate(tmp_path, page_of(8), tone=table, tone_name="measured.csv")
    assert (result.status, result.kind) == ("failed", "input")
    assert result.message.startswith(words)


@pytest.mark.parametrize("fields, words", [
    ({"tone": "even"}, "tone is 'even'; nothing, \"coverage\", \"equal\" would do"),
    ({"tone": "equal", "levels": "raw"}, "tone is about the dither, which levels 'raw' does"),
    ({"tone": b"", "levels": "quantize"}, "levels 'quantize' does without")])
def test_a_tone_without_use_is_refused(fields, words):
    with pytest.raises(JobError) as caught:
        Simulation(TEXT, **fields)
    assert words in str(caught.value)


ONE_INK = b"""DotWeavePattern VERSION 2
BEGIN_OUT_INKS Black END_OUT_INKS BEGIN_IN_COLORS Black END_IN_COLORS
BEGIN_IN_COLOR Black BEGIN_INKS Black END_INKS BEGIN_VALUES 1 1 0-255 END_VALUES END_IN_COLOR
"""


@pytest.mark.parametrize("photometric", [0, 1])
@pytest.mark.parametrize("extras, name", [((), "Black"), ((2,), "Black"), ((0,), "Gray")])
def test_the_only_ink_of_a_gray_page_is_black(tmp_path, tool, photometric, extras, name):
    picture = random_picture(3, 8, False, 9, 5, channels=1 + len(extras))
    picture.tags = Tags(photometric)
    picture.channels = (Channel(), *(Channel("", kind) for kind in extras))
    write(tmp_path / "in.tif", picture)
    first = read(tmp_path / "in.tif").channels[0]
    assert first.name == name and first.bears("gray") and first.bears("BLACK") == (name == "Black")
    result, = simulate(tmp_path, picture, ONE_INK)
    (tmp_path / "text").write_bytes(ONE_INK)
    ended = subprocess.run([tool, "simulate", tmp_path / "text", tmp_path / "in.tif",
                            tmp_path / "tool.tif"], capture_output=True, text=True)
    assert ended.returncode == (1 if result.warnings else 0)
    by_order = "in-colours, which take channels in their order"
    assert by_order in "".join(result.notes) if name == "Gray" else by_order not in str(result)
    assert (by_order in ended.stderr) == (name == "Gray")
    assert pixel_digest(read(tmp_path / "page.tif")) == pixel_digest(read(tmp_path / "tool.tif"))
