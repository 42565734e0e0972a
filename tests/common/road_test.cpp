#include "common/road.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace zvk::Pelkraft {
namespace {

TEST(Road, IsThatOfTheHighestLevelWithinTheProcessors)
{
    constexpr auto lowest = std::numeric_limits<std::int32_t>::min();
    constexpr auto highest = std::numeric_limits<std::int32_t>::max();
    for (const std::int32_t level : {lowest, -1, 0, 1, 2})
        EXPECT_EQ(RoadOf(level), Road::Portable) << level;
    for (const std::int32_t level : {3, 4, 5})
        EXPECT_EQ(RoadOf(level), hasVectorRoad ? Road::Vector : Road::Portable) << level;
    EXPECT_EQ(RoadOf(6), hasWideRoads ? Road::Avx2 : RoadOf(5));
    for (const std::int32_t level : {7, 8, highest})
        EXPECT_EQ(RoadOf(level), hasWideRoads ? Road::Avx512 : RoadOf(5)) << level;
}

} // namespace
} // namespace zvk::Pelkraft
