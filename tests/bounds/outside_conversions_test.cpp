#include "tests/bounds/placements.h"
#include "tests/bounds/two_fills.h"
#include "tests/direct/levels.h"
#include "tests/support/conversion_grid.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>

// A conversion must leave the bytes beside its pixels alone, and none of their old content may get
// into the pixels.
namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr std::size_t capacity = 1 << 20;
constexpr std::uint64_t sampledEvery = 211;

// One conversion on two fills, and what is wrong with it.
std::string FaultOf(const ConversionCase& oneCase, TwoFills& fills, Bytes& source,
                    std::uint64_t number)
{
    const NaiveGeometry& to = oneCase.destination;
    const int pixels = CountSetPixels(oneCase.source, to, oneCase.operation.factor);
    return fills.Run(
        NaiveRowBytes(to), static_cast<std::size_t>(number % 3), BytesOfPixels(to, pixels),
        [&](unsigned char* destination) { RunConversion(oneCase, source.data(), destination); });
}

TEST(OutsideConversions, EveryByteButThePixelsStaysAndNoneGetsIntoThem)
{
    Bytes source = RandomBytes(capacity, 4);
    TwoFills fills(capacity);
    Sampler sampler(OneOf(sampledEvery));
    for (const int level : LevelsOfThisProcessor()) {
        const LimitedLevel limited(level);
        BoundsGrid().ForEach([&](const ConversionCase& oneCase) {
            if (!sampler.Takes() || HasFailure())
                return;
            EXPECT_EQ("", FaultOf(oneCase, fills, source, sampler.GetCount()))
                << Describe(oneCase) << ", level " << level;
        });
    }
    std::printf("%" PRIu64 " conversions on two fills each\n", sampler.GetCount());
    EXPECT_GT(sampler.GetCount(), 10000U);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
