# SPDX-License-Identifier: Apache-2.0
"""Which channels a job means."""

from dataclasses import replace

import numpy
import pytest

from pelkraft import Constant
from pelkraft.pages import Channel, PageError, Picture, Tags
from pelkraft.pages.channels import choose_channels, find_channels, plan_tags
from pelkraft.pages.ink_codes import plan_range

CMYK = tuple(map(Channel, ("Cyan", "Magenta", "Yellow", "Black")))
VARNISH = Channel("Varnish", 0)


def page_of(channels, photometric=5, ink_names=True):
    names = tuple(channel.name for channel in channels) if ink_names else ()
    pixels = numpy.zeros((1, 1, len(channels)), numpy.uint8)
    return Picture(pixels, 1, 8, False, tuple(channels), Tags(photometric, ink_names=names))


@pytest.mark.parametrize("names, channels, chosen, unused", [
    (["Cyan", "Magenta", "Yellow", "Black"], CMYK, [0, 1, 2, 3], []),
    (["BLACK", "cyan"], CMYK, [3, 0], [1, 2]),
    (["varnish"], (VARNISH, *CMYK), [0], [1, 2, 3, 4])])
def test_in_colours_take_channels_by_name(names, channels, chosen, unused):
    choice = choose_channels(names, page_of(channels), "a.tif")
    assert (choice.entries, choice.unused, choice.notes) == (chosen, unused, [])


@pytest.mark.parametrize("names, channels, chosen, said", [
    (["Gold", "Cyan", "Silver"], CMYK, [1, 0, 2],
     "Gold from channel 1 (Magenta), Silver from channel 2 (Yellow)"),
    (["Cyan", "Cyan"], CMYK, [0, 1], "Cyan from channel 1 (Magenta)"),
    (["Gold"], (Channel(), VARNISH), [0], "Gold from channel 0"),
    (["Gold", "varnish"], (VARNISH, Channel("Channel 1")), [1, 0],
     "Gold from channel 1 (Channel 1)"),
    (["Gold", "Tin"], (Channel(), Channel("", 1), Channel("", 0)), [0, 2],
     "Gold from channel 0, Tin from channel 2")])
def test_other_channels_are_taken_in_their_order(names, channels, chosen, said):
    choice = choose_channels(names, page_of(channels), "a.tif")
    assert choice.entries == chosen
    assert choice.notes[0].endswith("in their order: " + said)
    alpha = ["channel 1 is alpha, which is no ink, and is left out"]
    assert choice.notes[1:] == (alpha if channels[1].extra else [])


def test_alpha_makes_no_in_colour():
    with pytest.raises(PageError, match=r"has 2 channels, of which alpha is no ink: 1 \(B\); "):
        choose_channels(["A", "B"], page_of((Channel("A"), Channel("B", 2))), "a.tif")


def test_entries_are_numbers_names_and_constants():
    entries = [3, "0", "black", "-", Constant(5), "VARNISH"]
    with pytest.raises(PageError, match="has no channel '0'"):
        find_channels(entries, (*CMYK, VARNISH), "a.tif")
    entries.remove("0")
    assert find_channels(entries, (*CMYK, VARNISH), "a.tif") == [3, 3, None, Constant(5), 4]
    with pytest.raises(PageError, match="has no channel 'black'; supported are 0 to 0 and - for"):
        find_channels(["black"], (Channel(),), "a.tif")


def plan(channels, photometric, entries, bits=8):
    page = page_of(channels, photometric)
    page.tags = replace(page.tags, profile=b"profile", palette=b"palette")
    return plan_tags(page, entries, bits, 1, plan_range(page, bits, False))


ALPHA = Channel("", 2)


@pytest.mark.parametrize("channels, photometric, entries", [
    ((*CMYK, ALPHA), 5, [0, 1, 2, 3, 4]), (CMYK, 5, [0, 1, 2, 3]), ((Channel(),), 1, [0]),
    ((Channel(),) * 3, 2, [0, 1, 2])])
def test_channels_that_stay_keep_their_tags(channels, photometric, entries):
    for given in (None, entries):
        new, tags, losses = plan(channels, photometric, given)
        assert (new, tags.profile, tags.ink_set, losses) == (channels, b"profile", None, [])


@pytest.mark.parametrize("channels, photometric, entries, names, kinds, profile, said", [
    (CMYK, 5, [3, None], ["Black", "Empty"], [None] * 2, False,
     "the inks have changed; written without the colour profile"),
    ((*CMYK, ALPHA), 5, [1, 4, 0, 4], ["Magenta", "Channel 4", "Cyan", ""], [None] * 3 + [2], False,
     "the inks have changed; written without the colour profile"),
    ((Channel("A"), VARNISH), 1, [1, 0], ["Varnish", "A"], [None, 0], False,
     "the channels have changed; written without the colour profile"),
    ((Channel("R"), Channel("G"), Channel("B")), 2, [2, 1, 0], ["B", "G", "R"], [None] * 3, True,
     "the channels have changed, and the page still says RGB"),
    ((Channel("R"), Channel("G"), Channel("B")), 2, [2], ["B"], [None], False,
     "the chosen channels are no longer RGB; written as MinIsBlack")])
def test_what_a_page_loses_with_its_channels_is_told(channels, photometric, entries, names, kinds,
                                                     profile, said):
    new, tags, losses = plan(channels, photometric, entries)
    assert ([channel.name for channel in new], [channel.extra for channel in new]) == (names, kinds)
    assert (bool(tags.profile), losses) == (profile, [said])


def test_a_palette_means_nothing_at_another_depth():
    _, tags, losses = plan((Channel(),), 3, None, bits=16)
    assert (tags.photometric, tags.palette, tags.profile) == (1, b"", b"")
    assert losses == ["palette numbers mean nothing at another depth; written as MinIsBlack"]
