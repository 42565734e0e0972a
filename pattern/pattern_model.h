#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace zvk::Pelkraft {

struct PatternToken;

constexpr std::int32_t stepsOfInColor = 8;
constexpr std::int32_t positionsOfInColor = 16;
constexpr std::int32_t mostWeights = 16;
constexpr std::uint32_t MAXS_CHANNEL_RANDOM = 32;
constexpr std::uint32_t MAXS_TOTAL_RANDOM = 1024;
constexpr std::int32_t outInkLanes = 16;

// An alternative or a combination that sets nothing for an ink.
constexpr std::int32_t unsetValue = -1;
constexpr std::uint8_t noInColorOfInk = 0xFF;

// Ink values by step.
using StepRow = std::array<std::int32_t, stepsOfInColor>;

constexpr StepRow unsetRow = {-1, -1, -1, -1, -1, -1, -1, -1};

// One line of a list of values: what one step does. Alternative j has the probability
// weights[j] over weightSum and puts values[j] at the ink position positions[j].
struct ValueLine
{
    std::int32_t step = 0;
    bool hasSuffix = false;
    std::int32_t count = 0;
    std::uint32_t weightSum = 0;
    std::array<std::int32_t, mostWeights> weights{};
    std::array<std::int32_t, mostWeights> positions{};
    std::array<std::int32_t, mostWeights> values{};
    // The tokens that say so; null from where a line breaks off.
    const PatternToken* stepToken = nullptr;
    const PatternToken* ratioToken = nullptr;
    std::array<const PatternToken*, mostWeights> entryTokens{};
};

// The parser stores it as read; what comes from a multiplication is reduced.
struct Fraction
{
    std::uint32_t numerator = 1;
    std::uint32_t denominator = 1;

    bool operator==(const Fraction&) const = default;
};

// All that the text says of one step.
struct StepValues
{
    StepValues()
    {
        for (auto& values : table)
            values.fill(unsetValue);
    }

    std::int32_t numRandoms = 0;
    std::array<Fraction, MAXS_CHANNEL_RANDOM> fractions{};
    // Value by alternative and ink position.
    std::array<std::array<std::int32_t, positionsOfInColor>, MAXS_CHANNEL_RANDOM> table;
};

// A choice made for every step of an in-colour: a row for each ink position.
struct ChannelCombination
{
    ChannelCombination() { inkSteps.fill(unsetRow); }

    std::array<StepRow, positionsOfInColor> inkSteps;
    Fraction fraction;
};

struct InColorRecord
{
    std::int32_t numInks = 0;
    // Out-ink index by ink position.
    std::array<std::int32_t, positionsOfInColor> inks{};
    std::array<StepValues, stepsOfInColor> steps;
    // The highest step listed, plus 1.
    std::int32_t numSteps = 0;
    std::int32_t numCombinations = 1;
    std::array<ChannelCombination, MAXS_CHANNEL_RANDOM> combinations;

    // A value that the line doesn't set stays as an earlier line of its step has set it.
    void Store(const ValueLine& line)
    {
        StepValues& step = steps[static_cast<std::size_t>(line.step)];
        step.numRandoms = line.count;
        for (std::size_t j = 0; j < static_cast<std::size_t>(line.count); ++j) {
            step.fractions[j] = {static_cast<std::uint32_t>(line.weights[j]), line.weightSum};
            step.table[j][static_cast<std::size_t>(line.positions[j])] = line.values[j];
        }
        numSteps = std::max(numSteps, line.step + 1);
    }
};

// One record for each in-colour listed. A record is large and most of a long list may never be
// described, so it comes into being when it is first named; until then it stands at its defaults.
template <typename Record>
class InColorRecords
{
public:
    void Free() { records.clear(); }

    void Allocate(std::int32_t count)
    {
        records.clear();
        records.resize(static_cast<std::size_t>(count));
    }

    std::int32_t Count() const { return static_cast<std::int32_t>(records.size()); }

    Record& Select(std::int32_t index)
    {
        auto& record = records[static_cast<std::size_t>(index)];
        if (record == nullptr)
            record = std::make_unique<Record>();
        return *record;
    }

    // Null for a record that was never named.
    Record* Find(std::int32_t index) const
    {
        return records[static_cast<std::size_t>(index)].get();
    }

private:
    std::vector<std::unique_ptr<Record>> records;
};

// A choice made for every in-colour: by out-ink, the row that the combination chosen for its
// in-colour holds. Null where no in-colour feeds the ink.
struct PatternCombination
{
    Fraction fraction;
    std::array<StepRow*, outInkLanes> inkSteps{};
};

// The random sources draw from it. It ends ahead of the total of all weights.
struct CombinationDistribution
{
    std::uint32_t count = 0;
    // By combination, the sum of the weights of those before it.
    std::array<std::uint32_t, MAXS_TOTAL_RANDOM> cumulative{};
    // The weights are expressed over it.
    std::uint32_t total = 1;
};

} // namespace zvk::Pelkraft
