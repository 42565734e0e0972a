# SPDX-License-Identifier: Apache-2.0
"""Plates of tifffile and of Ghostscript, joined, against NumPy's stack of them."""

import os
import subprocess

import numpy
import pytest
import tifffile

from pictures import (DOT_RANGE, PROFILE, SHORT, UNDEFINED, cut, random_samples, read_inks,
                      write_plate)

INKS = ["Cyan", "Magenta", "Yellow", "Black", "Aqua", "Zinc"]


def full_ink(bits):
    return (1 << bits) - 1


def write_plates(folder, bits=8, shape=(37, 53), inks=INKS, name="page({}).tif", **options):
    """Plates in which 0 is full ink, and what belongs into the joined page."""
    amounts = []
    for number, ink in enumerate(inks):
        samples = random_samples(number, shape, bits)
        stored = samples.astype(bool) if bits == 1 else samples
        write_plate(folder / name.format(ink), stored, **options)
        amounts.append(full_ink(bits) - samples)
    return numpy.stack(amounts, axis=-1)


def plates_of(folder):
    return sorted(path.name for path in folder.glob("*[()]*.tif"))


PLAIN = [{}, {"byteorder": ">"}, {"bigtiff": True}, {"rowsperstrip": 1}]


@pytest.mark.parametrize("bits, form", [
    *((bits, form) for bits in (1, 8, 16) for form in PLAIN),
    *((bits, form) for bits in (8, 16) for form in ({"compression": "zlib"}, {"tile": (16, 32)}))])
def test_plates_become_channels_with_high_samples_for_much_ink(tmp_path, succeed, bits, form):
    wanted = write_plates(tmp_path, bits, **form)
    written = set()
    for threads in (1, 3):
        succeed("join", "out.tif", *plates_of(tmp_path), "--threads", threads)
        written.add((tmp_path / "out.tif").read_bytes())
    assert len(written) == 1
    (page,) = read_inks(tmp_path / "out.tif")
    assert page.names == INKS
    assert (page.photometric, page.ink_set, page.number_of_inks) == (5, 2, 6)
    assert page.bits == bits
    assert numpy.array_equal(page.samples, wanted)


def test_plates_where_white_is_0_are_not_turned(tmp_path, succeed):
    low, high = random_samples(1, (9, 13), 8), random_samples(2, (9, 13), 8)
    write_plate(tmp_path / "p(Low).tif", low)
    write_plate(tmp_path / "p(High).tif", high, "miniswhite")
    succeed("join", "out.tif", "p(Low).tif", "p(High).tif")
    (page,) = read_inks(tmp_path / "out.tif")
    assert page.names == ["High", "Low"]
    assert numpy.array_equal(page.samples[..., 0], high)
    assert numpy.array_equal(page.samples[..., 1], 255 - low)
    succeed("join", "out.tif", "p(Low).tif", "--polarity", "ink-high")
    assert numpy.array_equal(read_inks(tmp_path / "out.tif")[0].samples[..., 0], low)


def test_four_process_inks_make_a_cmyk_page(tmp_path, succeed):
    write_plates(tmp_path, inks=["black", "YELLOW", "Cyan", "Magenta"])
    succeed("join", "out.tif", *plates_of(tmp_path))
    (page,) = read_inks(tmp_path / "out.tif")
    assert page.names == ["Cyan", "Magenta", "YELLOW", "black"]
    assert page.ink_set == 1


@pytest.mark.parametrize("name, ink", [
    ("page(Cyan).tif", "Cyan"), ("page.Cyan.tif", "Cyan"), ("page1(Cyan).tif", "Cyan"),
    ("page001(Cyan).TIFF", "Cyan"), ("a.b(Cyan).tif", "Cyan"), ("a(b).Cyan.tif", "Cyan"),
    ("p(Odd%25%2F%3A (x).%C3%A9).tif", "Odd%/: (x).é"), ("p(100%).tif", "100%"),
    ("p(%zz%4).tif", "%zz%4"), ("p(a (b) c).tif", "a (b) c"), ("p.%2e%2E.tif", ".."),
    ("p(...).tif", "..."), ("(Cyan).tif", "Cyan"), ("p(1(2)(3)).tif", "1(2)(3)")])
def test_the_file_name_tells_the_ink(tmp_path, succeed, name, ink):
    write_plate(tmp_path / name, random_samples(1, (3, 4), 8))
    succeed("join", "out.tif", name)
    assert read_inks(tmp_path / "out.tif")[0].names == [ink]


@pytest.mark.parametrize("name", ["page.tif", "page().tif", "page.Cyan.png", "Cyan", "page.",
                                  ".tif", "p(Cyan", "p)Cyan).tif", "=page(Cyan).tif", "Cyan="])
def test_a_name_without_an_ink_is_refused(tmp_path, refuse, name):
    if name and "=" not in name:
        write_plate(tmp_path / name, random_samples(1, (3, 4), 8))
    refuse(2, ["tells no ink", "leave it out if it shows all inks together", "Cyan=PLATE"], "join",
           "out.tif", name)


def test_an_ink_cannot_hold_a_zero_byte(tmp_path, refuse):
    write_plate(tmp_path / "p(a%00b).tif", random_samples(1, (3, 4), 8))
    refuse(2, ["zero byte"], "join", "out.tif", "p(a%00b).tif")


def test_a_plate_is_no_place_for_the_page(tmp_path, refuse, succeed):
    write_plates(tmp_path)
    plates = plates_of(tmp_path)
    before = (tmp_path / plates[0]).read_bytes()
    refuse(2, ["like a plate", "OUT.tif"], "join", *plates)
    assert (tmp_path / plates[0]).read_bytes() == before
    succeed("join", "all.pages.tif", *plates)


def test_the_command_line_names_inks_and_paths_with_equals_signs(tmp_path, succeed):
    samples = random_samples(1, (3, 4), 8)
    write_plate(tmp_path / "any.tif", samples)
    write_plate(tmp_path / "a=b(Gold).tif", samples)
    succeed("join", "out.tif", "Silver Foil=any.tif", "./a=b(Gold).tif")
    assert read_inks(tmp_path / "out.tif")[0].names == ["Gold", "Silver Foil"]


def test_the_order_can_be_chosen(tmp_path, succeed, refuse):
    wanted = write_plates(tmp_path)
    succeed("join", "out.tif", *plates_of(tmp_path), "--order", "zinc,Black")
    (page,) = read_inks(tmp_path / "out.tif")
    assert page.names == ["Zinc", "Black", "Cyan", "Magenta", "Yellow", "Aqua"]
    assert numpy.array_equal(page.samples, wanted[..., [5, 3, 0, 1, 2, 4]])
    refuse(2, ["Zink", "did you mean Zinc"], "join", "out.tif", *plates_of(tmp_path), "--order",
           "Zink")
    refuse(2, ['"black" twice'], "join", "out.tif", *plates_of(tmp_path), "--order", "Black,black")


def test_numbered_plates_are_pages_in_the_order_of_their_numbers(tmp_path, succeed):
    wanted = [write_plates(tmp_path, inks=INKS[:4], shape=(5, width), name=f"n{number}({{}}).tif")
              for number, width in ((2, 7), (10, 9), (1, 8))]
    succeed("join", "out.tif", *plates_of(tmp_path))
    pages = read_inks(tmp_path / "out.tif")
    assert [page.samples.shape[1] for page in pages] == [8, 7, 9]
    for page, samples in zip(pages, [wanted[2], wanted[0], wanted[1]]):
        assert numpy.array_equal(page.samples, samples)


def write_plate_pages(path, pages):
    with tifffile.TiffWriter(path) as writer:
        for samples in pages:
            writer.write(samples, photometric="minisblack", metadata=None)


def test_plates_of_many_pages_are_joined_page_by_page(tmp_path, succeed):
    pages = [random_samples(seed, (4 + seed, 6), 8) for seed in range(3)]
    write_plate_pages(tmp_path / "p(A).tif", pages)
    write_plate_pages(tmp_path / "p(B).tif", [255 - page for page in pages])
    succeed("join", "out.tif", "p(A).tif", "p(B).tif")
    joined = read_inks(tmp_path / "out.tif")
    assert len(joined) == 3
    for page, samples in zip(joined, pages):
        assert numpy.array_equal(page.samples, numpy.stack([255 - samples, samples], axis=-1))
    succeed("join", "out.tif", "p(A).tif", "p(B).tif", "--page", "2")
    (page,) = read_inks(tmp_path / "out.tif")
    assert numpy.array_equal(page.samples[..., 1], pages[1])


def make_other(path, **change):
    options = {"shape": (9, 13), "bits": 8, "resolution": (300, 300), **change}
    write_plate(path, random_samples(1, options["shape"], options["bits"]),
                resolution=options["resolution"], resolutionunit="INCH")


@pytest.mark.parametrize("change, words", [
    ({"shape": (9, 14)}, ["14 x 9", "13 x 9"]), ({"shape": (8, 13)}, ["13 x 8", "13 x 9"]),
    ({"bits": 16}, ["16 bits", "8"]), ({"resolution": (300, 600)}, ["300 x 600", "300 x 300"])])
def test_unequal_plates_are_refused_with_both_numbers(tmp_path, refuse, change, words):
    make_other(tmp_path / "p(A).tif")
    make_other(tmp_path / "p(B).tif", **change)
    (tmp_path / "out.tif").write_text("the old one")
    refuse(3, ["p(A).tif", "p(B).tif", *words], "join", "out.tif", "p(A).tif", "p(B).tif")
    assert (tmp_path / "out.tif").read_text() == "the old one"
    assert sorted(os.listdir(tmp_path)) == ["out.tif", "p(A).tif", "p(B).tif"]


def test_unequal_numbers_of_pages_are_refused(tmp_path, refuse):
    pages = [random_samples(seed, (4, 6), 8) for seed in range(3)]
    write_plate_pages(tmp_path / "p(A).tif", pages)
    write_plate_pages(tmp_path / "p(B).tif", pages[:2])
    refuse(3, ["2 pages", "has 3"], "join", "out.tif", "p(A).tif", "p(B).tif")


def test_what_is_no_plate_is_refused(tmp_path, refuse):
    tifffile.imwrite(tmp_path / "p(A).tif", random_samples(1, (3, 4, 4), 8), metadata=None,
                     photometric="separated")
    refuse(5, ["4 channels", "a plate has 1"], "join", "out.tif", "p(A).tif")
    tifffile.imwrite(tmp_path / "p(A).tif", random_samples(1, (3, 4), 8), metadata=None,
                     photometric="palette", colormap=numpy.zeros((3, 256), numpy.uint16))
    refuse(5, ["palette", "MinIsBlack"], "join", "out.tif", "p(A).tif")
    refuse(6, ["missing(A).tif", "cannot be read"], "join", "out.tif", "missing(A).tif")


def test_inks_of_one_name_in_any_case_of_letters_bring_a_warning(tmp_path, run):
    for name in ("a.tif", "b.tif"):
        write_plate(tmp_path / name, random_samples(1, (5, 6), 8))
    outcome = run("join", "out.tif", "Cyan=a.tif", "cyan=b.tif")
    assert outcome.code == 0
    assert outcome.errors.count('more than one ink of the new page is named "cyan"') == 1


def test_twins_and_missing_inks_are_refused(tmp_path, refuse):
    for name in ("p1(A).tif", "p1(B).tif", "p2(A).tif", "p2(C).tif", "q.A.tif"):
        write_plate(tmp_path / name, random_samples(1, (3, 4), 8))
    refuse(2, ["second plate", "q.A.tif"], "join", "out.tif", "p1(A).tif", "A=q.A.tif",
           "A=p2(A).tif")
    refuse(2, ["p2(A).tif", '"B"'], "join", "out.tif", "p1(A).tif", "p1(B).tif", "p2(A).tif")
    refuse(2, ["p2(C).tif", '"C"'], "join", "out.tif", "p1(A).tif", "p2(A).tif", "p2(C).tif")


@pytest.mark.parametrize("first, second", [
    ("page(Cyan).tif", "Cyan=page(Black).tif"), ("Cyan=page(Black).tif", "page(Cyan).tif"),
    ("page(Cyan).tif", "s1/page(Cyan).tif"), ("s1/page(Cyan).tif", "page(Cyan).tif"),
    ("s1/page(Cyan).tif", "s2/page.Cyan.tif"), ("page(Cyan).tif", "s1/(Cyan).tif")])
def test_two_plates_of_one_ink_and_no_pages_of_their_own_are_refused(tmp_path, refuse, first,
                                                                     second):
    for folder in (tmp_path, tmp_path / "s1", tmp_path / "s2"):
        folder.mkdir(exist_ok=True)
        for name in ("page(Cyan).tif", "page.Cyan.tif", "page(Black).tif", "(Cyan).tif"):
            write_plate(folder / name, random_samples(1, (3, 4), 8))
    path = second.split("=")[-1]
    outcome = refuse(2, ['second plate of ink "Cyan"', first.split("=")[-1], "page1(Cyan).tif",
                         "NAME=PLATE"], "join", "out.tif", first, second)
    assert outcome.errors.startswith(f"pelkraft: {path}: ")
    assert not (tmp_path / "out.tif").exists()


def test_pages_have_names_or_numbers_wherever_their_plates_lie(tmp_path, succeed, refuse):
    (tmp_path / "s1").mkdir()
    for width, name in enumerate(("front(Cyan).tif", "s1/front(Black).tif", "s1/back(Cyan).tif",
                                  "back(Black).tif"), 3):
        write_plate(tmp_path / name, random_samples(width, (3, 4 + (width > 4)), 8))
    succeed("join", "out.tif", "s1/front(Black).tif", "back(Black).tif", "s1/back(Cyan).tif",
            "front(Cyan).tif")
    pages = read_inks(tmp_path / "out.tif")
    assert [page.names for page in pages] == [["Cyan", "Black"]] * 2
    assert [page.samples.shape[1] for page in pages] == [5, 4]
    write_plate(tmp_path / "gold.tif", random_samples(9, (3, 4), 8))
    refuse(2, ["gold.tif: names no page", "page1(Cyan).tif"], "join", "other.tif",
           "front(Cyan).tif", "s1/back(Cyan).tif", "Gold=gold.tif")
    assert not (tmp_path / "other.tif").exists()


@pytest.mark.parametrize("size", [0, 4, 8, 60, 200, 600])
def test_cut_plates_are_refused(tmp_path, run, size):
    write_plates(tmp_path, inks=["A", "B"], rowsperstrip=5)
    cut(tmp_path / "page(B).tif", size)
    outcome = run("join", "out.tif", "page(A).tif", "page(B).tif")
    assert outcome.code == 3 and "page(B).tif" in outcome.errors
    assert not (tmp_path / "out.tif").exists()


def test_dot_ranges_are_kept_where_they_agree(tmp_path, succeed, refuse):
    samples = random_samples(1, (3, 4), 8)
    for ink, dots in (("A", (250, 5)), ("B", (250, 5)), ("C", (240, 5))):
        write_plate(tmp_path / f"p({ink}).tif", samples,
                    extratags=[(DOT_RANGE, SHORT, 2, dots, True)])
    succeed("join", "out.tif", "p(A).tif", "p(B).tif")
    (page,) = read_inks(tmp_path / "out.tif")
    assert page.dot_range == (5, 250)
    assert numpy.array_equal(page.samples[..., 0], 255 - samples)
    refuse(3, ["15 to 250", "5 to 250"], "join", "out.tif", "p(A).tif", "p(C).tif")
    write_plate(tmp_path / "p(D).tif", samples, extratags=[(DOT_RANGE, SHORT, 2, (300, 5), True)])
    refuse(3, ["300", "255"], "join", "out.tif", "p(D).tif")


def test_a_profile_is_left_out_with_a_warning(tmp_path, run):
    write_plate(tmp_path / "p(A).tif", random_samples(1, (3, 4), 8),
                extratags=[(PROFILE, UNDEFINED, 4, b"none", True)])
    outcome = run("join", "out.tif", "p(A).tif")
    assert outcome.code == 0
    assert outcome.errors.count("\n") == 1 and "without the colour profile" in outcome.errors


def test_a_dry_run_explains_and_writes_nothing(tmp_path, succeed):
    write_plates(tmp_path, inks=["B", "A"])
    outcome = succeed("join", "out.tif", "page(B).tif", "page(A).tif", "--dry-run", "--explain",
                      "--json")
    assert not (tmp_path / "out.tif").exists()
    (page,) = outcome.json["pages"]
    assert [(plate["ink"], plate["turned"]) for plate in page["plates"]] == [("A", True),
                                                                          ("B", True)]
    text = succeed("join", "out.tif", "page(B).tif", "page(A).tif", "--explain").output
    assert "channel 0: A, from page(A).tif" in text and "rows per second" in text


def test_the_page_goes_through_a_pipe_too(tmp_path, succeed):
    wanted = write_plates(tmp_path)
    outcome = succeed("join", "-", *plates_of(tmp_path), "--page", "1")
    (tmp_path / "piped.tif").write_bytes(outcome.bytes)
    assert numpy.array_equal(read_inks(tmp_path / "piped.tif")[0].samples, wanted)
    (tmp_path / "split").mkdir()
    succeed("split", "-", "split/page", stdin=outcome.bytes)
    for ink in INKS:
        assert numpy.array_equal(tifffile.imread(tmp_path / "split" / f"page({ink}).tif"),
                                 tifffile.imread(tmp_path / f"page({ink}).tif"))


def test_a_file_that_exists_is_kept_where_that_is_asked_for(tmp_path, refuse, succeed):
    write_plates(tmp_path, inks=["A"])
    (tmp_path / "out.tif").write_text("the old one")
    refuse(6, ["out.tif"], "join", "out.tif", "page(A).tif", "--no-clobber")
    assert (tmp_path / "out.tif").read_text() == "the old one"
    succeed("join", "out.tif", "page(A).tif")


def rasterize(folder, device, target):
    page = os.environ["PELKRAFT_TEST_PAGE"]
    subprocess.run(["gs", "-q", "-dSAFER", "-dBATCH", "-dNOPAUSE", "-sDEVICE=" + device, "-r72",
                    "-sCompression=none", "-o", str(folder / target), page, page], check=True,
                   capture_output=True)


@pytest.mark.parametrize("device, bits", [("tiffsep", 8), ("tiffsep1", 1)])
def test_plates_of_a_rasterizer_make_its_pages_again(tmp_path, succeed, device, bits):
    rasterize(tmp_path, device, "sheet%d.tif")
    succeed("join", "out.tif", *plates_of(tmp_path))
    pages = read_inks(tmp_path / "out.tif")
    assert len(pages) == 2
    for number, page in enumerate(pages, 1):
        assert page.names == ["Cyan", "Magenta", "Yellow", "Black", "Harbour Orange"]
        for channel, ink in enumerate(page.names):
            plate = tifffile.imread(tmp_path / f"sheet{number}({ink}).tif").astype(int)
            assert numpy.array_equal(page.samples[..., channel], full_ink(bits) - plate)
            assert page.samples[..., channel].any()
