# SPDX-License-Identifier: Apache-2.0
"""Files with one thing wrong, made byte by byte, and the rule that finds it."""

import struct

import numpy
import pytest
import tifffile

from pictures import cut, random_samples, write_inks

INKS = ["Cyan", "Magenta", "Yellow", "Black", "Aqua"]
RULES = ["ink-names", "number-of-inks", "ink-set", "duplicate-ink", "misspelt-ink", "dot-range",
         "polarity", "extra-samples", "profile", "resolution-missing", "resolution-unequal",
         "resolution-implausible", "orientation", "truncated", "byte-count"]


def profile(space, declared=128):
    head = struct.pack(">I4sI4s4s", declared, bytes(4), 0x02400000, b"prtr", space)
    return (head + bytes(16) + b"acsp").ljust(128, b"\0")


class Page:
    """The tags of a page of 4 x 3 pixels. A test changes them or takes them away."""

    def __init__(self, channels=5, bits=8, separated=True, names=INKS):
        row = 4 * channels * bits // 8
        self.strips = [bytes(2 * row), bytes(row)]
        self.tags = {
            256: (4, [4]), 257: (4, [3]), 258: (3, [bits] * channels), 259: (3, [1]),
            262: (3, [5 if separated else 1]), 277: (3, [channels]), 278: (4, [2]),
            279: (4, [2 * row, row]), 282: (5, [300, 1]), 283: (5, [300, 1]), 284: (3, [1]),
            296: (3, [2])}
        if separated:
            self.tags[332] = (3, [2])
            self.tags[334] = (3, [channels])
            self.name(names)
        if channels > (4 if separated else 1):
            self.tags[338] = (3, [0] * (channels - (4 if separated else 1)))

    def name(self, names):
        self.tags[333] = (2, list("".join(name + "\0" for name in names).encode()))


def write(path, *pages, big=False, order="<"):
    """Writes a file of these tags, in either form and order of bytes."""
    place = "Q" if big else "I"
    kinds = {1: "B", 2: "B", 3: "H", 4: "I", 7: "B", 13: "I", 16: "Q"}
    head = {"<": b"II", ">": b"MM"}[order]
    head += struct.pack(order + "HHHQ", 43, 8, 0, 16) if big else struct.pack(order + "HI", 42, 8)
    data = bytearray(head)
    for index, page in enumerate(pages):
        tags = dict(page.tags)
        if page.strips is not None:
            tags.setdefault(273, (16 if big else 4, [0] * len(page.strips)))
        start = len(data)
        size = (8 if big else 2) + len(tags) * (20 if big else 12) + (8 if big else 4)
        values = bytearray()
        entries = bytearray()
        room = 8 if big else 4
        strips = bytearray()
        packed = {}
        for tag, (kind, numbers) in tags.items():
            if kind == 5:
                packed[tag] = (1, struct.pack(order + "II", *numbers))
            else:
                packed[tag] = (len(numbers), struct.pack(f"{order}{len(numbers)}{kinds[kind]}",
                                                         *numbers))
        total = size + sum(len(body) for _, body in packed.values() if len(body) > room)
        if page.strips is not None:
            offset = start + total
            offsets = []
            for strip in page.strips:
                offsets.append(offset + len(strips))
                strips += strip
            if sum(tags[273][1]) == 0:
                kind = tags[273][0]
                packed[273] = (len(offsets),
                               struct.pack(f"{order}{len(offsets)}{kinds[kind]}", *offsets))
        for tag in sorted(tags):
            count, body = packed[tag]
            if len(body) <= room:
                value = body.ljust(room, b"\0")
            else:
                value = struct.pack(order + place, start + size + len(values))
                values += body
            entries += struct.pack(order + "HH" + place, tag, tags[tag][0], count) + value
        after = start + total + len(strips)
        following = 0 if index == len(pages) - 1 else after
        data += struct.pack(order + ("Q" if big else "H"), len(tags)) + entries
        data += struct.pack(order + place, following) + values + strips
        assert len(data) == after
    path.write_bytes(data)


def findings(run, *arguments):
    outcome = run("check", *arguments, "--format", "json")
    assert outcome.errors == ""
    found = [entry for file in outcome.json["files"] for entry in file["findings"]]
    assert outcome.code == (1 if found else 0)
    assert outcome.json["schema"] == 1
    return found


@pytest.mark.parametrize("big", [False, True])
@pytest.mark.parametrize("order", ["<", ">"])
@pytest.mark.parametrize("page", [
    Page(), Page(4, names=INKS[:4]), Page(1, separated=False), Page(5, bits=16)])
def test_a_sound_page_has_no_findings(tmp_path, run, page, order, big):
    write(tmp_path / "in.tif", page, page, big=big, order=order)
    assert findings(run, "in.tif") == []
    assert run("check", "in.tif").output == "in.tif: nothing found\n"


def changed(change, **options):
    page = Page(**options)
    change(page)
    return page


def put(tag, kind, numbers):
    return lambda page: page.tags.__setitem__(tag, (kind, numbers))


def take(*tags):
    def remove(page):
        for tag in tags:
            del page.tags[tag]
    return remove


def both(*changes):
    def change(page):
        for one in changes:
            one(page)
    return change


def rename(*names):
    return lambda page: page.name(names)


CASES = [
    ("ink-names", "InkNames", ["4 names"], ["5", "NumberOfInks"], rename(*INKS[:4]), {}),
    ("ink-names", "InkNames", ["none"], ["5 names"], take(333), {}),
    ("ink-names", "InkNames", ["empty"], [], rename("", *INKS[1:]), {}),
    ("ink-names", "InkNames", ["6 names"], ["5"], rename(*INKS, "Zinc"), {}),
    ("number-of-inks", "NumberOfInks", ["6"], ["4 to 5"],
     both(put(334, 3, [6]), rename(*INKS, "Zinc")), {}),
    ("number-of-inks", "NumberOfInks", ["3"], ["4 to 5"],
     both(put(334, 3, [3]), rename(*INKS[:3])), {}),
    ("number-of-inks", "NumberOfInks", ["3"], ["4, as SamplesPerPixel"],
     both(put(334, 3, [3]), rename(*INKS[:3])), {"channels": 4}),
    ("ink-set", "InkSet", ["1", "5 inks"], ["2"], put(332, 3, [1]), {}),
    ("ink-set", "InkSet", ["none"], ["2"], take(332), {}),
    ("ink-set", "InkSet", ["7"], ["1", "2"], put(332, 3, [7]), {}),
    ("ink-set", "InkSet", ["other names"], ["2"],
     both(put(332, 3, [1]), rename("A1", "B2", "C3", "D4")), {"channels": 4}),
    ("duplicate-ink", "InkNames", ['"YELLOW"', "2", "4"], [], rename(*INKS[:4], "YELLOW"), {}),
    ("misspelt-ink", "InkNames", ['"Magneta"'], ["Magenta"],
     rename("Cyan", "Magneta", *INKS[2:]), {}),
    ("dot-range", "DotRange", ["0,300"], ["255"], put(336, 3, [0, 300]), {}),
    ("dot-range", "DotRange", ["0,255", "8 bits"], ["65535"], put(336, 3, [0, 255]), {"bits": 16}),
    ("dot-range", "DotRange", ["9,9"], ["different"], put(336, 3, [9, 9]), {}),
    ("dot-range", "DotRange", ["3 numbers"], ["2"], put(336, 3, [0, 255, 0]), {}),
    ("polarity", "DotRange", ["255,0"], ["rising"], put(336, 3, [255, 0]), {}),
    ("polarity", "PhotometricInterpretation", ["1 with tags of inks"], ["5"], put(332, 3, [2]),
     {"channels": 1, "separated": False}),
    ("extra-samples", "ExtraSamples", ["0 samples of 3"], ["2"], take(338),
     {"channels": 3, "separated": False}),
    ("extra-samples", "ExtraSamples", ["2 samples of 1"], ["0"], put(338, 3, [0, 0]),
     {"channels": 1, "separated": False}),
    ("extra-samples", "ExtraSamples", ["kind above 2"], ["alpha"], put(338, 3, [9]), {}),
    ("extra-samples", "SamplesPerPixel", ["2"], ["at least 3"], put(262, 3, [2]),
     {"channels": 2, "separated": False}),
    ("profile", "ICCProfile", ["CMYK of 4"], ["5 channels"], put(34675, 7, list(profile(b"CMYK"))),
     {}),
    ("profile", "ICCProfile", ["of no profile"], [], put(34675, 7, list(bytes(200))), {}),
    ("profile", "ICCProfile", ["128 bytes"], ["500"],
     put(34675, 7, list(profile(b"5CLR", 500))), {}),
    ("resolution-missing", "XResolution", ["none"], [], take(282, 283), {}),
    ("resolution-missing", "YResolution", ["none"], [], take(283), {}),
    ("resolution-missing", "ResolutionUnit", ["1"], ["2", "3"], put(296, 3, [1]), {}),
    ("resolution-unequal", "YResolution", ["600 dpi", "300"], ["same"], put(283, 5, [600, 1]), {}),
    ("truncated", "StripOffsets", ["1 strip"], ["2"], put(273, 4, [500]), {}),
    ("truncated", "StripByteCounts", ["strip 2 of 2"], ["bytes of the file"],
     put(279, 4, [40, 4000]), {}),
    ("truncated", "StripOffsets", ["no places"], [], take(279), {}),
    ("orientation", "Orientation", ["6, which puts the first row and its first pixel at right, top"],
     ["1"], put(274, 3, [6]), {}),
    ("byte-count", "StripByteCounts", ["39 for strip 1"], ["40"], put(279, 4, [39, 20]), {}),
    ("byte-count", "StripByteCounts", ["19 for strip 2"], ["20"], put(279, 4, [40, 19]), {}),
]


@pytest.mark.parametrize("rule, tag, found, expected, change, options", CASES)
def test_one_thing_wrong_is_found_by_its_rule(tmp_path, run, rule, tag, found, expected, change,
                                              options):
    write(tmp_path / "in.tif", Page(**options), changed(change, **options))
    ours = findings(run, "in.tif", "--rules", rule)
    assert [(entry["rule"], entry["page"], entry["tag"]) for entry in ours] == [(rule, 2, tag)]
    for word in found:
        assert word in ours[0]["found"]
    for word in expected:
        assert word in ours[0]["expected"]
    assert ours[0]["advice"]
    line = run("check", "in.tif", "--rules", rule).output.splitlines()[0]
    for word in ["in.tif: page", rule, tag, ours[0]["found"], ours[0]["expected"],
                 ours[0]["advice"]]:
        assert word in line


@pytest.mark.parametrize("dpi, unit, found", [
    ((10, 1), 2, True), ((20, 1), 2, False), ((12700, 1), 2, False), ((12800, 1), 2, True),
    ((0, 0), 2, True), ((0, 1), 2, True), ((5, 1), 3, True), ((8, 1), 3, False),
    ((4000000000, 1), 2, True)])
def test_resolutions_beyond_presses_are_found(tmp_path, run, dpi, unit, found):
    page = changed(both(put(282, 5, list(dpi)), put(283, 5, list(dpi)), put(296, 3, [unit])))
    write(tmp_path / "in.tif", page)
    ours = findings(run, "in.tif", "--rules", "resolution-implausible")
    assert [entry["tag"] for entry in ours] == (["XResolution", "YResolution"] if found else [])


@pytest.mark.parametrize("names, found", [
    (["Cyan", "Magenta", "Yellow", "Black", "Lack"], []),
    (["Cyan", "Magenta", "Yellow", "Lack", "Aqua"], ["Black"]),
    (["cyan", "MAGENTA", "Yelow", "Blakc", "Orange"], ["Yellow", "Black"])])
def test_only_names_of_missing_process_inks_are_offered(tmp_path, run, names, found):
    write(tmp_path / "in.tif", changed(rename(*names)))
    ours = findings(run, "in.tif", "--rules", "misspelt-ink")
    assert [entry["expected"] for entry in ours] == found


def test_pages_of_unequal_polarity_are_found(tmp_path, run):
    low, high = Page(1, separated=False), changed(put(262, 3, [0]), channels=1, separated=False)
    write(tmp_path / "in.tif", low, high, low)
    (found,) = findings(run, "in.tif", "--rules", "polarity")
    assert found["page"] == 2 and "MinIsWhite" in found["found"]


@pytest.mark.parametrize("size", range(900, 4000, 700))
def test_a_cut_file_is_found(tmp_path, run, size):
    write_inks(tmp_path / "in.tif", random_samples(1, (37, 53, 5), 8), INKS, rowsperstrip=5)
    cut(tmp_path / "in.tif", size)
    found = findings(run, "in.tif", "--rules", "truncated")
    assert [entry["rule"] for entry in found] == ["truncated"]


def test_a_second_page_that_is_lost_is_found(tmp_path, run):
    write(tmp_path / "in.tif", Page(), Page())
    whole = (tmp_path / "in.tif").stat().st_size
    cut(tmp_path / "in.tif", whole // 2 + 40)
    (found,) = findings(run, "in.tif")
    assert (found["rule"], found["page"], found["tag"]) == ("truncated", 2, "directory")


def test_directories_in_a_ring_come_to_an_end(tmp_path, run):
    write(tmp_path / "in.tif", Page())
    data = bytearray((tmp_path / "in.tif").read_bytes())
    (count,) = struct.unpack_from("<H", data, 8)
    struct.pack_into("<I", data, 10 + 12 * count, 8)
    (tmp_path / "in.tif").write_bytes(data)
    (found,) = findings(run, "in.tif")
    assert "earlier page" in found["found"]


@pytest.mark.parametrize("data", [b"", b"II", b"no picture at all", b"II*\0\xff\xff\0\0",
                                  b"II*\0\x08\0\0\0\xff\xff", b"II*\0\x08\0\0\0\0\0\0\0\0\0",
                                  b"MM\0+\0\x08\0\0\xff\xff\xff\xff\xff\xff\xff\xff"])
def test_what_cannot_be_read_hides_no_other_file(tmp_path, run, data):
    (tmp_path / "bad.tif").write_bytes(data)
    write(tmp_path / "in.tif", changed(take(333)))
    outcome = run("check", "bad.tif", "in.tif", "--format", "json")
    assert outcome.code == 3
    assert outcome.errors.startswith("pelkraft: bad.tif: ") and outcome.errors.count("\n") == 1
    bad, sound = outcome.json["files"]
    assert bad["error"] and not bad["findings"]
    assert [entry["rule"] for entry in sound["findings"]] == ["ink-names"]


WHOLE = "; get a whole copy of it"
NO_TIFF = "; supported are TIFF and BigTIFF"


@pytest.mark.parametrize("big", [False, True])
@pytest.mark.parametrize("order", ["<", ">"])
def test_a_file_without_a_page_is_told_by_every_verb_alike(tmp_path, run, big, order):
    tifffile.imwrite(tmp_path / "in.tif", numpy.zeros((9, 8), numpy.uint8), metadata=None,
                     photometric="minisblack", bigtiff=big, byteorder=order)
    data = (tmp_path / "in.tif").read_bytes()
    head, entry = (16, 20) if big else (8, 12)
    place, number = head // 2, "big" if order == ">" else "little"
    at = int.from_bytes(data[place:head], number)
    count_bytes = 8 if big else 2
    count = int.from_bytes(data[at:at + count_bytes], number)
    first = at + count_bytes
    last = first + count * entry

    def led_to(offset, more=b""):
        return data[:place] + offset.to_bytes(head - place, number) + data[head:] + more
    # Three bytes of the other order are the same in both forms.
    told = head if order == "<" else 8
    cases = [
        (b"", "is not a TIFF file, since it is empty" + NO_TIFF),
        (b"\x89PNG\r\n\x1a\n" + bytes(20), "is not a TIFF file but a PNG file" + NO_TIFF),
        (data[:3], f"is truncated: a header takes {told} bytes, and the file ends after 3" + WHOLE),
        (data[:7], f"is truncated: a header takes {head} bytes, and the file ends after 7" + WHOLE),
        (data[:head], f"is truncated: the directory of page 1 begins at byte {at}, and the file "
                      f"ends after {head}" + WHOLE),
        (data[:last - 5], f"is truncated: the directory of page 1 has {count} entries from byte "
                          f"{first} on, and the file ends after {last - 5}" + WHOLE),
        (led_to(0), "is damaged: its header names no directory, so that it has no page" + WHOLE),
        (led_to(len(data), bytes(32)), f"is damaged: the directory of page 1, at byte {len(data)}, "
                                       "has no entries" + WHOLE)]
    for broken, words in cases:
        (tmp_path / "broken.tif").write_bytes(broken)
        for verb in (["check", "broken.tif"], ["info", "broken.tif"],
                     ["convert", "broken.tif", "out.tif"]):
            outcome = run(*verb)
            assert (outcome.code, outcome.errors) == (3, f"pelkraft: broken.tif: {words}\n")


def test_no_byte_of_a_file_can_crash_it(tmp_path, run):
    """Each byte of the directory in its turn is something else."""
    write(tmp_path / "in.tif", changed(put(34675, 7, list(profile(b"5CLR")))))
    data = (tmp_path / "in.tif").read_bytes()
    for place in range(0, 200):
        for value in (0, 0xFF):
            broken = bytearray(data)
            broken[place] = value
            (tmp_path / "broken.tif").write_bytes(broken)
            assert run("check", "broken.tif").code in (0, 1, 3)


def test_rules_are_listed_and_chosen(tmp_path, run, succeed, refuse):
    listed = succeed("check", "--rules", "list").output.splitlines()
    assert [line.split()[0] for line in listed] == RULES
    write(tmp_path / "in.tif", changed(both(take(333), put(296, 3, [1]))))
    assert [entry["rule"] for entry in findings(run, "in.tif")] == ["ink-names",
                                                                    "resolution-missing"]
    assert [entry["rule"] for entry in findings(run, "in.tif", "--rules", "truncated,ink-names")] \
        == ["ink-names"]
    outcome = run("check", "in.tif", "--rules", "ink-nmaes")
    assert outcome.code == 2 and "did you mean ink-names?" in outcome.errors
    assert run("check").code == 2


def test_sarif_names_file_page_and_rule(tmp_path, run):
    write(tmp_path / "in.tif", Page(), changed(both(take(333), put(336, 3, [0, 300]))))
    outcome = run("check", "in.tif", "--format", "sarif")
    assert outcome.code == 1
    log = outcome.json
    assert log["version"] == "2.1.0"
    (job,) = log["runs"]
    assert [rule["id"] for rule in job["tool"]["driver"]["rules"]] == RULES
    assert [result["ruleId"] for result in job["results"]] == ["ink-names", "dot-range"]
    for result in job["results"]:
        (location,) = result["locations"]
        assert location["physicalLocation"]["artifactLocation"]["uri"] == "in.tif"
        assert location["logicalLocations"][0]["name"] == "page 2"
        assert result["partialFingerprints"]
    again = run("check", "in.tif", "--format", "sarif").json["runs"][0]["results"]
    assert again == job["results"]


def test_files_of_other_programs_are_sound(tmp_path, run):
    write_inks(tmp_path / "in.tif", random_samples(1, (37, 53, 5), 8), INKS, tile=(16, 32),
               resolution=(300, 300), resolutionunit="INCH")
    assert findings(run, "in.tif") == []
    tifffile.imwrite(tmp_path / "in.tif", numpy.zeros((30, 20, 3), numpy.uint8), metadata=None,
                     photometric="rgb", resolution=(300, 300), resolutionunit="INCH",
                     planarconfig="contig", rowsperstrip=4)
    assert findings(run, "in.tif") == []
