# SPDX-License-Identifier: Apache-2.0
"""Which channels a job means."""

import numpy
import pytest

from pelkraft import Constant
from pelkraft.pages import Channel, PageError, Picture, Tags
from pelkraft.pages.channels import choose_channels, empty_sample, find_channels

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
    with pytest.raises(PageError, match="has 2 channels, 1 of them alpha; supported are"):
        choose_channels(["A", "B"], page_of((Channel("A"), Channel("B", 2))), "a.tif")


@pytest.mark.parametrize("photometric, sample", [(0, 0), (1, 3), (2, 3), (5, 0)])
def test_an_empty_channel_has_no_ink(photometric, sample):
    assert empty_sample(photometric, 2) == sample


def test_entries_are_numbers_names_and_constants():
    entries = [3, "0", "black", "-", Constant(5), "VARNISH"]
    with pytest.raises(PageError, match="has no channel '0'"):
        find_channels(entries, (*CMYK, VARNISH), "a.tif")
    entries.remove("0")
    assert find_channels(entries, (*CMYK, VARNISH), "a.tif") == [3, 3, None, Constant(5), 4]
    with pytest.raises(PageError, match="has no channel 'black'; supported are 0 to 0 and - for"):
        find_channels(["black"], (Channel(),), "a.tif")
