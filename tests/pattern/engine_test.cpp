#include "tests/pattern/engine_support.h"
#include "tests/pattern/naive_pattern.h"
#include "tests/pattern/pattern_support.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr Engine bothFamilies[] = {DotWeavePattern::X86, DotWeavePattern::Sse};

// This is exampleText again.
NaivePattern Example(int version)
{
    NaivePattern pattern;
    pattern.version = version;
    pattern.seed = 1234;
    pattern.outInks = 3;
    NaiveInColor cyan;
    cyan.inks = {0, 1};
    cyan.lines[1] = {{1}, {1}, {64}};
    cyan.lines[2] = {{1, 3}, {1, 0}, {128, 40}};
    cyan.lines[3] = {{1}, {0}, {255}};
    NaiveInColor black;
    black.inks = {2};
    black.lines[1] = {{1}, {0}, {255}};
    pattern.inColors = {cyan, black};
    return pattern;
}

std::string OneInk(const std::string& version, const std::string& values)
{
    return Head(version, "A", "X") + InColor("A", "X", values);
}

TEST(PatternEngines, ApplyTheExample)
{
    NaiveSimulation naive(Example(2));
    const std::vector<std::uint32_t>& field = naive.Field();
    // The jump table's first entry is where the first row begins.
    const auto first = field[30844];
    const std::vector<Bytes> wholePixels = {{0, 128, 255}, {40, 0, 255}};
    for (const Engine engine : bothFamilies) {
        DotWeavePattern pattern = Load(exampleText, engine);
        EXPECT_EQ(Apply(pattern, {2, 1}), wholePixels[first]);
        EXPECT_EQ(Apply(pattern, {2, 1}), wholePixels[field[33804]]);
        EXPECT_EQ(Apply(pattern, {1, 0}), (Bytes{0, 64, 0}));
        EXPECT_EQ(Apply(pattern, {7, 1}), (Bytes{255, 0, 255}));
        const Bytes pixels = Apply(pattern, {2, 1, 2, 1, 2, 1, 2, 1, 2, 1, 2, 1, 2, 1, 2, 1});
        auto pixel = pixels.begin();
        for (std::size_t i = 0; i < 8; ++i, pixel += 3)
            EXPECT_EQ(Bytes(pixel, pixel + 3), wholePixels[field[11742 + i]]) << i;
    }
}

TEST(PatternEngines, AnswerCountsAndTopSteps)
{
    for (const Engine engine : bothFamilies) {
        DotWeavePattern pattern = Load(exampleText, engine);
        EXPECT_EQ(pattern.GetInColorCount(), 2);
        EXPECT_EQ(pattern.GetOutColorCount(), 3);
        EXPECT_EQ(pattern.GetNumberOfStepsForInColor(0), 3);
        EXPECT_EQ(pattern.GetNumberOfStepsForInColor(1), 1);
        for (const int outside : {-1, 2, 16, 1 << 30, -(1 << 30)})
            EXPECT_EQ(pattern.GetNumberOfStepsForInColor(outside), 0) << outside;
        DotWeavePattern listed = Load(Head("2", "A B", "X") + InColor("A", "X", "1 1 0-1"), engine);
        EXPECT_EQ(listed.GetNumberOfStepsForInColor(1), 255);
    }
}

// Applies several rows, resets, and applies more.
void ExpectRowsOf(NaiveSimulation naive, const NaivePattern& description, Engine engine,
                  std::mt19937& random)
{
    const std::string text = description.Text();
    DotWeavePattern pattern = Load(text, engine);
    for (int row = 0; row < 7; ++row) {
        if (row == 4) {
            pattern.ResetRandomizer();
            naive.Reset(engine == DotWeavePattern::X86);
        }
        const std::size_t pixels = random() % 60;
        const auto seed = static_cast<std::uint32_t>(random());
        const Bytes source = RandomSteps(pixels * description.inColors.size(), seed);
        ASSERT_EQ(Apply(pattern, source), naive.Row(source)) << row << "\n" << text;
    }
}

// Checks what engines say that refuse the pattern, and returns the others.
std::vector<Engine> EnginesFor(const NaivePattern& description)
{
    const std::string text = description.Text();
    std::vector<Engine> engines;
    if (description.version < 3 || NaiveSimulation::CountCombinations(description) >= 2)
        engines.push_back(DotWeavePattern::X86);
    else
        EXPECT_EQ(Refusal(text, DotWeavePattern::X86),
                  "narrow: pattern without random combinations");
    const std::string refusal = Refusal(text, DotWeavePattern::Sse);
    if (refusal == "nothing")
        engines.push_back(DotWeavePattern::Sse);
    else
        EXPECT_EQ(refusal, "narrow: capacity exceeded in mComonTrans");
    return engines;
}

TEST(PatternEngines, AgreeWithTheNaiveSimulationOnRandomPatterns)
{
    std::mt19937 random(4711);
    int onBoth = 0;
    for (int round = 0; round < 600 && !testing::Test::HasFailure(); ++round) {
        SCOPED_TRACE(round);
        const NaivePattern description = RandomPattern(random, 2 + round % 2);
        if (NaiveSimulation::CountCombinations(description) > 1024)
            continue;
        const NaiveSimulation naive(description);
        const std::vector<Engine> engines = EnginesFor(description);
        for (const Engine engine : engines)
            ExpectRowsOf(naive, description, engine, random);
        onBoth += engines.size() == 2 ? 1 : 0;
    }
    EXPECT_GT(onBoth, 200);
}

TEST(PatternEngines, WrapTheFieldWithinALongRow)
{
    for (const int version : {2, 3})
        for (const Engine engine : bothFamilies) {
            const NaivePattern description = Example(version);
            NaiveSimulation naive(description);
            DotWeavePattern pattern = Load(description.Text(), engine);
            const Bytes source = RandomSteps(460000, 5);
            EXPECT_TRUE(Apply(pattern, source) == naive.Row(source)) << version;
            EXPECT_TRUE(Apply(pattern, source) == naive.Row(source)) << version;
        }
}

TEST(PatternEngines, WrapTheRowsAfter65536)
{
    const Bytes source = {2, 1, 2, 0, 2, 1};
    for (const int version : {2, 3}) {
        const NaivePattern description = Example(version);
        NaiveSimulation naive(description);
        DotWeavePattern portable = Load(description.Text(), DotWeavePattern::X86);
        DotWeavePattern vector = Load(description.Text(), DotWeavePattern::Sse);
        Bytes from = source;
        Bytes to(9);
        for (int row = 0; row < 70000; ++row) {
            const Bytes expected = naive.Row(source);
            portable.ApplyPattern(from.data(), to.data(), 3);
            ASSERT_EQ(to, expected) << row;
            vector.ApplyPattern(from.data(), to.data(), 3);
            ASSERT_EQ(to, expected) << row;
        }
    }
}

TEST(PatternEngines, CountARowOfNoPixels)
{
    for (const int version : {2, 3})
        for (const Engine engine : bothFamilies) {
            const NaivePattern description = Example(version);
            NaiveSimulation naive(description);
            DotWeavePattern pattern = Load(description.Text(), engine);
            for (int row = 0; row < 5; ++row) {
                naive.Row({});
                // Only the low 32 bits of a count are taken, which are 0 here.
                pattern.ApplyPattern(nullptr, nullptr,
                                     static_cast<unsigned long>(std::uint64_t(row) << 32));
            }
            const Bytes source(100, 2);
            EXPECT_EQ(Apply(pattern, source), naive.Row(source));
        }
}

TEST(PatternEngines, StartOnePlaceLaterAfterAResetOnThePortableEngineAlone)
{
    Bytes source;
    for (int i = 0; i < 200; ++i)
        source.insert(source.end(), {2, 1});
    for (const int version : {2, 3}) {
        const std::vector<std::uint32_t> field = NaiveSimulation(Example(version)).Field();
        for (const Engine engine : bothFamilies) {
            DotWeavePattern pattern = Load(Example(version).Text(), engine);
            pattern.ResetRandomizer();
            const std::size_t start = 30844 + (engine == DotWeavePattern::X86 ? 1 : 0);
            const Bytes inks = Apply(pattern, source);
            for (std::size_t i = 0; i < 200; ++i)
                ASSERT_EQ(inks[3 * i], field[start + i] == 0 ? 0 : 40) << version << " " << i;
        }
    }
}

TEST(PatternEngines, TakeTheLastSeedOfTheText)
{
    const Bytes source(300, 1);
    const std::string block = OneInk("2", "1 1:1 0-1 0-2");
    for (const Engine engine : bothFamilies) {
        DotWeavePattern behind =
            Load("DotWeavePattern RANDOM_SEED 8 " + block + "RANDOM_SEED 5", engine);
        DotWeavePattern ahead = Load("DotWeavePattern RANDOM_SEED 5 " + block, engine);
        EXPECT_EQ(Apply(behind, source), Apply(ahead, source));
    }
}

TEST(PatternEngines, DrawNothingForOneCombination)
{
    for (const Engine engine : bothFamilies) {
        DotWeavePattern one = Load(OneInk("2", "1 1 0-5 2 3 0-9") + "RANDOM_SEED 1", engine);
        DotWeavePattern other = Load(OneInk("2", "1 1 0-5 2 3 0-9") + "RANDOM_SEED 2", engine);
        const Bytes source = RandomSteps(1000, 1);
        const Bytes expected = Apply(one, source);
        EXPECT_EQ(Apply(other, source), expected);
        one.ResetRandomizer();
        EXPECT_EQ(Apply(one, source), expected);
    }
}

TEST(PatternEngines, WriteTheLowEightBits)
{
    for (const Engine engine : bothFamilies) {
        DotWeavePattern pattern =
            Load(OneInk("2", "1 1 0-256 2 1 0-257 3 1 0--2 4 1 0--1"), engine);
        EXPECT_EQ(Apply(pattern, {0, 1, 2, 3, 4}), (Bytes{0, 0, 1, 254, 0}));
    }
}

TEST(PatternEngines, TakeAStepAboveTheTopForTheTop)
{
    for (const Engine engine : bothFamilies) {
        DotWeavePattern pattern = Load(OneInk("2", "1 1 0-5 2 1 0-9"), engine);
        EXPECT_EQ(Apply(pattern, {0, 1, 2, 3, 7, 8, 127, 128, 255}),
                  (Bytes{0, 5, 9, 9, 9, 9, 9, 9, 9}));
    }
}

TEST(PatternEngines, GiveNothingOutsideTheBoundsOfARow)
{
    for (const Engine engine : bothFamilies) {
        DotWeavePattern pattern =
            Load(Head("2", "A", "X Y") +
                     InColor("A", "X Y", "1 1 1-1 2 1 0-20 3 1 0-30 4 1 1-4 5 1 1-5"),
                 engine);
        EXPECT_EQ(Apply(pattern, {0, 1, 2, 3, 4, 5, 6}),
                  (Bytes{0, 0, 0, 1, 20, 0, 30, 0, 0, 4, 0, 5, 0, 5}));
    }
}

TEST(PatternEngines, DecideAllInksOfAPixelByOneDraw)
{
    for (const Engine engine : bothFamilies)
        for (const char* version : {"2", "3"}) {
            DotWeavePattern pattern =
                Load(Head(version, "A B", "X Y Z") +
                         InColor("A", "X Y", "1 1:1 0-10 1-20 2 1:1 0-30 1-40") +
                         InColor("B", "Z", "1 1 0-7"),
                     engine);
            const Bytes inks = Apply(pattern, Bytes(2000, 1));
            int first = 0;
            for (std::size_t i = 0; i < inks.size(); i += 3) {
                const bool isFirst = inks[i] == 10;
                EXPECT_EQ(inks[i], isFirst ? 10 : 0);
                EXPECT_EQ(inks[i + 1], isFirst ? 0 : 20);
                EXPECT_EQ(inks[i + 2], 7);
                first += isFirst ? 1 : 0;
            }
            EXPECT_GT(first, 400);
            EXPECT_LT(first, 600);
        }
}

TEST(PatternEngines, FollowTheTextWhereAnInkIsFedTwice)
{
    // The row follows the order of building, the step byte the last block of the text.
    const std::string text = Head("2", "A B", "X") + InColor("B", "X", "1 1 0-21 2 1 0-22") +
                             InColor("A", "X", "1 1 0-11 2 1 0-12 3 1 0-13");
    for (const Engine engine : bothFamilies) {
        DotWeavePattern pattern = Load(text, engine);
        EXPECT_EQ(Apply(pattern, {1, 2, 2, 1, 0, 2}), (Bytes{21, 22, 0}));
        // Step 3 is within the bounds of A, whose byte counts, but not within the row of B.
        EXPECT_EQ(Apply(pattern, {3, 2}), Bytes{0});
    }
}

TEST(PatternEngines, GiveNothingForAStepThatNoRowHolds)
{
    // The byte of B selects in the row of A, and B has no steps that could limit it.
    std::string values;
    for (int step = 1; step <= 7; ++step)
        values += Numbered("\n", step) + " 1" + Numbered(" 0-", step * 10);
    const std::string fed =
        Head("2", "B A", "X") + InColor("A", "X", values) + InColor("B", "X", "");
    for (const Engine engine : bothFamilies) {
        DotWeavePattern pattern = Load(fed, engine);
        EXPECT_EQ(pattern.GetNumberOfStepsForInColor(0), 255);
        EXPECT_EQ(Apply(pattern, {7, 0, 8, 0, 127, 0, 128, 0, 255, 0, 3, 7}),
                  (Bytes{70, 0, 0, 0, 0, 30}));
    }
}

TEST(PatternEngines, TakeStepZeroBehindAPixel)
{
    // A stands at index 2 of the list, and a pixel has two bytes. The row is B's.
    const std::string text =
        Head("2", "A B A", "X") + InColor("B", "X", "0 1 0-5 1 1 0-6") + InColor("A", "X", "");
    for (const Engine engine : bothFamilies) {
        DotWeavePattern pattern = Load(text, engine);
        EXPECT_EQ(pattern.GetInColorCount(), 2);
        EXPECT_EQ(Apply(pattern, {1, 1, 1, 1, 1, 1}), (Bytes{5, 5, 5}));
    }
}

TEST(PatternEngines, TakeStepZeroAtEachIndexBeyondTheLanes)
{
    // The low four bits of 17 are 1, and 255 stands for no in-colour. The row is B's.
    for (const int index : {17, 255}) {
        std::string names;
        for (int i = 0; i < index; ++i)
            names += i == 1 ? " B" : " A";
        const std::string text = Head("2", names + " A", "X") +
                                 InColor("B", "X", "0 1 0-5 1 1 0-6") + InColor("A", "X", "");
        for (const Engine engine : bothFamilies) {
            DotWeavePattern pattern = Load(text, engine);
            EXPECT_EQ(Apply(pattern, {1, 1}), Bytes{5}) << index;
        }
    }
}

TEST(VectorEngine, LoadsWithAnInkThatNobodyFeeds)
{
    const std::string text = Head("2", "A", "X Y Z") + InColor("A", "Z", "1 1 0-9");
    EXPECT_EQ(Refusal(text, DotWeavePattern::X86), "narrow: out-ink without in-colour in pattern");
    DotWeavePattern pattern = Load(text, DotWeavePattern::Sse);
    EXPECT_EQ(Apply(pattern, {1, 0, 1}), (Bytes{0, 0, 9, 0, 0, 0, 0, 0, 9}));
}

TEST(VectorEngine, LoadsOneCombinationInTheSecondGeneration)
{
    DotWeavePattern pattern = Load(OneInk("3", "1 1 0-5"), DotWeavePattern::Sse);
    EXPECT_EQ(Apply(pattern, {0, 1, 2}), (Bytes{0, 5, 5}));
    EXPECT_EQ(Refusal(OneInk("3", "1 1 0-5"), DotWeavePattern::X86),
              "narrow: pattern without random combinations");
}

TEST(VectorEngine, WrapsAtTheFieldOfThePatternBuiltLast)
{
    // Fields of 100003 and 100002 entries: the walk of the first wraps one entry early.
    NaivePattern large = Example(3);
    large.inColors[0].lines[2].weights = {1, 100002};
    NaivePattern small = Example(3);
    small.inColors[0].lines[2].weights = {1, 1};
    NaiveSimulation naive(large);
    ASSERT_EQ(naive.Field().size(), 100003U);

    DotWeavePattern pattern = Load(large.Text(), DotWeavePattern::Sse);
    DotWeavePattern later = Load(small.Text(), DotWeavePattern::Sse);
    const std::size_t pixels = 90000;
    Bytes source;
    for (std::size_t i = 0; i < pixels; ++i)
        source.insert(source.end(), {2, 1});
    const Bytes inks = Apply(pattern, source);
    for (std::size_t i = 0; i < pixels; ++i) {
        const std::uint32_t combination = naive.Field()[(30844 + i) % 100002];
        ASSERT_EQ(inks[3 * i], combination == 0 ? 0 : 40) << i;
    }
}

TEST(VectorEngine, HoldsSixteenValuesInACombination)
{
    const auto text = [](int inColors) {
        std::string blocks;
        for (int i = 0; i < inColors; ++i) {
            std::string values;
            for (int step = 0; step < 4; ++step)
                values += Numbered(" ", step) + " 1" + Numbered(" 0-", 10 * i + step + 1);
            blocks += InColor(Numbered("C", i), Numbered("X", i), values);
        }
        return Head("2", Names(" C", inColors), Names(" X", inColors)) + blocks;
    };
    DotWeavePattern pattern = Load(text(4), DotWeavePattern::Sse);
    EXPECT_EQ(Apply(pattern, {0, 1, 2, 3, 3, 2, 1, 0}), (Bytes{1, 12, 23, 34, 4, 13, 22, 31}));
    EXPECT_EQ(Refusal(text(5), DotWeavePattern::Sse), "narrow: capacity exceeded in mComonTrans");
    EXPECT_EQ(Refusal(text(5), DotWeavePattern::X86), "nothing");
    // Too many values are found before too many in-colours.
    EXPECT_EQ(Refusal(text(17), DotWeavePattern::Sse), "narrow: capacity exceeded in mComonTrans");
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
