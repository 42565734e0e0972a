# SPDX-License-Identifier: Apache-2.0
"""Which channels of a page a job means, and what the new page says of its own."""

from __future__ import annotations

from dataclasses import dataclass, replace
from typing import Optional, Sequence, Union

from .. import Constant
from .errors import INPUT, PageError
from .jobs import ChannelEntry
from .ink_codes import TURNED, NewRange, kind_of
from .picture import (INK_SET_OTHER, MASK, MIN_IS_BLACK, PALETTE, SEPARATED, UNSPECIFIED_EXTRA,
                      Channel, Picture, Tags)

# An entry of a plan's map; None is an empty channel.
Entry = Union[int, Constant, None]


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
        alpha = ", ".join(shown(channels, i) for i in alphas)
        raise PageError(INPUT, f"{path}: has {len(channels)} "
                               f"channel{'s' if len(channels) != 1 else ''}"
                               f"{', of which alpha is no ink: ' if alphas else ''}{alpha}; "
                               "supported are pictures with a channel for each of the pattern's "
                               f"{len(in_colours)} in-colours")
    entries: dict[int, int] = {}
    for place, name in enumerate(in_colours):
        found = next((i for i in free if channels[i].bears(name)), None)
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


def plan_tags(picture: Picture, entries: Optional[Sequence[Entry]], bits: int, repeat: int,
              range_: NewRange) -> tuple[tuple[Channel, ...], Tags, list[str]]:
    """Channels and tags of a converted page, and what it loses."""
    losses = list(range_.losses)
    tags = replace(picture.tags, resolution=_widened(picture.tags.resolution, repeat),
                   photometric=range_.photometric, dot_ranges=range_.dot_ranges)
    order = range(len(picture.channels)) if entries is None else entries
    plan = _plan_inks if tags.photometric == SEPARATED else _plan_colours
    channels, tags = plan(picture.channels, order, tags, losses)
    if bits != picture.bits:
        tags = replace(tags, palette=b"")
        if tags.photometric == PALETTE:
            tags = _drop_colour(tags, losses, "palette numbers mean nothing at another depth")
        elif tags.photometric == MASK:
            tags = _drop_colour(tags, losses, "a transparency mask has 1 bit")
    return channels, tags, losses


def _plan_inks(channels: Sequence[Channel], order: Sequence[Entry], tags: Tags,
               losses: list[str]) -> tuple[tuple[Channel, ...], Tags]:
    """Inks that moved are named anew; extra samples at the end stay what they are."""
    count = len(order)
    while count and isinstance(order[count - 1], int) and \
            channels[order[count - 1]].extra is not None:
        count -= 1
    count = count or len(order)
    if _starts_in_order(order, count) and \
            count == sum(channel.extra is None for channel in channels):
        return _moved(channels, order, count), tags
    names = tuple(_new_name(channels, entry) for entry in order[:count])
    new = _moved(channels, order, count)
    if tags.profile:
        losses.append("the inks have changed; written without the colour profile")
    return ((*map(Channel, names), *new[count:]),
            replace(tags, ink_set=INK_SET_OTHER, ink_names=names, profile=b"", palette=b""))


def _plan_colours(channels: Sequence[Channel], order: Sequence[Entry], tags: Tags,
                  losses: list[str]) -> tuple[tuple[Channel, ...], Tags]:
    colours = sum(channel.extra is None for channel in channels)
    kind = kind_of(tags.photometric)
    if not _starts_in_order(order, colours):
        if tags.photometric in TURNED:
            if tags.profile:
                losses.append("the channels have changed; written without the colour profile")
            tags = replace(tags, profile=b"", palette=b"")
        elif colours < 2 or len(order) < colours:
            tags = _drop_colour(tags, losses, f"the chosen channels are no longer {kind}")
        else:
            losses.append(f"the channels have changed, and the page still says {kind}")
    if tags.photometric in TURNED:
        colours = 1
    return _moved(channels, order, colours), tags


def _drop_colour(tags: Tags, losses: list[str], why: str) -> Tags:
    losses.append(f"{why}; written as MinIsBlack")
    return replace(tags, photometric=MIN_IS_BLACK, profile=b"", palette=b"")


def _starts_in_order(order: Sequence[Entry], count: int) -> bool:
    return list(order[:count]) == list(range(count))


def _moved(channels: Sequence[Channel], order: Sequence[Entry],
           colours: int) -> tuple[Channel, ...]:
    """The channels in their new order, of which so many are inks or colours."""
    new = [channels[entry] if isinstance(entry, int) else Channel() for entry in order]
    return tuple(replace(channel, extra=None if i < colours else channel.extra or UNSPECIFIED_EXTRA)
                 for i, channel in enumerate(new))


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
             if isinstance(entry, str) and channel.bears(entry)]
    if not found:
        names = "".join(f", {channel.name}" for channel in channels if channel.name)
        raise PageError(INPUT, f"{path}: has no channel {entry!r}; supported are 0 to "
                               f"{len(channels) - 1}{names} and - for an empty channel")
    return found[0]


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
