#include "tests/bounds/last_words.h"
#include "tests/bounds/placements.h"
#include "tests/direct/levels.h"
#include "tests/support/conversion_grid.h"

#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>

// Every conversion on rows that begin or end at a forbidden page. That the samples are right is
// checked elsewhere; here the question is which bytes are touched at all.
namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr std::size_t capacity = 1 << 20;
constexpr std::uint64_t sampledEvery = 499;

class GuardedConversions : public ::testing::Test
{
protected:
    GuardedConversions()
    {
        FillWithNoise(sourceArena, capacity, 1);
        sourceArena.MakeReadOnly();
    }

    void Run(const ConversionCase& oneCase, const Placement& at)
    {
        current = &oneCase;
        const std::size_t sourceBytes = NaiveRowBytes(oneCase.source);
        const std::size_t destinationBytes = NaiveRowBytes(oneCase.destination);
        RunConversion(oneCase, PlaceIn(sourceArena, sourceBytes, at.flush, at.oddSource),
                      PlaceIn(destinationArena, destinationBytes, at.flush, at.oddDestination));
    }

    void RunGrid(const ConversionGrid& grid, Sampler& sampler)
    {
        grid.ForEach([&](const ConversionCase& oneCase) {
            for (const Placement& at : allPlacements)
                if (sampler.Takes())
                    Run(oneCase, at);
        });
    }

    const GuardedArena sourceArena{capacity};
    const GuardedArena destinationArena{capacity};
    const ConversionCase* current = nullptr;
    const LastWords lastWords{[this] { return Describe(*current); }};
};

TEST_F(GuardedConversions, TouchNoByteBeyondTheirRows)
{
    Sampler sampler(OneOf(sampledEvery));
    for (const int level : LevelsOfThisProcessor()) {
        const LimitedLevel limited(level);
        RunGrid(BoundsGrid(), sampler);
    }
    std::printf("%" PRIu64 " conversions between forbidden pages\n", sampler.GetCount());
    EXPECT_GT(sampler.GetCount(), 10000U);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
