#include "tests/pattern/drawing_patterns.h"

#include "tests/pattern/engine_support.h"

#include <random>

namespace zvk::Pelkraft::TestSupport {

std::vector<NaivePattern> DrawingPatterns(std::size_t count, std::uint32_t seed)
{
    std::mt19937 random(seed);
    std::vector<NaivePattern> patterns;
    for (int round = 0; patterns.size() < count; ++round) {
        const NaivePattern pattern = RandomPattern(random, 2 + round % 2);
        const std::uint64_t combinations = NaiveSimulation::CountCombinations(pattern);
        if (combinations >= 2 && combinations <= 1024 &&
            Refusal(pattern.Text(), DotWeavePattern::Sse) == "nothing")
            patterns.push_back(pattern);
    }
    return patterns;
}

} // namespace zvk::Pelkraft::TestSupport
