#include "tests/bounds/placements.h"

#include "tests/support/random_bytes.h"

#include <algorithm>
#include <cstdlib>

namespace zvk::Pelkraft::TestSupport {

ConversionGrid BoundsGrid()
{
    return {{1, 2, 3, 4, 5, 16, 17, 81}, WidthsUpTo(266)};
}

std::uint64_t OneOf(std::uint64_t cases)
{
    return std::getenv("PELKRAFT_TEST_FULL") != nullptr ? 1 : cases;
}

void FillWithNoise(const GuardedArena& arena, std::size_t capacity, std::uint32_t seed)
{
    const auto noise = RandomBytes(capacity, seed);
    std::copy(noise.begin(), noise.end(), arena.Place(capacity, Flush::AtStart));
    std::copy(noise.begin(), noise.end(), arena.Place(capacity, Flush::AtEnd));
}

} // namespace zvk::Pelkraft::TestSupport
