# SPDX-License-Identifier: Apache-2.0
"""What info says of a file, against what tifffile wrote and NumPy counts."""

import struct

import numpy
import pytest
import tifffile

from pictures import PROFILE, UNDEFINED, cut, random_samples, reverse_strips, write_inks, write_plate

PATTERN = """DotWeavePattern VERSION 2 BEGIN_OUT_INKS NAME END_OUT_INKS
BEGIN_IN_COLORS NAME END_IN_COLORS
BEGIN_IN_COLOR NAME BEGIN_INKS NAME END_INKS BEGIN_VALUES 1 1 0-255 END_VALUES END_IN_COLOR
"""
NAMES = ["Cyan", "Magenta", "Yellow", "Black", "Harbour Orange"]


def only_page(outcome):
    (file,) = outcome.json["files"]
    (page,) = file["pages"]
    return page


def check_statistics(inks, samples, unused):
    for channel, ink in enumerate(inks):
        plane = samples[..., channel].astype(numpy.int64)
        assert (ink["lowest"], ink["highest"]) == (plane.min(), plane.max())
        assert ink["sum"] == plane.sum()
        assert ink["mean"] == pytest.approx(plane.mean(), rel=1e-12)
        assert ink["used"] == pytest.approx((plane != unused).mean(), rel=1e-12)


@pytest.mark.parametrize("bits", [8, 16])
@pytest.mark.parametrize("layout", ["contig", "separate"])
@pytest.mark.parametrize("form", [{}, {"compression": "zlib"}, {"tile": (16, 32)},
                                  {"byteorder": ">"}, {"bigtiff": True}])
def test_statistics_are_those_of_numpy(tmp_path, succeed, bits, layout, form):
    samples = random_samples(bits, (37, 61, 5), bits)
    samples[samples % 3 == 0] = 0
    stored = samples if layout == "contig" else numpy.moveaxis(samples, 2, 0)
    write_inks(tmp_path / "in.tif", stored, NAMES, planarconfig=layout,
               rowsperstrip=None if "tile" in form else 7, **form)
    pages = [only_page(succeed("info", "--stats", "--json", "--threads", threads, "in.tif"))
             for threads in (1, 3)]
    assert pages[0] == pages[1]
    page = pages[0]
    assert (page["width"], page["height"], page["channels"], page["bits"]) == (61, 37, 5, bits)
    assert page["layout"] == ("interleaved" if layout == "contig" else "planar")
    assert page["tiles"] == ("tile" in form)
    assert [ink["name"] for ink in page["inks"]] == NAMES
    check_statistics(page["inks"], samples, 0)


def test_strips_may_stand_in_any_order(tmp_path, succeed):
    samples = random_samples(5, (40, 31, 4), 8)
    samples[10:] //= 2
    write_inks(tmp_path / "in.tif", samples, NAMES[:4], rowsperstrip=3)
    data = tmp_path / "in.tif"
    with tifffile.TiffFile(data) as file:
        assert file.pages[0].tags["StripOffsets"].dtype == 4
    reverse_strips(data)
    check_statistics(only_page(succeed("info", "--stats", "--json", "in.tif"))["inks"], samples, 0)


@pytest.mark.parametrize("photometric, unused", [("minisblack", 1), ("miniswhite", 0)])
def test_plates_of_one_bit_are_counted_by_their_polarity(tmp_path, succeed, photometric, unused):
    samples = random_samples(3, (21, 43), 1)
    samples[:, :11] = 1
    write_plate(tmp_path / "in.tif", samples.astype(bool), photometric)
    (ink,) = only_page(succeed("info", "--stats", "--json", "in.tif"))["inks"]
    assert (ink["code_0"], ink["code_100"]) == (unused, 1 - unused)
    assert ink["polarity"] == ("ink-low" if unused else "ink-high")
    check_statistics([ink], samples[..., None], unused)


@pytest.mark.parametrize("kind, is_used", [
    ("miniswhite", lambda plane: plane > 50), ("minisblack", lambda plane: plane < 255 - 50)])
def test_samples_beyond_no_ink_are_not_used(tmp_path, succeed, kind, is_used):
    plane = numpy.random.default_rng(7).integers(0, 256, (31, 47), numpy.uint8)
    tifffile.imwrite(tmp_path / "a.tif", plane, photometric=kind)
    outcome = succeed("info", "--json", "--stats", "--dot-range", "50,200", "a.tif")
    (ink,) = only_page(outcome)["inks"]
    assert ink["used"] == pytest.approx(is_used(plane).mean(), rel=1e-12)


def test_codes_come_from_the_dot_range(tmp_path, succeed):
    write_inks(tmp_path / "in.tif", random_samples(1, (3, 4, 4), 8), list("ABCD"), (5, 250))
    for ink in only_page(succeed("info", "--json", "in.tif"))["inks"]:
        assert (ink["polarity"], ink["code_0"], ink["code_100"]) == ("ink-high", 5, 250)


def test_a_dot_range_beyond_the_samples_is_shown_as_a_fault(tmp_path, succeed):
    write_inks(tmp_path / "in.tif", random_samples(1, (3, 4, 4), 8), list("ABCD"), (0, 300))
    page = only_page(succeed("info", "--json", "in.tif"))
    assert "0,300" in page["fault"] and "code_0" not in page["inks"][0]
    assert "0,300" in succeed("info", "in.tif").output


@pytest.mark.parametrize("unit, millimetres", [("INCH", 25.4), ("CENTIMETER", 10)])
def test_the_physical_size_follows_from_the_resolution(tmp_path, succeed, unit, millimetres):
    write_plate(tmp_path / "in.tif", random_samples(1, (90, 50), 8), resolution=(360, 720),
                resolutionunit=unit)
    page = only_page(succeed("info", "--json", "in.tif"))
    assert page["width_mm"] == pytest.approx(50 / 360 * millimetres)
    assert page["height_mm"] == pytest.approx(90 / 720 * millimetres)


@pytest.mark.parametrize("photometric", ["minisblack", "miniswhite"])
def test_the_ink_of_a_gray_page_has_one_name(tmp_path, succeed, photometric):
    samples = random_samples(1, (4, 6), 8)
    tifffile.imwrite(tmp_path / "in.tif", samples, photometric=photometric, metadata=None)
    assert only_page(succeed("info", "--json", "in.tif"))["inks"][0]["name"] == "Black"
    assert " Black " in succeed("info", "in.tif").output
    assert "\n  Black " in succeed("coverage", "in.tif", "--limit", "400", "--window", "1px").output
    succeed("preview", "in.tif", "out.png", "--print-order", "Black")
    succeed("split", "in.tif", "plate", "--inks", "Black")
    assert (tmp_path / "plate(Black).tif").exists()
    # Version 1.0.0 knew the second name alone.
    for name in "black", "GRAY":
        succeed("convert", "in.tif", "out.tif", "--channels", name)
        assert numpy.array_equal(tifffile.imread(tmp_path / "out.tif"), samples)
        (tmp_path / "pattern.txt").write_text(PATTERN.replace("NAME", name))
        plan = succeed("simulate", "pattern.txt", "in.tif", "dots.tif", "--explain").output
        assert f"in-colour {name}: channel 0 (Black) by name" in plan


def make_profile(space, description):
    text = b"desc" + bytes(4) + struct.pack(">I", len(description) + 1) + description + bytes(1)
    tags = struct.pack(">I4sII", 1, b"desc", 144, len(text))
    head = struct.pack(">I4sI4s4s", 144 + len(text), bytes(4), 0x02400000, b"prtr", space)
    return (head + bytes(16) + b"acsp").ljust(128, b"\0") + tags + text


def test_the_profile_is_described_by_its_own_header(tmp_path, succeed):
    profile = make_profile(b"CMYK", b"A press of ours")
    tifffile.imwrite(tmp_path / "in.tif", random_samples(1, (3, 4, 4), 8), photometric="separated",
                     metadata=None, extratags=[(PROFILE, UNDEFINED, len(profile), profile, True)])
    found = only_page(succeed("info", "--json", "in.tif"))["profile"]
    assert found == {"bytes": len(profile), "sound": True, "description": "A press of ours",
                     "colour_space": "CMYK", "channels": 4, "class": "prtr", "version": "2.4"}
    assert '"A press of ours", CMYK' in succeed("info", "in.tif").output


@pytest.mark.parametrize("length", [0, 1, 40, 127, 128, 131, 140, 150])
def test_cut_profiles_are_survived(tmp_path, succeed, length):
    profile = make_profile(b"CMYK", b"A press of ours")[:length] or b"\0"
    tifffile.imwrite(tmp_path / "in.tif", random_samples(1, (3, 4, 4), 8), photometric="separated",
                     metadata=None, extratags=[(PROFILE, UNDEFINED, len(profile), profile, True)])
    found = only_page(succeed("info", "--json", "in.tif"))["profile"]
    assert found["sound"] == (length >= 128)


def write_pages(path, widths):
    with tifffile.TiffWriter(path) as writer:
        for width in widths:
            writer.write(numpy.zeros((2, width), numpy.uint8), photometric="minisblack",
                         metadata=None)


def test_pages_are_chosen(tmp_path, succeed, refuse):
    write_pages(tmp_path / "in.tif", [3, 5, 7])
    (file,) = succeed("info", "--json", "--page", "1,3", "in.tif").json["files"]
    assert [(page["page"], page["width"]) for page in file["pages"]] == [(1, 3), (3, 7)]
    refuse(2, ["in.tif", "no page 4"], "info", "--page", "4", "in.tif")


@pytest.mark.parametrize("rows, strip", [(10, 6), (200, 1)])
def test_no_sample_is_read_without_stats(tmp_path, run, refuse, rows, strip):
    """The samples of the file aren't even there, which all verbs tell in the same words."""
    tifffile.imwrite(tmp_path / "in.tif", numpy.zeros((200, 100), numpy.uint8), metadata=None,
                     rowsperstrip=rows)
    with tifffile.TiffFile(tmp_path / "in.tif") as file:
        place = file.pages[0].dataoffsets[strip - 1]
        bytes_of_strip = file.pages[0].databytecounts[strip - 1]
    size = place + bytes_of_strip // 2
    cut(tmp_path / "in.tif", size)
    count = 200 // rows
    words = (f"is truncated: its strip {strip} of {count} has {bytes_of_strip} bytes from byte "
             f"{place} on, and the file ends after {size}; get a whole copy of it\n")
    outcome = run("info", "--json", "in.tif")
    assert (outcome.code, outcome.errors) == (0, f"pelkraft: in.tif: warning: {words}")
    assert only_page(outcome)["height"] == 200
    for verb in (["info", "--stats", "in.tif"], ["coverage", "in.tif"],
                 ["convert", "in.tif", "out.tif"]):
        assert refuse(3, [], *verb).errors == f"pelkraft: in.tif: {words}"
    assert f"strip {strip} of {count} with {bytes_of_strip} bytes from byte {place};" in \
        run("check", "in.tif", "--rules", "truncated").output


def test_samples_that_the_library_lacks_are_shown_and_not_counted(tmp_path, succeed, refuse):
    tifffile.imwrite(tmp_path / "in.tif", numpy.zeros((4, 4), numpy.float32), metadata=None)
    page = only_page(succeed("info", "--json", "in.tif"))
    assert (page["bits"], page["samples"]) == (32, "floating point")
    refuse(5, ["in.tif", "32 bits"], "info", "--stats", "in.tif")


def test_a_file_that_cannot_be_read_hides_no_other(tmp_path, run):
    write_plate(tmp_path / "in.tif", random_samples(1, (3, 4), 8))
    (tmp_path / "text.tif").write_text("no picture")
    outcome = run("info", "--json", "text.tif", "in.tif", "missing.tif")
    assert outcome.code == 3
    assert [line.split(": ")[1] for line in outcome.errors.splitlines()] == ["text.tif",
                                                                            "missing.tif"]
    files = outcome.json["files"]
    assert [file["file"] for file in files] == ["text.tif", "in.tif", "missing.tif"]
    assert [("error" in file, "pages" in file) for file in files] == [(True, False),
                                                                     (False, True),
                                                                     (True, False)]
    assert outcome.json["schema"] == 1


def test_names_cannot_act_on_the_terminal(tmp_path, succeed):
    write_inks(tmp_path / "in.tif", random_samples(1, (3, 4, 4), 8), ["A\x1b[2J", *"BCD"])
    assert "\x1b" not in succeed("info", "in.tif").output


def test_alpha_is_no_ink_and_what_is_not_told_is_one(tmp_path, succeed):
    for photometric, colours, extra_is_ink in [("separated", 4, True), ("minisblack", 1, True),
                                               ("miniswhite", 1, True), ("rgb", 3, False)]:
        tifffile.imwrite(tmp_path / "in.tif", random_samples(1, (3, 4, colours + 2), 8),
                         photometric=photometric, metadata=None, planarconfig="contig",
                         extrasamples=["unassalpha", "unspecified"])
        inks = only_page(succeed("info", "--json", "in.tif"))["inks"]
        wanted = [True] * colours + [False, extra_is_ink]
        assert [ink["ink"] for ink in inks] == wanted
        assert ["code_0" in ink for ink in inks] == wanted
        lines = succeed("info", "in.tif").output.splitlines()[-2:]
        assert "alpha" in lines[0]
        assert ("ink-" in lines[1]) == extra_is_ink and ("extra" in lines[1]) != extra_is_ink
