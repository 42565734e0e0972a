# SPDX-License-Identifier: Apache-2.0
"""TIFF files read and written, beside tifffile and libtiff's programs."""

import os
import random
import struct
import subprocess
import sys

import numpy
import pytest
import tifffile
from conftest import write_cmyk
from pictures import levels_of, random_picture, read, write

from pelkraft.pages import PageError
from pelkraft.pages.picture import pack_samples, unpack_samples


@pytest.mark.parametrize("bits", [1, 2])
@pytest.mark.parametrize("samples", [1, 3, 4, 5, 8, 9])
def test_samples_are_packed_from_the_top_bits(bits, samples):
    values = numpy.random.default_rng(samples).integers(0, 1 << bits, (2, samples), numpy.uint8)
    packed = pack_samples(values, bits)
    for row in range(2):
        text = "".join(f"{value:0{bits}b}" for value in values[row])
        text += "0" * (-len(text) % 8)
        assert packed[row].tobytes() == bytes(int(text[i:i + 8], 2)
                                              for i in range(0, len(text), 8))
    assert numpy.array_equal(unpack_samples(packed, samples, bits), values)


@pytest.mark.parametrize("kind", [numpy.uint8, numpy.uint16])
@pytest.mark.parametrize("planar", [False, True])
@pytest.mark.parametrize("options", [
    {}, {"rowsperstrip": 3}, {"tile": (16, 32)}, {"compression": "zlib"},
    {"compression": "zlib", "predictor": True, "rowsperstrip": 7},
    {"compression": "lzma", "tile": (32, 16)},
    {"compression": "zlib", "predictor": True, "tile": (16, 16)}])
@pytest.mark.parametrize("order", ["<", ">"])
def test_a_page_of_tifffile_is_read(tmp_path, kind, planar, options, order):
    pixels = numpy.random.default_rng(1).integers(
        0, numpy.iinfo(kind).max, (37, 41, 4), kind, endpoint=True)
    tifffile.imwrite(tmp_path / "a.tif", pixels.transpose(2, 0, 1) if planar else pixels,
                     photometric="separated", metadata=None, byteorder=order,
                     planarconfig="separate" if planar else "contig", **options)
    picture = read(tmp_path / "a.tif")
    assert (picture.width, picture.height, picture.bits, picture.planar) == \
        (41, 37, 8 * numpy.dtype(kind).itemsize, planar)
    assert numpy.array_equal(levels_of(picture), pixels)
    assert picture.pixels.dtype == kind


def test_packbits_is_read(tmp_path):
    pixels = write_cmyk(tmp_path / "a.tif", 1, 20, 30)
    subprocess.run(["tiffcp", "-c", "packbits", tmp_path / "a.tif", tmp_path / "b.tif"],
                   check=True)
    assert numpy.array_equal(levels_of(read(tmp_path / "b.tif")), pixels)


@pytest.mark.parametrize("bits", [1, 8, 16])
def test_reversed_bits_are_read(tmp_path, bits):
    picture = random_picture(1, bits, False, channels=1)
    write(tmp_path / "a.tif", picture)
    subprocess.run(["tiffcp", "-f", "lsb2msb", tmp_path / "a.tif", tmp_path / "b.tif"],
                   check=True)
    assert (tmp_path / "a.tif").read_bytes() != (tmp_path / "b.tif").read_bytes()
    assert numpy.array_equal(levels_of(read(tmp_path / "b.tif")), levels_of(picture))


@pytest.mark.parametrize("bits", [1, 2, 8, 16])
@pytest.mark.parametrize("planar", [False, True])
@pytest.mark.parametrize("channels", [1, 3, 6])
@pytest.mark.parametrize("compressed", [False, True])
def test_a_written_page_is_read_again(tmp_path, bits, planar, channels, compressed):
    picture = random_picture(7, bits, planar, channels=channels, compressed=compressed)
    write(tmp_path / "a.tif", picture)
    again = read(tmp_path / "a.tif")
    assert numpy.array_equal(levels_of(again), levels_of(picture))
    assert (again.channels, again.tags, again.planar, again.compressed) == \
        (picture.channels, picture.tags, planar, compressed)
    told = subprocess.run(["tiffinfo", "-D", tmp_path / "a.tif"], capture_output=True, text=True)
    assert (told.returncode, told.stderr) == (0, "")
    assert f"Bits/Sample: {bits}" in told.stdout and "Resolution: 300, 85.7143" in told.stdout


@pytest.mark.parametrize("kind", [numpy.uint8, numpy.uint16])
@pytest.mark.parametrize("planar", [False, True])
@pytest.mark.parametrize("compressed", [False, True])
def test_tifffile_reads_what_was_written(tmp_path, kind, planar, compressed):
    picture = random_picture(3, 8 * numpy.dtype(kind).itemsize, planar, 300, 400,
                             compressed=compressed)
    write(tmp_path / "a.tif", picture)
    found = tifffile.imread(tmp_path / "a.tif")
    assert numpy.array_equal(found.transpose(1, 2, 0) if planar else found, levels_of(picture))


@pytest.mark.parametrize("bits", [1, 2])
@pytest.mark.parametrize("planar", [False, True])
def test_libtiff_reads_packed_samples(tmp_path, bits, planar):
    """tiffcp turns each layout into the other one, and that is read as it should be."""
    picture = random_picture(5, bits, planar, channels=1)
    write(tmp_path / "a.tif", picture)
    subprocess.run(["tiffcp", "-c", "zip", "-r", "2", tmp_path / "a.tif", tmp_path / "b.tif"],
                   check=True)
    assert numpy.array_equal(levels_of(read(tmp_path / "b.tif")), levels_of(picture))


def test_a_file_beyond_32_bits_has_the_big_form(tmp_path, monkeypatch):
    monkeypatch.setattr("pelkraft.pages.tiff_writer.LARGEST_CLASSIC", 100)
    picture = random_picture(9, 8, True)
    write(tmp_path / "a.tif", picture)
    assert (tmp_path / "a.tif").read_bytes()[2] == 43
    assert numpy.array_equal(tifffile.imread(tmp_path / "a.tif").transpose(1, 2, 0),
                             levels_of(picture))
    assert numpy.array_equal(levels_of(read(tmp_path / "a.tif")), levels_of(picture))


def test_pages_are_counted_from_1(tmp_path):
    with tifffile.TiffWriter(tmp_path / "a.tif") as writer:
        for value in (10, 20, 30):
            writer.write(numpy.full((2, 3), value, numpy.uint8), photometric="minisblack",
                         metadata=None)
    assert [int(read(tmp_path / "a.tif", page).pixels[0, 0, 0]) for page in (1, 2, 3)] == \
        [10, 20, 30]
    for page, words in [(None, "has 3 pages; say which one to take"),
                        (4, "has no page 4; its last is 3")]:
        with pytest.raises(PageError, match=words) as caught:
            read(tmp_path / "a.tif", page)
        assert caught.value.kind == "input"


def test_names_of_inks_and_extra_samples_are_read(tmp_path):
    write_cmyk(tmp_path / "cmyk.tif", 1, channels=5)
    picture = read(tmp_path / "cmyk.tif")
    assert [channel.name for channel in picture.channels] == \
        ["Cyan", "Magenta", "Yellow", "Black", ""]
    assert [channel.extra for channel in picture.channels] == [None] * 4 + [0]
    write(tmp_path / "six.tif", random_picture(1, 8, False, channels=6))
    assert [channel.extra for channel in read(tmp_path / "six.tif").channels] == [None] * 6


@pytest.mark.parametrize("options, kind, words", [
    ({"dtype": "float32"}, "unsupported", "has samples of 32 bits; supported are 1, 2, 8 and 16"),
    ({"dtype": "int8"}, "unsupported", "has signed, floating or complex samples"),
    ({"dtype": "int16"}, "unsupported", "has signed, floating or complex samples")])
def test_pages_that_are_not_served_are_refused(tmp_path, options, kind, words):
    tifffile.imwrite(tmp_path / "a.tif", numpy.zeros((4, 4), **options), metadata=None,
                     photometric="minisblack")
    with pytest.raises(PageError, match=words) as caught:
        read(tmp_path / "a.tif")
    assert caught.value.kind == kind


@pytest.mark.parametrize("kind, bits", [(bool, 1), (numpy.uint8, 8), (numpy.uint16, 16)])
@pytest.mark.parametrize("options", [
    [], ["-r", "7"], ["-B"], ["-f", "lsb2msb"], ["-p", "separate"], ["-t", "-w", "16", "-l", "32"],
    ["-c", "lzw:2"], ["-c", "lzw:2", "-B", "-t", "-w", "32", "-l", "16"]])
def test_lzw_is_read(tmp_path, kind, bits, options):
    if bits == 1 and ("-t" in options or "lzw:2" in options) or bits != 8 and "-p" in options:
        pytest.skip("no such page is served, or tiffcp makes none")
    shape = (37, 41) if bits == 1 else (37, 41, 4)
    pixels = numpy.random.default_rng(1).integers(0, min(1 << bits, 900), shape).astype(kind)
    tifffile.imwrite(tmp_path / "a.tif", pixels, metadata=None,
                     photometric="minisblack" if bits == 1 else "separated")
    subprocess.run(["tiffcp", "-c", "lzw", *options, tmp_path / "a.tif", tmp_path / "b.tif"],
                   check=True)
    assert numpy.array_equal(levels_of(read(tmp_path / "b.tif")).reshape(shape), pixels)


def test_lzw_without_a_decoder_names_the_way_out(tmp_path, monkeypatch):
    write_cmyk(tmp_path / "a.tif", 1)
    subprocess.run(["tiffcp", "-c", "lzw", tmp_path / "a.tif", tmp_path / "b.tif"], check=True)
    monkeypatch.delitem(tifffile.TIFF.DECOMPRESSORS, 5, raising=False)
    monkeypatch.setitem(sys.modules, "PIL.TiffImagePlugin", None)
    with pytest.raises(PageError, match="has LZW, .*python3-pil.*convert --compress zip") as caught:
        read(tmp_path / "b.tif")
    assert caught.value.kind == "unsupported"


def test_lzw_cannot_hold_what_its_tags_claim(tmp_path, monkeypatch):
    """A tile of 16 GB is no reason to ask for 16 GB."""
    def refuse(_):
        raise MemoryError("a decoder was asked")

    monkeypatch.delitem(tifffile.TIFF.DECOMPRESSORS, 5, raising=False)
    monkeypatch.setattr("PIL.TiffImagePlugin.TiffImageFile", refuse)
    write_cmyk(tmp_path / "a.tif", 1)
    subprocess.run(["tiffcp", "-c", "lzw", "-t", "-w", "16", "-l", "16", tmp_path / "a.tif",
                    tmp_path / "b.tif"], check=True)
    with tifffile.TiffFile(tmp_path / "b.tif", mode="r+b") as file:
        for name in ("TileWidth", "TileLength"):
            file.pages[0].tags[name].overwrite(65520)
    with pytest.raises(PageError, match="block 1 is damaged or too short"):
        read(tmp_path / "b.tif")


def test_damaged_lzw_is_told(tmp_path):
    write_cmyk(tmp_path / "a.tif", 1)
    subprocess.run(["tiffcp", "-c", "lzw", tmp_path / "a.tif", tmp_path / "b.tif"], check=True)
    with tifffile.TiffFile(tmp_path / "b.tif") as file:
        start = file.pages[0].dataoffsets[0]
    data = bytearray((tmp_path / "b.tif").read_bytes())
    data[start + 4:start + 12] = b"\xff" * 8
    (tmp_path / "b.tif").write_bytes(data)
    with pytest.raises(PageError, match="block 1 is damaged or too short"):
        read(tmp_path / "b.tif")


@pytest.mark.parametrize("start", [
    b"", b"I", b"II*", b"MM\0", b"II*\0", b"MM\0+" + bytes(20), b"no picture", b"\xff\xd8\xff\xe0",
    b"\xff\xd8", b"\x89PNG\r\n", b"GIF89a", b"%PDF-1.4", b"%!PS", b"8BPS", b"BM12", b"RIFF1234WEBP",
    b"PK\3\4", b"\x1f\x8b\x08", b"DotWeavePattern", b"DotWeave", b"II\0*", b"MM*\0"])
def test_other_files_are_told_as_the_program_does(tmp_path, start):
    path = tmp_path / "a.tif"
    path.write_bytes(start)
    with pytest.raises(PageError) as caught:
        read(path)
    told = subprocess.run([os.environ["PELKRAFT_TOOL"], "info", path], capture_output=True,
                          text=True, check=False).stderr
    assert caught.value.kind == "input"
    if "is not a TIFF file" in told:
        assert f"pelkraft: {caught.value}\n" == told
    else:
        assert "is not a TIFF file" not in str(caught.value)


def test_a_missing_file_is_told(tmp_path):
    with pytest.raises(PageError, match="none.tif: cannot be read: No such file") as caught:
        read(tmp_path / "none.tif")
    assert caught.value.kind == "read"


@pytest.mark.parametrize("compression", [None, "zlib"])
def test_a_file_that_ends_before_its_pixels_says_so(tmp_path, compression):
    path = tmp_path / "a.tif"
    pixels = numpy.random.default_rng(2).integers(0, 255, (90, 11, 4), numpy.uint8)
    tifffile.imwrite(path, pixels, photometric="separated", metadata=None, rowsperstrip=45,
                     compression=compression)
    whole = path.read_bytes()
    for missing, block in ((1, 2), (len(pixels.tobytes()) // 2 + 500, 1)):
        path.write_bytes(whole[:-missing])
        with pytest.raises(PageError, match=f"ends before its block {block} of 2"):
            read(path)


@pytest.mark.parametrize("options", [{}, {"compression": "zlib", "predictor": True},
                                     {"tile": (16, 16)}, {"rowsperstrip": 2}])
def test_a_damaged_file_is_read_or_refused(tmp_path, options):
    """Each cut and many changes of a byte: nothing but a picture or a PageError comes of it."""
    path = tmp_path / "a.tif"
    pixels = numpy.random.default_rng(2).integers(0, 255, (9, 11, 4), numpy.uint8)
    tifffile.imwrite(path, pixels, photometric="separated", metadata=None, **options)
    whole = path.read_bytes()
    rng = random.Random(17)
    refused = 0
    cuts = [whole[:end] for end in range(0, len(whole), 7)]
    changes = []
    for _ in range(600):
        changed = bytearray(whole)
        for _ in range(rng.randint(1, 3)):
            changed[rng.randrange(min(len(whole), 400))] = rng.randrange(256)
        changes.append(bytes(changed))
    for data in cuts + changes:
        path.write_bytes(data)
        try:
            read(path)
        except PageError as error:
            refused += 1
            assert str(path) in error.message
    assert refused > len(cuts) // 2


def test_a_declared_size_is_not_believed(tmp_path):
    """A small file that claims a giant picture is refused before memory is taken for it."""
    path = tmp_path / "a.tif"
    tifffile.imwrite(path, numpy.zeros((8, 8), numpy.uint8), compression="zlib", metadata=None,
                     photometric="minisblack")
    data = bytearray(path.read_bytes())
    count, = struct.unpack_from("<H", data, 8)
    for entry in range(10, 10 + 12 * count, 12):
        if struct.unpack_from("<H", data, entry)[0] in (256, 257, 278):
            struct.pack_into("<HII", data, entry + 2, 4, 1, 1 << 20)
    path.write_bytes(data)
    with pytest.raises(PageError, match="can't hold|too short|damaged"):
        read(path)
