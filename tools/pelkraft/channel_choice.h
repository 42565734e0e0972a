#pragma once

#include "tools/pelkraft/channel.h"

#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// Names the channel of a page that gives the bytes of each in-colour.
struct ChannelChoice
{
    std::vector<int> map;
    // By name; the others took the inks that no name claimed, in their order.
    std::vector<bool> byName;
    // Inks of the page that no in-colour takes.
    std::vector<int> unused;
    // Alpha channels, which no in-colour may take.
    std::vector<int> alphas;
};

// Names count in any case. A page with fewer inks than in-colours is a bad input file.
ChannelChoice ChooseChannels(const std::vector<std::string>& inColours,
                             const std::vector<Channel>& channels, const std::string& path);

// Tells which in-colours took channels by their order, if any did.
std::string OrderWords(const std::vector<std::string>& inColours,
                       const std::vector<Channel>& channels, const ChannelChoice& choice);

// For a message: the channel's number, and its name if it has one.
std::string ChannelWords(const std::vector<Channel>& channels, int index);
// Warns of one that no in-colour takes.
std::string UnusedChannelWords(const std::vector<Channel>& channels, int index);

} // namespace zvk::Pelkraft::Client
