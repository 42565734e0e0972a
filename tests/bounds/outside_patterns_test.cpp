#include "tests/bounds/placements.h"
#include "tests/bounds/two_fills.h"
#include "tests/pattern/pattern_grid.h"

#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr int widest = 266;
constexpr std::size_t capacity = std::size_t{16} * (widest + 1);
constexpr std::uint64_t sampledEvery = 5;

TEST(OutsidePatterns, EveryByteButTheInksStaysAndNoneGetsIntoThem)
{
    std::vector<unsigned char> steps = NoisySteps(capacity);
    TwoFills fills(capacity);
    Sampler sampler(OneOf(sampledEvery));
    for (const PatternShape& shape : AllPatternShapes()) {
        std::string text = TextOf(shape);
        DotWeavePattern pattern(text.data(), shape.engine);
        for (int pixels = 0; pixels <= widest && !HasFailure(); ++pixels) {
            if (!sampler.Takes())
                continue;
            const std::size_t inks =
                static_cast<std::size_t>(pixels) * static_cast<std::size_t>(shape.outInks);
            const std::string fault =
                fills.Run(inks, static_cast<std::size_t>(sampler.GetCount() % 3),
                          CoveredBytes(inks, true), [&](unsigned char* destination) {
                              pattern.ResetRandomizer();
                              pattern.ApplyPattern(steps.data(), destination,
                                                   static_cast<unsigned long>(pixels));
                          });
            EXPECT_EQ("", fault) << Describe(shape) << ", " << pixels << " pixels";
        }
    }
    std::printf("%" PRIu64 " pattern rows on two fills each\n", sampler.GetCount());
    EXPECT_GT(sampler.GetCount(), 5000U);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
