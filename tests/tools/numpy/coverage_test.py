# SPDX-License-Identifier: Apache-2.0
"""How much ink lies where, against sums that NumPy makes pixel by pixel."""

import os
import struct
import zlib

import numpy
import pytest
import tifffile

from pictures import cut, random_samples, reverse_strips, write_inks, write_plate

INKS = ["Cyan", "Magenta", "Yellow", "Black", "Aqua"]


def naive(amounts, full, limit, width, height):
    """amounts: height x width x inks, from 0 to full."""
    totals = amounts.astype(object).sum(axis=2)
    rows, columns = totals.shape
    windows = [(sum(totals[y:y + height, x:x + width].ravel()), -y, -x)
               for y in range(rows - height + 1) for x in range(columns - width + 1)]
    best, y, x = max(windows)
    largest = max(totals.ravel())
    place = int(numpy.argmax(totals == largest))
    inks = range(amounts.shape[2])
    return {"sums": [int(amounts[..., ink].astype(object).sum()) for ink in inks],
            "largest": [int(amounts[..., ink].max()) for ink in inks],
            "total": (int(totals.sum()), largest, place % columns, place // columns),
            "above": sum(100 * total > limit * full for total in totals.ravel()),
            "window": (best, -x, -y)}


def found_of(page):
    return {"sums": [ink["sum"] for ink in page["inks"]],
            "largest": [ink["largest"] for ink in page["inks"]],
            "total": tuple(page["total"][key] for key in ("sum", "largest", "x", "y")),
            "above": page["pixels_above"],
            "window": tuple(page["window"][key] for key in ("sum", "x", "y"))}


def check(run, amounts, full, window=(5, 5), limit=250, arguments=()):
    """Any number of threads finds what NumPy finds."""
    outputs = set()
    for threads in (1, 2, 5):
        outcome = run("coverage", "in.tif", "--json", "--limit", limit, "--threads", threads,
                      "--window", f"{window[0]}px", *arguments)
        assert outcome.errors == ""
        outputs.add(outcome.output)
    assert len(outputs) == 1
    (page,) = outcome.json["pages"]
    wanted = naive(amounts, full, limit, *window)
    assert found_of(page) == wanted
    assert outcome.code == (1 if wanted["above"] else 0)
    assert outcome.json["above_limit"] == bool(wanted["above"])
    pixels = amounts.shape[0] * amounts.shape[1]
    assert page["total"]["maximum"] == pytest.approx(100 * wanted["total"][1] / full)
    assert page["total"]["mean"] == pytest.approx(100 * wanted["total"][0] / full / pixels)
    assert page["share_above"] == pytest.approx(wanted["above"] / pixels)
    assert page["window"]["mean"] == pytest.approx(
        100 * wanted["window"][0] / full / window[0] / window[1])
    return page


@pytest.mark.parametrize("bits", [8, 16])
@pytest.mark.parametrize("form", [{}, {"compression": "zlib"}, {"tile": (16, 32)},
                                  {"byteorder": ">"}, {"planarconfig": "separate"},
                                  {"rowsperstrip": 7}])
def test_sums_are_those_of_numpy(tmp_path, run, bits, form):
    samples = random_samples(bits, (23, 41, 5), bits)
    stored = numpy.moveaxis(samples, 2, 0) if "planarconfig" in form else samples
    write_inks(tmp_path / "in.tif", stored, INKS, **form)
    if form == {"rowsperstrip": 7}:
        reverse_strips(tmp_path / "in.tif")
    check(run, samples, (1 << bits) - 1)


@pytest.mark.parametrize("photometric", ["minisblack", "miniswhite"])
@pytest.mark.parametrize("bits", [1, 8, 16])
def test_polarity_tells_what_is_ink(tmp_path, run, bits, photometric):
    samples = random_samples(bits, (23, 41), bits)
    write_plate(tmp_path / "in.tif", samples.astype(bool) if bits == 1 else samples, photometric)
    full = (1 << bits) - 1
    amounts = samples if photometric == "miniswhite" else full - samples
    page = check(run, amounts[..., None], full, limit=50)
    assert [ink["name"] for ink in page["inks"]] == ["Black"]
    check(run, samples[..., None], full, limit=50, arguments=["--polarity", "ink-high"])


def test_samples_beyond_the_dot_range_count_as_its_ends(tmp_path, run):
    samples = random_samples(1, (23, 41, 5), 8)
    write_inks(tmp_path / "in.tif", samples, INKS, (20, 200))
    check(run, numpy.clip(samples.astype(int), 20, 200) - 20, 180)
    check(run, 170 - numpy.clip(samples.astype(int), 10, 170), 160,
          arguments=["--dot-range", "170,10"])


@pytest.mark.parametrize("window", [(1, 1), (2, 2), (41, 23), (100, 100), (23, 23), (22, 22)])
def test_windows_of_any_size_are_as_large_as_the_page_at_most(tmp_path, run, window):
    samples = random_samples(1, (23, 41, 4), 8)
    write_inks(tmp_path / "in.tif", samples, INKS[:4])
    side = window[0]
    totals = (min(side, 41), min(side, 23))
    outcome = run("coverage", "in.tif", "--json", "--window", f"{side}px")
    (page,) = outcome.json["pages"]
    assert (page["window"]["width"], page["window"]["height"]) == totals
    assert found_of(page) == naive(samples, 255, 300, *totals)


@pytest.mark.parametrize("form", [{}, {"compression": "zlib", "rowsperstrip": 2400},
                                  {"compression": "zlib", "rowsperstrip": 100},
                                  {"tile": (256, 512)}])
def test_windows_of_many_rows_are_counted_too(tmp_path, run, form):
    """Their rows are not held, but read again as they leave the window."""
    rows, columns = 2400, 5000
    samples = random_samples(7, (rows, columns), 8)
    # The most ink is at the lower right, so that no window at a border wins.
    samples[1700:2390, 2500:4900] |= 3
    tifffile.imwrite(tmp_path / "in.tif", samples, photometric="miniswhite", metadata=None, **form)
    sums = numpy.zeros((rows + 1, columns + 1), numpy.int64)
    sums[1:, 1:] = samples.cumsum(axis=0, dtype=numpy.int64).cumsum(axis=1)
    for side in 2000, 2399:
        windows = sums[side:, side:] - sums[:-side, side:] - sums[side:, :-side] + \
            sums[:-side, :-side]
        y, x = divmod(int(windows.argmax()), windows.shape[1])
        for threads in 1, 3:
            (page,) = run("coverage", "in.tif", "--json", "--window", f"{side}px", "--threads",
                          threads).json["pages"]
            assert found_of(page)["window"] == (int(windows.max()), x, y)
            # Nothing counts twice.
            assert found_of(page)["sums"] == [int(samples.sum(dtype=numpy.int64))]


def test_a_page_of_many_bands_is_one_page(tmp_path, run):
    """Rows of 400 KB: a dozen of them make a band."""
    samples = numpy.zeros((40, 100000, 4), numpy.uint8)
    samples[11:16, 70000:70005] = 200
    samples[26:30, 3:7] = 210
    write_inks(tmp_path / "in.tif", samples, INKS[:4], rowsperstrip=3)
    outcome = run("coverage", "in.tif", "--json", "--window", "5px", "--limit", "320")
    (page,) = outcome.json["pages"]
    assert found_of(page) == {"sums": [25 * 200 + 16 * 210] * 4, "largest": [210] * 4,
                              "total": (4 * (25 * 200 + 16 * 210), 840, 3, 26), "above": 16,
                              "window": (4 * 25 * 200, 70000, 11)}


def test_the_first_of_equal_places_is_told(tmp_path, run):
    samples = numpy.zeros((9, 30, 4), numpy.uint8)
    samples[2, 17] = samples[2, 21] = samples[7, 1] = 255
    write_inks(tmp_path / "in.tif", samples, INKS[:4])
    for threads in (1, 2, 7):
        (page,) = run("coverage", "in.tif", "--json", "--window", "2px", "--threads",
                      threads).json["pages"]
        assert (page["total"]["x"], page["total"]["y"]) == (17, 2)
        assert (page["window"]["x"], page["window"]["y"]) == (16, 1)


@pytest.mark.parametrize("unit, resolution, words, size", [
    ("INCH", (254, 508), "1mm", (10, 20)), ("INCH", (254, 508), "0.1in", (25, 51)),
    ("CENTIMETER", (50, 100), "2.5mm", (13, 25)), ("INCH", (254, 254), "0.001mm", (1, 1)),
    (None, (1, 1), "7px", (7, 7))])
def test_a_window_is_measured_by_the_resolution(tmp_path, run, unit, resolution, words, size):
    write_inks(tmp_path / "in.tif", random_samples(1, (60, 70, 4), 8), INKS[:4],
               resolution=resolution, resolutionunit=unit)
    (page,) = run("coverage", "in.tif", "--json", "--window", words).json["pages"]
    assert (page["window"]["width"], page["window"]["height"]) == size


def test_without_a_resolution_there_is_no_window(tmp_path, run):
    write_inks(tmp_path / "in.tif", random_samples(1, (6, 7, 4), 8), INKS[:4], resolutionunit=1)
    assert run("coverage", "in.tif", "--json").json["pages"][0]["window"] is None
    assert "--window 40px" in run("coverage", "in.tif").output


@pytest.mark.parametrize("limit, above", [("400", False), ("399.9", True), ("200", True),
                                          ("0.001", True), ("999999999", False)])
def test_the_exit_code_tells_of_the_limit(tmp_path, run, limit, above):
    samples = numpy.full((3, 4, 4), 255, numpy.uint8)
    tifffile.imwrite(tmp_path / "in.tif", samples, photometric="separated", metadata=None)
    outcome = run("coverage", "in.tif", "--limit", limit)
    assert outcome.code == (1 if above else 0)
    assert ("12 pixels, 100.00 %" if above else "0 pixels, 0.00 %") in outcome.output


@pytest.mark.parametrize("words", ["", "0", "-1", "3O0", "300%", "1e3", "nan", "1.", ".5",
                                   "1.0000"])
def test_other_limits_are_wrong_usage(tmp_path, run, words):
    outcome = run("coverage", "in.tif", "--limit=" + words)
    assert outcome.code == 2 and "limit" in outcome.errors


@pytest.mark.parametrize("words", ["", "0mm", "1", "mm", "1 mm", "1m", "-1mm", "1mmm", "infpx"])
def test_other_windows_are_wrong_usage(tmp_path, run, words):
    outcome = run("coverage", "in.tif", "--window=" + words)
    assert outcome.code == 2 and "window" in outcome.errors


def test_each_page_is_told(tmp_path, run):
    with tifffile.TiffWriter(tmp_path / "in.tif") as writer:
        pages = [random_samples(seed, (4 + seed, 6, 4), 8) // (4 - seed) for seed in range(3)]
        for samples in pages:
            writer.write(samples, photometric="separated", metadata=None)
    found = run("coverage", "in.tif", "--json", "--window", "3px").json["pages"]
    assert [page["page"] for page in found] == [1, 2, 3]
    for page, samples in zip(found, pages):
        assert found_of(page) == naive(samples, 255, 300, 3, 3)
    (second,) = run("coverage", "in.tif", "--json", "--window", "3px", "--page", "2").json["pages"]
    assert second == found[1]


def read_png(path):
    """Pixels of a PNG of red, green and blue, whatever its filters."""
    data = path.read_bytes()
    assert data[:8] == b"\x89PNG\r\n\x1a\n"
    place, packed = 8, b""
    while place < len(data):
        size, kind = struct.unpack(">I4s", data[place:place + 8])
        body = data[place + 8:place + 8 + size]
        if kind == b"IHDR":
            width, height, depth, colours = struct.unpack(">IIBB", body[:10])
            assert (depth, colours) == (8, 2)
        packed += body if kind == b"IDAT" else b""
        place += size + 12
    raw = zlib.decompress(packed)
    rows, above = [], numpy.zeros(3 * width, int)
    for y in range(height):
        filtered = raw[y * (3 * width + 1):(y + 1) * (3 * width + 1)]
        above = numpy.array(unfilter(filtered[0], filtered[1:], above))
        rows.append(above)
    return numpy.array(rows).reshape(height, width, 3)


def unfilter(kind, data, above):
    row = []
    for i, value in enumerate(data):
        left = row[i - 3] if i >= 3 else 0
        up, corner = int(above[i]), int(above[i - 3]) if i >= 3 else 0
        guess = left + up - corner
        paeth = min((abs(guess - left), 0, left), (abs(guess - up), 1, up),
                    (abs(guess - corner), 2, corner))[2]
        row.append((value + [0, left, up, (left + up) // 2, paeth][kind]) % 256)
    return row


def test_the_map_shows_means_in_their_places(tmp_path, run):
    samples = numpy.zeros((8, 3200, 4), numpy.uint8)
    samples[:, 1600:2400] = 255
    samples[:, 2400:] = numpy.array([255, 255, 255, 0], numpy.uint8)
    samples[:, 0:800, 0] = 0
    samples[:, 800:1600] = numpy.array([255, 127, 0, 0], numpy.uint8)
    write_inks(tmp_path / "in.tif", samples, INKS[:4])
    assert run("coverage", "in.tif", "--map", "map.png").code == 1
    picture = read_png(tmp_path / "map.png")
    assert picture.shape == (4, 1600, 3)
    middle = 0.5 - 0.5 / 255 / 3
    blue = [round(255 + (to - 255) * 2 * middle) for to in (64, 112, 200)]
    for start, colour in ((0, [255, 255, 255]), (400, blue), (800, [200, 0, 0]),
                          (1200, [250, 220, 60])):
        assert (picture[:, start:start + 400] == colour).all()


def test_the_map_has_the_shape_of_the_page(tmp_path, run):
    write_inks(tmp_path / "in.tif", numpy.zeros((40, 100, 4), numpy.uint8), INKS[:4],
               resolution=(600, 300), resolutionunit="INCH")
    assert run("coverage", "in.tif", "--map", "map.png").code == 0
    assert read_png(tmp_path / "map.png").shape == (40, 50, 3)


def test_a_map_is_refused_where_it_would_do_harm(tmp_path, refuse):
    write_inks(tmp_path / "in.tif", numpy.zeros((4, 5, 4), numpy.uint8), INKS[:4])
    refuse(2, ["map.tif"], "coverage", "in.tif", "--map", "map.tif")
    (tmp_path / "map.png").write_text("the old one")
    refuse(6, ["map.png"], "coverage", "in.tif", "--map", "map.png", "--no-clobber")
    assert (tmp_path / "map.png").read_text() == "the old one"


def test_pages_of_other_colours_are_refused(tmp_path, refuse):
    tifffile.imwrite(tmp_path / "in.tif", random_samples(1, (5, 6, 3), 8), metadata=None,
                     photometric="rgb")
    refuse(5, ["RGB"], "coverage", "in.tif")


@pytest.mark.parametrize("size", [0, 8, 60, 300, 2000, 9000])
def test_cut_pages_are_refused(tmp_path, run, size):
    write_inks(tmp_path / "in.tif", random_samples(1, (40, 60, 4), 8), INKS[:4], rowsperstrip=5)
    cut(tmp_path / "in.tif", size)
    outcome = run("coverage", "in.tif", "--map", "map.png")
    assert (outcome.code, outcome.output) == (3, "")
    assert os.listdir(tmp_path) == ["in.tif"]


def test_a_dry_run_explains_and_counts_nothing(tmp_path, succeed):
    write_inks(tmp_path / "in.tif", numpy.full((40, 50, 4), 255, numpy.uint8), INKS[:4],
               resolution=(254, 254), resolutionunit="INCH")
    output = succeed("coverage", "in.tif", "--dry-run", "--explain", "--map", "map.png").output
    assert "a window of 10 x 10 pixels" in output and "%" not in output
    assert os.listdir(tmp_path) == ["in.tif"]
