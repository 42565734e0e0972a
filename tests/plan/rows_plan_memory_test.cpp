#include "tests/direct/levels.h"
#include "tests/plan/rows_case.h"
#include "tests/support/counted_memory.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <new>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr unsigned seed = 20261123;

TEST(RowsPlan, AllocatesNothingInARun)
{
    for (const int level : LevelsOfThisProcessor()) {
        std::mt19937 engine(seed);
        for (int i = 0; i != 500; ++i) {
            const NaiveJoin join = PickJoin(engine);
            SCOPED_TRACE(Describe(join) + ", level " + std::to_string(level));
            const PlacedRows source = PlaceTightly(join.source, 2);
            const PlacedRows target = PlaceTightly(join.target, 2);
            const Bytes from = RandomBytes(source.bytes, seed);
            Bytes to(target.bytes);
            RowsRequest request = RequestOf(join, level);
            request.streamed = i % 2 != 0;
            const RowsPlan plan(request);
            CountedMemory memory;
            memory.Start();
            plan.Run(RowsAt(from.data(), source.at), RowsAt(to.data(), target.at), 2);
            memory.Stop();
            EXPECT_EQ(0U, memory.CountAsked());
        }
    }
}

std::size_t LargestOf(const CountedMemory& memory)
{
    std::size_t largest = 0;
    for (std::size_t i = 0; i != std::min(memory.CountAsked(), CountedMemory::kept); ++i)
        largest = std::max(largest, memory.GetAllocation(i).bytes);
    return largest;
}

TEST(RowsPlan, TakesNoMoreMemoryForMoreChannelsWithoutAMap)
{
    for (const bool planar : {false, true}) {
        const auto bytesFor = [&](int channels) {
            const NaiveGeometry form{1, channels, 8, planar};
            NaiveJoin join{form, form};
            join.inverted = true;
            const RowsRequest request = RequestOf(join, 0);
            CountedMemory memory;
            memory.Start();
            const RowsPlan plan(request);
            memory.Stop();
            return LargestOf(memory);
        };
        EXPECT_EQ(bytesFor(2), bytesFor(1 << 20)) << planar;
    }
}

TEST(RowsPlan, LeavesNothingBehindWhereItCannotBeMade)
{
    const NaiveJoin join{{50, 3, 8, false}, {50, 130, 8, false}, true, std::vector<int>(130, -7)};
    const RowsRequest request = RequestOf(join, 0);
    for (std::size_t number = 0;; ++number) {
        CountedMemory memory;
        memory.FailAt(number);
        memory.Start();
        bool failed = false;
        try {
            const RowsPlan plan(request);
        } catch (const std::bad_alloc&) {
            failed = true;
        }
        memory.Stop();
        EXPECT_EQ(0, memory.CountHeld());
        if (!failed) {
            EXPECT_LE(3U, number);
            break;
        }
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
