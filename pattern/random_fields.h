#pragma once

#include "pattern/pattern_combinations.h"
#include "pattern/pattern_model.h"

#include <array>
#include <cstdint>
#include <vector>

namespace zvk::Pelkraft {

// The generator of the first generation. Old pictures depend on its sequence, and its state
// belongs to the load in progress: the platform's own generator is neither called nor disturbed.
class LinearRandom
{
public:
    explicit LinearRandom(std::uint32_t seed) : state(seed) {}

    // The result is 0 to 32767.
    std::uint32_t Next()
    {
        state = state * 214013U + 2531011U;
        return state >> 16 & 0x7FFFU;
    }

private:
    std::uint32_t state;
};

// Next gives so many different numbers.
constexpr std::uint32_t linearRandomValues = 32768;

using JumpTable = std::array<std::uint16_t, 65536>;

// A row starts at the place in the field that the table holds for its number. The table is built at
// the first call, which may come from several threads at once, and never freed.
const JumpTable& GetJumpTable();

using RandomNumbers = std::vector<std::uint32_t>;

// The first generation draws each of 65536 entries on its own. These are combinations in their
// proportions, and -1 where there are none.
RandomNumbers DrawField(std::int32_t seed, const CombinationDistribution& distribution);
// These are numbers below total, which is at least 1. As many draws are dropped between them as the
// format asks.
RandomNumbers DrawField(std::int32_t seed, std::uint32_t total);
// These are digits, below total, of numbers whose lower digits make up divisor.
RandomNumbers DrawField(std::int32_t seed, std::uint32_t total, std::uint32_t divisor);

// Finds the largest denominator of a combination other than the first, at least the lowest given.
std::uint32_t FindFieldDenominator(const PatternCombinations& combinations, std::uint32_t count,
                                   std::uint32_t lowestDenominator);

// A shuffled field repeats its denominator until it has at least 100000 entries.
std::uint32_t CountShuffledEntries(std::uint32_t denominator);

// The second generation holds each combination as often as its proportion says, the first one for
// all that is left over, and shuffles them. A denominator of 0 throws "pattern without random
// combinations"; a field beyond 1 GB throws std::bad_alloc, as one without memory does.
RandomNumbers ShuffleField(std::int32_t seed, std::uint32_t denominator,
                           const PatternCombinations& combinations, std::uint32_t count);

} // namespace zvk::Pelkraft
