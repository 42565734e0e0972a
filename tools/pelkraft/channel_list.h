#pragma once

#include "tools/pelkraft/ink_names.h"

#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

struct ChannelListOption
{
    const char* name;
    // False where a caller refuses empty channels, so that none is offered.
    bool takesEmpty;
};

// Reads a list such as "2,1,0,3", "Cyan,-,Black": for each new channel the number of an old one,
// from 0, its name in any case, or "-" for an empty one, which becomes -1. What the page doesn't
// have is wrong usage.
std::vector<int> ParseChannelList(const std::string& list, const std::vector<Channel>& channels,
                                  const std::string& path, const ChannelListOption& option);

} // namespace zvk::Pelkraft::Client
