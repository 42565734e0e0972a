#include "tests/pattern/pattern_support.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace zvk::Pelkraft {
namespace {

using TestSupport::Head;
using TestSupport::InColor;
using TestSupport::Numbered;
using TestSupport::PlainConverter;
using TestSupport::WhatIsThrown;

std::string Refusal(const std::string& text)
{
    return WhatIsThrown([&] { PlainConverter().Load(text.c_str()); });
}

const InColorRecord& Record(const PlainConverter& converter, std::int32_t index)
{
    return *converter.GetInColors().Find(index);
}

std::vector<std::string> TokensOf(const PlainConverter& converter)
{
    std::vector<std::string> texts;
    for (const PatternToken& token : converter.GetTokens())
        texts.push_back(token.text);
    return texts;
}

// One in-colour that feeds the inks X and Y.
std::string Values(const std::string& values)
{
    return Head("2", "A", "X Y") + InColor("A", "X Y", values);
}

TEST(Parser, NeedsTheHeaderWordFirst)
{
    const std::string refusal = "wide: Internal Message: init from dotweave pattern failed";
    for (const char* text : {"", "VERSION 2 DotWeavePattern", "dotweavepattern VERSION 2",
                             "DotWeavePattern2 VERSION 2", "\"\" DotWeavePattern"})
        EXPECT_EQ(Refusal(text), refusal) << text;
    EXPECT_EQ(Refusal(" #comment\n\t\r\n DotWeavePattern"), "nothing");
    EXPECT_EQ(Refusal("\"DotWeavePattern\""), "nothing");
}

TEST(Parser, StartsAtVersion1AndSeed42)
{
    PlainConverter converter;
    converter.Load("DotWeavePattern");
    EXPECT_EQ(converter.GetVersion(), 1);
    EXPECT_EQ(converter.GetRandomSeed(), 42);
    EXPECT_EQ(converter.GetCombinationCount(), 1U);
}

TEST(Parser, ReadsAMissingNumberAsZeroAndConsumesAKeyword)
{
    PlainConverter converter;
    converter.Load("DotWeavePattern RANDOM_SEED BEGIN_OUT_INKS X END_OUT_INKS VERSION");
    EXPECT_EQ(converter.GetRandomSeed(), 0);
    EXPECT_EQ(converter.GetVersion(), 0);
    EXPECT_EQ(converter.GetOutInkCount(), 0);
}

TEST(Parser, SkipsWhatItDoesNotKnow)
{
    PlainConverter converter;
    converter.Load(
        "DotWeavePattern what is this VERSION 7 END_INKS RANDOM_SEED -3 DotWeavePattern");
    EXPECT_EQ(converter.GetVersion(), 7);
    EXPECT_EQ(converter.GetRandomSeed(), -3);
}

TEST(Parser, KeepsTheTokens)
{
    PlainConverter converter;
    converter.Load("DotWeavePattern \"a b\" #c");
    EXPECT_EQ(TokensOf(converter), (std::vector<std::string>{"DotWeavePattern", "a b"}));
}

TEST(Parser, BeginsEachTextWithNoTokenOfTheLast)
{
    PlainConverter converter;
    EXPECT_TRUE(converter.Parse("DotWeavePattern VERSION 2", 0));
    EXPECT_FALSE(converter.Parse("other words", 0));
    EXPECT_EQ(TokensOf(converter), (std::vector<std::string>{"other", "words"}));
}

TEST(Parser, LooksAtNoFlag)
{
    const std::string text = Values("1 1:3 0-4 1-5");
    for (const int flag : {0, 1, 2, -1, 256}) {
        PlainConverter converter;
        EXPECT_TRUE(converter.Parse(text, flag));
        EXPECT_EQ(converter.GetVersion(), 2);
        EXPECT_EQ(Record(converter, 0).steps[1].table[1][1], 5);
        EXPECT_EQ(converter.GetCombinationCount(), 2U);
        EXPECT_FALSE(converter.Parse("VERSION 2", flag));
    }
}

TEST(Parser, ComparesNamesUpperCased)
{
    PlainConverter converter;
    converter.Load((Head("2", "cyan", "Light LIGHT \"two words\"") +
                    InColor("CyAn", "light \"TWO words\"", "1 1 1-9"))
                       .c_str());
    EXPECT_EQ(converter.GetOutInkCount(), 2);
    EXPECT_EQ(Record(converter, 0).numInks, 2);
    // A repeated name takes the later index.
    EXPECT_EQ(Record(converter, 0).inks[0], 1);
    EXPECT_EQ(Record(converter, 0).inks[1], 2);
}

TEST(Parser, RunsTheIndexOfAListFromZeroInEachBlock)
{
    PlainConverter converter;
    converter.Load(
        (Head("2", "A", "X Y") + "BEGIN_OUT_INKS Z END_OUT_INKS" + InColor("A", "X Y Z", "1 1 2-9"))
            .c_str());
    EXPECT_EQ(converter.GetOutInkCount(), 3);
    EXPECT_EQ(Record(converter, 0).inks[2], 0);
}

TEST(Parser, LetsAnUnknownInkTakeNoPosition)
{
    PlainConverter converter;
    converter.Load((Head("2", "A", "X Y") + InColor("A", "X other Y", "1 1 1-9")).c_str());
    EXPECT_EQ(Record(converter, 0).numInks, 2);
    EXPECT_EQ(Record(converter, 0).inks[1], 1);
}

TEST(Parser, ReadsAListOfInksOnOneLineOrOnSeveral)
{
    for (const char* inks : {"X Y Z", "X\nY\nZ", "\r\n\tX #first\r\n Y\r\n\r\nZ"}) {
        PlainConverter converter;
        converter.Load((Head("2", "A", inks) + InColor("A", inks, "1 1 2-9")).c_str());
        EXPECT_EQ(converter.GetOutInkCount(), 3) << inks;
        EXPECT_EQ(Record(converter, 0).numInks, 3) << inks;
        EXPECT_EQ(Record(converter, 0).inks[2], 2) << inks;
    }
}

TEST(Parser, TakesAKeywordInAnotherCaseForAName)
{
    // The list of inks runs on to the end of the text.
    PlainConverter converter;
    converter.Load((Head("2", "A", "X") +
                    "BEGIN_IN_COLOR A BEGIN_INKS X end_inks BEGIN_VALUES 1 1 9 END_VALUES")
                       .c_str());
    EXPECT_EQ(Record(converter, 0).numInks, 0);
    EXPECT_EQ(Record(converter, 0).numSteps, 0);
    EXPECT_EQ(converter.GetInColorOfOutInk()[0], 0);
}

TEST(Parser, KeepsTheCurrentInColorAtAnUnknownName)
{
    PlainConverter converter;
    converter.Load((Head("2", "A B", "X Y") + "BEGIN_IN_COLOR A unknown BEGIN_INKS X END_INKS "
                                              "B BEGIN_INKS Y END_INKS END_IN_COLOR")
                       .c_str());
    EXPECT_EQ(Record(converter, 0).inks[0], 0);
    EXPECT_EQ(Record(converter, 1).inks[0], 1);
    EXPECT_EQ(converter.GetInColorOfOutInk()[0], 0);
    EXPECT_EQ(converter.GetInColorOfOutInk()[1], 1);
    EXPECT_EQ(converter.GetInColorOfOutInk()[2], 0xFF);
}

TEST(Parser, SkipsTheValuesOfABlockWithoutInColor)
{
    PlainConverter converter;
    converter.Load((Head("2", "A", "X") + "BEGIN_IN_COLOR nobody BEGIN_VALUES 99 0 "
                                          "END_IN_COLOR END_VALUES A END_IN_COLOR RANDOM_SEED 5")
                       .c_str());
    EXPECT_EQ(Record(converter, 0).steps[0].numRandoms, 1);
    EXPECT_EQ(converter.GetRandomSeed(), 5);

    // The skipped values end where their list does.
    PlainConverter second;
    second.Load((Head("2", "A", "X") + "BEGIN_IN_COLOR nobody BEGIN_VALUES BEGIN_INKS X A 1 1 0-9 "
                                       "END_VALUES END_IN_COLOR RANDOM_SEED 6")
                    .c_str());
    EXPECT_EQ(second.GetInColors().Find(0), nullptr);
    EXPECT_EQ(second.GetRandomSeed(), 6);
}

TEST(Parser, StoresTheCountOfALaterListOfInksEvenIfItIsEmpty)
{
    PlainConverter converter;
    converter.Load((Values("1 1 0-1") + InColor("A", "", "")).c_str());
    EXPECT_EQ(Record(converter, 0).numInks, 0);
    EXPECT_EQ(converter.GetInColorOfOutInk()[0], 0);
    EXPECT_EQ(converter.GetCombinations()[0].inkSteps[0], nullptr);
}

TEST(Parser, CountsTheStepsUpToTheHighestInAnyOrder)
{
    PlainConverter converter;
    converter.Load(Values("3 1 0-3 1 1 0-1 2 1 0-2").c_str());
    EXPECT_EQ(Record(converter, 0).numSteps, 4);
    EXPECT_EQ(converter.GetMaxStepOfInColor()[0], 3);
}

TEST(Parser, StoresAnAlternativeForEachWeight)
{
    PlainConverter converter;
    converter.Load(Values("1 1:2:3 0-10 1-20 30 2 1 1-5").c_str());
    const InColorRecord& record = Record(converter, 0);
    const StepValues& step = record.steps[1];
    EXPECT_EQ(record.numSteps, 3);
    EXPECT_EQ(step.numRandoms, 3);
    for (std::uint32_t j = 0; j < 3; ++j)
        EXPECT_EQ(step.fractions[j], (Fraction{j + 1, 6}));
    EXPECT_EQ(step.fractions[3], (Fraction{1, 1}));
    EXPECT_EQ(step.table[0][0], 10);
    EXPECT_EQ(step.table[0][1], -1);
    EXPECT_EQ(step.table[1][0], -1);
    EXPECT_EQ(step.table[1][1], 20);
    EXPECT_EQ(step.table[2][0], 30);
    EXPECT_EQ(step.table[3][0], -1);
    EXPECT_EQ(record.steps[0].numRandoms, 1);
    EXPECT_EQ(record.steps[3].numRandoms, 0);
}

TEST(Parser, StoresValuesOf32Bits)
{
    PlainConverter converter;
    converter.Load(Values("1 1:1:1 0-2147483647 0--2147483648 1-70000").c_str());
    const StepValues& step = Record(converter, 0).steps[1];
    EXPECT_EQ(step.table[0][0], INT32_MAX);
    EXPECT_EQ(step.table[1][0], INT32_MIN);
    EXPECT_EQ(step.table[2][1], 70000);
    EXPECT_EQ((*converter.GetCombinations()[1].inkSteps[0])[1], INT32_MIN);
    EXPECT_EQ((*converter.GetCombinations()[2].inkSteps[1])[1], 70000);
}

TEST(Parser, IgnoresTheSuffixOfAStep)
{
    PlainConverter converter;
    converter.Load(Values("1+ 1 0-7").c_str());
    EXPECT_EQ(Record(converter, 0).numSteps, 2);
    EXPECT_EQ(Record(converter, 0).steps[2].numRandoms, 0);
}

TEST(Parser, ReadsAnEmptyStepAsStepZero)
{
    PlainConverter converter;
    converter.Load(Values("\"\" 1 0-7").c_str());
    EXPECT_EQ(Record(converter, 0).numSteps, 1);
    EXPECT_EQ(Record(converter, 0).steps[0].table[0][0], 7);
}

TEST(Parser, ReadsAnEmptyWeightAsZero)
{
    PlainConverter converter;
    converter.Load(Values("1 :2: 0-1 0-2 0-3").c_str());
    const StepValues& step = Record(converter, 0).steps[1];
    EXPECT_EQ(step.numRandoms, 3);
    EXPECT_EQ(step.fractions[0], (Fraction{0, 2}));
    EXPECT_EQ(step.fractions[1], (Fraction{2, 2}));
    EXPECT_EQ(step.fractions[2], (Fraction{0, 2}));
}

TEST(Parser, ReadsTheRestOfALongRatioAsTheSixteenthWeight)
{
    std::string entries;
    for (int i = 0; i < 16; ++i)
        entries += Numbered(" 0-", i);
    PlainConverter converter;
    converter.Load(Values("1 1:1:1:1:1:1:1:1:1:1:1:1:1:1:1:5:9:9" + entries).c_str());
    const StepValues& step = Record(converter, 0).steps[1];
    EXPECT_EQ(step.numRandoms, 16);
    EXPECT_EQ(step.fractions[15], (Fraction{5, 20}));
    EXPECT_EQ(step.table[15][0], 15);
}

TEST(Parser, SeparatesAnEntryAtTheFirstMinus)
{
    PlainConverter converter;
    converter.Load(Values("1 1:1:1 1--5 0-6-7 -8").c_str());
    const StepValues& step = Record(converter, 0).steps[1];
    EXPECT_EQ(step.table[0][1], -5);
    EXPECT_EQ(step.table[1][0], 6);
    EXPECT_EQ(step.table[2][0], 8);
}

TEST(Parser, ReadsAKeywordInAnEntrysPlaceAsZero)
{
    PlainConverter converter;
    converter.Load(Values("1 1 END_VALUES 2 1 1-3").c_str());
    EXPECT_EQ(Record(converter, 0).steps[1].table[0][0], 0);
    EXPECT_EQ(Record(converter, 0).steps[2].table[0][1], 3);
}

TEST(Parser, SpreadsALineOverLinesAndJoinsTwo)
{
    PlainConverter converter;
    converter.Load(Values("1\n1\n0-4 2 1\n#comment\n0-5").c_str());
    EXPECT_EQ(Record(converter, 0).steps[1].table[0][0], 4);
    EXPECT_EQ(Record(converter, 0).steps[2].table[0][0], 5);
}

TEST(Parser, StoresASecondLineOverTheFirst)
{
    PlainConverter converter;
    converter.Load(Values("1 1:3 0-4 0-5 1 2 1-6").c_str());
    const StepValues& step = Record(converter, 0).steps[1];
    EXPECT_EQ(step.numRandoms, 1);
    EXPECT_EQ(step.fractions[0], (Fraction{2, 2}));
    EXPECT_EQ(step.table[0][0], 4);
    EXPECT_EQ(step.table[0][1], 6);
}

TEST(Parser, SetsOneAlternativeOfStepZeroWhenAnInColorIsNamedAgain)
{
    PlainConverter converter;
    converter.Load((Values("0 1:3 0-4 0-5 1 1 0-9") + "BEGIN_IN_COLOR A END_IN_COLOR").c_str());
    const InColorRecord& record = Record(converter, 0);
    EXPECT_EQ(record.steps[0].numRandoms, 1);
    EXPECT_EQ(record.steps[0].fractions[0], (Fraction{1, 4}));
    EXPECT_EQ(record.steps[0].table[0][0], 4);
    EXPECT_EQ(record.numSteps, 2);
    EXPECT_EQ(record.numInks, 2);
}

TEST(Parser, DropsALineThatTheTextBreaksOff)
{
    const std::string block = Head("2", "A", "X") + "BEGIN_IN_COLOR A BEGIN_VALUES 1 1 0-9 ";
    for (const char* rest : {"2", "2 1:1", "2 1:1 0-5"}) {
        PlainConverter converter;
        converter.Load((block + rest).c_str());
        EXPECT_EQ(Record(converter, 0).numSteps, 2) << rest;
        EXPECT_EQ(Record(converter, 0).steps[2].numRandoms, 0) << rest;
        EXPECT_EQ(Record(converter, 0).steps[2].table[0][0], -1) << rest;
    }
}

TEST(Parser, EndsAnywhereWithoutComplaint)
{
    const std::string text = TestSupport::exampleText;
    for (const char* end : {"END_OUT_INKS", "BEGIN_IN_COLORS", "BEGIN_IN_COLOR\n", "END_INKS",
                            "BEGIN_VALUES", "END_VALUES", "END_IN_COLOR\n"})
        EXPECT_EQ(Refusal(text.substr(0, text.find(end))), "nothing") << end;
}

TEST(Parser, RefusesEntriesBelowVersion2AtTheFirstOfThem)
{
    const std::string refusal = "narrow: unsupported pattern version";
    const std::string block = InColor("A", "X", "1 1 99-1");
    EXPECT_EQ(Refusal(Head("1", "A", "X") + block), refusal);
    EXPECT_EQ(Refusal(Head("-5", "A", "X") + block), refusal);
    EXPECT_EQ(Refusal("DotWeavePattern BEGIN_OUT_INKS X END_OUT_INKS BEGIN_IN_COLORS A "
                      "END_IN_COLORS " +
                      block + "VERSION 2"),
              refusal);
    EXPECT_EQ(Refusal(Head("1", "A", "X") + InColor("A", "X", "")), "nothing");
    EXPECT_EQ(Refusal(Head("1", "A", "X") + "BEGIN_IN_COLOR A BEGIN_VALUES 1 1"), "nothing");
    EXPECT_EQ(Refusal(Head("4000", "A", "X") + InColor("A", "X", "1 1 0-1")), "nothing");
}

TEST(Parser, RefusesAStepOutOfRangeAtItsToken)
{
    const std::string refusal = "narrow: step out of range in pattern";
    for (const char* values : {"8 0", "-1 0", "8+", "99999999999 1 0-1", "-4+"})
        EXPECT_EQ(Refusal(Values(values)), refusal) << values;
    EXPECT_EQ(Refusal(Head("1", "A", "X") + InColor("A", "X", "8 1 0-1")), refusal);
}

TEST(Parser, RefusesAPositionOutOfRangeAtItsToken)
{
    const std::string refusal = "narrow: ink position out of range in pattern";
    EXPECT_EQ(Refusal(Values("1 1 16-0 99")), refusal);
    EXPECT_EQ(Refusal(Values("1 1:1 0-0 4000000000-0")), refusal);
    EXPECT_EQ(Refusal(Values("1 1 15-0")), "nothing");
}

TEST(Parser, RefusesASumOfWeightsOutOfRangeAtItsToken)
{
    const std::string refusal = "narrow: sum of weights out of range in pattern";
    for (const char* values : {"1 0 99-1", "1 0:0", "1 -1", "1 3:-4", "1 END_VALUES", "1 \"\"",
                               "1 2147483647:2147483647:2 0-0 0-0 0-0", "1 3:-1", "1 -1:3 0-0 0-0",
                               "1 2:5:-7:9 0-0 0-0 0-0 0-0"})
        EXPECT_EQ(Refusal(Values(values)), refusal) << values;
    EXPECT_EQ(Refusal(Head("1", "A", "X") + InColor("A", "X", "1 0 0-1")), refusal);
    // 2^32 - 1 is the highest sum.
    EXPECT_EQ(Refusal(Values("1 2147483647:2147483647:1 0-0 0-0 0-0")), "nothing");
    // Weights that are not read are not looked at.
    EXPECT_EQ(
        Refusal(Values("1 1:1:1:1:1:1:1:1:1:1:1:1:1:1:1:1:-1 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0")),
        "nothing");
}

TEST(Parser, RefusesTheSeventeenthInkOfAList)
{
    std::string inks;
    for (int i = 0; i < 16; ++i)
        inks += " X";
    EXPECT_EQ(Refusal(Head("2", "A", "X") + InColor("A", inks + " unknown", "")), "nothing");
    EXPECT_EQ(Refusal(Head("2", "A", "X") + InColor("A", inks + " X", "8")),
              "narrow: too many ink positions in pattern");
}

TEST(Parser, RefusesAnInkWithoutInColor)
{
    const std::string refusal = "narrow: BEGIN_INKS without in-colour in pattern";
    EXPECT_EQ(Refusal(Head("2", "A", "X") + InColor("nobody", "X", "")), refusal);
    EXPECT_EQ(Refusal("DotWeavePattern BEGIN_OUT_INKS X END_OUT_INKS" + InColor("A", "X", "")),
              refusal);
    EXPECT_EQ(Refusal(Head("2", "A", "X") + InColor("nobody", "unknown", "")), "nothing");
    // The current in-colour of one block is none of the next.
    EXPECT_EQ(Refusal(Head("2", "A", "X") + InColor("A", "X", "") + InColor("", "X", "")), refusal);
}

TEST(Parser, RefusesATextThatEndsInTheListOfInColors)
{
    const std::string refusal = "narrow: BEGIN_IN_COLORS without END_IN_COLORS in pattern";
    EXPECT_EQ(Refusal("DotWeavePattern BEGIN_IN_COLORS A"), refusal);
    EXPECT_EQ(Refusal("DotWeavePattern BEGIN_IN_COLORS A END_IN_COLORS BEGIN_IN_COLORS"), refusal);
    EXPECT_EQ(Refusal("DotWeavePattern BEGIN_IN_COLORS"), "nothing");
}

TEST(Parser, RefusesANameThatASecondListLeavesWithoutRecord)
{
    const std::string refusal = "narrow: in-colour without record in pattern";
    const auto lists = [](const std::string& first, const std::string& second) {
        return "DotWeavePattern BEGIN_IN_COLORS " + first + " END_IN_COLORS BEGIN_IN_COLORS " +
               second + " END_IN_COLORS";
    };
    EXPECT_EQ(Refusal(lists("A B", "A")), refusal);
    EXPECT_EQ(Refusal(lists("A", "")), refusal);
    // Both names stand at index 0, and there is one record for the two.
    EXPECT_EQ(Refusal(lists("A", "B")), refusal);
    EXPECT_EQ(Refusal(lists("X X X A", "B C")), refusal);
    // Two records would do for the two names, but A stands at index 1 of one.
    EXPECT_EQ(Refusal(lists("B A", "B B")), "nothing");
    EXPECT_EQ(Refusal(lists("B B A", "B B")), refusal);
    EXPECT_EQ(Refusal(lists("A B", "B A")), "nothing");
}

TEST(Parser, FreesTheRecordsAtASecondListOfInColors)
{
    PlainConverter converter;
    converter.Load((Values("1 1 0-1") + "BEGIN_IN_COLORS A END_IN_COLORS").c_str());
    EXPECT_EQ(converter.GetInColors().Find(0), nullptr);
    EXPECT_EQ(converter.GetMaxStepOfInColor()[0], 255);
    // The inks stay as they were.
    EXPECT_EQ(converter.GetInColorOfOutInk()[0], 0);
}

TEST(Parser, CountsDistinctNames)
{
    PlainConverter converter;
    converter.Load("DotWeavePattern BEGIN_IN_COLORS A b a END_IN_COLORS BEGIN_OUT_INKS X x "
                   "END_OUT_INKS");
    EXPECT_EQ(converter.GetInColorCount(), 2);
    EXPECT_EQ(converter.GetOutInkCount(), 1);
}

} // namespace
} // namespace zvk::Pelkraft
