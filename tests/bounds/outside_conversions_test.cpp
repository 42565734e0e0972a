#include "tests/bounds/placements.h"
#include "tests/bounds/two_fills.h"
#include "tests/support/conversion_grid.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>

// What a conversion leaves in a destination beside its pixels, and what of the old content could
// get into them.
namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr std::size_t capacity = 1 << 20;
constexpr std::uint64_t sampledEvery = 211;

TEST(OutsideConversions, EveryByteButThePixelsStaysAndNoneGetsIntoThem)
{
    Bytes source = RandomBytes(capacity, 4);
    TwoFills fills(capacity);
    Sampler sampler(OneOf(sampledEvery));
    BoundsGrid().ForEach([&](const ConversionCase& oneCase) {
        if (!sampler.Takes() || HasFailure())
            return;
        const auto& [from, to, operation, forcePortable] = oneCase;
        const int pixels = CountSetPixels(from, to, operation.factor);
        const std::string fault =
            fills.Run(NaiveRowBytes(to), static_cast<std::size_t>(sampler.GetCount() % 3),
                      BytesOfPixels(to, pixels), [&](unsigned char* destination) {
                          RunConversion(oneCase, source.data(), destination);
                      });
        EXPECT_EQ("", fault) << Describe(oneCase);
    });
    std::printf("%" PRIu64 " conversions on two fills each\n", sampler.GetCount());
    EXPECT_GT(sampler.GetCount(), 10000U);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
