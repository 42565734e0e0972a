#include "pattern/channel_combinations.h"

#include <cstddef>

namespace zvk::Pelkraft {
namespace {

constexpr const char* stepWithoutLine = "step without value line in pattern";
constexpr const char* tooManyCombinations = "numCombinations > MAXS_CHANNEL_RANDOM";

// The distributions among the steps of an in-colour, each named by the first step that has it,
// and which of them a step has. Steps that share one share the draw.
struct Distributions
{
    std::size_t count = 0;
    std::array<const StepValues*, stepsOfInColor> distinct{};
    std::array<std::size_t, stepsOfInColor> ofStep{};
};

using Digits = std::array<std::int32_t, stepsOfInColor>;

void RefuseGaps(const InColorRecord& record)
{
    for (std::int32_t step = 0; step < record.numSteps; ++step)
        if (record.steps[static_cast<std::size_t>(step)].numRandoms == 0)
            throw stepWithoutLine;
}

// As written in the text: 1/2 and 2/4 are two distributions.
bool HaveEqualDistribution(const StepValues& a, const StepValues& b)
{
    if (a.numRandoms != b.numRandoms)
        return false;
    for (std::size_t i = 0; i < static_cast<std::size_t>(a.numRandoms); ++i)
        if (a.fractions[i] != b.fractions[i])
            return false;
    return true;
}

Distributions FindDistributions(const InColorRecord& record)
{
    Distributions found;
    for (std::size_t step = 0; step < static_cast<std::size_t>(record.numSteps); ++step) {
        const StepValues& values = record.steps[step];
        std::size_t index = 0;
        while (index < found.count && !HaveEqualDistribution(*found.distinct[index], values))
            ++index;
        if (index == found.count)
            found.distinct[found.count++] = &values;
        found.ofStep[step] = index;
    }
    return found;
}

std::uint64_t CountCombinations(const Distributions& distributions)
{
    std::uint64_t product = 1;
    for (std::size_t i = 0; i < distributions.count; ++i)
        product *= static_cast<std::uint64_t>(distributions.distinct[i]->numRandoms);
    return product;
}

void FillCombination(const InColorRecord& record, const Distributions& distributions,
                     const Digits& digits, ChannelCombination& combination)
{
    for (std::size_t position = 0; position < static_cast<std::size_t>(record.numInks); ++position)
        for (std::size_t step = 0; step < static_cast<std::size_t>(record.numSteps); ++step) {
            const auto digit = static_cast<std::size_t>(digits[distributions.ofStep[step]]);
            combination.inkSteps[position][step] = record.steps[step].table[digit][position];
        }

    combination.fraction = Fraction{};
    for (std::size_t i = 0; i < distributions.count; ++i)
        combination.fraction =
            Multiply(combination.fraction,
                     distributions.distinct[i]->fractions[static_cast<std::size_t>(digits[i])]);
}

// Counts up by one; the lowest digit stands first.
void Advance(Digits& digits, const Distributions& distributions)
{
    for (std::size_t i = 0; i < distributions.count; ++i) {
        if (++digits[i] < distributions.distinct[i]->numRandoms)
            return;
        digits[i] = 0;
    }
}

} // namespace

void BuildChannelCombinations(InColorRecord& record)
{
    RefuseGaps(record);
    const Distributions distributions = FindDistributions(record);
    const std::uint64_t count = CountCombinations(distributions);
    if (count > MAXS_CHANNEL_RANDOM)
        throw tooManyCombinations;

    record.numCombinations = static_cast<std::int32_t>(count);
    Digits digits{};
    for (std::size_t c = 0; c < count; ++c) {
        FillCombination(record, distributions, digits, record.combinations[c]);
        Advance(digits, distributions);
    }
}

} // namespace zvk::Pelkraft
