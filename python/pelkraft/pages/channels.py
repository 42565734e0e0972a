# SPDX-License-Identifier: Apache-2.0
"""Which channels of a page a job means, and what the new page says of its own."""

from __future__ import annotations

import string
from dataclasses import dataclass, replace
from typing import Optional, Sequence, Union

from .. import Constant
from .errors import INPUT, PageError
from .jobs import ChannelEntry
from .picture import (INK_SET_OTHER, MIN_IS_BLACK, MIN_IS_WHITE, PALETTE, RGB, SEPARATED,
                      UNSPECIFIED_EXTRA, Channel, Picture, Tags)

# An entry of a plan's map; None is an empty channel.
Entry = Union[int, Constant, None]

UPPER_CASE = str.maketrans(string.ascii_lowercase, string.ascii_uppercase)


def find_channels(entries: Sequence[ChannelEntry], channels: Sequence[Channel],
                  path: str) -> list[Entry]:
    """The map of a plan. A channel that the page doesn't have is refused."""
    return [_find(entry, channels, path) for entry in entries]


@dataclass(frozen=True)
class Choice:
    """The channel of each in-colour, what else there is, and what is to be said of it."""

    entries: list[int]
    # Inks that no in-colour takes.
    unused: list[int]
    # About in-colours that took a channel by its order, and about alpha.
    notes: list[str]


def choose_channels(in_colours: Sequence[str], picture: Picture, path: str) -> Choice:
    """Each in-colour takes the ink of its name in any case of letters, else the next one that no
    name claims. Alpha is no ink."""
    channels = picture.channels
    alphas = [i for i, channel in enumerate(channels) if channel.extra]
    free = [i for i in range(len(channels)) if i not in alphas]
    if len(free) < len(in_colours):
        alpha = f", {len(alphas)} of them alpha" if alphas else ""
        raise PageError(INPUT, f"{path}: has {len(channels)} channels{alpha}; supported are "
                               f"pictures with a channel for each of the pattern's {len(in_colours)} "
                               "in-colours")
    entries: dict[int, int] = {}
    for place, name in enumerate(in_colours):
        found = next((i for i in free if channels[i].name and
                      _upper(channels[i].name) == _upper(name)), None)
        if found is not None:
            entries[place] = found
            free.remove(found)
    pairs = []
    for place, name in enumerate(in_colours):
        if place in entries:
            continue
        found = free[0]
        entries[place] = found
        free.remove(found)
        pairs.append(f"{name} from channel {shown(channels, found)}")
    notes = [f"channel {shown(channels, i)} is alpha, which is no ink, and is left out"
             for i in alphas]
    if pairs:
        notes.insert(0, "no channel bears the names of these in-colours, which take channels in "
                        "their order: " + ", ".join(pairs))
    return Choice([entries[place] for place in range(len(in_colours))], free, notes)


def empty_sample(photometric: int, bits: int) -> int:
    """The sample of no ink."""
    return (1 << bits) - 1 if photometric in (MIN_IS_BLACK, RGB) else 0


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
