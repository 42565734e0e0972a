#include "pattern/pattern_converter_sse.h"
#include "tests/pattern/pattern_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

using Lanes = std::array<std::int32_t, 16>;

// Holds the rows of one combination, from lane 0 on; the rows outlive the combination.
class Rows
{
public:
    explicit Rows(std::vector<StepRow> newRows) : rows(std::move(newRows))
    {
        for (std::size_t i = 0; i < rows.size(); ++i)
            combination.inkSteps[i] = &rows[i];
    }

    PatternCombination combination;

private:
    std::vector<StepRow> rows;
};

SseTransformationBuilder Build(Rows& rows)
{
    SseTransformationBuilder tables;
    tables.Build(rows.combination);
    return tables;
}

// After the given values every lane holds the filler.
Lanes Filled(const std::vector<std::int32_t>& values, std::int32_t filler)
{
    Lanes lanes;
    lanes.fill(filler);
    std::copy(values.begin(), values.end(), lanes.begin());
    return lanes;
}

TEST(SseTransformation, KeepsBoundsAndOffsetOfEachLane)
{
    Rows rows({{-1, 64, 128, -1, -1, -1, -1, -1}, {-1, -1, 40, 255, -1, -1, -1, -1}});
    const SseTransformationBuilder tables = Build(rows);
    EXPECT_EQ(tables.mLower, Filled({1, 2}, 0));
    EXPECT_EQ(tables.mUpper, Filled({2, 3}, 0));
    EXPECT_EQ(tables.mOffset, Filled({-1, 0}, -127));
    EXPECT_EQ(tables.mComonTrans, Filled({64, 128, 40, 255}, 0));
}

TEST(SseTransformation, HasNothingInALaneWithoutValues)
{
    Rows rows({unsetRow, {5, -1, -1, -1, -1, -1, -1, -1}});
    rows.combination.inkSteps[3] = nullptr;
    const SseTransformationBuilder tables = Build(rows);
    EXPECT_EQ(rows.combination.inkSteps[0], nullptr);
    EXPECT_NE(rows.combination.inkSteps[1], nullptr);
    EXPECT_EQ(tables.mOffset, Filled({-127, 0}, -127));
    EXPECT_EQ(tables.mUpper, Filled({}, 0));
    EXPECT_EQ(tables.mComonTrans, Filled({5}, 0));
}

TEST(SseTransformation, SetsTheLanesAnewWhenItIsBuiltAgain)
{
    Rows rows({{-1, 64, 128, -1, -1, -1, -1, -1}});
    Rows without({unsetRow});
    SseTransformationBuilder tables;
    tables.Build(rows.combination);
    tables.Build(without.combination);
    EXPECT_EQ(tables.mLower, Filled({}, 0));
    EXPECT_EQ(tables.mUpper, Filled({}, 0));
    EXPECT_EQ(tables.mOffset, Filled({}, -127));
}

TEST(SseTransformation, KeepsAHoleAsAZeroThatTakesAPlace)
{
    Rows rows({{-1, 7, -1, 9, -1, -1, -1, -1}});
    const SseTransformationBuilder tables = Build(rows);
    EXPECT_EQ(tables.mComonTrans, Filled({7, 0, 9}, 0));
    EXPECT_EQ(tables.mOffset[0], -1);
}

TEST(SseTransformation, StoresARowWithinAnotherOnce)
{
    for (const bool innerFirst : {false, true}) {
        std::vector<StepRow> both = {{10, 20, 30, -1, -1, -1, -1, -1},
                                     {-1, -1, -1, -1, 20, 30, -1, -1}};
        if (innerFirst)
            std::swap(both[0], both[1]);
        Rows rows(both);
        const SseTransformationBuilder tables = Build(rows);
        EXPECT_EQ(tables.mComonTrans, Filled({10, 20, 30}, 0));
        EXPECT_EQ(tables.mOffset[innerFirst ? 1 : 0], 0);
        EXPECT_EQ(tables.mOffset[innerFirst ? 0 : 1], -3);
        EXPECT_EQ(tables.mLower[innerFirst ? 0 : 1], 4);
    }
}

TEST(SseTransformation, TakesTheFirstShiftThatFits)
{
    Rows rows({{7, 7, 7, -1, -1, -1, -1, -1}, {-1, 7, -1, -1, -1, -1, -1, -1}});
    const SseTransformationBuilder tables = Build(rows);
    EXPECT_EQ(tables.mComonTrans, Filled({7, 7, 7}, 0));
    EXPECT_EQ(tables.mOffset[1], -1);
}

TEST(SseTransformation, ComparesUnsetValuesAsTheyAre)
{
    // A hole is no 0: the row 7, hole, 9 does not stand within 7, 0, 9.
    Rows rows({{7, 0, 9, -1, -1, -1, -1, -1}, {7, -1, 9, -1, -1, -1, -1, -1}});
    EXPECT_EQ(Build(rows).mComonTrans, Filled({7, 0, 9, 7, 0, 9}, 0));
    Rows equal({{7, -1, 9, -1, -1, -1, -1, -1}, {-1, 7, -1, 9, -1, -1, -1, -1}});
    EXPECT_EQ(Build(equal).mComonTrans, Filled({7, 0, 9}, 0));
}

TEST(SseTransformation, ComparesWholeValuesBeforeTheyAreCut)
{
    // 256 and 0 are one byte but two values.
    Rows rows({{1, 256, -1, -1, -1, -1, -1, -1}, {1, 0, -1, -1, -1, -1, -1, -1}});
    const SseTransformationBuilder tables = Build(rows);
    EXPECT_EQ(tables.mComonTrans, Filled({1, 256, 1, 0}, 0));
    EXPECT_EQ(tables.Pack().mComonTrans[1], 0);
}

TEST(SseTransformation, MergesChainsInTheOrderOfTheLanes)
{
    // Lane 0 goes into lane 1, and both go on into lane 2, where lane 1 stands one step on.
    Rows rows({{20, -1, -1, -1, -1, -1, -1, -1},
               {-1, 10, 20, -1, -1, -1, -1, -1},
               {5, 10, 20, 30, -1, -1, -1, -1}});
    const SseTransformationBuilder tables = Build(rows);
    EXPECT_EQ(tables.mComonTrans, Filled({5, 10, 20, 30}, 0));
    EXPECT_EQ(tables.mOffset[0], 2);
    EXPECT_EQ(tables.mOffset[1], 0);
    EXPECT_EQ(tables.mOffset[2], 0);
}

TEST(SseTransformation, LooksForARowInThoseOfItsTurn)
{
    // Lane 0 finds its value in lane 2: lane 1, which will hold it too, has not been merged yet.
    Rows rows({{3, -1, -1, -1, -1, -1, -1, -1},
               {1, 2, -1, -1, -1, -1, -1, -1},
               {4, 3, -1, -1, -1, -1, -1, -1},
               {1, 2, 3, -1, -1, -1, -1, -1}});
    const SseTransformationBuilder tables = Build(rows);
    EXPECT_EQ(tables.mComonTrans, Filled({4, 3, 1, 2, 3}, 0));
    EXPECT_EQ(tables.mOffset, Filled({1, 2, 0, 2}, -127));
}

TEST(SseTransformation, HasTheValueOfEachInkAtEachStep)
{
    Rows rows({{-1, 64, 128, -1, -1, -1, -1, -1}, unsetRow, {7, -1, -1, 40, -1, -1, -1, 255}});
    const SseTransformation packed = Build(rows).Pack();
    std::array<std::uint8_t, 128> expected{};
    expected[1] = 64;
    expected[2] = 128;
    expected[16] = 7;
    expected[19] = 40;
    expected[23] = 255;
    EXPECT_EQ(packed.mInkValues, expected);
}

TEST(SseTransformation, PacksTheLowBytes)
{
    Rows rows({{-1, -1, 257, -1, -1, -1, -1, -1}});
    const SseTransformation packed = Build(rows).Pack();
    EXPECT_EQ(packed.mUpper[0], 2);
    EXPECT_EQ(packed.mLower[0], 2);
    EXPECT_EQ(packed.mOffset[0], 0xFE);
    EXPECT_EQ(packed.mOffset[1], 0x81);
    EXPECT_EQ(packed.mComonTrans[0], 1);
}

TEST(SseTransformation, HoldsSixteenValuesAndRefusesSeventeen)
{
    const std::string refusal = "narrow: capacity exceeded in mComonTrans";
    std::vector<StepRow> full = {{1, 2, 3, 4, 5, 6, 7, 8}, {11, 12, 13, 14, 15, 16, 17, 18}};
    Rows rows(full);
    EXPECT_EQ(Build(rows).mComonTrans[15], 18);
    full.push_back({-1, -1, 19, -1, -1, -1, -1, -1});
    Rows tooMany(full);
    EXPECT_EQ(WhatIsThrown([&] { Build(tooMany); }), refusal);
    full.back() = {-1, -1, 16, 17, -1, -1, -1, -1};
    Rows merged(full);
    EXPECT_EQ(Build(merged).mOffset[2], 8 + 5 - 2);
}

// Merges again, in terms of the strips of values alone. Empty strips are lanes without row.
std::size_t CountStoredValues(const std::vector<StepRow>& rows)
{
    using Strip = std::vector<std::int32_t>;
    std::vector<Strip> strips;
    std::vector<std::size_t> owner;
    for (const StepRow& row : rows) {
        Strip strip(row.begin(), row.end());
        while (!strip.empty() && strip.back() == -1)
            strip.pop_back();
        while (!strip.empty() && strip.front() == -1)
            strip.erase(strip.begin());
        owner.push_back(strips.size());
        strips.push_back(strip);
    }
    for (std::size_t a = 0; a < rows.size(); ++a) {
        const Strip& inner = strips[owner[a]];
        for (std::size_t b = 0; b < rows.size(); ++b) {
            const Strip& outer = strips[owner[b]];
            if (inner.empty() || outer.empty() || owner[a] == owner[b])
                continue;
            if (std::search(outer.begin(), outer.end(), inner.begin(), inner.end()) == outer.end())
                continue;
            std::replace(owner.begin(), owner.end(), std::size_t{owner[a]}, std::size_t{owner[b]});
            break;
        }
    }
    std::sort(owner.begin(), owner.end());
    owner.erase(std::unique(owner.begin(), owner.end()), owner.end());
    std::size_t stored = 0;
    for (const std::size_t strip : owner)
        stored += strips[strip].size();
    return stored;
}

TEST(SseTransformation, GivesEveryLaneItsValuesAndRefusesNoMoreThanItMust)
{
    std::mt19937 random(20260101);
    int refused = 0;
    for (int round = 0; round < 5000; ++round) {
        const std::size_t lanes = 1 + random() % 16;
        const int kinds = 1 + static_cast<int>(random() % 6);
        std::vector<StepRow> rowValues(lanes, unsetRow);
        for (StepRow& row : rowValues) {
            const std::size_t length = random() % 4;
            const std::size_t first = random() % 6;
            for (std::size_t step = first; step < std::min<std::size_t>(8, first + length); ++step)
                row[step] = static_cast<std::int32_t>(random() % static_cast<unsigned>(kinds)) - 1;
        }
        const std::size_t stored = CountStoredValues(rowValues);
        Rows rows(rowValues);
        SseTransformationBuilder tables;
        const std::string thrown = WhatIsThrown([&] { tables.Build(rows.combination); });
        ASSERT_EQ(thrown != "nothing", stored > 16) << round;
        if (stored > 16) {
            ++refused;
            continue;
        }
        for (std::size_t lane = 0; lane < lanes; ++lane)
            for (std::int32_t x = tables.mLower[lane]; x <= tables.mUpper[lane]; ++x) {
                if (rows.combination.inkSteps[lane] == nullptr)
                    continue;
                const std::int32_t value = rowValues[lane][static_cast<std::size_t>(x)];
                ASSERT_EQ(tables.mComonTrans[static_cast<std::size_t>(x + tables.mOffset[lane])],
                          value == -1 ? 0 : value);
            }
        for (std::size_t place = stored; place < 16; ++place)
            ASSERT_EQ(tables.mComonTrans[place], 0);
    }
    EXPECT_GT(refused, 100);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
