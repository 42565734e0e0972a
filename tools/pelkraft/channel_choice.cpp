#include "tools/pelkraft/channel_choice.h"

#include "pattern/pattern_words.h"
#include "tools/pelkraft/failure.h"

#include <algorithm>

namespace zvk::Pelkraft::Client {
namespace {

constexpr int noChannel = -1;

int FindByName(const std::string& name, const std::vector<Channel>& channels,
               const std::vector<bool>& taken)
{
    for (std::size_t i = 0; i < channels.size(); ++i) {
        if (!taken[i] && !channels[i].name.empty() &&
            UpperCase(channels[i].name) == UpperCase(name))
            return static_cast<int>(i);
    }
    return noChannel;
}

// Inks and colours come before extra samples.
int FindNext(const std::vector<Channel>& channels, const std::vector<bool>& taken)
{
    for (const bool extra : {false, true}) {
        for (std::size_t i = 0; i < channels.size(); ++i) {
            if (!taken[i] && channels[i].extra == extra)
                return static_cast<int>(i);
        }
    }
    return noChannel;
}

} // namespace

ChannelChoice ChooseChannels(const std::vector<std::string>& inColours,
                             const std::vector<Channel>& channels, const std::string& path)
{
    if (channels.size() < inColours.size())
        throw Failure(ExitCode::BadInput, path,
                      "has " + std::to_string(channels.size()) +
                          (channels.size() == 1 ? " channel" : " channels") +
                          "; supported are pictures with a channel for each of the pattern's " +
                          std::to_string(inColours.size()) + " in-colours");
    ChannelChoice choice;
    std::vector<bool> taken(channels.size());
    for (const std::string& name : inColours) {
        const int channel = FindByName(name, channels, taken);
        choice.map.push_back(channel);
        choice.byName.push_back(channel != noChannel);
        if (channel != noChannel)
            taken[static_cast<std::size_t>(channel)] = true;
    }
    for (int& channel : choice.map) {
        if (channel != noChannel)
            continue;
        channel = FindNext(channels, taken);
        taken[static_cast<std::size_t>(channel)] = true;
    }
    for (std::size_t i = 0; i < channels.size(); ++i) {
        if (!taken[i] && !channels[i].extra)
            choice.unused.push_back(static_cast<int>(i));
    }
    return choice;
}

std::string ChannelWords(const std::vector<Channel>& channels, int index)
{
    const std::string& name = channels[static_cast<std::size_t>(index)].name;
    return std::to_string(index) + (name.empty() ? "" : " (" + name + ")");
}

} // namespace zvk::Pelkraft::Client
