#pragma once

#include "pattern/linear_random.h"
#include "pattern/pattern_model.h"

#include <cstdint>
#include <vector>

namespace zvk::Pelkraft {

// The draws of the first generation: each picks a combination on its own.
class CombinationDraw
{
public:
    CombinationDraw(std::int32_t seed, const CombinationDistribution& distribution);

    // -1 of a distribution of no combinations.
    std::uint32_t Next() { return combinationOf[random.Next() % total]; }

private:
    LinearRandom random;
    const std::uint32_t total;
    // By remainder, as far as the generator reaches.
    std::vector<std::uint32_t> combinationOf;
};

} // namespace zvk::Pelkraft
