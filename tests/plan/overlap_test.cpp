#include "tests/plan/planned_case.h"
#include "tests/rows/refusal.h"
#include "tests/support/counted_memory.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

// The addresses of the rows decide which road a run takes. Without memory the chain fails before it
// looks at either row; the direct road needs none, so that it gives the right bytes.
namespace zvk::Pelkraft::TestSupport {
namespace {

struct Placed
{
    const char* name;
    ConversionCase tested;
};

// Rows whose last bytes are not all of a pixel or hold one bit of it, of one that is wider than the
// other, and of pixels that move alone.
std::vector<Placed> PlacedCases()
{
    return {
        {"bytes", CaseOf({50, 3, 8, false}, {50, 3, 8, true}, 7)},
        {"copy", CaseOf({50, 3, 8, false}, {50, 3, 8, false}, 7)},
        {"words", CaseOf({50, 3, 8, true}, {50, 3, 16, false}, 7)},
        {"bits", CaseOf({53, 3, 1, true}, {53, 3, 8, false}, 7)},
        {"to bits", CaseOf({53, 3, 16, true}, {53, 3, 2, true}, 7)},
        {"one bit alone", CaseOf({33, 3, 1, true}, {33, 3, 8, false}, 7)},
        {"to one bit alone", CaseOf({33, 3, 8, false}, {33, 3, 1, true}, 7)},
        {"ten bits", CaseOf({53, 3, 10, false}, {53, 3, 10, false}, 7)},
        {"wider", CaseOf({90, 3, 8, false}, {50, 3, 8, false}, 7)},
        {"narrower", CaseOf({50, 3, 8, false}, {90, 3, 8, false}, 7)},
        {"mirror", CaseOf({90, 3, 8, false}, {50, 3, 8, false}, 7, RepeatBy(-1))},
        {"map", CaseOf({50, 3, 8, false}, {50, 2, 8, false}, 7, MapTo({2, -1}))},
    };
}

constexpr int level = hasVectorRoad ? 3 : 0;

// The road that a run takes on rows that begin so many bytes into one buffer.
std::string RoadAt(const ConversionCase& tested, std::size_t sourceAt, std::size_t destinationAt)
{
    const Bytes content = RandomBytes(4096, 7);
    Bytes buffer = content;
    const auto sourceStart = content.begin() + static_cast<std::ptrdiff_t>(sourceAt);
    const auto sourceEnd = sourceStart + static_cast<std::ptrdiff_t>(NaiveRowBytes(tested.source));
    const auto start = content.begin() + static_cast<std::ptrdiff_t>(destinationAt);
    const auto end = start + static_cast<std::ptrdiff_t>(NaiveRowBytes(tested.destination));
    const Bytes row = NaiveConvert(tested.source, {sourceStart, sourceEnd}, tested.destination,
                                   {start, end}, tested.operation);
    Bytes expected = content;
    std::copy(row.begin(), row.end(),
              expected.begin() + static_cast<std::ptrdiff_t>(destinationAt));

    const Plan plan = PlanOf(tested, level);
    CountedMemory memory;
    memory.FailAt(0, CountedMemory::Fails::ForEver);
    bool refused = false;
    memory.Start();
    try {
        RunPlan(plan, buffer.data() + sourceAt, buffer.data() + destinationAt);
    } catch (const std::bad_alloc&) {
        refused = true;
    } catch (const char*) {
        refused = true;
    }
    memory.Stop();
    if (refused)
        return buffer == content ? "chain" : "chain, and the row has changed";
    return buffer == expected ? "direct" : "wrong bytes";
}

TEST(RunPlan, TakesTheDirectRoadOnRowsThatLieSideBySide)
{
    for (const auto& [name, tested] : PlacedCases()) {
        SCOPED_TRACE(name);
        constexpr std::size_t at = 1000;
        const std::size_t sourceBytes = NaiveRowBytes(tested.source);
        const std::size_t destinationBytes = NaiveRowBytes(tested.destination);
        EXPECT_EQ("direct", RoadAt(tested, at, at + sourceBytes));
        EXPECT_EQ("direct", RoadAt(tested, at, at - destinationBytes));
        EXPECT_EQ("direct", RoadAt(tested, at, at + sourceBytes + 1));
        EXPECT_EQ("direct", RoadAt(tested, at, at - destinationBytes - 1));
    }
}

TEST(RunPlan, TakesTheChainOnRowsThatShareAByte)
{
    for (const auto& [name, tested] : PlacedCases()) {
        SCOPED_TRACE(name);
        constexpr std::size_t at = 1000;
        const std::size_t sourceBytes = NaiveRowBytes(tested.source);
        const std::size_t destinationBytes = NaiveRowBytes(tested.destination);
        EXPECT_EQ("chain", RoadAt(tested, at, at + sourceBytes - 1));
        EXPECT_EQ("chain", RoadAt(tested, at, at - destinationBytes + 1));
        EXPECT_EQ("chain", RoadAt(tested, at, at));
        EXPECT_EQ("chain", RoadAt(tested, at, at + 1));
        EXPECT_EQ("chain", RoadAt(tested, at, at - 1));
    }
}

// Rows with nowhere to be are the chain's, which faults on them if it has memory.
TEST(RunPlan, TakesTheChainOnRowsWithoutData)
{
    for (const auto& [name, tested] : PlacedCases()) {
        SCOPED_TRACE(name);
        Bytes bytes = RandomBytes(4096, 7);
        const Bytes before = bytes;
        const Plan plan = PlanOf(tested, level);
        const auto endOn = [&](const unsigned char* source, unsigned char* destination) {
            return EndOf([&] {
                const DeniedMemory denied;
                RunPlan(plan, source, destination);
            });
        };
        EXPECT_NE(returned, endOn(nullptr, bytes.data()));
        EXPECT_NE(returned, endOn(bytes.data(), nullptr));
        EXPECT_NE(returned, endOn(nullptr, nullptr));
        EXPECT_TRUE(before == bytes);
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
