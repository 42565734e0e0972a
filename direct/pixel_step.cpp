#include "direct/pixel_step.h"

#include "direct/bit_words.h"

#include <algorithm>

namespace zvk::Pelkraft {
namespace {

constexpr std::size_t wordBytes = sizeof(std::uint64_t);

// The places of one channel's sample, in the low bytes.
template <std::size_t sampleBytes>
std::uint64_t PlacesOf(std::int32_t entry)
{
    if constexpr (sampleBytes == 1)
        return entry < 0 ? emptyByte : static_cast<std::uint64_t>(entry);
    return entry < 0 ? std::uint64_t{emptyByte} * 0x101
                     : static_cast<std::uint64_t>(entry) * 0x202 + 0x100;
}

// Writes the places of small pixels a word at a time: a kernel reads them at once, and would wait
// for bytes that were stored one by one.
template <std::size_t sampleBytes>
void FillPlaces(DirectPlan& plan, std::uint32_t channels)
{
    constexpr auto channelsOfWord = static_cast<std::uint32_t>(wordBytes / sampleBytes);
    const std::int32_t* entries = plan.entries.data();
    for (std::uint32_t first = 0; first < channels; first += channelsOfWord) {
        std::uint64_t word = 0;
        const std::int32_t* entry = entries + std::min(channels - first, channelsOfWord);
        while (entry != entries)
            word = word << (8 * sampleBytes) | PlacesOf<sampleBytes>(*--entry);
        StoreLittle(&plan.step.places[first * sampleBytes], word);
        entries += channelsOfWord;
    }
}

constexpr std::array<unsigned char, maxStepBytes> CountPlaces()
{
    std::array<unsigned char, maxStepBytes> places{};
    for (std::size_t i = 0; i != places.size(); ++i)
        places[i] = static_cast<unsigned char>(i);
    return places;
}

constexpr std::array<unsigned char, maxStepBytes> unmappedPlaces = CountPlaces();

// A step over planes takes samples for pixels.
void FillStep(DirectPlan& plan, const PassOutput& pass)
{
    const std::uint32_t channels = pass.planar ? 1 : plan.channels;
    const bool maps = plan.mapped && !plan.sourcePlanar && !plan.splitMaps;
    const std::size_t sampleBytes = pass.bits / 8U;
    PixelStep& step = plan.step;
    step.sourceBytes =
        static_cast<std::uint8_t>(sampleBytes * (maps ? plan.sourceChannels : channels));
    step.destinationBytes = static_cast<std::uint8_t>(sampleBytes * channels);
    step.repeat = plan.repeat;
    step.mirrored = plan.mirrored;
    if (!maps)
        step.places = unmappedPlaces;
    else if (sampleBytes == 1)
        FillPlaces<1>(plan, channels);
    else
        FillPlaces<2>(plan, channels);
}

} // namespace

void FillSteps(DirectPlan& plan)
{
    for (std::size_t i = 0; i != plan.passCount; ++i)
        if (plan.passes[i].kind == PassKind::Step)
            FillStep(plan, plan.passes[i]);
}

} // namespace zvk::Pelkraft
