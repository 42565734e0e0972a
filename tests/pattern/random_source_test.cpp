#include "pattern/field_walk.h"
#include "pattern/sse_row.h"
#include "tests/pattern/naive_random.h"
#include "tests/pattern/pattern_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <random>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

using Numbers = std::vector<std::uint32_t>;

std::unique_ptr<PatternCombinations> Combinations(const std::vector<Fraction>& fractions)
{
    auto combinations = std::make_unique<PatternCombinations>();
    for (std::size_t i = 0; i < fractions.size(); ++i)
        (*combinations)[i].fraction = fractions[i];
    return combinations;
}

CombinationDistribution Distribution(const Numbers& cumulative, std::uint32_t total)
{
    CombinationDistribution distribution;
    distribution.count = static_cast<std::uint32_t>(cumulative.size());
    distribution.total = total;
    std::copy(cumulative.begin(), cumulative.end(), distribution.cumulative.begin());
    return distribution;
}

template <typename Field>
Numbers DataOf(const Field& field)
{
    return Numbers(field.GetData(), field.GetData() + field.GetSize());
}

Numbers CountsOf(const Numbers& field, std::uint32_t count)
{
    Numbers counts(count, 0);
    for (const std::uint32_t entry : field)
        ++counts.at(entry);
    return counts;
}

Numbers NgField(const std::vector<Fraction>& fractions, std::int32_t seed)
{
    const auto combinations = Combinations(fractions);
    return DataOf(RandomFieldNG(seed, CombinationDistribution{}, *combinations,
                                static_cast<std::uint32_t>(fractions.size())));
}

TEST(LinearGenerator, GivesTheSequenceOfItsSeed)
{
    LinearRandom random(4711);
    EXPECT_EQ(random.Next(), 15422U);
    EXPECT_EQ(random.Next(), 16902U);
    EXPECT_EQ(random.Next(), 31126U);
    for (const std::uint32_t seed : {0U, 1U, 42U, 0x80000000U, 0xFFFFFFFFU}) {
        LinearRandom own(seed);
        NaiveRand naive(seed);
        for (int i = 0; i < 1000; ++i)
            ASSERT_EQ(own.Next(), naive()) << seed << " " << i;
    }
}

TEST(NaiveGenerator, IsThePublishedTwister)
{
    // Output 10000 of the default seed is published as a check.
    NaiveTwister twister(5489);
    for (int i = 1; i < 10000; ++i)
        twister();
    EXPECT_EQ(twister(), 4123659995U);
}

TEST(JumpTable, HoldsTheEvenPlacesOfItsSequence)
{
    const JumpTable& table = GetJumpTable();
    const std::array<std::uint16_t, 6> start = {30844, 33804, 62252, 40392, 11742, 58938};
    for (std::size_t i = 0; i < start.size(); ++i)
        EXPECT_EQ(table[i], start[i]);
    for (std::uint32_t i = 0; i < table.size(); ++i)
        ASSERT_EQ(table[i], NaiveJump(i));
    EXPECT_TRUE(std::all_of(table.begin(), table.end(), [](auto entry) { return entry % 2 == 0; }));
}

// Draws the field of the first generation as it is defined: an entry is the combination before the
// first sum above the rest.
Numbers DrawnFrom(std::uint32_t seed, const Numbers& cumulative, std::uint32_t total)
{
    NaiveRand rand(seed);
    Numbers field;
    for (int i = 0; i < 65536; ++i) {
        const std::uint32_t rest = rand() % total;
        std::uint32_t k = 0;
        while (k < cumulative.size() && rest >= cumulative[k])
            ++k;
        field.push_back(k - 1);
    }
    return field;
}

TEST(RandomField, TakesTheCombinationBeforeTheFirstSumAboveTheRest)
{
    const struct
    {
        Numbers cumulative;
        std::uint32_t total;
    } cases[] = {
        {{0, 1}, 4},
        {{0, 1, 5}, 7},
        // A combination of no weight is passed.
        {{0, 0, 2, 2}, 3},
        // The generator never reaches the high end of a large total.
        {{0, 100, 32767, 32768}, 65536},
        // Sums that have wrapped are taken as they stand.
        {{0, 50, 20, 70, 10, 90}, 100},
    };
    for (const auto& [cumulative, total] : cases) {
        RandomField field(1234, Distribution(cumulative, total), PatternCombinations{}, 99);
        EXPECT_EQ(DataOf(field), DrawnFrom(1234, cumulative, total)) << total;
        EXPECT_EQ(field.GetCount(), cumulative.size());
        EXPECT_EQ(field.GetSize(), 65536U);
    }
    // Fractions 1/4 and 3/4: a rest of 0 is combination 0, any other is 1.
    RandomField quarters(1234, Distribution({0, 1}, 4), PatternCombinations{}, 2);
    NaiveRand rand(1234);
    for (std::uint32_t i = 0; i < quarters.GetSize(); ++i)
        ASSERT_EQ(quarters.GetData()[i], rand() % 4 == 0 ? 0U : 1U);
}

TEST(RandomField, HoldsMinusOneWithoutCombinations)
{
    RandomField field(1, Distribution({}, 1), PatternCombinations{}, 0);
    EXPECT_EQ(DataOf(field), Numbers(65536, 0xFFFFFFFF));
}

TEST(RandomField, DropsDrawsByTotal)
{
    for (const std::uint32_t total : {1U, 2U, 3U, 4U, 5U, 30U}) {
        RandomField field(-9, total);
        NaiveRand rand(static_cast<std::uint32_t>(-9));
        Numbers expected;
        for (int i = 0; i < 65536; ++i) {
            if (total == 3)
                rand();
            expected.push_back(rand() % total);
            rand();
            rand();
            if (total == 2)
                rand();
        }
        EXPECT_EQ(DataOf(field), expected) << total;
        EXPECT_EQ(field.GetCount(), total);
    }
}

TEST(RandomField, TakesADigitBehindADivisor)
{
    RandomField field(42, 5, 12);
    NaiveRand rand(42);
    Numbers expected;
    for (int i = 0; i < 65536; ++i)
        expected.push_back(rand() / 12 % 5);
    EXPECT_EQ(DataOf(field), expected);
}

template <typename Field>
void ExpectTheWalk(Field& field, std::uint32_t size)
{
    const std::uint32_t* data = field.GetData();
    const auto expectAt = [&](std::uint32_t position) {
        EXPECT_EQ(field.Current(), data[position % size]);
    };
    std::uint32_t position = NaiveJump(0);
    for (std::uint32_t i = 0; i < 2 * size + 5; ++i)
        ASSERT_EQ(field.Next(), data[(position + i) % size]) << i;

    for (std::uint32_t row = 1; row < 70000; ++row) {
        field.StartNextRow();
        expectAt(NaiveJump(row));
    }
    field.Reset();
    expectAt(NaiveJump(0) + 1);
    field.StartNextRow();
    expectAt(NaiveJump(1));
}

TEST(RandomField, WalksFromTheJumpTableAndOnePlaceLaterAfterAReset)
{
    RandomField field(42, 30);
    ExpectTheWalk(field, 65536);
}

TEST(RandomFieldNG, WalksFromTheJumpTableAndOnePlaceLaterAfterAReset)
{
    const auto combinations = Combinations({{1, 4}, {1, 4}, {1, 2}});
    RandomFieldNG field(42, CombinationDistribution{}, *combinations, 3);
    EXPECT_EQ(field.GetSize(), 100004U);
    ExpectTheWalk(field, 100004);
}

TEST(RandomFieldNG, HoldsEachCombinationAsOftenAsItsProportionSays)
{
    const Numbers field = NgField({{1, 4}, {3, 4}}, 42);
    EXPECT_EQ(field.size(), 100004U);
    EXPECT_EQ(CountsOf(field, 2), (Numbers{25001, 75003}));
}

TEST(RandomFieldNG, GivesTheRestToTheFirstCombination)
{
    const Numbers field = NgField({{1, 6}, {1, 2}, {1, 3}}, 42);
    EXPECT_EQ(field.size(), 100002U);
    EXPECT_EQ(CountsOf(field, 3), (Numbers{33334, 33334, 33334}));
}

TEST(RandomFieldNG, ShufflesFromFrontToBack)
{
    // The last two come upon an output beyond the last whole multiple of 32768 and of 65536,
    // which a power of two accepts.
    for (const std::int32_t seed : {0, 1, 42, -7, 6585, 13866}) {
        // The first combination has less than one entry in six, and all that is left over.
        Numbers expected(33334, 1);
        expected.insert(expected.end(), 33334, 2);
        expected.insert(expected.end(), 33334, 0);
        NaiveShuffle(expected, static_cast<std::uint32_t>(seed));
        EXPECT_EQ(NgField({{1, 6}, {1, 2}, {1, 3}}, seed), expected) << seed;
    }
}

TEST(RandomFieldNG, GrowsWithALargeDenominator)
{
    const Numbers field = NgField({{1, 250000}, {249999, 250000}}, 42);
    EXPECT_EQ(field.size(), 250000U);
    // 249999 * 250000 wraps in 32 bits, and what that leaves is divided.
    const std::uint32_t entries = 249999U * 250000U / 250000U;
    EXPECT_EQ(CountsOf(field, 2), (Numbers{250000 - entries, entries}));
}

TEST(RandomFieldNG, NeverTakesMoreEntriesThanItsSize)
{
    // Numerators that have wrapped ask for more than there is room for.
    const Numbers field = NgField({{0xFFFFFFFF, 3}, {0x7FFFFFFF, 3}}, 42);
    EXPECT_EQ(field.size(), 100002U);
}

TEST(RandomFieldNG, RefusesFewerThanTwoCombinations)
{
    for (const std::uint32_t count : {0U, 1U})
        EXPECT_EQ(WhatIsThrown([=] {
                      RandomFieldNG(42, CombinationDistribution{}, *Combinations({{1, 1}}), count);
                  }),
                  "narrow: pattern without random combinations");
}

TEST(RandomFieldNG, RefusesAFieldThatNoMachineIsMeantToHold)
{
    EXPECT_EQ(WhatIsThrown([] { NgField({{1, 2}, {1, 0xFFFFFFFF}}, 42); }), "std::bad_alloc");
}

template <typename Pointer>
Numbers NumbersOf(const Pointer& source, const SseTransformation* transformations)
{
    Numbers numbers;
    for (std::uint32_t i = 0; i < source.GetSize(); ++i)
        numbers.push_back(static_cast<std::uint32_t>(source.GetData()[i] - transformations));
    return numbers;
}

TEST(RandomPointer, WalksTheSameCombinationsAsTheField)
{
    const std::vector<SseTransformation> transformations(1024);
    const CombinationDistribution distribution = Distribution({0, 1, 5}, 7);
    const auto source = std::make_unique<RandomPointer<SseTransformation>>();
    source->Build(77, distribution, transformations.data());
    RandomField field(77, distribution, PatternCombinations{}, 3);
    EXPECT_EQ(NumbersOf(*source, transformations.data()), DataOf(field));
    EXPECT_EQ(source->GetWalkSize(), 65536U);
}

TEST(RandomPointerNG, WalksTheSameCombinationsAsTheField)
{
    const std::vector<SseTransformation> transformations(1024);
    const std::vector<Fraction> fractions = {{1, 6}, {1, 2}, {1, 3}};
    RandomPointerNG<SseTransformation> source;
    source.Build(77, *Combinations(fractions), 3, transformations.data());
    EXPECT_EQ(source.GetWalkSize(), 100002U);
    EXPECT_EQ(NumbersOf(source, transformations.data()), NgField(fractions, 77));
}

TEST(RandomPointerNG, StandsStillBeforeItIsBuilt)
{
    RandomPointerNG<SseTransformation> source;
    EXPECT_EQ(source.GetWalkSize(), 0U);
    source.StartNextRow();
    EXPECT_EQ(source.GetPosition(), 0U);
}

TEST(RandomPointerNG, HasAFieldForOneCombination)
{
    const std::vector<SseTransformation> transformations(1);
    RandomPointerNG<SseTransformation> source;
    source.Build(77, *Combinations({{1, 1}}), 1, transformations.data());
    EXPECT_EQ(source.GetWalkSize(), 100001U);
    EXPECT_EQ(NumbersOf(source, transformations.data()), Numbers(100001, 0));
}

TEST(RandomPointerNG, WrapsAtTheSizeOfTheOneBuiltLastButNotBeyondItsEnd)
{
    const std::vector<SseTransformation> transformations(4);
    RandomPointerNG<SseTransformation> large;
    RandomPointerNG<SseTransformation> small;
    large.Build(1, *Combinations({{1, 2}, {1, 100003}}), 2, transformations.data());
    EXPECT_EQ(large.GetWalkSize(), 100003U);
    small.Build(1, *Combinations({{1, 2}, {1, 2}}), 2, transformations.data());
    EXPECT_EQ(small.GetWalkSize(), 100002U);
    EXPECT_EQ(large.GetWalkSize(), 100002U);
    large.Build(1, *Combinations({{1, 2}, {1, 100003}}), 2, transformations.data());
    EXPECT_EQ(small.GetWalkSize(), 100002U);
    EXPECT_EQ(large.GetWalkSize(), 100003U);
}

template <typename Pointer>
void ExpectStartsOfRows(Pointer& source)
{
    EXPECT_EQ(source.GetPosition(), 30844U);
    source.Reset();
    EXPECT_EQ(source.GetPosition(), 30844U);
    for (std::uint32_t row = 1; row < 70000; ++row) {
        source.StartNextRow();
        ASSERT_EQ(source.GetPosition(), NaiveJump(row)) << row;
    }
    source.Reset();
    EXPECT_EQ(source.GetPosition(), 30844U);
    source.StartNextRow();
    EXPECT_EQ(source.GetPosition(), 33804U);
}

TEST(RandomPointer, StartsRowsAtTheJumpTableAlsoAfterAReset)
{
    const std::vector<SseTransformation> transformations(2);
    const auto source = std::make_unique<RandomPointer<SseTransformation>>();
    source->Build(1, Distribution({0, 1}, 2), transformations.data());
    ExpectStartsOfRows(*source);
}

TEST(RandomPointerNG, StartsRowsAtTheJumpTableAlsoAfterAReset)
{
    const std::vector<SseTransformation> transformations(2);
    RandomPointerNG<SseTransformation> source;
    source.Build(1, *Combinations({{1, 2}, {1, 2}}), 2, transformations.data());
    ExpectStartsOfRows(source);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
