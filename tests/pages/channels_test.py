# SPDX-License-Identifier: Apache-2.0
"""Which channels a job means."""

import pytest

from pelkraft import Constant
from pelkraft.pages import Channel, PageError
from pelkraft.pages.channels import choose_channels, find_channels

CMYK = tuple(map(Channel, ("Cyan", "Magenta", "Yellow", "Black")))
VARNISH = Channel("Varnish", 0)


@pytest.mark.parametrize("names, channels, chosen, unused", [
    (["Cyan", "Magenta", "Yellow", "Black"], CMYK, [0, 1, 2, 3], []),
    (["BLACK", "cyan"], CMYK, [3, 0], [1, 2]),
    (["Gold", "Cyan", "Silver"], CMYK, [1, 0, 2], [3]),
    (["Gold", "Silver", "Bronze", "Lead", "Tin"], (VARNISH, *CMYK), [1, 2, 3, 4, 0], []),
    (["varnish", "Gold"], (VARNISH, *CMYK), [0, 1], [2, 3, 4]),
    (["Gold"], (Channel(), VARNISH), [0], []),
    (["Cyan", "Cyan"], CMYK, [0, 1], [2, 3])])
def test_in_colours_take_channels_by_name_and_then_in_order(names, channels, chosen, unused):
    assert choose_channels(names, channels, "a.tif") == (chosen, unused)


def test_entries_are_numbers_names_and_constants():
    entries = [3, "0", "black", "-", Constant(5), "VARNISH"]
    with pytest.raises(PageError, match="has no channel '0'"):
        find_channels(entries, (*CMYK, VARNISH), "a.tif")
    entries.remove("0")
    assert find_channels(entries, (*CMYK, VARNISH), "a.tif") == [3, 3, None, Constant(5), 4]
    with pytest.raises(PageError, match="has no channel 'black'; supported are 0 to 0 and - for"):
        find_channels(["black"], (Channel(),), "a.tif")
