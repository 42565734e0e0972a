#include "tools/pelkraft/ink_shares.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::uint64_t longestWalk = std::uint64_t{1} << 20;
constexpr std::size_t valueCount = 256;

using Shares = std::array<double, valueCount>;

// The values of an out-ink come from the last in-colour, by index, that feeds it, and from the last
// position there. Its step byte may be that of another one.
struct Source
{
    const InColorRecord* record = nullptr;
    std::size_t position = 0;
};

Source FindSource(const PatternOutline& outline, int outInk)
{
    Source source;
    for (std::size_t i = 0; i < outline.inColours.size(); ++i) {
        const InColorRecord& record = outline.Record(i);
        for (std::size_t position = 0; position < static_cast<std::size_t>(record.numInks);
             ++position) {
            if (record.inks[position] == outInk)
                source = {&record, position};
        }
    }
    return source;
}

Shares ExpectedShares(const Source& source, int step)
{
    Shares shares = {};
    if (source.record == nullptr || step >= source.record->numSteps) {
        shares[0] = 1;
        return shares;
    }
    const StepValues& said = source.record->steps[static_cast<std::size_t>(step)];
    for (std::size_t i = 0; i < static_cast<std::size_t>(said.numRandoms); ++i) {
        const std::int32_t value = said.table[i][source.position];
        const auto low =
            value == unsetValue ? 0U : static_cast<std::uint32_t>(value) & (valueCount - 1);
        shares[low] +=
            said.fractions[i].numerator / static_cast<double>(said.fractions[i].denominator);
    }
    return shares;
}

// A row of the pattern over its field; without a pattern no pixel is measured.
class Walk
{
public:
    Walk(const PatternOutline& newOutline, const CombinationModel& model,
         DotWeavePattern* newPattern)
        : outline(newOutline), pattern(newPattern),
          pixels(pattern == nullptr
                     ? 0
                     : static_cast<std::size_t>(std::min(model.fieldSize, longestWalk))),
          inColours(static_cast<std::size_t>(pattern == nullptr ? 0 : pattern->GetInColorCount())),
          outInks(pattern == nullptr ? outline.OutInkCount()
                                     : static_cast<std::size_t>(pattern->GetOutColorCount())),
          source(pixels * inColours), destination(pixels * outInks)
    {}

    StepShares Take(int inColour, int step)
    {
        const auto index = static_cast<std::size_t>(inColour);
        std::fill(source.begin(), source.end(), static_cast<unsigned char>(0));
        for (std::size_t pixel = 0; pixel < pixels; ++pixel)
            source[pixel * inColours + index] = static_cast<unsigned char>(step);
        if (pattern != nullptr)
            pattern->ApplyPattern(source.data(), destination.data(),
                                  static_cast<unsigned long>(pixels));

        StepShares shares;
        shares.inColour = inColour;
        shares.step = step;
        for (const auto& [outInk, feeder] : outline.feeders) {
            if (feeder == inColour && outInk < static_cast<int>(outInks))
                shares.inks.push_back(Count(outInk, step));
        }
        return shares;
    }

private:
    InkShares Count(int outInk, int step) const
    {
        std::array<std::size_t, valueCount> counts = {};
        for (std::size_t pixel = 0; pixel < pixels; ++pixel)
            ++counts[destination[pixel * outInks + static_cast<std::size_t>(outInk)]];
        const Shares expected = ExpectedShares(FindSource(outline, outInk), step);
        InkShares shares;
        shares.outInk = outInk;
        for (std::size_t value = 0; value < valueCount; ++value) {
            if (expected[value] != 0 || counts[value] != 0)
                shares.values.push_back(
                    {static_cast<int>(value), expected[value], Measured(counts[value])});
        }
        return shares;
    }

    double Measured(std::size_t count) const
    {
        return pixels == 0 ? std::numeric_limits<double>::quiet_NaN()
                           : static_cast<double>(count) / static_cast<double>(pixels);
    }

    const PatternOutline& outline;
    DotWeavePattern* pattern;
    std::size_t pixels;
    std::size_t inColours;
    std::size_t outInks;
    std::vector<unsigned char> source;
    std::vector<unsigned char> destination;
};

} // namespace

std::vector<InkShares> ExpectedInks(const PatternOutline& outline, int inColour, int step)
{
    std::vector<InkShares> inks;
    for (const auto& [outInk, feeder] : outline.feeders) {
        if (feeder != inColour)
            continue;
        InkShares& shares = inks.emplace_back();
        shares.outInk = outInk;
        const Shares expected = ExpectedShares(FindSource(outline, outInk), step);
        for (std::size_t value = 0; value < valueCount; ++value)
            if (expected[value] != 0)
                shares.values.push_back({static_cast<int>(value), expected[value], 0});
    }
    return inks;
}

std::vector<StepShares> MeasureShares(const PatternOutline& outline, const CombinationModel& model,
                                      DotWeavePattern* pattern)
{
    std::vector<StepShares> all;
    Walk walk(outline, model, pattern);
    for (std::size_t i = 0; i < outline.InColourCount(); ++i) {
        for (int step = 0; step < outline.Record(i).numSteps; ++step)
            all.push_back(walk.Take(static_cast<int>(i), step));
    }
    return all;
}

MeanInk MeanOf(const InkShares& ink)
{
    MeanInk mean;
    for (const ValueShare& share : ink.values) {
        mean.expected += share.value * share.expected;
        mean.measured += share.value * share.measured;
    }
    return mean;
}

MeanInk MeanOf(const StepShares& step)
{
    MeanInk sum;
    for (const InkShares& ink : step.inks) {
        const MeanInk mean = MeanOf(ink);
        sum.expected += mean.expected;
        sum.measured += mean.measured;
    }
    return sum;
}

} // namespace zvk::Pelkraft::Client
