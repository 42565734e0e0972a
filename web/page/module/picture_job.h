#pragma once

#include "pelkraft/dither.hpp"
#include "tools/pelkraft/channel_choice.h"
#include "tools/pelkraft/loaded_pattern.h"
#include "tools/pelkraft/step_choice.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Page {

// The dots of a pattern on a picture of 8 bits a sample, 0 for no ink, row by row.
class PictureJob
{
public:
    struct Request
    {
        std::string text;
        Client::Levels levels = Client::Levels::Automatic;
        std::string tone;
        // By channel of the picture.
        std::vector<std::string> channels;
        // The dither takes it; it is empty where nobody knows yet whether it is needed.
        std::vector<std::uint16_t> mask;
    };

    // Refuses what the program's simulation refuses, in its words.
    explicit PictureJob(const Request& request);

    // A tone is dithered, and there is no mask.
    bool LacksMask() const { return lacksMask; }
    const std::vector<std::string>& Inks() const { return pattern.outInks; }
    int FullInk() const { return pattern.fullInk; }
    std::size_t Channels() const { return channelCount; }

    // Answers a byte for each ink of so many pixels. The first one stands at this place of its
    // page.
    const unsigned char* MakeRow(const unsigned char* samples, std::size_t pixels, std::int64_t x,
                                 std::int64_t y);

    // The program would print them.
    std::vector<std::string> Warnings() const;

private:
    DitherSpec MakeDitherSpec(const std::vector<std::uint16_t>& mask) const;
    bool Uses(Client::StepWay way) const;
    void TakeChannels(const unsigned char* samples, std::size_t pixels);
    void Dither(std::size_t pixels, std::int64_t x, std::int64_t y);

    Client::PatternText text;
    Client::LoadedPattern pattern;
    PatternPlan plan;
    std::vector<Client::Channel> channels;
    std::size_t channelCount;
    Client::ChannelChoice choice;
    Client::StepChoice steps;
    // By in-colour.
    std::vector<Client::StepWay> ways;
    Client::StepLevels levels;
    std::optional<DitherPlan> dither;
    bool lacksMask = false;
    bool sawHighStep = false;
    std::vector<unsigned char> byLevels;
    std::vector<unsigned char> byDither;
    std::vector<unsigned char> inks;
};

} // namespace zvk::Pelkraft::Page
