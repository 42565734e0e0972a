#include "pattern/shuffled_field.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <random>
#include <utility>

namespace zvk::Pelkraft {
namespace {

constexpr std::uint32_t leastFieldSize = 100000;
// 1 GB of numbers. A machine that promises more memory than it has would not refuse them.
constexpr std::uint32_t highestFieldSize = 0x10000000;

// Wraps in 32 bits before it divides.
std::uint32_t CountEntries(const Fraction& fraction, const FieldMeasure& measure)
{
    return fraction.numerator * measure.denominator / fraction.denominator * measure.multiplier;
}

// Without a bias towards small indices: an output beyond the last whole multiple of n is
// rejected. Written out, since the standard's own shuffle may draw in any way it likes.
std::uint32_t DrawIndex(std::mt19937& random, std::uint32_t last)
{
    constexpr std::uint32_t mask = 0xFFFFFFFF;
    const std::uint32_t n = last + 1;
    auto draw = static_cast<std::uint32_t>(random());
    while (draw / n >= mask / n && mask % n != last)
        draw = static_cast<std::uint32_t>(random());
    return draw % n;
}

void Shuffle(std::vector<std::uint32_t>& field, std::uint32_t seed)
{
    std::mt19937 random(seed);
    for (std::uint32_t last = 1; last < field.size(); ++last) {
        const std::uint32_t index = DrawIndex(random, last);
        if (index != last)
            std::swap(field[last], field[index]);
    }
}

} // namespace

std::uint32_t FindFieldDenominator(const PatternCombinations& combinations, std::uint32_t count,
                                   std::uint32_t lowestDenominator)
{
    // Without the first combination: that decides size and content of the field.
    std::uint32_t highest = lowestDenominator;
    for (std::uint32_t i = 1; i < count; ++i)
        highest = std::max(highest, combinations[i].fraction.denominator);
    return highest;
}

FieldMeasure MeasureField(std::uint32_t denominator)
{
    return {denominator, leastFieldSize / denominator + 1};
}

std::vector<std::uint32_t> BuildShuffledField(std::uint32_t seed, const FieldMeasure& measure,
                                              const PatternCombinations& combinations,
                                              std::uint32_t count)
{
    if (measure.Size() > highestFieldSize)
        throw std::bad_alloc();
    std::vector<std::uint32_t> field(measure.Size(), 0);
    std::size_t at = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        // Where fractions have wrapped, the entries may be more than there are places.
        const std::size_t entries = std::min<std::size_t>(
            CountEntries(combinations[i].fraction, measure), field.size() - at);
        std::fill_n(field.begin() + static_cast<std::ptrdiff_t>(at), entries, i);
        at += entries;
    }
    Shuffle(field, seed);
    return field;
}

} // namespace zvk::Pelkraft
