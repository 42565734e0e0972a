# SPDX-License-Identifier: Apache-2.0
"""What convert makes of ranges, polarity and the order of rows, against exact fractions."""

import itertools
from fractions import Fraction

import numpy
import pytest
import tifffile

LIGHT, GRAY_INK, RGB, INKS = 1, 0, 2, 5
DOT_RANGE = 336


def samples_of(bits, shape):
    kind = numpy.uint8 if bits <= 8 else numpy.uint16
    return numpy.random.default_rng(15).integers(0, 2**bits, shape).astype(kind)


def write(path, image, photometric, dots=None, **options):
    tags = [] if dots is None else [(DOT_RANGE, "H", 2, dots, True)]
    names = {LIGHT: "minisblack", GRAY_INK: "miniswhite", INKS: "separated", RGB: "rgb"}
    tifffile.imwrite(path, image, photometric=names[photometric], extratags=tags, **options)


class Page:
    """The first page of a file, as tifffile sees it."""

    def __init__(self, path):
        with tifffile.TiffFile(path) as file:
            page = file.pages[0]
            self.samples = page.asarray()
            if page.planarconfig == 2:
                self.samples = numpy.moveaxis(self.samples, 0, -1)
            self.photometric = int(page.photometric)
            tag = page.tags.get(DOT_RANGE)
            self.dots = None if tag is None else tuple(tag.value)


@pytest.fixture
def page_of(tmp_path, succeed):
    """Converts in.tif, and answers the first page of the new file."""
    def convert(*options):
        succeed("convert", "in.tif", "out.tif", *options)
        return Page(tmp_path / "out.tif")
    return convert


def nearest(value):
    """Half up."""
    return (2 * value + 1).__floor__() // 2


def line(image, none, full, new_none, new_full, highest):
    table = []
    for sample in range(int(image.max()) + 1):
        value = new_none + Fraction((sample - none) * (new_full - new_none), full - none)
        table.append(min(max(nearest(value), 0), highest))
    return numpy.array(table)[image]


RANGES = {8: [(5, 250), (250, 5), (0, 255), (13, 14)], 16: [(4000, 60001), (65535, 900)]}


@pytest.mark.parametrize("way", ["keep", "scale", "full"])
@pytest.mark.parametrize("old, new", itertools.product((8, 16), repeat=2))
def test_dot_range(tmp_path, page_of, old, new, way):
    top, new_top = 2**old - 1, 2**new - 1
    image = samples_of(old, (19, 23, 4))
    for low, high in RANGES[old]:
        write(tmp_path / "in.tif", image, INKS, (low, high))
        # There is a warning where scale moves no sample.
        page = page_of("-q", "--bits", new, "--dot-range", way)
        ends = tuple(nearest(Fraction(end * new_top, top)) for end in (low, high))
        target = (0, new_top) if way == "full" else ends
        assert page.dots == target
        if way != "keep":
            expected = line(image, low, high, *target, new_top)
        else:
            write(tmp_path / "in.tif", image, INKS)
            expected = image if old == new else page_of("--bits", new).samples
        assert (page.samples == expected).all()
        # The same range from the command line, on a page without a tag.
        write(tmp_path / "in.tif", image, INKS)
        page = page_of("-q", "--bits", new, "--dot-range", f"{low},{high}", "--dot-range", way)
        assert page.dots == target
        assert (page.samples == expected).all()


@pytest.mark.parametrize("old, new", itertools.product((8, 16), (1, 2)))
def test_full_range_of_few_levels(tmp_path, succeed, old, new):
    top, new_top = 2**old - 1, 2**new - 1
    low, high = (20, 200) if old == 8 else (5000, 51000)
    for photometric, shape in ((INKS, (19, 23, 4)), (LIGHT, (19, 23))):
        image = samples_of(old, shape)
        write(tmp_path / "in.tif", image, photometric)
        succeed("convert", "in.tif", "out.tif", "--bits", new, "--dot-range", f"{low},{high}",
                "--dot-range", "full")
        succeed("convert", "out.tif", "wide.tif", "--bits", 8, "--tones", "raw")
        if photometric == INKS:
            expected = line(image, low, high, 0, new_top, new_top)
        else:
            expected = line(image, top - low, top - high, new_top, 0, new_top)
        assert (Page(tmp_path / "wide.tif").samples == expected).all()


@pytest.mark.parametrize("new", [8, 16])
@pytest.mark.parametrize("bits", [1, 2])
def test_range_of_packed_samples(tmp_path, succeed, bits, new):
    top, new_top = 2**bits - 1, 2**new - 1
    image = samples_of(bits, (19, 23, 4))
    for layout in ("interleaved", "planar"):
        write(tmp_path / "in.tif", image, INKS)
        succeed("convert", "in.tif", "few.tif", "--bits", bits, "--tones", "raw", "--layout", layout)
        succeed("convert", "few.tif", "out.tif", "--bits", new, "--dot-range", f"{top},0",
                "--dot-range", "full")
        page = Page(tmp_path / "out.tif")
        assert page.dots == (0, new_top)
        assert (page.samples == line(image, top, 0, 0, new_top, new_top)).all()


@pytest.mark.parametrize("invert", [False, True])
@pytest.mark.parametrize("polarity", ["auto", "ink-high", "ink-low"])
@pytest.mark.parametrize("photometric", [LIGHT, GRAY_INK])
def test_polarity_of_gray_pages(tmp_path, page_of, photometric, polarity, invert):
    image = samples_of(8, (19, 23))
    write(tmp_path / "in.tif", image, photometric)
    page = page_of("--polarity", polarity, *["--invert"] * invert)
    meant = {"auto": photometric, "ink-high": GRAY_INK, "ink-low": LIGHT}[polarity]
    assert page.photometric == (1 - meant if invert else meant)
    assert (page.samples == (255 - image if invert else image)).all()


@pytest.mark.parametrize("dots", [None, (5, 250), (250, 5)])
def test_polarity_of_inks(tmp_path, page_of, dots):
    image = samples_of(8, (19, 23, 4))
    write(tmp_path / "in.tif", image, INKS, dots)
    low, high = dots or (0, 255)
    page = page_of("--polarity", "ink-low")
    assert page.dots == (255 - low, 255 - high)
    assert (page.samples == image).all()
    page = page_of("--invert")
    assert page.dots == (255 - low, 255 - high)
    assert (page.samples == 255 - image).all()
    # A channel that is empty has no ink.
    page = page_of("--invert", "--channels", "0,-")
    assert (page.samples[..., 1] == (255 - low if low < high else 0)).all()
    page = page_of("--polarity", "ink-low", "--invert")
    assert page.dots == (dots if dots else None)
    assert (page.samples == 255 - image).all()


@pytest.mark.parametrize("layout", ["interleaved", "planar"])
def test_extra_samples_are_no_ink(tmp_path, run, layout):
    image = samples_of(8, (19, 23, 4))
    write(tmp_path / "in.tif", image, RGB, extrasamples=("unassalpha",))
    outcome = run("convert", "in.tif", "out.tif", "--invert", "--layout", layout)
    assert outcome.code == 0
    assert "--invert makes a negative" in outcome.errors
    turned = image.copy()
    turned[..., :3] = 255 - image[..., :3]
    assert (Page(tmp_path / "out.tif").samples == turned).all()


@pytest.mark.parametrize("layout", ["interleaved", "planar"])
@pytest.mark.parametrize("photometric", [LIGHT, GRAY_INK, INKS])
def test_extra_samples_of_no_told_kind_are_inks(tmp_path, run, photometric, layout):
    image = samples_of(8, (19, 23, 6))
    kinds = ("unspecified", "unassalpha", "unspecified")[-2 if photometric == INKS else 0:]
    if photometric != INKS:
        image = image[..., :4]
    write(tmp_path / "in.tif", image, photometric, extrasamples=kinds)
    outcome = run("convert", "in.tif", "out.tif", "--invert", "--layout", layout)
    assert outcome.code == 0
    turned = 255 - image
    alpha = 4 if photometric == INKS else 2
    turned[..., alpha] = image[..., alpha]
    assert (Page(tmp_path / "out.tif").samples == turned).all()


@pytest.mark.parametrize("layout", ["interleaved", "planar"])
@pytest.mark.parametrize("bits", [1, 2, 8, 16])
def test_an_empty_channel_has_no_ink(tmp_path, run, bits, layout):
    highest = 2**bits - 1
    for photometric, channels, none in [(LIGHT, 1, highest), (RGB, 3, highest), (GRAY_INK, 1, 0),
                                        (INKS, 4, 0)]:
        image = samples_of(8, (9, 13, channels)[:2 if channels == 1 else 3])
        write(tmp_path / "in.tif", image, photometric)
        chosen = ",".join(["-"] * channels + ["0"])
        for turn in ([], ["--invert"]):
            outcome = run("convert", "in.tif", "out.tif", "--bits", bits, "--layout", layout,
                          "--channels", chosen, *turn)
            assert outcome.code == 0
            empty = highest - none if turn else none
            assert run("convert", "out.tif", "wide.tif", "--bits", 16 if bits == 16 else 8,
                       "--tones", "raw").code == 0
            assert (Page(tmp_path / "wide.tif").samples[..., :channels] == empty).all()


def test_an_empty_channel_is_at_the_end_of_its_range(tmp_path, run):
    image = samples_of(8, (9, 13))
    write(tmp_path / "in.tif", image, LIGHT)
    for words, none in [(("5,250",), 250), (("9,0",), 246), (("5,250", "full"), 255)]:
        options = [word for part in words for word in ("--dot-range", part)]
        assert run("convert", "in.tif", "out.tif", "--channels", "0,-", *options).code == 0
        assert (Page(tmp_path / "out.tif").samples[..., 1] == none).all()


@pytest.mark.parametrize("chosen, twins", [("Cyan,0", ["Cyan"]), ("-,1,-", ["Empty"]),
                                           ("0,1,2", []), ("3,3,-,-", ["Black", "Empty"])])
def test_two_inks_of_one_name_are_told(tmp_path, run, chosen, twins):
    write(tmp_path / "in.tif", samples_of(8, (9, 13, 4)), INKS)
    outcome = run("convert", "in.tif", "out.tif", "--channels", chosen)
    assert outcome.code == 0
    assert [line.split('"')[1] for line in outcome.errors.splitlines()
            if "more than one ink of the new page is named" in line] == twins


def test_what_a_page_cannot_say(tmp_path, run):
    image = samples_of(8, (19, 23))

    def said(photometric, *options):
        shown = image if photometric == LIGHT else numpy.stack([image] * 3, -1)
        write(tmp_path / "in.tif", shown, photometric)
        outcome = run("convert", "in.tif", "out.tif", *options)
        assert outcome.code == 0
        assert (Page(tmp_path / "out.tif").samples == shown).all()
        return outcome.errors
    assert "only pages of separated inks have the tag" in said(LIGHT, "--dot-range", "9,200")
    assert "--polarity ink-high is not kept" in said(RGB, "--polarity", "ink-high")
    assert said(RGB, "--polarity", "ink-low") == ""


def test_refusals(tmp_path, run):
    write(tmp_path / "in.tif", samples_of(8, (19, 23, 4)), INKS, (100, 120))
    outcome = run("convert", "in.tif", "out.tif", "--bits", 1, "--dot-range", "scale")
    assert outcome.code == 5
    assert "in.tif: the dot range 100,120 has no room in 1 bit" in outcome.errors
    outcome = run("convert", "in.tif", "out.tif", "--bits", 1)
    assert outcome.code == 0
    assert "DotRange is not kept" in outcome.errors
    outcome = run("convert", "in.tif", "out.tif", "--bits", 2, "--dot-range", "full", "--tones",
                  "raw")
    assert outcome.code == 2
    assert "--tones raw" in outcome.errors


def test_a_range_without_sense_stays_where_nothing_changes(tmp_path, run):
    image = samples_of(8, (19, 23, 4))
    write(tmp_path / "in.tif", image, INKS, (0, 65535))
    outcome = run("convert", "in.tif", "out.tif")
    assert (outcome.code, outcome.errors) == (0, "")
    assert Page(tmp_path / "out.tif").dots == (0, 65535)
    outcome = run("convert", "in.tif", "out.tif", "--bits", 16)
    assert outcome.code == 0
    assert "DotRange 0,65535 is not kept" in outcome.errors
    assert Page(tmp_path / "out.tif").dots is None
    assert run("convert", "in.tif", "out.tif", "--dot-range", "full").code == 3


def test_explain_states_the_range(tmp_path, run):
    write(tmp_path / "in.tif", samples_of(8, (19, 23, 4)), INKS, (5, 250))
    outcome = run("convert", "in.tif", "out.tif", "--explain", "--dot-range", "full", "--flip")
    assert "none is 5 becomes 0, all is 250 becomes 255, in a straight line" in outcome.output
    assert "from the last to the first" in outcome.output
    outcome = run("convert", "in.tif", "out.tif", "--explain", "--json", "--invert")
    (page,) = outcome.json["pages"]
    assert page["ink"] == {"none": 5, "full": 250, "new_none": 250, "new_full": 5,
                           "mapped": False, "inverted": True}
    assert page["flip"] is False


@pytest.mark.parametrize("options", [[], ["--mirror"], ["--layout", "planar"]])
@pytest.mark.parametrize("form", [
    {"rowsperstrip": 1}, {"rowsperstrip": 16}, {"tile": (32, 48)},
    {"rowsperstrip": 300, "compression": "zlib"}, {"tile": (64, 64), "compression": "zlib"}])
def test_flip(tmp_path, page_of, form, options):
    image = samples_of(16, (217, 45, 3))
    write(tmp_path / "in.tif", image, RGB, **form)
    expected = image[::-1, ::-1] if "--mirror" in options else image[::-1]
    assert (page_of("--flip", *options).samples == expected).all()


@pytest.mark.parametrize("planar", [False, True])
@pytest.mark.parametrize("compression", [None, "zlib"])
def test_flip_of_one_large_strip(tmp_path, page_of, run, compression, planar):
    image = samples_of(8, (1201, 2000, 4)) & 15
    options = {"rowsperstrip": 1201, "compression": compression}
    if planar:
        options["planarconfig"] = "separate"
    write(tmp_path / "in.tif", numpy.moveaxis(image, -1, 0) if planar else image, INKS, **options)
    assert (page_of("--flip").samples == image[::-1]).all()
    # Rows that are not compressed need no room.
    outcome = run("convert", "in.tif", "out.tif", "--flip", "--spool-limit", "9M")
    assert outcome.code == (5 if compression else 0)
    assert ("--spool-limit" in outcome.errors) == bool(compression)


@pytest.mark.parametrize("form", [{}, {"byteorder": ">"}, {"bigtiff": True},
                                  {"planarconfig": "separate"}])
def test_pipes(tmp_path, run, form):
    with tifffile.TiffWriter(tmp_path / "in.tif", bigtiff=form.get("bigtiff", False),
                             byteorder=form.get("byteorder")) as file:
        pages = [samples_of(8, (31, 17, 3)), samples_of(16, (7, 9, 3))]
        separate = form.get("planarconfig")
        for page in pages:
            file.write(numpy.moveaxis(page, -1, 0) if separate else page, photometric="rgb",
                       planarconfig=separate)
    outcome = run("convert", "in.tif", "-")
    for rounds in range(2):
        assert outcome.code == 0
        (tmp_path / "out.tif").write_bytes(outcome.bytes)
        with tifffile.TiffFile(tmp_path / "out.tif") as file:
            assert len(file.pages) == 2
            for found, page in zip(file.pages, pages):
                samples = found.asarray()
                assert ((numpy.moveaxis(samples, 0, -1) if separate else samples) == page).all()
                assert found.offset < min(found.dataoffsets)
        outcome = run("convert", "-", "-", stdin=outcome.bytes)
