#include "pattern/pattern_combinations.h"

#include <cstddef>
#include <vector>

namespace zvk::Pelkraft {
namespace {

constexpr const char* tooManyCombinations = "numCombinations > MAXS_TOTAL_RANDOM";

// An in-colour without a description has one combination that sets nothing: it is left out.
std::vector<InColorRecord*> Described(const InColorRecords<InColorRecord>& inColors,
                                      std::int32_t inColorCount)
{
    std::vector<InColorRecord*> described;
    for (std::int32_t i = 0; i < inColorCount; ++i)
        if (InColorRecord* record = inColors.Find(i); record != nullptr)
            described.push_back(record);
    return described;
}

// No factor is 0, so that a product beyond the limit never comes back below it.
std::uint32_t CountCombinations(const std::vector<InColorRecord*>& described)
{
    std::uint64_t product = 1;
    for (const InColorRecord* record : described) {
        product *= static_cast<std::uint64_t>(record->numCombinations);
        if (product > MAXS_TOTAL_RANDOM)
            throw tooManyCombinations;
    }
    return static_cast<std::uint32_t>(product);
}

void FillCombination(const std::vector<InColorRecord*>& described,
                     const std::vector<std::int32_t>& digits, PatternCombination& combination)
{
    combination = PatternCombination{};
    for (std::size_t i = 0; i < described.size(); ++i) {
        InColorRecord& record = *described[i];
        ChannelCombination& chosen = record.combinations[static_cast<std::size_t>(digits[i])];
        for (std::size_t p = 0; p < static_cast<std::size_t>(record.numInks); ++p)
            // A text may list more out-inks than there are lanes; an engine refuses it later.
            if (record.inks[p] < outInkLanes)
                combination.inkSteps[static_cast<std::size_t>(record.inks[p])] =
                    &chosen.inkSteps[p];
        combination.fraction = Multiply(combination.fraction, chosen.fraction);
    }
}

// Counts up by one; the lowest digit stands first.
void Advance(std::vector<std::int32_t>& digits, const std::vector<InColorRecord*>& described)
{
    for (std::size_t i = 0; i < described.size(); ++i) {
        if (++digits[i] < described[i]->numCombinations)
            return;
        digits[i] = 0;
    }
}

} // namespace

std::uint32_t BuildPatternCombinations(const InColorRecords<InColorRecord>& inColors,
                                       std::int32_t inColorCount, PatternCombinations& combinations)
{
    const auto described = Described(inColors, inColorCount);
    const std::uint32_t count = CountCombinations(described);
    std::vector<std::int32_t> digits(described.size(), 0);
    for (std::uint32_t c = 0; c < count; ++c) {
        FillCombination(described, digits, combinations[c]);
        Advance(digits, described);
    }
    return count;
}

} // namespace zvk::Pelkraft
