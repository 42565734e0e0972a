# SPDX-License-Identifier: Apache-2.0
"""Pages split into plates, against NumPy's planes, and joined again."""

import os
import random

import numpy
import pytest
import tifffile

from pictures import (PROFILE, UNDEFINED, cut, random_samples, read_inks, write_inks, write_plate)

INKS = ["Cyan", "Magenta", "Yellow", "Black", "Aqua", "Zinc"]
# Names that file names can't hold, that lead elsewhere, or that differ in their case alone.
HOSTILE = ["../up", "..", ".", "/etc/passwd", "a\\b", "C:x", "(", ")", "a)(b", "100%", "%2F",
           "ink.tif", "a.b", "cyan", "CYAN", "cYAN", "%63yan", "x (y)", "tab\there", "new\nline",
           "é", "*?<>|\"",
           " ", "Ink ", "n" * 200, "\x7f", "=", "a=b", "-", "-x"]


def page_of(folder, name="in.tif", bits=8, inks=INKS, shape=(37, 53), **options):
    samples = random_samples(bits, (*shape, len(inks)), bits)
    write_inks(folder / name, samples, inks, **options)
    return samples


def plates_in(folder):
    return sorted(str(path) for path in folder.iterdir())


@pytest.mark.parametrize("form", [{}, {"compression": "zlib"}, {"tile": (16, 32)},
                                  {"byteorder": ">"}, {"rowsperstrip": 1},
                                  {"planarconfig": "separate"}])
@pytest.mark.parametrize("bits", [8, 16])
def test_a_plate_is_dark_where_its_ink_is(tmp_path, succeed, bits, form):
    """Every reader shows a MinIsBlack sample of 0 as black."""
    samples = random_samples(bits, (37, 53, 6), bits)
    stored = numpy.moveaxis(samples, 2, 0) if "planarconfig" in form else samples
    write_inks(tmp_path / "in.tif", stored, INKS, **form)
    written = set()
    for threads in (1, 3):
        succeed("split", "in.tif", "page", "--threads", threads)
        written.add(b"".join((tmp_path / f"page({ink}).tif").read_bytes() for ink in INKS))
    assert len(written) == 1
    for channel, ink in enumerate(INKS):
        with tifffile.TiffFile(tmp_path / f"page({ink}).tif") as plate:
            assert plate.pages[0].photometric == tifffile.PHOTOMETRIC.MINISBLACK
            assert plate.pages[0].samplesperpixel == 1
            assert numpy.array_equal(plate.asarray(), (1 << bits) - 1 - samples[..., channel])


def join(tmp_path, run, output, *arguments):
    """Joins plates. Names that differ in their case alone are told, and nothing else is."""
    outcome = run("join", output, *arguments)
    names = read_inks(tmp_path / output, with_samples=False)[0].names
    twins = [name for number, name in enumerate(names)
             if name.upper() in (before.upper() for before in names[:number])]
    told = [line.split(": warning: ") for line in outcome.errors.splitlines()]
    assert [words for _, words in told] == [
        f'more than one ink of the new page is named "{name}"; whoever goes by names takes the '
        "first" for name in twins]
    assert all(where.startswith("pelkraft: ") for where, _ in told)
    assert (outcome.code, outcome.output) == (0, "")


def join_and_split(tmp_path, run, succeed, plates, naming, compression):
    """A page made by join is the same file after split and join."""
    join(tmp_path, run, "page.tif", *plates, "--compress", compression)
    (tmp_path / "split").mkdir()
    succeed("split", "page.tif", "split/part", "--naming", naming)
    parts = plates_in(tmp_path / "split")
    assert len(parts) == len(plates)
    names = [os.path.basename(part).upper() for part in parts]
    assert len(set(names)) == len(names)
    join(tmp_path, run, "again.tif", *parts, "--order", order_of(tmp_path / "page.tif"))
    assert (tmp_path / "again.tif").read_bytes() == (tmp_path / "page.tif").read_bytes()


def order_of(path):
    names = read_inks(path, with_samples=False)[0].names
    return "" if any("," in name for name in names) else ",".join(names)


@pytest.mark.parametrize("naming", ["gs", "dot"])
@pytest.mark.parametrize("compression", ["none", "lzw", "zip"])
@pytest.mark.parametrize("bits", [1, 8, 16])
@pytest.mark.parametrize("seed", [1, 2])
def test_join_gives_its_bytes_again(tmp_path, run, succeed, seed, bits, compression, naming):
    chance = random.Random(f"{seed} {bits} {compression} {naming}")
    inks = chance.sample(HOSTILE[:20] + INKS, chance.randint(1, 8))
    shape = (chance.randint(1, 60), chance.randint(1, 90))
    resolution = (chance.uniform(20, 3000), chance.uniform(20, 3000))
    for number, ink in enumerate(inks):
        samples = random_samples(number, shape, bits)
        write_plate(tmp_path / f"{number}.tif", samples.astype(bool) if bits == 1 else samples,
                    resolution=resolution, resolutionunit="INCH",
                    rowsperstrip=chance.randint(1, 70))
    # The command line can't name an ink with a slash: a file name can.
    plates = []
    for number, ink in enumerate(inks):
        name = f"plain{number}(" + "".join(f"%{byte:02X}" for byte in ink.encode()) + ").tif"
        (tmp_path / f"{number}.tif").rename(tmp_path / name)
        plates.append(name)
    join_and_split(tmp_path, run, succeed, plates, naming, compression)


@pytest.mark.parametrize("naming", ["gs", "dot"])
def test_no_name_leaves_the_folder_and_no_two_are_equal(tmp_path, run, succeed, naming):
    (tmp_path / "split").mkdir()
    samples = page_of(tmp_path, inks=HOSTILE, shape=(7, 11))
    before = sorted(os.listdir(tmp_path))
    succeed("split", "in.tif", "split/part", "--naming", naming)
    assert sorted(os.listdir(tmp_path)) == before
    parts = plates_in(tmp_path / "split")
    assert len({part.upper() for part in parts}) == len(HOSTILE)
    for part in parts:
        name = os.path.basename(part)
        assert name.isascii() and name.isprintable() and len(name) < 256
        assert not set(name) & set("/\\:*?\"<>|")
    join(tmp_path, run, "out.tif", *parts)
    (page,) = read_inks(tmp_path / "out.tif")
    assert sorted(page.names) == sorted(HOSTILE)
    for channel, ink in enumerate(HOSTILE):
        assert numpy.array_equal(page.samples[..., page.names.index(ink)], samples[..., channel])


@pytest.mark.parametrize("naming, name", [("gs", "p(a (b) %2F).tif"),
                                          ("dot", "p.a %28b%29 %2F.tif")])
def test_only_what_a_file_name_cannot_hold_is_encoded(tmp_path, succeed, naming, name):
    page_of(tmp_path, inks=["a (b) /", *INKS[1:]], shape=(7, 11))
    succeed("split", "in.tif", "p.tif", "--naming", naming, "--inks", "0")
    assert (tmp_path / name).exists()


def test_names_too_long_for_a_file_are_refused(tmp_path, refuse):
    page_of(tmp_path, inks=["n" * 300, *INKS[1:]], shape=(7, 11))
    refuse(3, ["nnn", "310", "255"], "split", "in.tif", "page")
    assert os.listdir(tmp_path) == ["in.tif"]


def test_two_inks_of_one_name_are_refused(tmp_path, refuse, succeed):
    page_of(tmp_path, inks=["Cyan", "Gold", "Gold", "Black"], shape=(7, 11))
    refuse(3, ["two inks", "Gold", "--inks"], "split", "in.tif", "page")
    assert os.listdir(tmp_path) == ["in.tif"]
    succeed("split", "in.tif", "page", "--inks", "0,1,3")


def test_inks_are_chosen_by_number_and_name(tmp_path, succeed, refuse):
    samples = page_of(tmp_path)
    succeed("split", "in.tif", "page", "--inks", "5,magenta", "--naming", "dot")
    assert sorted(os.listdir(tmp_path)) == ["in.tif", "page.Magenta.tif", "page.Zinc.tif"]
    assert numpy.array_equal(tifffile.imread(tmp_path / "page.Zinc.tif"), 255 - samples[..., 5])
    refuse(2, ["Gold", "--inks", "Zinc"], "split", "in.tif", "page", "--inks", "Gold")
    refuse(2, ["empty channel"], "split", "in.tif", "page", "--inks", "0,-")


def test_low_ink_is_kept_as_it_is(tmp_path, succeed):
    samples = random_samples(1, (9, 13), 8)
    write_plate(tmp_path / "in.tif", samples)
    succeed("split", "in.tif", "page")
    assert numpy.array_equal(tifffile.imread(tmp_path / "page(Black).tif"), samples)
    succeed("split", "in.tif", "page", "--polarity", "ink-high")
    assert numpy.array_equal(tifffile.imread(tmp_path / "page(Black).tif"), 255 - samples)


def test_a_dot_range_survives_both_ways(tmp_path, succeed):
    samples = page_of(tmp_path, dot_range=(5, 250))
    succeed("split", "in.tif", "page")
    with tifffile.TiffFile(tmp_path / "page(Zinc).tif") as plate:
        assert plate.pages[0].tags["DotRange"].value == (250, 5)
        assert numpy.array_equal(plate.asarray(), 255 - samples[..., 5])
    succeed("join", "out.tif", *(f"page({ink}).tif" for ink in INKS))
    (page,) = read_inks(tmp_path / "out.tif")
    assert page.dot_range == (5, 250)
    assert numpy.array_equal(page.samples, samples)


def test_all_pages_go_into_the_plates(tmp_path, succeed, refuse):
    with tifffile.TiffWriter(tmp_path / "in.tif") as writer:
        pages = [random_samples(seed, (4 + seed, 6, 4), 8) for seed in range(3)]
        for samples in pages:
            writer.write(samples, photometric="separated", metadata=None)
        writer.write(pages[0][..., 0], photometric="miniswhite", metadata=None)
    succeed("split", "in.tif", "page", "--page", "1-3")
    with tifffile.TiffFile(tmp_path / "page(Magenta).tif") as plate:
        assert len(plate.pages) == 3
        for page, samples in zip(plate.pages, pages):
            assert numpy.array_equal(page.asarray(), 255 - samples[..., 1])
    refuse(5, ["page 4: has other inks"], "split", "in.tif", "other")


def test_channels_that_are_no_inks_get_no_plate(tmp_path, run, succeed):
    tifffile.imwrite(tmp_path / "in.tif", random_samples(1, (5, 6, 5), 8), metadata=None,
                     photometric="separated", extrasamples=["unassalpha"])
    outcome = run("split", "in.tif", "page")
    assert outcome.code == 0 and "alpha channels are no inks" in outcome.errors
    assert len(os.listdir(tmp_path)) == 5
    succeed("split", "in.tif", "page", "--inks", "4")
    assert (tmp_path / "page(Channel 4).tif").exists()


def test_extra_samples_that_are_no_alpha_are_inks(tmp_path, succeed):
    samples = random_samples(1, (5, 6, 5), 8)
    tifffile.imwrite(tmp_path / "in.tif", samples, metadata=None, photometric="separated",
                     extrasamples=["unspecified"])
    succeed("split", "in.tif", "page")
    assert numpy.array_equal(tifffile.imread(tmp_path / "page(Channel 4).tif"),
                             255 - samples[..., 4])


def test_pages_of_other_colours_are_refused(tmp_path, refuse):
    tifffile.imwrite(tmp_path / "in.tif", random_samples(1, (5, 6, 3), 8), metadata=None,
                     photometric="rgb")
    refuse(5, ["RGB", "separated"], "split", "in.tif", "page")


def test_a_profile_is_left_out_with_a_warning(tmp_path, run):
    tifffile.imwrite(tmp_path / "in.tif", random_samples(1, (3, 4, 4), 8), photometric="separated",
                     metadata=None, extratags=[(PROFILE, UNDEFINED, 4, b"none", True)])
    outcome = run("split", "in.tif", "page")
    assert outcome.code == 0
    assert outcome.errors.count("\n") == 1 and "without it" in outcome.errors


@pytest.mark.parametrize("size", [0, 4, 8, 60, 300, 2000, 9000])
def test_cut_pages_leave_nothing(tmp_path, run, size):
    page_of(tmp_path, rowsperstrip=5)
    cut(tmp_path / "in.tif", size)
    outcome = run("split", "in.tif", "page")
    assert outcome.code == 3 and "in.tif" in outcome.errors
    assert os.listdir(tmp_path) == ["in.tif"]


@pytest.mark.parametrize("naming, plate", [("gs", "in({}).tif"), ("dot", "in.{}.tif")])
def test_plates_in_a_folder_are_named_after_the_picture(tmp_path, succeed, run, naming, plate):
    page_of(tmp_path, shape=(7, 11))
    (tmp_path / "s1").mkdir()
    (tmp_path / "in.tif").rename(tmp_path / "s1" / "in.tif")
    for picture, folder in (("s1/in.tif", "s1/"), ("s1/in.tif", "./")):
        succeed("split", picture, folder, "--naming", naming, "--inks", "Cyan,5")
        for ink in ("Cyan", "Zinc"):
            assert (tmp_path / folder / plate.format(ink)).is_file()
    assert len(os.listdir(tmp_path)) == len(os.listdir(tmp_path / "s1")) == 3
    piped = run("split", "-", "s1/", stdin=(tmp_path / "s1" / "in.tif").read_bytes())
    assert piped.code == 2
    assert piped.errors.startswith("pelkraft: s1/: is a folder, ") and "s1/page" in piped.errors


def test_inks_that_are_none_are_answered_with_the_nearest(tmp_path, refuse):
    page_of(tmp_path, inks=[*INKS[:3], "Warm Red"], shape=(7, 11))
    outcome = refuse(2, ['has no channel "wamred" for --inks; supported are 0 to 3, Cyan, Magenta, '
                         "Yellow, Warm Red; did you mean Warm Red?"], "split", "in.tif", "page", "--inks", "wamred")
    assert "empty channel" not in outcome.errors
    outcome = refuse(2, ["Yellow, Warm Red."], "split", "in.tif", "page", "--inks", "Silver")
    assert "did you mean" not in outcome.errors
    refuse(2, ["an empty channel makes no plate"], "split", "in.tif", "page", "--inks", "-")
    refuse(2, ["Warm Red and - for an empty channel; did you mean Warm Red?"], "convert", "in.tif",
           "out.tif", "--channels", "warmred")


def test_a_folder_that_is_missing_is_named(tmp_path, refuse, run):
    page_of(tmp_path, shape=(7, 11))
    words = "cannot be written: there is no folder no/where; make it first\n"
    for more in ([], ["--dry-run"]):
        refuse(6, [f"pelkraft: no/where/page(Cyan).tif: {words}"], "split", "in.tif",
               "no/where/page", *more)
    piped = run("split", "-", "no/where/page", stdin=(tmp_path / "in.tif").read_bytes())
    assert (piped.code, piped.errors) == (6, f"pelkraft: no/where/page: {words}")
    (tmp_path / "link.tif").symlink_to("no/other/x.tif")
    refuse(6, ["pelkraft: link.tif: cannot be written: there is no folder no/other; make"],
           "convert", "in.tif", "link.tif")


def test_a_plate_that_cannot_be_written_leaves_no_other(tmp_path, refuse):
    page_of(tmp_path, shape=(7, 11))
    (tmp_path / "page(Black).tif").mkdir()
    refuse(6, ["page(Black).tif"], "split", "in.tif", "page")
    assert sorted(os.listdir(tmp_path)) == ["in.tif", "page(Black).tif"]


def test_a_dry_run_explains_and_writes_nothing(tmp_path, succeed):
    page_of(tmp_path, shape=(7, 11))
    outcome = succeed("split", "in.tif", "page", "--dry-run", "--explain", "--json")
    assert os.listdir(tmp_path) == ["in.tif"]
    (page,) = outcome.json["pages"]
    assert page["turned"]
    assert [plate["plate"] for plate in page["plates"]] == [f"page({ink}).tif" for ink in INKS]
    text = succeed("split", "in.tif", "page", "--explain").output
    assert "channel 5: Zinc, to page(Zinc).tif" in text and "rows per second" in text
