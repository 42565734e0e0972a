#include "tools/pelkraft/channel_list.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/near_names.h"

#include <algorithm>
#include <charconv>

namespace zvk::Pelkraft::Client {
namespace {

// The tag that counts the samples of a pixel holds no larger number.
constexpr std::size_t mostChannels = 65535;

std::string Trimmed(const std::string& text)
{
    const auto first = text.find_first_not_of(' ');
    return first == std::string::npos ? ""
                                      : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// The words of a message about an entry that is no channel.
std::string Offer(const std::string& entry, const std::vector<Channel>& channels,
                  const ChannelListOption& option)
{
    std::string offer = "0 to " + std::to_string(channels.size() - 1);
    std::vector<std::string> names;
    for (const Channel& channel : channels) {
        if (channel.name.empty())
            continue;
        offer += ", " + channel.name;
        names.push_back(channel.name);
    }
    if (option.takesEmpty)
        offer += " and - for an empty channel";
    const std::string near = NearestName(entry, names);
    return offer + (near.empty() ? std::string() : "; did you mean " + near + '?');
}

int FindChannel(const std::string& entry, const std::vector<Channel>& channels,
                const std::string& path, const ChannelListOption& option)
{
    if (entry == "-")
        return -1;
    int number = -1;
    const char* const end = entry.data() + entry.size();
    const auto read = std::from_chars(entry.data(), end, number);
    if (read.ec == std::errc() && read.ptr == end && number >= 0 &&
        number < static_cast<int>(channels.size()))
        return number;
    const auto found = std::find_if(channels.begin(), channels.end(),
                                    [&](const Channel& channel) { return channel.Bears(entry); });
    if (found == channels.end())
        throw Failure(ExitCode::Usage, path,
                      "has no channel \"" + entry + "\" for " + option.name + "; supported are " +
                          Offer(entry, channels, option));
    return static_cast<int>(found - channels.begin());
}

} // namespace

std::vector<int> ParseChannelList(const std::string& list, const std::vector<Channel>& channels,
                                  const std::string& path, const ChannelListOption& option)
{
    std::vector<int> map;
    std::size_t start = 0;
    while (start <= list.size()) {
        const std::size_t end = std::min(list.find(',', start), list.size());
        map.push_back(
            FindChannel(Trimmed(list.substr(start, end - start)), channels, path, option));
        start = end + 1;
        if (map.size() > mostChannels)
            throw Failure(ExitCode::Usage, path,
                          std::string(option.name) +
                              " names too many channels; supported are up to 65535");
    }
    return map;
}

} // namespace zvk::Pelkraft::Client
