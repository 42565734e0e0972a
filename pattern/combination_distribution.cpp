#include "pattern/combination_distribution.h"

namespace zvk::Pelkraft {

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
