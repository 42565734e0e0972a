#include "tests/dither/naive_dither.h"

#include <random>

namespace zvk::Pelkraft::TestSupport {
namespace {

// The remainder of a floored division.
std::size_t Modulo256(std::int64_t number)
{
    return static_cast<std::size_t>((number % 256 + 256) % 256);
}

} // namespace

int NaiveDither::StepOf(std::int64_t sample, std::size_t channel, std::int64_t x,
                        std::int64_t y) const
{
    const NaiveTones& tones = channels[channel];
    const bool inkIsHigh = tones.noInk < tones.fullInk;
    const std::int64_t range =
        inkIsHigh ? tones.fullInk - tones.noInk : tones.noInk - tones.fullInk;
    std::int64_t ink = inkIsHigh ? sample - tones.noInk : tones.noInk - sample;
    if (ink < 0)
        ink = 0;
    if (ink > range)
        ink = range;
    const auto a = static_cast<std::uint64_t>(ink);
    const auto full = static_cast<std::uint64_t>(range);
    const std::vector<std::uint64_t>& inks = tones.inks;
    std::size_t s = inks.size() - 1;
    while (inks[s] * full > a * inks.back())
        --s;
    if (s == inks.size() - 1)
        return static_cast<int>(s);
    const std::uint64_t d = a * inks.back() - inks[s] * full;
    const std::uint64_t all = (inks[s + 1] - inks[s]) * full;
    const std::uint64_t c = (2 * std::uint64_t{65536} * d + all - 1) / (2 * all);
    // The products wrap at 32 bits.
    const std::uint32_t ox = static_cast<std::uint32_t>(channel) * 0xC13FA9A9U >> 24;
    const std::uint32_t oy = static_cast<std::uint32_t>(channel) * 0x91E10DA6U >> 24;
    const std::uint64_t rank = mask[Modulo256(y + oy) * 256 + Modulo256(x + ox)];
    return static_cast<int>(s) + (rank < c ? 1 : 0);
}

Bytes NaiveDither::RowOf(const Bytes& row, std::int64_t x, std::int64_t y) const
{
    const std::size_t sampleBytes = bits == 16 ? 2 : 1;
    Bytes steps;
    for (std::size_t i = 0; i * sampleBytes != row.size(); ++i) {
        std::int64_t sample = row[i * sampleBytes];
        if (sampleBytes == 2)
            sample += std::int64_t{256} * row[2 * i + 1];
        steps.push_back(static_cast<unsigned char>(StepOf(
            sample, i % channels.size(), x + static_cast<std::int64_t>(i / channels.size()), y)));
    }
    return steps;
}

std::vector<std::uint16_t> RandomMask(unsigned seed)
{
    std::mt19937 random(seed);
    std::vector<std::uint16_t> mask(65536);
    for (std::uint16_t& rank : mask)
        rank = static_cast<std::uint16_t>(random());
    return mask;
}

} // namespace zvk::Pelkraft::TestSupport
