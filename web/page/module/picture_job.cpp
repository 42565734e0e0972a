#include "web/page/module/picture_job.h"

#include <algorithm>

namespace zvk::Pelkraft::Page {
namespace {

using Client::StepWay;

constexpr int toneCount = 256;
// The end of a sentence about inks that can't be dithered.
constexpr const char* toneAdvice = ", which equal distances between the steps give";
// The rows of a pattern repeat after so many.
constexpr std::int64_t patternRows = 65536;

std::vector<Client::Channel> ChannelsOf(const std::vector<std::string>& names)
{
    std::vector<Client::Channel> channels;
    for (const std::string& name : names)
        channels.push_back({name});
    return channels;
}

Client::StepChoice ChooseSteps(const Client::LoadedPattern& pattern,
                               const PictureJob::Request& request)
{
    std::vector<Client::StepInks> inks;
    if (Client::TakesInks(request.levels))
        inks = Client::InksOfTone(pattern, request.tone).value();
    return Client::ChooseStepsByInks(pattern, request.levels, std::move(inks), toneAdvice);
}

std::vector<StepWay> WaysOf(const Client::StepChoice& steps)
{
    std::vector<StepWay> ways;
    for (std::size_t i = 0; i < steps.topSteps.size(); ++i)
        ways.push_back(steps.WayOf(i, toneCount));
    return ways;
}

} // namespace

PictureJob::PictureJob(const Request& request)
    : text("pattern", request.text), pattern(text, DotWeavePattern::Automatic), plan(text.Bytes()),
      channels(ChannelsOf(request.channels)), channelCount(channels.size()),
      choice(Client::ChooseChannels(pattern.inColours, channels, "picture")),
      steps(ChooseSteps(pattern, request)), ways(WaysOf(steps)), levels(ways, steps.topSteps)
{
    lacksMask = Uses(StepWay::Dither) && request.mask.empty();
    if (Uses(StepWay::Dither) && !lacksMask)
        dither.emplace(MakeDitherSpec(request.mask));
}

bool PictureJob::Uses(StepWay way) const
{
    return std::find(ways.begin(), ways.end(), way) != ways.end();
}

DitherSpec PictureJob::MakeDitherSpec(const std::vector<std::uint16_t>& mask) const
{
    DitherSpec spec;
    spec.mask = mask;
    for (std::size_t i = 0; i < ways.size(); ++i) {
        const bool dithers = ways[i] == StepWay::Dither;
        spec.tones.push_back({dithers ? steps.inks[i] : Client::StepInks{0}, 0, toneCount - 1});
    }
    return spec;
}

const unsigned char* PictureJob::MakeRow(const unsigned char* samples, std::size_t pixels,
                                         std::int64_t x, std::int64_t y)
{
    TakeChannels(samples, pixels);
    if (dither)
        Dither(pixels, x, y);
    const std::int64_t row = (y % patternRows + patternRows) % patternRows;
    inks.resize(pixels * pattern.outInks.size());
    plan.Run(static_cast<std::uint64_t>(row), 1, pixels,
             SourceRows(byLevels.data(), byLevels.size(), 0),
             TargetRows(inks.data(), inks.size(), 0));
    return inks.data();
}

void PictureJob::TakeChannels(const unsigned char* samples, std::size_t pixels)
{
    const std::size_t inColours = choice.map.size();
    byLevels.resize(pixels * inColours);
    for (std::size_t i = 0; i < inColours; ++i) {
        const unsigned char* from = samples + choice.map[i];
        for (std::size_t pixel = 0; pixel < pixels; ++pixel, from += channelCount)
            byLevels[pixel * inColours + i] = *from;
    }
    if (dither)
        byDither = byLevels;
    if (levels.Apply(byLevels.data(), pixels))
        sawHighStep = true;
}

void PictureJob::Dither(std::size_t pixels, std::int64_t x, std::int64_t y)
{
    // The steps take the place of the tones.
    dither->Run(x, y, 1, pixels, SourceRows(byDither.data(), byDither.size(), 0),
                TargetRows(byDither.data(), byDither.size(), 0));
    const std::size_t inColours = ways.size();
    for (std::size_t i = 0; i < inColours; ++i) {
        if (ways[i] != StepWay::Dither)
            continue;
        for (std::size_t sample = i; sample < byDither.size(); sample += inColours)
            byLevels[sample] = byDither[sample];
    }
}

std::vector<std::string> PictureJob::Warnings() const
{
    std::vector<std::string> warnings;
    for (const int channel : choice.unused)
        warnings.push_back(Client::UnusedChannelWords(channels, channel));
    for (std::size_t i = 0; i < ways.size(); ++i)
        if (steps.IsFlat(i, toneCount))
            warnings.push_back(Client::FlatInksWords(pattern, steps, i, toneAdvice));
    if (sawHighStep)
        warnings.emplace_back(Client::highStepWords);
    return warnings;
}

} // namespace zvk::Pelkraft::Page
