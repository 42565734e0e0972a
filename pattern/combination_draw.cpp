#include "pattern/combination_draw.h"

#include <algorithm>

namespace zvk::Pelkraft {

CombinationDraw::CombinationDraw(std::int32_t seed, const CombinationDistribution& distribution)
    : random(static_cast<std::uint32_t>(seed)), total(distribution.total),
      combinationOf(std::min(distribution.total, linearRandomValues))
{
    // The first sum above a remainder never stands further front than that of a smaller one,
    // even where the sums have wrapped: one pass serves all remainders.
    std::uint32_t next = 0;
    for (std::uint32_t rest = 0; rest < combinationOf.size(); ++rest) {
        while (next < distribution.count && rest >= distribution.cumulative[next])
            ++next;
        combinationOf[rest] = next - 1;
    }
}

} // namespace zvk::Pelkraft
