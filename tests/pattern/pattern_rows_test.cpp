#include "pattern/pattern_rows.h"

#include "tests/direct/levels.h"
#include "tests/pattern/drawing_patterns.h"
#include "tests/pattern/engine_support.h"
#include "tests/pattern/naive_pattern.h"
#include "tests/pattern/pattern_support.h"
#include "tests/support/guarded_buffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

// A row of a loaded pattern is a function of its number.
namespace zvk::Pelkraft::TestSupport {
namespace {

using Rows = std::unique_ptr<const PatternRows>;

constexpr Engine engines[] = {DotWeavePattern::Automatic, DotWeavePattern::X86,
                              DotWeavePattern::Sse};

Rows LoadRows(const std::string& text, Engine engine)
{
    std::string read = text;
    return LoadPatternRows(read.data(), engine);
}

Bytes ApplyAt(const PatternRows& rows, std::uint64_t number, const Bytes& source,
              std::uint32_t piece = mostPixelsOfPiece)
{
    const PatternNumbers& numbers = rows.GetNumbers();
    const std::size_t pixels = source.size() / static_cast<std::size_t>(numbers.inColors);
    const GuardedBuffer from(source);
    const GuardedBuffer to(pixels * static_cast<std::size_t>(numbers.outInks), Flush::AtEnd, 0xA5);
    rows.Apply({number, from.data(), to.data(), pixels}, piece);
    return to.bytes();
}

// One in-colour and one out-ink, which has two alternatives with these weights.
NaivePattern Weighted(std::uint64_t first, std::uint64_t second)
{
    NaiveInColor inColor;
    inColor.inks = {0};
    inColor.lines[1] = {{first, second}, {0, 0}, {10, 20}};
    NaivePattern pattern;
    pattern.version = 3;
    pattern.outInks = 1;
    pattern.inColors = {inColor};
    return pattern;
}

std::vector<std::uint64_t> SomeNumbers()
{
    std::vector<std::uint64_t> numbers = {0,         1,     2,      3,
                                          65534,     65535, 65536,  65537,
                                          70000,     99999, 131071, (std::uint64_t{1} << 40) + 7,
                                          UINT64_MAX};
    std::mt19937_64 random(33);
    for (int i = 0; i < 20; ++i)
        numbers.push_back(random());
    // Each standard library shuffles in its own way, so none is called.
    for (std::size_t last = numbers.size(); last > 1; --last)
        std::swap(numbers[last - 1], numbers[static_cast<std::size_t>(random() % last)]);
    return numbers;
}

void ExpectNaiveRowsInAnyOrder(const PatternRows& rows, NaiveSimulation naive, std::size_t inColors)
{
    std::uint32_t seed = 5;
    for (const std::uint64_t number : SomeNumbers()) {
        const Bytes source = RandomSteps((number % 7 == 0 ? 1000 : 17) * inColors, ++seed);
        naive.SkipTo(number);
        ASSERT_TRUE(ApplyAt(rows, number, source) == naive.Row(source)) << "row " << number;
    }
}

TEST(PatternRowsAtAnyPlace, AreTheSameInEveryOrderAtEveryLevel)
{
    for (const NaivePattern& pattern : DrawingPatterns(10, 1914)) {
        SCOPED_TRACE(pattern.Text());
        const NaiveSimulation naive(pattern);
        for (const int level : LevelsOfThisProcessor()) {
            const LimitedLevel limited(level);
            for (const Engine engine : engines) {
                SCOPED_TRACE(testing::Message() << "level " << level << " engine " << engine);
                const Rows rows = LoadRows(pattern.Text(), engine);
                ExpectNaiveRowsInAnyOrder(*rows, naive, pattern.inColors.size());
            }
        }
    }
}

TEST(PatternRowsAtAnyPlace, AreThoseOfANewPatternOneAfterAnother)
{
    for (const NaivePattern& pattern : DrawingPatterns(4, 1914))
        for (const Engine engine : {DotWeavePattern::X86, DotWeavePattern::Sse}) {
            const Rows rows = LoadRows(pattern.Text(), engine);
            std::vector<Bytes> backwards(40);
            const Bytes source = RandomSteps(50 * pattern.inColors.size(), 3);
            for (std::size_t row = backwards.size(); row-- != 0;)
                backwards[row] = ApplyAt(*rows, row, source);
            DotWeavePattern inOrder = Load(pattern.Text(), engine);
            for (std::size_t row = 0; row != backwards.size(); ++row)
                ASSERT_TRUE(Apply(inOrder, source) == backwards[row]) << row;
        }
}

TEST(PatternRowsAtAnyPlace, RepeatAfter65536AsThoseOfAPatternDo)
{
    const NaivePattern pattern = Weighted(1, 2);
    DotWeavePattern inOrder = Load(pattern.Text(), DotWeavePattern::Sse);
    const Rows rows = LoadRows(pattern.Text(), DotWeavePattern::Automatic);
    const Bytes source(20, 1);
    Bytes inks(source.size());
    for (std::uint64_t row = 0; row < 70000; ++row) {
        inOrder.ApplyPattern(const_cast<unsigned char*>(source.data()), inks.data(),
                             static_cast<unsigned long>(source.size()));
        if (row % 997 == 0 || (row > 65530 && row < 65545)) {
            Bytes own(source.size());
            rows->Apply({row, source.data(), own.data(), own.size()});
            ASSERT_TRUE(own == inks) << row;
        }
    }
}

TEST(PatternRowsAtAnyPlace, ComeInPiecesOfAnySize)
{
    // The row goes round its field more than once.
    for (const NaivePattern& pattern : DrawingPatterns(4, 1914)) {
        NaiveSimulation naive(pattern);
        const Bytes source = RandomSteps(230000 * pattern.inColors.size(), 8);
        naive.SkipTo(12);
        const Bytes expected = naive.Row(source);
        for (const Engine engine : engines) {
            const Rows rows = LoadRows(pattern.Text(), engine);
            for (const std::uint32_t piece : {13U, 65536U, 100003U, 229999U, 230000U, 230001U})
                ASSERT_TRUE(ApplyAt(*rows, 12, source, piece) == expected) << piece << "\n"
                                                                           << pattern.Text();
        }
    }
}

TEST(PatternRowsAtAnyPlace, TouchNothingWhereThereAreNoPixels)
{
    for (const Engine engine : engines)
        LoadRows(Weighted(1, 2).Text(), engine)->Apply({7, nullptr, nullptr, 0});
}

// The walk of a pattern of the second generation on the vector engine wraps at the field that the
// process built last for one.
TEST(PatternRowsAtAnyPlace, KnowNoFieldButTheirOwn)
{
    constexpr std::size_t pixels = 300000;
    const NaivePattern longer = Weighted(1, 150000);
    const NaivePattern shorter = Weighted(1, 1);
    const Bytes source(pixels, 1);
    const Bytes longRow = NaiveSimulation(longer).Row(source);
    const Bytes shortRow = NaiveSimulation(shorter).Row(source);
    for (const Engine engine : {DotWeavePattern::Automatic, DotWeavePattern::Sse}) {
        const Rows first = LoadRows(longer.Text(), engine);
        const DotWeavePattern between = Load(shorter.Text(), DotWeavePattern::Sse);
        const Rows second = LoadRows(shorter.Text(), engine);
        EXPECT_TRUE(ApplyAt(*first, 0, source) == longRow);
        EXPECT_TRUE(ApplyAt(*second, 0, source) == shortRow);
    }
}

TEST(PatternRowsAtAnyPlace, LeaveTheFieldOfAPatternAsItIs)
{
    const NaivePattern longer = Weighted(1, 150000);
    const Bytes source(300000, 1);
    DotWeavePattern pattern = Load(longer.Text(), DotWeavePattern::Sse);
    const Rows second = LoadRows(Weighted(1, 1).Text(), DotWeavePattern::Sse);
    const Rows third = LoadRows(Weighted(1, 2).Text(), DotWeavePattern::Automatic);
    EXPECT_TRUE(Apply(pattern, source) == NaiveSimulation(longer).Row(source));
}

TEST(PatternRowsAtAnyPlace, HaveTheLimitsOfTheVectorEngineAtEveryLevel)
{
    const std::string single = Head("3", "C", "X Y") + InColor("C", "X", "1 1 0-7");
    // 17 different values do not fit into its tables.
    std::string crowded = Head("2", Names(" C", 17), Names(" X", 6));
    for (int i = 0; i < 6; ++i)
        crowded += InColor(Numbered("C", i), Numbered("X", i),
                           "1 1" + Numbered(" 0-", 30 + i) + "\n2 1" + Numbered(" 0-", 40 + i) +
                               "\n3 1" + Numbered(" 0-", 50 + i));
    for (const int level : LevelsOfThisProcessor()) {
        const LimitedLevel limited(level);
        SCOPED_TRACE(testing::Message() << "level " << level);
        EXPECT_EQ(ApplyAt(*LoadRows(single, DotWeavePattern::Automatic), 3, {0, 1, 9}),
                  (Bytes{0, 0, 7, 0, 7, 0}));
        EXPECT_EQ(WhatIsThrown([&] { LoadRows(crowded, DotWeavePattern::Automatic); }),
                  "narrow: capacity exceeded in mComonTrans");
        EXPECT_EQ(WhatIsThrown([&] { LoadRows(single, DotWeavePattern::X86); }),
                  "narrow: out-ink without in-colour in pattern");
    }
}

TEST(PatternRowsAtAnyPlace, AreRefusedInTheWordsOfAPattern)
{
    const std::string noStep = Head("2", "C", "X") + InColor("C", "X", "9 1 0-1");
    for (const std::string& text :
         {std::string(), std::string("VERSION"), std::string("VERSION 2"),
          std::string("DotWeavePattern VERSION 2"), Head("3", "", "X"), noStep})
        for (const Engine engine : {DotWeavePattern::X86, DotWeavePattern::Sse}) {
            const std::string refusal = WhatIsThrown([&] { LoadRows(text, engine); });
            EXPECT_EQ(refusal, Refusal(text, engine));
            EXPECT_NE(refusal, "nothing");
        }
}

TEST(PatternRowsAtAnyPlace, KnowTheNumbersOfTheirText)
{
    const std::string described = exampleText;
    const std::string third =
        std::string(described).replace(described.find("VERSION 2"), 9, "VERSION 7");
    for (const Engine engine : engines) {
        const PatternNumbers numbers = LoadRows(described, engine)->GetNumbers();
        EXPECT_EQ(numbers.inColors, 2);
        EXPECT_EQ(numbers.outInks, 3);
        EXPECT_EQ(numbers.version, 2);
        EXPECT_EQ(numbers.combinations, 2U);
        EXPECT_EQ(numbers.fieldSize, 65536U);
        EXPECT_EQ(numbers.topSteps[0], 3);
        EXPECT_EQ(numbers.topSteps[1], 1);
        // Each combination stands in a field of 100004 as often as its proportion says.
        EXPECT_EQ(LoadRows(third, engine)->GetNumbers().fieldSize, 100004U);
        EXPECT_EQ(LoadRows(third, engine)->GetNumbers().version, 7);
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
