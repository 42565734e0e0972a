#include "pattern/field_walk.h"
#include "pattern/reference_pattern.h"
#include "tests/pattern/engine_support.h"
#include "tests/pattern/naive_pattern.h"
#include "tests/pattern/naive_random.h"
#include "tests/pattern/naive_reference.h"
#include "tests/pattern/pattern_support.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

DotWeavePattern Load(const std::string& text)
{
    return TestSupport::Load(text, DotWeavePattern::Reference);
}

std::string Refusal(const std::string& text)
{
    return TestSupport::Refusal(text, DotWeavePattern::Reference);
}

// Its one in-colour feeds the inks X and Y.
std::string Values(const std::string& version, const std::string& values)
{
    return Head(version, "A", "X Y") + InColor("A", "X Y", values);
}

Bytes Once(const std::string& text, const Bytes& source)
{
    DotWeavePattern pattern = Load(text);
    return Apply(pattern, source);
}

Bytes Repeated(const Bytes& pixel, std::size_t count)
{
    Bytes pixels;
    for (std::size_t i = 0; i != count; ++i)
        pixels.insert(pixels.end(), pixel.begin(), pixel.end());
    return pixels;
}

TEST(ReferenceClass, AgreesWithTheNaiveOneOnRandomPatterns)
{
    std::mt19937 random(99);
    int compared = 0;
    for (int round = 0; round < 400; ++round) {
        const NaivePattern description = RandomPattern(random, 2);
        if (description.outInks > 12)
            continue;
        NaiveReference naive(description);
        DotWeavePattern pattern = Load(description.Text());
        for (int row = 0; row < 5; ++row) {
            if (row == 3) {
                naive.Reset();
                pattern.ResetRandomizer();
            }
            const Bytes source = RandomSteps(37 * description.inColors.size(),
                                             static_cast<std::uint32_t>(round * 8 + row));
            ASSERT_EQ(Apply(pattern, source), naive.Apply(source)) << description.Text();
        }
        ++compared;
    }
    EXPECT_GT(compared, 200);
}

TEST(ReferenceClass, RunsOnAcrossCallsAndEmptyRows)
{
    const std::string text = Values("2", "1 1:1 0-10 0-20");
    DotWeavePattern whole = Load(text);
    DotWeavePattern inPieces = Load(text);
    const Bytes expected = Apply(whole, Bytes(100, 1));
    // Only the low 32 bits of a count are taken, which are 0 here.
    inPieces.ApplyPattern(nullptr, nullptr, static_cast<unsigned long>(std::uint64_t{1} << 32));
    Bytes joined;
    for (const std::size_t pixels : {10U, 0U, 50U, 40U}) {
        const Bytes piece = Apply(inPieces, Bytes(pixels, 1));
        joined.insert(joined.end(), piece.begin(), piece.end());
    }
    EXPECT_EQ(joined, expected);
}

TEST(ReferenceClass, TakesPlainValuesAtOtherVersionsThan2)
{
    for (const char* version : {"0", "1", "3", "4"})
        EXPECT_EQ(Once(Values(version, "1 1 9 2 1 0-7"), {1, 2}), (Bytes{9, 0, 0, 0})) << version;
    // Alternative j stands at position j, and the whole token is its value.
    EXPECT_EQ(Once(Values("1", "1 0:1 8 9"), {1}), (Bytes{0, 9}));
    EXPECT_EQ(Once(Values("1", "1 0:1 8 1-9"), {1}), (Bytes{0, 1}));
    EXPECT_EQ(Once(Values("1", "1 1 -1"), {1}), (Bytes{255, 0}));
    EXPECT_EQ(Once(Values("2", "1 0:1 8 1-9"), {1}), (Bytes{0, 9}));
    EXPECT_EQ(Once(Values("2", "1 1 9"), {1}), (Bytes{9, 0}));
}

TEST(ReferenceClass, IsTakenWhateverTheVersion)
{
    const std::string text = Values("1", "1 1 9");
    for (const auto engine : {DotWeavePattern::X86, DotWeavePattern::Sse})
        EXPECT_EQ(TestSupport::Refusal(text, engine), "narrow: unsupported pattern version");
    EXPECT_EQ(Refusal(text), "nothing");
}

TEST(ReferenceClass, CopiesAStepWithASuffixToAllHigherSteps)
{
    const std::string text = Values("2", "1 1 0-3 2+ 1:0 1-5 0-0 7+ 1 0-9");
    EXPECT_EQ(Once(text, {0, 1, 2, 3, 6, 7}), (Bytes{0, 0, 3, 0, 0, 5, 0, 5, 0, 5, 9, 5}));
    DotWeavePattern pattern = Load(text);
    EXPECT_EQ(pattern.GetNumberOfStepsForInColor(0), 3);
}

TEST(ReferenceClass, CopiesTheSourceOfAStepWithASuffix)
{
    DotWeavePattern pattern = Load(Values("2", "1+ 1:1 0-1 0-2"));
    DotWeavePattern other = Load(Values("2", "1+ 1:1 0-1 0-2"));
    const Bytes ones = Apply(pattern, Bytes(50, 1));
    EXPECT_EQ(Apply(other, Bytes(50, 6)), ones);
    EXPECT_NE(ones, Bytes(100, 1));
}

TEST(ReferenceClass, SetsNoSourceForASuffixWithASumBelow2)
{
    // The second line takes the source from step 1, and its copy takes it from step 2.
    DotWeavePattern pattern = Load(Values("2", "1 1:1 0-1 0-2 2 1:1 0-1 0-2 1+ 1 0-7"));
    const Bytes inks = Apply(pattern, {1, 2, 1, 2});
    EXPECT_EQ(inks, (Bytes{7, 0, 7, 0, 7, 0, 7, 0}));
}

TEST(ReferenceClass, CombinesInColorsOfOneInkBitByBit)
{
    const std::string text =
        Head("2", "A B", "X") + InColor("A", "X", "1 1 0-3") + InColor("B", "X", "1 1 0-6");
    EXPECT_EQ(Once(text, {1, 1, 1, 0, 0, 1}), (Bytes{7, 3, 6}));
}

TEST(ReferenceClass, LetsInColorsOfOneSumDrawFromOneField)
{
    const std::string text = Head("2", "A B", "X Y") + "RANDOM_SEED 7" +
                             InColor("A", "X", "1 1:1 0-1 0-2") +
                             InColor("B", "Y", "1 1:1 0-1 0-2");
    DotWeavePattern pattern = Load(text);
    const Bytes inks = Apply(pattern, Bytes(200, 1));
    RandomField field(7, 2);
    for (std::size_t i = 0; i < inks.size(); ++i)
        ASSERT_EQ(inks[i], field.GetData()[(NaiveJump(0) + 1 + i) % 65536] + 1) << i;
}

TEST(ReferenceClass, DrawsAFieldByTheSeedThatStandsAheadOfItsFirstLine)
{
    const std::string text = Values("2", "1 1:1 0-1 0-2") + "RANDOM_SEED 7" +
                             InColor("A", "X Y", "2 1:2 0-1 0-2 3 1:1 0-1 0-2");
    RandomField halves(42, 2);
    RandomField thirds(7, 3);
    DotWeavePattern pattern = Load(text);
    const Bytes inks = Apply(pattern, [] {
        Bytes source;
        for (int i = 0; i < 100; ++i)
            source.insert(source.end(), {1, 2, 3});
        return source;
    }());
    for (std::size_t i = 0; i < 100; ++i) {
        const std::size_t place = NaiveJump(0) + 1;
        ASSERT_EQ(inks[6 * i], halves.GetData()[place + 2 * i] + 1) << i;
        ASSERT_EQ(inks[6 * i + 2], thirds.GetData()[place + i] == 0 ? 1 : 2) << i;
        ASSERT_EQ(inks[6 * i + 4], halves.GetData()[place + 2 * i + 1] + 1) << i;
    }
}

TEST(ReferenceClass, MovesASourceOnlyForPixelsThatUseIt)
{
    const std::string text = Values("2", "1 1:1 0-1 0-2");
    DotWeavePattern dense = Load(text);
    DotWeavePattern sparse = Load(text);
    const Bytes all = Apply(dense, {1, 1, 1, 1});
    const Bytes some = Apply(sparse, {1, 0, 9, 1, 255, 1, 0, 1});
    EXPECT_EQ(some, (Bytes{all[0], 0, 0, 0, 0, 0, all[2], 0, 0, 0, all[4], 0, 0, 0, all[6], 0}));
}

TEST(ReferenceClass, TakesAStepAbove7ForAStepWithoutLine)
{
    EXPECT_EQ(Once(Values("2", "0 1 0-4 7 1 0-5"), {0, 7, 8, 128, 255}),
              (Bytes{4, 0, 5, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(ReferenceClass, AnswersTheLinesOfTheLastList)
{
    const std::string text = Head("2", "A B", "X") +
                             "BEGIN_IN_COLOR A BEGIN_VALUES 1 1 0-1 2 1 0-1 4 1 0-1 END_VALUES "
                             "BEGIN_VALUES 1 1 0-1 1 1 0-2 END_VALUES END_IN_COLOR";
    DotWeavePattern pattern = Load(text);
    EXPECT_EQ(pattern.GetNumberOfStepsForInColor(0), 2);
    EXPECT_EQ(pattern.GetNumberOfStepsForInColor(1), 0);
    EXPECT_EQ(pattern.GetNumberOfStepsForInColor(2), 0);
    EXPECT_EQ(pattern.GetNumberOfStepsForInColor(-1), 0);
}

TEST(ReferenceClass, LeavesOutInColorsWhoseIndexIsBeyondThePixel)
{
    // A stands at index 2 of the list, and a pixel has two bytes.
    const std::string text =
        Head("2", "A B A", "X Y") + InColor("A", "X", "0 1 0-5") + InColor("B", "Y", "1 1 0-6");
    EXPECT_EQ(Once(text, {1, 1, 1, 1}), (Bytes{0, 6, 0, 6}));
    // Nor does such an in-colour move the source that it shares with another.
    const std::string halves = InColor("B", "Y", "1 1:1 0-1 0-2");
    EXPECT_EQ(Once(Head("2", "A B A", "X Y") + InColor("A", "X", "0 1:1 0-1 0-2") + halves,
                   Bytes(200, 1)),
              Once(Head("2", "A B", "X Y") + halves, Bytes(200, 1)));
}

TEST(ReferenceClass, WritesNothingOfAnInkBehindThePixel)
{
    // The index lies far beyond the object, where a sanitizer sees it.
    std::string inks;
    for (int i = 0; i < 5000; ++i)
        inks += " X";
    EXPECT_EQ(Once(Head("2", "A", inks) + InColor("A", "X", "1 1 0-9"), {1, 1}), (Bytes{0, 0}));
}

TEST(ReferenceClass, RefusesWhatItsTablesDoNotHold)
{
    const std::string sum = "narrow: sum of weights out of range in pattern";
    EXPECT_EQ(Refusal(Values("2", "1 15:15 0-1 0-2")), "nothing");
    EXPECT_EQ(Refusal(Values("2", "1 15:16 0-1 0-2")), sum);
    EXPECT_EQ(Refusal(Values("2", "1 0 0-1")), sum);
    for (const char* line : {"1 -5", "1 40:-20 0-1 0-2", "1 -20:40 0-1 0-2", "1 1:3:-1 0 0 0"})
        EXPECT_EQ(Refusal(Values("2", line)), sum) << line;

    const std::string position = "narrow: ink position out of range in pattern";
    EXPECT_EQ(Refusal(Values("2", "1 1 11-1")), "nothing");
    EXPECT_EQ(Refusal(Values("2", "1 1 12-1")), position);
    EXPECT_EQ(Refusal(Values("1", "1 1 12-1")), "nothing");

    EXPECT_EQ(Refusal(Values("2", "8 1 0-1")), "narrow: step out of range in pattern");
    EXPECT_EQ(Refusal(Values("2", "-1 1 0-1")), "narrow: step out of range in pattern");

    std::string inks;
    for (int i = 0; i < 12; ++i)
        inks += " X";
    EXPECT_EQ(Refusal(Head("2", "A", "X") + InColor("A", inks, "")), "nothing");
    EXPECT_EQ(Refusal(Head("2", "A", "X") + InColor("A", inks + " X", "")),
              "narrow: too many ink positions in pattern");
}

TEST(ReferenceClass, ReadsTheRestOfALongRatioAsTheTwelfthWeight)
{
    const std::string weights = "1 0:0:0:0:0:0:0:0:0:0:0:1:9:9";
    const std::string text = Values("2", weights + " 9 9 9 9 9 9 9 9 9 9 9 1-5");
    EXPECT_EQ(Once(text, Bytes(40, 1)), Repeated({0, 5}, 40));
}

TEST(ReferenceClass, RefusesMoreThan12OutInksAndAnyNumberOfInColorsIsTaken)
{
    EXPECT_EQ(Refusal(Head("2", "A", Names(" N", 12))), "nothing");
    EXPECT_EQ(Refusal(Head("2", "A", Names(" N", 13))),
              "narrow: Array too long for pattern tables");
    DotWeavePattern pattern =
        Load(Head("2", Names(" N", 40), "X") + InColor("N39", "X", "1 1 0-9"));
    Bytes source(40, 0);
    source[39] = 1;
    EXPECT_EQ(Apply(pattern, source), Bytes{9});
}

TEST(ReferenceClass, HasNoLimitOnCombinationsAndNoNeedForEveryStep)
{
    std::string values = "2 1:2:3 0-1 0-2 0-3 4 1:2:4 0-1 0-2 0-3 5 2:2:3 0-1 0-2 0-3 "
                         "6 1:1:1:1 0-1 0-1 0-1 0-1";
    EXPECT_EQ(Refusal(Values("2", values)), "nothing");
}

TEST(ReferenceClass, StaysEmptyWithoutTheHeaderWord)
{
    EXPECT_EQ(Refusal("VERSION 2"),
              "wide: DotWeavePattern::Init invalid DotWeave pattern configuration file!");
}

TEST(ReferenceClass, DrawsInItsOlderWayUnlessToldOtherwise)
{
    EXPECT_TRUE(Testonly::ReadRandomOldSetting(true));
}

// The class itself, whose fields and newer way of drawing the pattern class doesn't show.
class OpenReference : public Testonly::CDotWeavePattern<RandomField>
{
public:
    // cppcheck-suppress passedByValue // a pattern is loaded from a text that may be changed
    void Load(std::string text) { InitFromText(text.data()); }

    Bytes Apply(Bytes source)
    {
        const std::size_t pixels = source.size() / static_cast<std::size_t>(GetInColorCount());
        Bytes destination(pixels * static_cast<std::size_t>(GetOutColorCount()));
        ApplyPattern(source.data(), destination.data(), static_cast<unsigned long>(pixels));
        return destination;
    }

    using CDotWeavePattern::mInColors;
    using CDotWeavePattern::mRandomOld;
};

TEST(ReferenceClass, HoldsValuesOf32Bits)
{
    OpenReference pattern;
    pattern.Load(Values("2", "1 1:1:1:1 0-2147483647 0--2147483648 0-65536 0--1"));
    const auto& values = pattern.mInColors.Find(0)->steps[1].table[0];
    EXPECT_EQ(std::vector<std::int64_t>(values.begin(), values.begin() + 4),
              (std::vector<std::int64_t>{2147483647, -2147483648LL, 65536, -1}));
}

TEST(ReferenceClass, ForgetsAnEarlierTextAsANewOneIsRead)
{
    const std::string block = InColor("A", "X", "1 1:1 0-1 0-2");
    OpenReference fresh;
    fresh.Load(Head("2", "A", "X") + "RANDOM_SEED 7" + block);
    const Bytes expected = fresh.Apply(Bytes(100, 1));
    OpenReference pattern;
    pattern.Load(Head("2", "A", "X") + block);
    EXPECT_NE(pattern.Apply(Bytes(100, 1)), expected);
    pattern.Load(Head("2", "A", "X") + "RANDOM_SEED 7" + block);
    EXPECT_EQ(pattern.Apply(Bytes(100, 1)), expected);
    // A text without the header word leaves the names alone and no in-colour.
    pattern.Load("VERSION 2");
    EXPECT_EQ(pattern.Apply(Bytes(100, 1)), Bytes(100, 0));
    EXPECT_EQ(pattern.GetNumberOfStepsForInColor(0), 0);
}

TEST(ReferenceClass, MovesEachSourceWithEachPixelInTheNewerWay)
{
    // The first source draws digits of 1, the second digits of 2, the third digits of 2 * 3.
    const std::string text = Head("2", "A B", "X Y") + "RANDOM_SEED 11" +
                             InColor("A", "X", "1 1:1 0-0 0-1 2 1:2 0-0 0-1 3 1:1 0-2 0-3") +
                             InColor("B", "Y", "1 1:1 0-0 0-1");
    OpenReference pattern;
    pattern.mRandomOld = false;
    pattern.Load(text);
    std::vector<std::uint32_t> draws(65536);
    NaiveRand rand(11);
    for (std::uint32_t& draw : draws)
        draw = rand();
    Bytes source;
    Bytes expected;
    for (std::size_t i = 0; i < 300; ++i) {
        const std::uint32_t draw = draws[NaiveJump(0) + 1 + i];
        const auto step = static_cast<unsigned char>(i % 4);
        source.insert(source.end(), {step, 1});
        const std::uint32_t ink = step == 0   ? 0
                                  : step == 1 ? draw % 2
                                  : step == 2 ? (draw / 2 % 3 == 0 ? 0 : 1)
                                              : 2 + draw % 2;
        expected.push_back(static_cast<unsigned char>(ink));
        expected.push_back(static_cast<unsigned char>(draw / 6 % 2));
    }
    EXPECT_EQ(pattern.Apply(source), expected);
    EXPECT_EQ(pattern.GetConverter(), nullptr);
    EXPECT_EQ(pattern.GetRandomSource(), nullptr);
}

TEST(ReferenceClass, TellsStepsApartByAnyOfTheirFirstFourWeightsInTheNewerWay)
{
    for (std::size_t other = 0; other != 4; ++other) {
        // The number of weights and their sum are those of step 1, 1:1:1:1:2.
        std::vector<std::uint32_t> weights = {1, 1, 1, 1, 1};
        weights[other] = 2;
        std::string ratio;
        Bytes alternativeOf;
        for (std::size_t i = 0; i != weights.size(); ++i) {
            ratio += i == 0 ? "" : ":";
            ratio += std::to_string(weights[i]);
            alternativeOf.insert(alternativeOf.end(), weights[i], static_cast<unsigned char>(i));
        }
        std::string values = "1 1:1:1:1:2 0-0 0-1 0-2 0-3 0-4 2 ";
        values.append(ratio).append(" 0-0 0-1 0-2 0-3 0-4 ");
        OpenReference pattern;
        pattern.mRandomOld = false;
        pattern.Load(Head("2", "A", "X") + "RANDOM_SEED 11" + InColor("A", "X", values));
        NaiveRand rand(11);
        for (unsigned i = 0; i != NaiveJump(0) + 1U; ++i)
            rand();
        // Step 1 draws the lower digit of 6, and step 2 the one after it.
        Bytes expected;
        for (int i = 0; i != 300; ++i)
            expected.push_back(alternativeOf[rand() / 6 % 6]);
        EXPECT_EQ(pattern.Apply(Bytes(300, 2)), expected) << ratio;
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
