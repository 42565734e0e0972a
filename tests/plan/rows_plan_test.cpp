#include "tests/direct/levels.h"
#include "tests/plan/rows_case.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <cstdlib>

// Plans of many rows against the naive reference, at every level that the processor has, with a
// fixed seed; PELKRAFT_TEST_CASES says how many cases for each level.
namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr unsigned seed = 20261122;

std::size_t CountCases()
{
    const char* cases = std::getenv("PELKRAFT_TEST_CASES");
    return cases != nullptr ? std::strtoul(cases, nullptr, 10) : 1500;
}

using PickCase = NaiveJoin (*)(std::mt19937&);
using CheckCase = void (*)(const NaiveJoin&, const RowsPlan&, int rows, std::uint32_t seed);

void Sweep(PickCase pick, CheckCase check, bool streamed)
{
    for (const int level : LevelsOfThisProcessor()) {
        std::mt19937 engine(seed + static_cast<unsigned>(level));
        const std::size_t count = CountCases();
        for (std::size_t i = 0; i != count && !::testing::Test::HasFailure(); ++i) {
            const NaiveJoin join = pick(engine);
            const auto caseSeed = static_cast<std::uint32_t>(engine());
            SCOPED_TRACE(Describe(join) + ", level " + std::to_string(level) + ", seed " +
                         std::to_string(caseSeed));
            RowsRequest request = RequestOf(join, level);
            request.streamed = streamed;
            check(join, RowsPlan(request), static_cast<int>(caseSeed % 4), caseSeed);
        }
    }
}

TEST(RowsPlan, ConvertsRowsAnywhereInMemory)
{
    Sweep(PickJoin, CheckRows, false);
}

TEST(RowsPlan, StoresTheSameBytesPastTheCache)
{
    Sweep(PickJoin, CheckRows, true);
}

void CheckAllowedInPlace(const NaiveJoin& join, const RowsPlan& plan, int rows, std::uint32_t at)
{
    EXPECT_TRUE(plan.AllowsInPlace());
    CheckInPlace(join, plan, rows, at);
}

TEST(RowsPlan, ConvertsRowsInPlace)
{
    Sweep(PickJoinInPlace, CheckAllowedInPlace, false);
    Sweep(PickJoinInPlace, CheckAllowedInPlace, true);
}

bool AllowsInPlace(const NaiveJoin& join)
{
    return RowsPlan(RequestOf(join, 0)).AllowsInPlace();
}

TEST(RowsPlan, AllowsInPlaceOnlyWhereEachPixelStaysInItsBytes)
{
    const NaiveJoin same{{9, 4, 8, false}, {9, 4, 8, false}};
    EXPECT_TRUE(AllowsInPlace(same));
    NaiveJoin join = same;
    join.mirrored = true;
    EXPECT_FALSE(AllowsInPlace(join));
    join = same;
    join.repeat = 2;
    EXPECT_FALSE(AllowsInPlace(join));
    EXPECT_FALSE(AllowsInPlace({{9, 4, 8, false}, {9, 4, 16, false}}));
    EXPECT_FALSE(AllowsInPlace({{9, 4, 8, false}, {9, 4, 8, true}}));
    EXPECT_FALSE(AllowsInPlace({{9, 4, 8, false}, {8, 4, 8, false}}));
    EXPECT_FALSE(AllowsInPlace({{9, 4, 8, false}, {9, 3, 8, false}, true, {0, 1, 2}}));
    EXPECT_TRUE(AllowsInPlace({{9, 4, 10, false}, {9, 4, 16, false}}));
    EXPECT_TRUE(AllowsInPlace({{9, 4, 1, false}, {9, 4, 8, false}}));
    EXPECT_FALSE(
        AllowsInPlace({{9, 65, 8, false}, {9, 65, 8, false}, true, std::vector<int>(65, 3)}));
}

// Mirrored and clipped, so that the first half is written and the second one read.
TEST(RowsPlan, ConvertsTheEndOfARowToItsStart)
{
    NaiveJoin join{{20, 4, 8, false}, {10, 4, 8, false}, false, {}, 1, true};
    const NaivePlacement at{0, 80, 0};
    const Bytes before = RandomBytes(240, seed);
    for (const int level : LevelsOfThisProcessor())
        for (const bool maps : {false, true}) {
            join.maps = maps;
            join.map = maps ? std::vector<int>{2, 0, -9, 1} : std::vector<int>{};
            for (const bool streamed : {false, true}) {
                Bytes memory = before;
                RowsRequest request = RequestOf(join, level);
                request.streamed = streamed;
                RowsPlan(request).Run(RowsAt<const unsigned char>(memory.data(), at),
                                      RowsAt(memory.data(), at), 3);
                EXPECT_TRUE(ExpectedRows(join, at, before, at, before, 3) == memory);
            }
        }
}

TEST(RowsPlan, TouchesNothingWithoutPixels)
{
    for (const int level : LevelsOfThisProcessor())
        for (const bool planar : {false, true})
            for (const int bits : {1, 8, 16}) {
                const auto run = [&](const NaiveGeometry& source, const NaiveGeometry& target,
                                     const std::vector<int>& map) {
                    const NaiveJoin join{source, target, true, map, 1, true};
                    RowsPlan(RequestOf(join, level)).Run({nullptr, 0, 0}, {nullptr, 0, 0}, 3);
                };
                run({0, 4, bits, planar}, {7, 2, bits, planar}, {1, -1});
                run({7, 4, bits, planar}, {0, 2, bits, planar}, {1, -1});
                run({7, 4, bits, planar}, {7, 0, bits, planar}, {});
            }
}

// Some 80 batches of channels, of which each tile needs others.
TEST(RowsPlan, MapsThousandsOfChannels)
{
    constexpr int channels = 5003;
    for (const int bits : {8, 16})
        for (const bool planar : {false, true}) {
            NaiveJoin join{{3, channels, bits, false}, {3, channels, 8, planar}, true};
            for (int c = 0; c != channels; ++c)
                join.map.push_back(c % 97 == 0 ? -1 - c % 3 : c * 1009 / 2 * 2 % channels);
            for (const int level : LevelsOfThisProcessor()) {
                SCOPED_TRACE(level);
                CheckRows(join, RowsPlan(RequestOf(join, level)), 2, seed);
            }
        }
}

// The sanitizers see a place that is sought from null on.
TEST(RowsPlan, SeeksNoPlaceInASourceThatIsNotRead)
{
    NaiveJoin join{{9000, 3, 8, false}, {5000, 4, 16, true}, true, {-1, -2 - 9, -1, -1}, 1, true};
    const NaivePlacement at{0, 40000, 10000};
    for (const int level : LevelsOfThisProcessor())
        for (const bool streamed : {false, true})
            for (const bool planar : {false, true}) {
                join.target.planar = planar;
                RowsRequest request = RequestOf(join, level);
                request.streamed = streamed;
                const Bytes before = RandomBytes(40000, seed);
                Bytes target = before;
                RowsPlan(request).Run({nullptr, 0, 0}, RowsAt(target.data(), at), 1);
                EXPECT_TRUE(ExpectedRows(join, {0, 27000, 0}, Bytes(27000), at, before, 1) ==
                            target);
            }
}

TEST(RowsPlan, OwnsItsMapAndMoves)
{
    NaiveJoin join{{50, 3, 8, false}, {50, 130, 8, true}, true, std::vector<int>(130, 2)};
    join.map[77] = -2 - 200;
    const NaiveJoin kept = join;
    RowsPlan made(RequestOf(join, LevelsOfThisProcessor().back()));
    std::fill(join.map.begin(), join.map.end(), 0);
    RowsPlan plan(RequestOf({{1, 1, 8, false}, {1, 1, 8, false}}, 0));
    plan = std::move(made);
    CheckRows(kept, plan, 3, seed);
    const RowsPlan last(std::move(plan));
    CheckRows(kept, last, 3, seed);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
