#include "pelkraft/plan.h"
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

constexpr std::size_t widest = 266;
constexpr std::size_t capacity = 16 * (widest + 1);
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

    // Calls run(source, destination, pixels) on rows of this shape.
    template <typename Run>
    void RunRows(const PatternShape& shape, Sampler& sampler, const Run& run)
    {
        current = &shape;
        const auto inColors = static_cast<std::size_t>(shape.inColors);
        const auto outInks = static_cast<std::size_t>(shape.outInks);
        for (std::size_t pixels = 0; pixels <= widest; ++pixels)
            for (const Placement& at : allPlacements)
                if (sampler.Takes())
                    run(PlaceIn(sourceArena, pixels * inColors, at.flush, at.oddSource),
                        PlaceIn(destinationArena, pixels * outInks, at.flush, at.oddDestination),
                        pixels);
    }

    const GuardedArena sourceArena{capacity};
    const GuardedArena destinationArena{capacity};
    const PatternShape* current = nullptr;
    const LastWords lastWords{[this] { return Describe(*current); }};
};

TEST_F(GuardedPatterns, TouchNoByteBeyondTheirRows)
{
    Sampler sampler(OneOf(sampledEvery));
    for (const PatternShape& shape : AllPatternShapes()) {
        std::string text = TextOf(shape);
        DotWeavePattern pattern(text.data(), shape.engine);
        RunRows(shape, sampler, [&](auto* source, auto* destination, std::size_t pixels) {
            pattern.ApplyPattern(source, destination, static_cast<unsigned long>(pixels));
        });
    }
    std::printf("%" PRIu64 " pattern rows between forbidden pages\n", sampler.GetCount());
    EXPECT_GT(sampler.GetCount(), 10000U);
}

plk_pattern* HandleOf(const PatternShape& shape)
{
    const std::string text = TextOf(shape);
    const plk_pattern_spec spec = {sizeof spec, shape.engine};
    plk_pattern* handle = nullptr;
    EXPECT_EQ(plk_pattern_create(text.data(), text.size(), &spec, &handle, nullptr), PLK_OK);
    return handle;
}

TEST_F(GuardedPatterns, TouchNoByteBeyondTheRowsOfAHandle)
{
    Sampler sampler(OneOf(sampledEvery));
    for (const PatternShape& shape : AllPatternShapes()) {
        if (shape.engine == DotWeavePattern::Reference)
            continue;
        plk_pattern* const handle = HandleOf(shape);
        RunRows(shape, sampler, [&](auto* source, auto* destination, std::size_t pixels) {
            const std::uint64_t read = pixels * static_cast<std::size_t>(shape.inColors);
            const std::uint64_t written = pixels * static_cast<std::size_t>(shape.outInks);
            const plk_source from = {sizeof from, 0, source, read, 0, 0, 0};
            const plk_target to = {sizeof to, 0, destination, written, 0, 0, 0};
            ASSERT_EQ(plk_pattern_run(handle, read, 1, pixels, &from, &to, nullptr), PLK_OK);
        });
        plk_pattern_free(handle);
    }
    std::printf("%" PRIu64 " rows of handles between forbidden pages\n", sampler.GetCount());
    EXPECT_GT(sampler.GetCount(), 10000U);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
