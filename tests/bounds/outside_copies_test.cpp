#include "tests/bounds/placements.h"
#include "tests/bounds/two_fills.h"
#include "tests/copy/copy_reach.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdint>
#include <cstdio>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr int largestSize = 2 * 266;
constexpr std::size_t capacity = 1 << 12;
constexpr std::uint64_t sampledEvery = 3;

// The first byte of these that is 16-aligned.
unsigned char* AlignedIn(Bytes& bytes)
{
    const auto address = reinterpret_cast<std::uintptr_t>(bytes.data());
    return bytes.data() + (16 - address % 16) % 16;
}

TEST(OutsideCopies, EveryByteButThoseOfTheReachStaysAndNoneGetsIntoThem)
{
    Bytes source = RandomBytes(capacity + 16, 7);
    TwoFills fills(capacity);
    Sampler sampler(OneOf(sampledEvery));
    for (const CopyShape& shape : AllCopyShapes(largestSize)) {
        if (!sampler.Takes() || HasFailure())
            continue;
        const std::size_t shift =
            ServesAnyAddress(shape) ? static_cast<std::size_t>(sampler.GetCount() % 3) : 0;
        const std::string fault =
            fills.Run(ReachOf(shape), shift, CoveredBytes(ReachOf(shape), true),
                      [&](unsigned char* destination) {
                          RunCopy(shape, AlignedIn(source) + shift, destination);
                      });
        EXPECT_EQ("", fault) << Describe(shape);
    }
    std::printf("%" PRIu64 " copies on two fills each\n", sampler.GetCount());
    EXPECT_GT(sampler.GetCount(), 5000U);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
