# SPDX-License-Identifier: Apache-2.0
"""Pages have the pixels that the program gives, and those that a sample by sample reading of each
step gives."""

import subprocess
from dataclasses import replace

import numpy
import pytest
import tifffile
from conftest import write_cmyk
from pictures import levels_of, random_picture, read, write

import pelkraft
from pelkraft.pages import Conversion, PageJob, Simulation, Tags, run_pages
from pelkraft.pages.digest import main as print_digests
from pelkraft.pages.digest import pixel_digest

CMYK = ("Cyan", "Magenta", "Yellow", "Black")
FORMS = [(bits, planar) for bits in (1, 2, 8, 16) for planar in (False, True)]
CONVERSIONS = [
    ([], {}),
    (["--layout", "planar"], {"layout": "planar"}),
    (["--layout", "interleaved", "--mirror"], {"layout": "interleaved", "mirror": True}),
    (["--bits", "1"], {"bits": 1}),
    (["--bits", "2", "--layout", "planar"], {"bits": 2, "layout": "planar"}),
    (["--bits", "8", "--repeat", "2"], {"bits": 8, "repeat": 2}),
    (["--bits", "16"], {"bits": 16}),
    (["--tones", "raw", "--bits", "2"], {"samples": "levels", "bits": 2}),
    (["--channels", "2,-,Ink0", "--repeat", "4"], {"channels": (2, "-", "ink0"), "repeat": 4}),
    (["--channels", "2,2", "--bits", "8", "--layout", "interleaved", "--mirror"],
     {"channels": (2, 2), "bits": 8, "layout": "interleaved", "mirror": True})]


def make(job):
    result, = run_pages([job])
    assert result.status == "made", result.message
    return result


@pytest.mark.parametrize("bits, planar", FORMS)
@pytest.mark.parametrize("options, step", CONVERSIONS)
def test_a_conversion_gives_the_pixels_of_the_program(tmp_path, tool, bits, planar, options,
                                                      step):
    write(tmp_path / "in.tif", random_picture(3, bits, planar, 37, 11))
    ended = subprocess.run([tool, "convert", tmp_path / "in.tif", tmp_path / "tool.tif", *options],
                           capture_output=True, text=True)
    assert ended.returncode in (0, 1), ended.stderr
    result = make(PageJob(str(tmp_path / "in.tif"), str(tmp_path / "page.tif"),
                          (Conversion(**step),)))
    assert pixel_digest(read(tmp_path / "page.tif")) == pixel_digest(read(tmp_path / "tool.tif"))
    # On both sides a warning tells of samples that lost bits.
    assert bool(result.warnings) == (ended.returncode == 1)
    described = [subprocess.run(["tiffinfo", tmp_path / name], capture_output=True,
                                text=True).stdout.splitlines()[1:]
                 for name in ("tool.tif", "page.tif")]
    kept = ("Photometric", "Extra", "Ink", "NumberOfInks", "Samples/", "Resolution", "Planar")
    assert [sorted(line for line in lines if line.strip().startswith(kept))
            for lines in described][0] == \
        sorted(line for line in described[1] if line.strip().startswith(kept))


@pytest.mark.parametrize("photometric", [0, 1, 2, 5])
@pytest.mark.parametrize("bits", [1, 2, 8, 16])
def test_an_empty_channel_is_that_of_the_program(tmp_path, tool, photometric, bits):
    picture = random_picture(5, 8, False, 9, 5, channels=4)
    write(tmp_path / "in.tif", replace(picture, tags=Tags(photometric)))
    options = ["--channels", "0,-,1,-", "--bits", str(bits)]
    subprocess.run([tool, "convert", tmp_path / "in.tif", tmp_path / "tool.tif", *options],
                   capture_output=True, check=True)
    make(PageJob(str(tmp_path / "in.tif"), str(tmp_path / "page.tif"),
                 (Conversion(channels=(0, "-", 1, "-"), bits=bits),)))
    assert pixel_digest(read(tmp_path / "page.tif")) == pixel_digest(read(tmp_path / "tool.tif"))


# Neither side takes samples of 16 bits for steps.
@pytest.mark.parametrize("bits, planar, levels", [
    (*form, levels) for form in FORMS for levels in (None, "dither", "quantize", "raw")
    if (form[0], levels) != (16, "raw")])
def test_a_simulation_gives_the_pixels_of_the_program(tmp_path, tool, pattern_path, bits, planar,
                                                      levels):
    write(tmp_path / "in.tif", random_picture(4, bits, planar, 203, 301, channels=4, inks=CMYK))
    ended = subprocess.run([tool, "simulate", pattern_path, tmp_path / "in.tif",
                            tmp_path / "tool.tif", *(["--levels", levels] if levels else [])],
                           capture_output=True, text=True)
    assert ended.returncode in (0, 1), ended.stderr
    result = make(PageJob(str(tmp_path / "in.tif"), str(tmp_path / "page.tif"),
                          (Simulation(pattern_path.read_bytes(), levels=levels),)))
    assert pixel_digest(read(tmp_path / "page.tif")) == pixel_digest(read(tmp_path / "tool.tif"))
    assert bool(result.warnings) == (ended.returncode == 1)
    assert [channel.name for channel in read(tmp_path / "page.tif").channels] == \
        [channel.name for channel in read(tmp_path / "tool.tif").channels]


def naive_tones(value, old, new):
    """Full scale to full scale, by way of 8 bits."""
    tone = {1: value * 255, 2: value * 85, 8: value}[old]
    return {1: (tone + 127) // 255, 2: (3 * tone + 127) // 255, 8: tone, 16: tone * 257}[new]


@pytest.mark.parametrize("old", [1, 2, 8])
@pytest.mark.parametrize("new", [1, 2, 8, 16])
@pytest.mark.parametrize("planar", [False, True])
def test_all_of_a_conversion_is_done_together(tmp_path, old, new, planar):
    picture = random_picture(6, old, False, 23, 4)
    write(tmp_path / "in.tif", picture)
    constant = (1 << new) - 2
    make(PageJob(str(tmp_path / "in.tif"), str(tmp_path / "out.tif"), (Conversion(
        "planar" if planar else "interleaved", new, ("Ink2", "-", {"constant": constant}, 0), 2,
        True, "tones", True),)))
    found = read(tmp_path / "out.tif")
    samples = levels_of(picture)
    full = (1 << new) - 1
    expected = numpy.zeros((4, 46, 4), numpy.int64)
    for row, column in numpy.ndindex(4, 46):
        pixel = samples[row, 22 - column // 2]
        # The tags of an inverted page say that the highest sample is no ink.
        expected[row, column] = [full - naive_tones(int(pixel[2]), old, new), full, constant,
                                 full - naive_tones(int(pixel[0]), old, new)]
    assert (found.planar, found.bits, found.width) == (planar, new, 46)
    assert numpy.array_equal(levels_of(found), expected)
    assert [channel.name for channel in found.channels] == \
        ["Ink2", "Empty", f"Constant {constant}", "Ink0"]


@pytest.mark.parametrize("value, samples, warned", [
    (3, "levels", False), (4, "levels", True), (771, "levels", True),
    # Full scale of 16 bits becomes that of 8 first.
    (771, "fill", False), (4 * 257, "fill", True)])
def test_a_warning_tells_of_samples_beyond_the_levels(tmp_path, value, samples, warned):
    pixels = numpy.zeros((3, 5, 4), numpy.uint16)
    pixels[1, 2, 3] = value
    tifffile.imwrite(tmp_path / "in.tif", pixels, photometric="separated", metadata=None)
    for channels, seen in (((0, 3), warned), ((0, 1), False)):
        result = make(PageJob(str(tmp_path / "in.tif"), str(tmp_path / "out.tif"),
                              (Conversion(bits=2, samples=samples, channels=channels),)))
        assert bool(result.warnings) == seen


def test_rows_of_a_page_are_rows_of_the_pattern(tmp_path, pattern_path):
    """A page of many bands, step by step, beside one call of the pattern for each row."""
    pixels = write_cmyk(tmp_path / "in.tif", 8, 90, 4099)
    make(PageJob(str(tmp_path / "in.tif"), str(tmp_path / "out.tif"),
                 (Simulation(pattern_path.read_bytes(), levels="quantize"),)))
    found = tifffile.imread(tmp_path / "out.tif")
    pattern = pelkraft.Pattern.from_file(pattern_path)
    tops = numpy.array(pattern.top_steps, numpy.int64)
    for row in range(90):
        steps = (pixels[row].astype(numpy.int64) * (tops + 1) // 256).astype(numpy.uint8)
        assert numpy.array_equal(pattern(steps[None], first_row=row)[0], found[row])


def test_steps_follow_one_another(tmp_path, pattern_path):
    write_cmyk(tmp_path / "in.tif", 2, 9, 31)
    text = pattern_path.read_bytes()
    mirror, simulate = Conversion(mirror=True), Simulation(text)
    for name, steps in (("both", (mirror, simulate)), ("first", (mirror,))):
        make(PageJob(str(tmp_path / "in.tif"), str(tmp_path / f"{name}.tif"), steps))
    make(PageJob(str(tmp_path / "first.tif"), str(tmp_path / "second.tif"), (simulate,)))
    assert numpy.array_equal(tifffile.imread(tmp_path / "both.tif"),
                             tifffile.imread(tmp_path / "second.tif"))


@pytest.mark.parametrize("steps, kind, words", [
    ((Conversion(channels=("Ink0", "Gold")),), "input",
     "has no channel 'Gold'; supported are 0 to 2, Ink0, Ink1, Ink2 and - for an empty channel"),
    ((Conversion(channels=(3,)),), "input", "has no channel 3"),
    ((Simulation(b"no pattern"),), "pattern", "pattern: "),
    ((Conversion(bits=2, channels=({"constant": 4},)),), "unsupported", "map")])
def test_what_cannot_be_done_fails_with_a_reason(tmp_path, steps, kind, words):
    write(tmp_path / "in.tif", random_picture(1, 8, False))
    result, = run_pages([PageJob(str(tmp_path / "in.tif"), str(tmp_path / "out.tif"), steps)])
    assert (result.status, result.kind, result.attempts) == ("failed", kind, 1)
    assert words in result.message
    assert not (tmp_path / "out.tif").exists()


def test_too_few_channels_for_a_pattern_are_told(tmp_path, pattern_path):
    write(tmp_path / "in.tif", random_picture(1, 8, False))
    result, = run_pages([PageJob(str(tmp_path / "in.tif"), str(tmp_path / "out.tif"),
                                 (Simulation(pattern_path.read_bytes()),))])
    assert result.message.endswith("has 3 channels; supported are pictures with a channel for "
                                   "each of the pattern's 4 in-colours")


def test_digests_tell_pixels_apart_and_nothing_else(tmp_path, capsys):
    picture = random_picture(1, 2, True)
    write(tmp_path / "a.tif", picture)
    picture.compressed = True
    write(tmp_path / "b.tif", picture)
    picture.planar = False
    write(tmp_path / "c.tif", picture)
    picture.planar = True
    picture.pixels[1, 1, 1] ^= 64
    write(tmp_path / "d.tif", picture)
    assert print_digests([str(tmp_path / f"{name}.tif") for name in "abcd"]) == 0
    a, b, c, d = [line.split("  ")[0] for line in capsys.readouterr().out.splitlines()]
    assert a == b and len({a, c, d}) == 3
    assert print_digests([str(tmp_path / "none.tif")]) == 3
