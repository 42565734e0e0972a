# SPDX-License-Identifier: Apache-2.0
"""Which channels of a page a job means, and what the new page says of its own."""

from __future__ import annotations

import string
from dataclasses import replace
from typing import Optional, Sequence, Union

from .. import Constant
from .errors import INPUT, PageError
from .jobs import ChannelEntry
from .picture import (INK_SET_OTHER, MIN_IS_BLACK, MIN_IS_WHITE, PALETTE, SEPARATED,
                      UNSPECIFIED_EXTRA, Channel, Picture, Tags)

# An entry of a plan's map; None is an empty channel.
Entry = Union[int, Constant, None]

UPPER_CASE = str.maketrans(string.ascii_lowercase, string.ascii_uppercase)


def find_channels(entries: Sequence[ChannelEntry], channels: Sequence[Channel],
                  path: str) -> list[Entry]:
    """The map of a plan. A channel that the page doesn't have is refused."""
    return [_find(entry, channels, path) for entry in entries]


def choose_channels(in_colours: Sequence[str], channels: Sequence[Channel],
                    path: str) -> tuple[list[int], list[int]]:
    """The channel of each in-colour: that of its name in any case of letters, else the next that
    no name claimed, inks and colours before extra samples. Also the inks and colours that none
    takes."""
    if len(channels) < len(in_colours):
        raise PageError(INPUT, f"{path}: has {len(channels)} channels; supported are pictures "
                               f"with a channel for each of the pattern's {len(in_colours)} "
                               "in-colours")
    free = list(range(len(channels)))
    chosen: list[Optional[int]] = []
    for name in in_colours:
        found = next((i for i in free if channels[i].name and
                      _upper(channels[i].name) == _upper(name)), None)
        chosen.append(found)
        if found is not None:
            free.remove(found)
    free.sort(key=lambda i: channels[i].extra is not None)
    entries = [free.pop(0) if channel is None else channel for channel in chosen]
    return entries, sorted(i for i in free if channels[i].extra is None)


def plan_tags(picture: Picture, entries: Optional[Sequence[Entry]], bits: int,
              repeat: int) -> tuple[tuple[Channel, ...], Tags]:
    """Channels and tags of a converted page."""
    tags = replace(picture.tags, resolution=_widened(picture.tags.resolution, repeat))
    if bits != picture.bits:
        tags = replace(tags, palette=b"")
        if tags.photometric == PALETTE:
            tags = replace(tags, photometric=MIN_IS_BLACK)
    if entries is None:
        return picture.channels, tags
    tags = replace(tags, profile=b"", palette=b"")
    moved = [picture.channels[i] if isinstance(i, int) else Channel() for i in entries]
    if tags.photometric == SEPARATED:
        names = tuple(_new_name(picture.channels, i) for i in entries)
        return (tuple(map(Channel, names)),
                replace(tags, ink_set=INK_SET_OTHER, ink_names=names))
    colours = sum(channel.extra is None for channel in picture.channels)
    keeps_colours = list(entries[:colours]) == list(range(colours))
    if not keeps_colours:
        colours = 1
        if tags.photometric not in (MIN_IS_WHITE, MIN_IS_BLACK):
            tags = replace(tags, photometric=MIN_IS_BLACK)
    return (tuple(replace(channel, extra=None) if i < colours else
                  replace(channel, extra=channel.extra or UNSPECIFIED_EXTRA)
                  for i, channel in enumerate(moved)), tags)


def shown(channels: Sequence[Channel], index: int) -> str:
    name = channels[index].name
    return f"{index} ({name})" if name else str(index)


def _find(entry: ChannelEntry, channels: Sequence[Channel], path: str) -> Entry:
    if isinstance(entry, Constant):
        return entry
    if entry == "-":
        return None
    if isinstance(entry, int) and entry < len(channels):
        return entry
    found = [i for i, channel in enumerate(channels)
             if isinstance(entry, str) and _upper(channel.name) == _upper(entry)]
    if not found:
        names = "".join(f", {channel.name}" for channel in channels if channel.name)
        raise PageError(INPUT, f"{path}: has no channel {entry!r}; supported are 0 to "
                               f"{len(channels) - 1}{names} and - for an empty channel")
    return found[0]


def _upper(name: str) -> str:
    return name.translate(UPPER_CASE)


def _new_name(channels: Sequence[Channel], entry: Entry) -> str:
    if entry is None:
        return "Empty"
    if isinstance(entry, Constant):
        return f"Constant {entry.sample}"
    return channels[entry].name or f"Channel {entry}"


def _widened(resolution: Optional[tuple], repeat: int) -> Optional[tuple]:
    """Repeated pixels stand closer together."""
    if resolution is None or repeat == 1:
        return resolution
    (over, under), down = resolution
    return (over * repeat, under), down
