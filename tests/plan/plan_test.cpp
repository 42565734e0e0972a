#include "plan/plan.h"

#include "tests/direct/levels.h"
#include "tests/plan/planned_case.h"
#include "tests/plan/planned_runs.h"
#include "tests/rows/refusal.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>

// These tests hold which road a plan takes, and that a run looks at nothing but the plan and the
// rows' bytes. overlap_test.cpp holds the choice that the rows' addresses make.
namespace zvk::Pelkraft::TestSupport {

void PrintTo(PlanRoad road, std::ostream* out)
{
    constexpr const char* names[] = {"none", "direct", "chain"};
    *out << names[static_cast<std::size_t>(road)];
}

namespace {

constexpr int levels[] = {0, 2, 3, 5, 6, 7};

PlanRoad RoadOfMap(int sourceChannels, const std::vector<int>& map, int level)
{
    const auto entries = static_cast<int>(map.size());
    return PlanOf(CaseOf({40, sourceChannels, 8, false}, {40, entries, 8, true}, level, MapTo(map)),
                  level)
        .road;
}

TEST(PlanRoad, IsDirectForEveryChannelOfTheSource)
{
    for (const int level : levels) {
        EXPECT_EQ(PlanRoad::Direct, RoadOfMap(3, {2, 0, 1}, level));
        EXPECT_EQ(PlanRoad::Direct, RoadOfMap(3, {-1, -2147483647, 2, 2}, level));
        EXPECT_EQ(PlanRoad::Direct, RoadOfMap(1, {0}, level));
    }
}

TEST(PlanRoad, IsTheChainForAChannelBeyondTheSource)
{
    for (const int level : levels) {
        EXPECT_EQ(PlanRoad::Chain, RoadOfMap(3, {3}, level));
        EXPECT_EQ(PlanRoad::Chain, RoadOfMap(3, {0, 1, 2, -1, 3}, level));
        EXPECT_EQ(PlanRoad::Chain, RoadOfMap(3, {3, 0, 1}, level));
        EXPECT_EQ(PlanRoad::Chain, RoadOfMap(3, {2147483647, 0, 1}, level));
        EXPECT_EQ(PlanRoad::Chain, RoadOfMap(1, {0, 1}, level));
    }
}

TEST(PlanRoad, IsDirectForMapsOfUpToSixtyFourEntries)
{
    for (const int level : levels) {
        EXPECT_EQ(PlanRoad::Direct, RoadOfMap(3, std::vector<int>(63, 2), level));
        EXPECT_EQ(PlanRoad::Direct, RoadOfMap(3, std::vector<int>(64, 2), level));
        EXPECT_EQ(PlanRoad::Chain, RoadOfMap(3, std::vector<int>(65, 2), level));
        EXPECT_EQ(PlanRoad::Chain, RoadOfMap(3, std::vector<int>(130, 2), level));
    }
}

TEST(PlanRoad, IsNoneWithoutAPixelToMove)
{
    for (const int level : levels)
        for (const int factor : {1, 4, -2}) {
            const NaiveOperation repeat = RepeatBy(factor);
            const auto roadOf = [&](const NaiveGeometry& from, const NaiveGeometry& to) {
                return PlanOf(CaseOf(from, to, level, repeat), level).road;
            };
            EXPECT_EQ(PlanRoad::None, roadOf({0, 3, 8, false}, {0, 3, 16, true}));
            EXPECT_EQ(PlanRoad::None, roadOf({0, 3, 8, false}, {9, 3, 16, true}));
            EXPECT_EQ(PlanRoad::None, roadOf({9, 3, 1, true}, {0, 3, 16, true}));
            EXPECT_EQ(PlanRoad::None, roadOf({9, 0, 8, true}, {9, 0, 16, true}));
        }
    EXPECT_EQ(PlanRoad::None, RoadOfMap(3, {}, 7));
}

// A plan without a road has no kernels to run, and its rows may be anywhere.
TEST(PlanRoad, OfNoneLooksAtNoRow)
{
    const Plan plan = PlanOf(CaseOf({0, 3, 8, false}, {9, 3, 8, true}, 7), 7);
    EXPECT_EQ(returned, EndOf([&] { RunPlan(plan, nullptr, nullptr); }));
}

// The portable unpacking fills a slot of 16 channels from its end down, in groups of four.
bool IsCovered(int channels)
{
    return (channels >= 13 && channels <= 16) || (channels >= 29 && channels <= 32);
}

TEST(PlanRoad, IsTheChainWherePortableUnpackingLeavesSamplesOut)
{
    for (int channels = 1; channels <= 32; ++channels)
        for (const int bits : {1, 2}) {
            SCOPED_TRACE(channels);
            const NaiveGeometry packed{50, channels, bits, true};
            const NaiveGeometry other{50, channels, 3 - bits, true};
            const PlanRoad expected = IsCovered(channels) ? PlanRoad::Direct : PlanRoad::Chain;
            for (const int level : {0, 1, 2}) {
                const auto roadTo = [&](const NaiveGeometry& to, const NaiveOperation& operation) {
                    return PlanOf(CaseOf(packed, to, level, operation), level).road;
                };
                EXPECT_EQ(expected, roadTo({50, channels, 8, true}, {}));
                EXPECT_EQ(expected, roadTo({50, channels, 8, false}, RepeatBy(-4)));
                EXPECT_EQ(expected, roadTo({50, channels, 16, false}, {}));
                EXPECT_EQ(expected, roadTo({50, channels, 16, true}, {}));
                EXPECT_EQ(expected, roadTo(other, {}));
                EXPECT_EQ(expected, roadTo(packed, RepeatBy(1)));
                EXPECT_EQ(expected, roadTo(packed, RepeatBy(-1)));
                // A copy unpacks nothing.
                EXPECT_EQ(PlanRoad::Direct, roadTo(packed, {}));
            }
            for (const int level : {3, 6, 7})
                EXPECT_EQ(hasVectorRoad ? PlanRoad::Direct : expected,
                          PlanOf(CaseOf(packed, {50, channels, 8, true}, level), level).road);
        }
}

TEST(PlanRoad, CountsAsManyChannelsAsThereCanBe)
{
    // The next multiples of 4 and of 16 are the same number, which does not fit 31 bits.
    const NaiveGeometry most{1, 2147483647, 2, true};
    const ConversionCase tested =
        CaseOf(most, {1, 17, 1, true}, 0, MapTo(std::vector<int>(17, 2147483646)));
    EXPECT_EQ(PlanRoad::Direct, PlanOf(tested, 0).road);
}

// A map runs on packed bytes, so that the unpacking meets the destination's channels, but the
// source's where packing follows, after which the map runs.
TEST(PlanRoad, OfPortableUnpackingGoesByTheChannelsThatItMeets)
{
    for (const int sourceChannels : {3, 14, 16, 17, 30})
        for (const int channels : {2, 13, 15, 18, 29}) {
            SCOPED_TRACE(std::to_string(sourceChannels) + " to " + std::to_string(channels));
            std::vector<int> map(static_cast<std::size_t>(channels), sourceChannels - 1);
            const NaiveOperation operation = MapTo(map);
            const NaiveGeometry from{50, sourceChannels, 2, true};
            const auto roadTo = [&](int bits, bool planar) {
                const NaiveGeometry to{50, channels, bits, planar};
                return PlanOf(CaseOf(from, to, 0, operation), 0).road;
            };
            EXPECT_EQ(IsCovered(channels) ? PlanRoad::Direct : PlanRoad::Chain, roadTo(8, false));
            EXPECT_EQ(IsCovered(channels) ? PlanRoad::Direct : PlanRoad::Chain, roadTo(16, true));
            EXPECT_EQ(IsCovered(sourceChannels) ? PlanRoad::Direct : PlanRoad::Chain,
                      roadTo(1, true));
            // A map alone unpacks nothing.
            EXPECT_EQ(PlanRoad::Direct, roadTo(2, true));
        }
}

// One plan of each kind that reads its map at another place: planes chosen, pixels shuffled,
// splits, packed planes, and maps of as many entries as a plan keeps.
std::vector<ConversionCase> MappedCases(int level)
{
    std::vector<int> longest(64, 1);
    longest[0] = -1;
    longest[63] = 2;
    return {
        CaseOf({70, 3, 8, false}, {70, 3, 8, false}, level, MapTo({2, -1, 0})),
        CaseOf({70, 3, 8, true}, {70, 4, 8, true}, level, MapTo({2, -1, 0, 0})),
        CaseOf({70, 5, 16, false}, {70, 3, 16, true}, level, MapTo({4, 0, 4})),
        CaseOf({70, 3, 8, true}, {70, 4, 16, false}, level, MapTo({1, -1, 0, 2})),
        CaseOf({70, 4, 8, false}, {70, 2, 1, true}, level, MapTo({3, 1})),
        CaseOf({70, 3, 2, true}, {70, 16, 8, false}, level, MapTo(std::vector<int>(16, 2))),
        CaseOf({70, 3, 8, false}, {70, 64, 8, true}, level, MapTo(longest)),
    };
}

TEST(Plan, DoesNotLookAtTheCallersMapOnceItIsMade)
{
    for (const int level : LevelsOfThisProcessor())
        for (const ConversionCase& tested : MappedCases(level))
            for (const auto run : {RunPlan, RunChain}) {
                SCOPED_TRACE(Describe(tested) + ", level " + std::to_string(level));
                const Bytes source = RandomBytes(NaiveRowBytes(tested.source), 5);
                const Bytes before = RandomBytes(NaiveRowBytes(tested.destination), 6);
                ConversionCase callers = tested;
                const Plan plan = PlanOf(callers, level);
                EXPECT_EQ(PlanRoad::Direct, plan.road);
                // Any of these would show, and the last one would fault.
                std::fill(callers.operation.map.begin(), callers.operation.map.end(), 1);
                callers.operation.map.back() = 2147483647;
                EXPECT_TRUE(ExpectedOf(tested, source, before) ==
                            RunOn(plan, tested, source, before, run));
            }
}

// Entries beyond the source's channels make a plan for the chain, which keeps the map as well.
TEST(Plan, KeepsTheMapOfTheChainToo)
{
    for (const int level : LevelsOfThisProcessor())
        for (const std::size_t entries : {std::size_t{3}, std::size_t{64}}) {
            std::vector<int> map(entries, 1);
            map[0] = 3;
            const ConversionCase tested = CaseOf(
                {70, 3, 8, false}, {70, static_cast<int>(entries), 8, false}, level, MapTo(map));
            const Bytes source = RandomBytes(NaiveRowBytes(tested.source), 5);
            const Bytes before = RandomBytes(NaiveRowBytes(tested.destination), 6);
            const Plan kept = PlanOf(tested, level);
            EXPECT_EQ(PlanRoad::Chain, kept.road);
            const Bytes expected = RunOn(kept, tested, source, before, RunPlan);
            ConversionCase callers = tested;
            const Plan plan = PlanOf(callers, level);
            std::fill(callers.operation.map.begin(), callers.operation.map.end(), 0);
            EXPECT_TRUE(expected == RunOn(plan, tested, source, before, RunPlan));
        }
}

TEST(Plan, RefersToTheCallersMapBeyondSixtyFourEntries)
{
    const ConversionCase tested =
        CaseOf({70, 3, 8, false}, {70, 65, 8, false}, 7, MapTo(std::vector<int>(65, 1)));
    const ChannelMap map = MapOf(PlanOf(tested, 7));
    EXPECT_EQ(65U, map.entryCount);
    EXPECT_EQ(tested.operation.map.data(), map.entries);
}

TEST(Plan, RunsOnAnyNumberOfRowPairs)
{
    for (const int level : LevelsOfThisProcessor())
        for (const ConversionCase& tested : PlannedCases(level)) {
            const Plan plan = PlanOf(tested, level);
            const Bytes one = RunTwice(plan, tested, 1);
            EXPECT_FALSE(one == RunTwice(plan, tested, 3));
            EXPECT_TRUE(one == RunTwice(plan, tested, 1));
        }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
