#include "tests/bounds/last_words.h"
#include "tests/bounds/placements.h"
#include "tests/copy/copy_reach.h"

#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>
#include <cstring>

// The five copies on buffers of exactly the bytes that they are said to reach.
namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr int largestSize = 2 * 266;
constexpr std::size_t capacity = 1 << 12;
constexpr std::uint64_t sampledEvery = 3;

class GuardedCopies : public ::testing::Test
{
protected:
    GuardedCopies()
    {
        FillWithNoise(sourceArena, capacity, 6);
        sourceArena.MakeReadOnly();
    }

    void Run(const CopyShape& shape, const Placement& at)
    {
        current = &shape;
        const std::size_t reach = ReachOf(shape);
        unsigned char* source = PlaceIn(sourceArena, reach, at.flush, at.oddSource);
        unsigned char* destination = PlaceIn(destinationArena, reach, at.flush, at.oddDestination);
        RunCopy(shape, source, destination);
        EXPECT_EQ(0, std::memcmp(source, destination, reach)) << Describe(shape);
    }

    const GuardedArena sourceArena{capacity};
    const GuardedArena destinationArena{capacity};
    const CopyShape* current = nullptr;
    const LastWords lastWords{[this] { return Describe(*current); }};
};

TEST_F(GuardedCopies, TouchNoByteBeyondTheirReach)
{
    Sampler sampler(OneOf(sampledEvery));
    for (const CopyShape& shape : AllCopyShapes(largestSize))
        for (const Placement& at : allPlacements) {
            const bool isServed = (!at.oddSource && !at.oddDestination) || ServesAnyAddress(shape);
            if (isServed && sampler.Takes())
                Run(shape, at);
        }
    std::printf("%" PRIu64 " copies between forbidden pages\n", sampler.GetCount());
    EXPECT_GT(sampler.GetCount(), 10000U);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
