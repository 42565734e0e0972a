#include "tests/bounds/last_words.h"
#include "tests/bounds/placements.h"
#include "tests/pattern/pattern_grid.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>

// Every engine on rows of exactly the stated size that begin or end at a forbidden page.
namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr int widest = 266;
constexpr std::size_t capacity = std::size_t{16} * (widest + 1);
constexpr std::uint64_t sampledEvery = 13;

class GuardedPatterns : public ::testing::Test
{
protected:
    GuardedPatterns()
    {
        const auto steps = NoisySteps(capacity);
        for (const Flush flush : {Flush::AtEnd, Flush::AtStart})
            std::copy(steps.begin(), steps.end(), sourceArena.Place(capacity, flush));
        sourceArena.MakeReadOnly();
    }

    void RunRows(const PatternShape& shape, Sampler& sampler)
    {
        current = &shape;
        std::string text = TextOf(shape);
        DotWeavePattern pattern(text.data(), shape.engine);
        for (int pixels = 0; pixels <= widest; ++pixels)
            for (const Placement& at : allPlacements)
                if (sampler.Takes())
                    RunRow(pattern, static_cast<std::size_t>(pixels), at);
    }

    void RunRow(DotWeavePattern& pattern, std::size_t pixels, const Placement& at)
    {
        const std::size_t steps = pixels * static_cast<std::size_t>(pattern.GetInColorCount());
        const std::size_t inks = pixels * static_cast<std::size_t>(pattern.GetOutColorCount());
        pattern.ApplyPattern(PlaceIn(sourceArena, steps, at.flush, at.oddSource),
                             PlaceIn(destinationArena, inks, at.flush, at.oddDestination),
                             static_cast<unsigned long>(pixels));
    }

    const GuardedArena sourceArena{capacity};
    const GuardedArena destinationArena{capacity};
    const PatternShape* current = nullptr;
    const LastWords lastWords{[this] { return Describe(*current); }};
};

TEST_F(GuardedPatterns, TouchNoByteBeyondTheirRows)
{
    Sampler sampler(OneOf(sampledEvery));
    for (const PatternShape& shape : AllPatternShapes())
        RunRows(shape, sampler);
    std::printf("%" PRIu64 " pattern rows between forbidden pages\n", sampler.GetCount());
    EXPECT_GT(sampler.GetCount(), 10000U);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
