#include "pattern/pattern_combinations.h"

namespace zvk::Pelkraft {
namespace {

constexpr const char* fractionOutOfRange = "fraction out of range in pattern";
constexpr const char* stepWithoutLine = "step without value line in pattern";
constexpr const char* tooManyOfInColor = "numCombinations > MAXS_CHANNEL_RANDOM";
constexpr const char* tooManyInTotal = "numCombinations > MAXS_TOTAL_RANDOM";

// A digit for each choice, the first one lowest.
using Digits = std::vector<std::int32_t>;

// Counts up by one; limitOf gives the number of values of a digit.
template <typename LimitOf>
void Advance(Digits& digits, LimitOf limitOf)
{
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (++digits[i] < limitOf(i))
            return;
        digits[i] = 0;
    }
}

void RefuseGaps(const InColorRecord& record)
{
    for (std::int32_t step = 0; step < record.numSteps; ++step)
        if (record.steps[static_cast<std::size_t>(step)].numRandoms == 0)
            throw stepWithoutLine;
}

// They are compared as written in the text: 1/2 and 2/4 are two distributions.
bool HaveEqualDistribution(const StepValues& a, const StepValues& b)
{
    if (a.numRandoms != b.numRandoms)
        return false;
    for (std::size_t i = 0; i < static_cast<std::size_t>(a.numRandoms); ++i)
        if (a.fractions[i] != b.fractions[i])
            return false;
    return true;
}

void FillCombination(const InColorRecord& record, const StepDistributions& distributions,
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
std::uint32_t CountTotal(const std::vector<InColorRecord*>& described)
{
    std::uint64_t product = 1;
    for (const InColorRecord* record : described) {
        product *= static_cast<std::uint64_t>(record->numCombinations);
        if (product > MAXS_TOTAL_RANDOM)
            throw tooManyInTotal;
    }
    return static_cast<std::uint32_t>(product);
}

void FillCombination(const std::vector<InColorRecord*>& described, const Digits& digits,
                     PatternCombination& combination)
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

} // namespace

std::uint32_t GreatestCommonDivisor(std::uint32_t a, std::uint32_t b)
{
    while (b != 0) {
        const std::uint32_t rest = a % b;
        a = b;
        b = rest;
    }
    return a;
}

std::uint32_t LeastCommonMultiple(std::uint32_t a, std::uint32_t b)
{
    // Never 0, however often it wraps: it holds no more factors of two than a or b does.
    // NOLINTNEXTLINE(clang-analyzer-core.DivideZero): no total and no denominator is 0.
    return a / GreatestCommonDivisor(a, b) * b;
}

Fraction Multiply(const Fraction& a, const Fraction& b)
{
    const std::uint32_t numerator = a.numerator * b.numerator;
    const std::uint32_t denominator = a.denominator * b.denominator;
    if (denominator == 0)
        throw fractionOutOfRange;
    const std::uint32_t divisor = GreatestCommonDivisor(numerator, denominator);
    return {numerator / divisor, denominator / divisor};
}

StepDistributions FindDistributions(const InColorRecord& record)
{
    StepDistributions found;
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

std::uint64_t CountCombinations(const StepDistributions& distributions)
{
    std::uint64_t product = 1;
    for (std::size_t i = 0; i < distributions.count; ++i)
        product *= static_cast<std::uint64_t>(distributions.distinct[i]->numRandoms);
    return product;
}

void BuildChannelCombinations(InColorRecord& record)
{
    RefuseGaps(record);
    const StepDistributions distributions = FindDistributions(record);
    const std::uint64_t count = CountCombinations(distributions);
    if (count > MAXS_CHANNEL_RANDOM)
        throw tooManyOfInColor;

    record.numCombinations = static_cast<std::int32_t>(count);
    Digits digits(distributions.count);
    for (std::size_t c = 0; c < count; ++c) {
        FillCombination(record, distributions, digits, record.combinations[c]);
        Advance(digits, [&](std::size_t i) { return distributions.distinct[i]->numRandoms; });
    }
}

std::uint32_t BuildPatternCombinations(const InColorRecords<InColorRecord>& inColors,
                                       std::int32_t inColorCount, PatternCombinations& combinations)
{
    const auto described = Described(inColors, inColorCount);
    const std::uint32_t count = CountTotal(described);
    Digits digits(described.size());
    for (std::uint32_t c = 0; c < count; ++c) {
        FillCombination(described, digits, combinations[c]);
        Advance(digits, [&](std::size_t i) { return described[i]->numCombinations; });
    }
    return count;
}

void BuildDistribution(const PatternCombinations& combinations, std::uint32_t count,
                       CombinationDistribution& distribution)
{
    distribution.count = count;
    distribution.total = 1;
    for (std::uint32_t i = 0; i < count; ++i)
        distribution.total =
            LeastCommonMultiple(distribution.total, combinations[i].fraction.denominator);

    std::uint32_t sum = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        const Fraction& fraction = combinations[i].fraction;
        distribution.cumulative[i] = sum;
        sum += distribution.total / fraction.denominator * fraction.numerator;
    }
}

} // namespace zvk::Pelkraft
