#include "tests/dither/dither_calls.h"
#include "tests/support/counted_memory.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

namespace zvk::Pelkraft::TestSupport {
namespace {

// Channels that are compared with limits, and some of so many steps that they are looked up.
NaiveDither DitherOfSteps(std::uint64_t steps)
{
    NaiveDither naive = MixedDither(16);
    for (std::uint64_t step = naive.channels[3].inks.size(); step < steps; ++step)
        naive.channels[3].inks.push_back(step);
    return naive;
}

TEST(DitherMemory, IsNotTakenByARun)
{
    for (const std::uint64_t steps : {4U, 200U}) {
        const NaiveDither naive = DitherOfSteps(steps);
        const DitherHandle dither = HandleOf(naive);
        const Bytes row = RandomBytes(8 * 500, 1);
        Bytes inks(4 * 500);
        const plk_source source = SourceOf(row.data(), row.size(), 0);
        const plk_target target = TargetOf(inks.data(), inks.size(), 0);
        CountedMemory memory;
        memory.Start();
        const plk_status status =
            plk_dither_run(dither.get(), 3, 4, 1, 500, &source, &target, nullptr);
        memory.Stop();
        EXPECT_EQ(status, PLK_OK);
        EXPECT_EQ(memory.CountAsked(), 0U);
        EXPECT_EQ(inks, naive.RowOf(row, 3, 4));
    }
}

// Each allocation fails once.
TEST(DitherMemory, LeavesNothingWhereADitherCannotBeMade)
{
    for (const std::uint64_t steps : {4U, 200U}) {
        const DitherRecord record(DitherOfSteps(steps));
        std::size_t number = 0;
        for (plk_status status = PLK_NO_MEMORY; status != PLK_OK; ++number) {
            plk_failure failure = {};
            failure.size = sizeof failure;
            auto* dither = reinterpret_cast<plk_dither*>(&failure);
            CountedMemory memory;
            memory.FailAt(number);
            memory.Start();
            status = plk_dither_create(&record.spec, &dither, &failure);
            plk_dither_free(dither);
            memory.Stop();
            EXPECT_EQ(memory.CountHeld(), 0) << "leaked after failure " << number;
            ASSERT_EQ(status, memory.CountFailed() == 0 ? PLK_OK : PLK_NO_MEMORY) << number;
            ASSERT_LT(number, 100U);
        }
        EXPECT_GT(number, 5U);
    }
}

// So many channels that no memory holds their tables, and that their number wraps with 32 bits.
TEST(DitherMemory, IsRefusedForChannelsThatNoneHolds)
{
    const std::uint32_t inks[] = {0, 1};
    std::vector<plk_tones> tones(std::size_t{1} << 20, {inks, 2, 0, 65535, 0});
    const std::vector<std::uint16_t> mask = OwnMask();
    const plk_dither_spec spec = {sizeof spec,        16,
                                  tones.data(),       static_cast<std::int32_t>(tones.size()),
                                  PLK_ROAD_AUTOMATIC, mask.data()};
    plk_failure failure = {};
    failure.size = sizeof failure;
    plk_dither* dither = nullptr;
    CountedMemory memory;
    memory.FailAbove(std::size_t{1} << 30);
    memory.Start();
    EXPECT_EQ(plk_dither_create(&spec, &dither, &failure), PLK_NO_MEMORY);
    memory.Stop();
    EXPECT_EQ(dither, nullptr);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
