#include "tools/pelkraft/channel_choice.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/findings.h"

namespace zvk::Pelkraft::Client {
namespace {

constexpr int noChannel = -1;

// A list of channels for a message.
std::string ListWords(const std::vector<Channel>& channels, const std::vector<int>& list)
{
    std::string words;
    for (const int channel : list)
        words.append(words.empty() ? "" : ", ").append(ChannelWords(channels, channel));
    return words;
}

void RefuseTooFew(const std::vector<std::string>& inColours, const std::vector<Channel>& channels,
                  const ChannelChoice& choice, const std::string& path)
{
    if (channels.size() - choice.alphas.size() >= inColours.size())
        return;
    throw Failure(ExitCode::BadInput, path,
                  "has " + Counted(channels.size(), "channel", "channels") +
                      (choice.alphas.empty()
                           ? std::string()
                           : ", of which alpha is no ink: " + ListWords(channels, choice.alphas)) +
                      "; supported are pictures with a channel for each of the pattern's " +
                      std::to_string(inColours.size()) + " in-colours");
}

// Shares the channels of a page out, each once.
class ChannelSearch
{
public:
    explicit ChannelSearch(const std::vector<Channel>& newChannels)
        : channels(newChannels), taken(channels.size())
    {}

    int TakeByName(const std::string& name)
    {
        return Take([&](const Channel& channel) { return channel.Bears(name); });
    }

    int TakeNext()
    {
        return Take([](const Channel&) { return true; });
    }

    // Inks that nobody took.
    std::vector<int> Left() const
    {
        std::vector<int> left;
        for (std::size_t i = 0; i < channels.size(); ++i) {
            if (!taken[i] && channels[i].ink)
                left.push_back(static_cast<int>(i));
        }
        return left;
    }

private:
    template <typename Suits>
    int Take(const Suits& suits)
    {
        for (const int channel : Left()) {
            const auto index = static_cast<std::size_t>(channel);
            if (!suits(channels[index]))
                continue;
            taken[index] = true;
            return channel;
        }
        return noChannel;
    }

    const std::vector<Channel>& channels;
    std::vector<bool> taken;
};

} // namespace

ChannelChoice ChooseChannels(const std::vector<std::string>& inColours,
                             const std::vector<Channel>& channels, const std::string& path)
{
    ChannelChoice choice;
    for (std::size_t i = 0; i < channels.size(); ++i) {
        if (!channels[i].ink)
            choice.alphas.push_back(static_cast<int>(i));
    }
    RefuseTooFew(inColours, channels, choice, path);
    ChannelSearch search(channels);
    for (const std::string& name : inColours) {
        choice.map.push_back(search.TakeByName(name));
        choice.byName.push_back(choice.map.back() != noChannel);
    }
    for (std::size_t i = 0; i < inColours.size(); ++i) {
        if (!choice.byName[i])
            choice.map[i] = search.TakeNext();
    }
    choice.unused = search.Left();
    return choice;
}

std::string OrderWords(const std::vector<std::string>& inColours,
                       const std::vector<Channel>& channels, const ChannelChoice& choice)
{
    std::string pairs;
    for (std::size_t i = 0; i < inColours.size(); ++i) {
        if (!choice.byName[i])
            pairs.append(pairs.empty() ? "" : ", ")
                .append(Shown(inColours[i]) + " from channel " +
                        ChannelWords(channels, choice.map[i]));
    }
    return pairs.empty() ? pairs
                         : "no channel bears the names of these in-colours, which take channels in "
                           "their order: " +
                               pairs;
}

std::string ChannelWords(const std::vector<Channel>& channels, int index)
{
    const std::string& name = channels[static_cast<std::size_t>(index)].name;
    return std::to_string(index) + (name.empty() ? "" : " (" + name + ")");
}

std::string UnusedChannelWords(const std::vector<Channel>& channels, int index)
{
    return "channel " + ChannelWords(channels, index) +
           " is not used: no in-colour of the pattern takes it";
}

} // namespace zvk::Pelkraft::Client
