#include "pattern/pattern_converter_sse.h"
#include "pattern/pattern_engine_portable.h"
#include "tests/pattern/pattern_support.h"

#include <gtest/gtest.h>

#include <array>
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

using Row = std::array<std::int32_t, 8>;

const std::string tooManyOfChannel = "narrow: numCombinations > MAXS_CHANNEL_RANDOM";
const std::string tooManyInTotal = "narrow: numCombinations > MAXS_TOTAL_RANDOM";

std::string Refusal(const std::string& text)
{
    return WhatIsThrown([&] { PlainConverter().Load(text.c_str()); });
}

Fraction FractionOf(const PlainConverter& converter, std::uint32_t combination)
{
    return converter.GetCombinations()[combination].fraction;
}

const Row& RowOf(const PlainConverter& converter, std::uint32_t combination, std::uint32_t ink)
{
    return *converter.GetCombinations()[combination].inkSteps[ink];
}

// A value line of n equal weights, all of them for ink position 0.
std::string EvenLine(int step, int n)
{
    std::string weights = "1";
    std::string entries = " 0-0";
    for (int i = 1; i < n; ++i) {
        weights += ":1";
        entries += Numbered(" 0-", i);
    }
    return std::to_string(step) + " " + weights + entries + "\n";
}

std::uint32_t CountOf(const std::string& values)
{
    PlainConverter converter;
    converter.Load((Head("2", "A", "X") + InColor("A", "X", values)).c_str());
    return converter.GetCombinationCount();
}

TEST(Model, MultipliesOutTheExample)
{
    PlainConverter converter;
    converter.Load(TestSupport::exampleText);
    EXPECT_EQ(converter.GetRandomSeed(), 1234);
    EXPECT_EQ(converter.GetInColors().Find(0)->numSteps, 4);
    EXPECT_EQ(converter.GetInColors().Find(0)->numCombinations, 2);
    EXPECT_EQ(converter.GetInColors().Find(1)->numSteps, 2);
    EXPECT_EQ(converter.GetInColors().Find(1)->numCombinations, 1);

    ASSERT_EQ(converter.GetCombinationCount(), 2U);
    EXPECT_EQ(FractionOf(converter, 0), (Fraction{1, 4}));
    EXPECT_EQ(FractionOf(converter, 1), (Fraction{3, 4}));
    EXPECT_EQ(RowOf(converter, 0, 0), (Row{-1, -1, -1, 255, -1, -1, -1, -1}));
    EXPECT_EQ(RowOf(converter, 1, 0), (Row{-1, -1, 40, 255, -1, -1, -1, -1}));
    EXPECT_EQ(RowOf(converter, 0, 1), (Row{-1, 64, 128, -1, -1, -1, -1, -1}));
    EXPECT_EQ(RowOf(converter, 1, 1), (Row{-1, 64, -1, -1, -1, -1, -1, -1}));
    EXPECT_EQ(RowOf(converter, 0, 2), (Row{-1, 255, -1, -1, -1, -1, -1, -1}));
    EXPECT_EQ(converter.GetCombinations()[0].inkSteps[2],
              converter.GetCombinations()[1].inkSteps[2]);
    EXPECT_EQ(converter.GetCombinations()[0].inkSteps[3], nullptr);

    const CombinationDistribution& distribution = converter.GetDistribution();
    EXPECT_EQ(distribution.count, 2U);
    EXPECT_EQ(distribution.total, 4U);
    EXPECT_EQ(distribution.cumulative[0], 0U);
    EXPECT_EQ(distribution.cumulative[1], 1U);
    EXPECT_EQ(converter.GetInColorOfOutInk()[0], 0);
    EXPECT_EQ(converter.GetInColorOfOutInk()[1], 0);
    EXPECT_EQ(converter.GetInColorOfOutInk()[2], 1);
    EXPECT_EQ(converter.GetMaxStepOfInColor()[0], 3);
    EXPECT_EQ(converter.GetMaxStepOfInColor()[1], 1);
}

TEST(PortableModel, RepairsTheRowsOfTheExample)
{
    DotWeavePatternConverterX86 converter;
    converter.Load(TestSupport::exampleText);
    const auto row = [&](std::uint32_t combination, std::uint32_t ink) {
        return *converter.GetCombinations()[combination].inkSteps[ink];
    };
    EXPECT_EQ(row(0, 0), (Row{0, 0, 0, 255, 255, 255, 255, 255}));
    EXPECT_EQ(row(0, 1), (Row{0, 64, 128, 0, 0, 0, 0, 0}));
    EXPECT_EQ(row(0, 2), (Row{0, 255, 255, 255, 255, 255, 255, 255}));
    EXPECT_EQ(row(1, 0), (Row{0, 0, 40, 255, 255, 255, 255, 255}));
    EXPECT_EQ(row(1, 1), (Row{0, 64, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(row(1, 2), row(0, 2));
}

TEST(VectorModel, LeavesTheRowsOfTheExample)
{
    DotWeavePatternConverterSse converter;
    converter.Load(TestSupport::exampleText);
    EXPECT_EQ(*converter.GetCombinations()[0].inkSteps[1], (Row{-1, 64, 128, -1, -1, -1, -1, -1}));
    // The run 255 of Black is part of Cyan's, in either combination.
    EXPECT_EQ(CountStoredValues(converter.GetCombinations()[0]), 3U);
    EXPECT_EQ(CountStoredValues(converter.GetCombinations()[1]), 3U);
    const SseTransformationBuilder* tables = converter.GetSseTables();
    EXPECT_EQ(tables[1].mLower[0], 2);
    EXPECT_EQ(tables[1].mUpper[0], 3);
    EXPECT_EQ(tables[1].mLower[2], 1);
    // Beyond the combinations all is zero.
    EXPECT_EQ(tables[2].mOffset[0], 0);
    EXPECT_EQ(tables[1023].mOffset[15], 0);
}

TEST(Model, HasOneCombinationWhereEachStepHasOneAlternative)
{
    EXPECT_EQ(CountOf("1 1 0-1 2 1 0-2 3 7 0-3"), 1U);
    PlainConverter converter;
    converter.Load((Head("2", "A", "X") + InColor("A", "X", "1 5 0-1")).c_str());
    EXPECT_EQ(FractionOf(converter, 0), (Fraction{1, 1}));
}

TEST(Model, TakesStepsOfOneDistributionForOneVariable)
{
    EXPECT_EQ(CountOf("1 1:1 0-1 0-2 2 1:1 0-3 0-4"), 2U);
    EXPECT_EQ(CountOf("1 1:1 0-1 0-2 2 2:2 0-3 0-4"), 4U);
    EXPECT_EQ(CountOf("1 1:2 0-1 0-2 2 2:1 0-3 0-4"), 4U);
    EXPECT_EQ(CountOf("1 1:1 0-1 0-2 2 1:1:1 0-3 0-4 0-5"), 6U);
    // Step 0 by default has the distribution of one alternative of 1/1.
    EXPECT_EQ(CountOf("1 1 0-1 2 2 0-2"), 1U);
}

TEST(Model, TurnsTheFirstDistributionFastest)
{
    PlainConverter converter;
    converter.Load(
        (Head("2", "A", "X Y") + InColor("A", "X Y", "1 1:2 0-10 1-11 2 1:1:2 0-20 0-21 1-22"))
            .c_str());
    ASSERT_EQ(converter.GetCombinationCount(), 6U);
    const std::vector<Row> rowsOfX = {
        {-1, 10, 20, -1, -1, -1, -1, -1}, {-1, -1, 20, -1, -1, -1, -1, -1},
        {-1, 10, 21, -1, -1, -1, -1, -1}, {-1, -1, 21, -1, -1, -1, -1, -1},
        {-1, 10, -1, -1, -1, -1, -1, -1}, {-1, -1, -1, -1, -1, -1, -1, -1}};
    const std::vector<Fraction> fractions = {{1, 12}, {1, 6}, {1, 12}, {1, 6}, {1, 6}, {1, 3}};
    const std::vector<std::uint32_t> cumulative = {0, 1, 3, 4, 6, 8};
    for (std::uint32_t c = 0; c < 6; ++c) {
        EXPECT_EQ(RowOf(converter, c, 0), rowsOfX[c]) << c;
        EXPECT_EQ(FractionOf(converter, c), fractions[c]) << c;
        EXPECT_EQ(converter.GetDistribution().cumulative[c], cumulative[c]) << c;
    }
    EXPECT_EQ(converter.GetDistribution().total, 12U);
    EXPECT_EQ(RowOf(converter, 5, 1), (Row{-1, 11, 22, -1, -1, -1, -1, -1}));
}

TEST(Model, TurnsTheFirstInColorFastest)
{
    PlainConverter converter;
    converter.Load((Head("2", "A B", "X Y") + InColor("A", "X", "1 1:3 0-10 0-11") +
                    InColor("B", "Y", "1 1:1:1 0-20 0-21 0-22"))
                       .c_str());
    ASSERT_EQ(converter.GetCombinationCount(), 6U);
    for (std::uint32_t c = 0; c < 6; ++c) {
        EXPECT_EQ(RowOf(converter, c, 0)[1], 10 + static_cast<std::int32_t>(c % 2)) << c;
        EXPECT_EQ(RowOf(converter, c, 1)[1], 20 + static_cast<std::int32_t>(c / 2)) << c;
    }
    EXPECT_EQ(FractionOf(converter, 4), (Fraction{1, 12}));
    EXPECT_EQ(FractionOf(converter, 5), (Fraction{1, 4}));
}

TEST(Model, PassesWith32CombinationsOfAnInColorAndRefuses33)
{
    EXPECT_EQ(CountOf(EvenLine(1, 16) + "2 1:2 0-1 0-2"), 32U);
    const auto text = [](const std::string& values) {
        return Head("2", "A", "X") + InColor("A", "X", values);
    };
    EXPECT_EQ(Refusal(text(EvenLine(1, 11) + EvenLine(2, 3))), tooManyOfChannel);
    // 16 to the eighth is beyond 32 bits.
    std::string values;
    for (int step = 0; step < 8; ++step)
        values += std::to_string(step) + Numbered(" 1:1:1:1:1:1:1:1:1:1:1:1:1:1:1:", step + 1) +
                  " 0-0 0-0 0-0 0-0 0-0 0-0 0-0 0-0 0-0 0-0 0-0 0-0 0-0 0-0 0-0 0-0\n";
    EXPECT_EQ(Refusal(text(values)), tooManyOfChannel);
}

TEST(Model, PassesWith1024CombinationsInTotalAndRefusesMore)
{
    const auto text = [](const std::vector<int>& counts) {
        std::string names;
        std::string blocks;
        for (int i = 0; i < static_cast<int>(counts.size()); ++i) {
            names += Numbered(" C", i);
            blocks +=
                InColor(Numbered("C", i), "X", EvenLine(1, counts[static_cast<std::size_t>(i)]));
        }
        return Head("2", names, "X") + blocks;
    };
    PlainConverter converter;
    converter.Load(text({4, 4, 4, 4, 4}).c_str());
    EXPECT_EQ(converter.GetCombinationCount(), 1024U);
    EXPECT_EQ(FractionOf(converter, 1023), (Fraction{1, 1024}));
    EXPECT_EQ(converter.GetDistribution().cumulative[1023], 1023U);
    EXPECT_EQ(Refusal(text({4, 4, 4, 4, 4, 2})), tooManyInTotal);
    EXPECT_EQ(Refusal(text({5, 5, 41 - 25, 3})), tooManyInTotal);
    // 16 in-colours of 16 are 2^64, which is 0 in 64 bits too.
    EXPECT_EQ(Refusal(text(std::vector<int>(16, 16))), tooManyInTotal);
    EXPECT_EQ(Refusal(text(std::vector<int>(17, 16))), tooManyInTotal);
}

TEST(Model, ReportsTheLimitOfAnInColorAheadOfThatInTotal)
{
    std::string names;
    std::string blocks;
    for (int i = 0; i < 6; ++i) {
        names += Numbered(" C", i);
        blocks += InColor(Numbered("C", i), "X", EvenLine(1, 4));
    }
    const std::string values = EvenLine(1, 11) + EvenLine(2, 3);
    EXPECT_EQ(Refusal(Head("2", names + " Z", "X") + blocks + InColor("Z", "X", values)),
              tooManyOfChannel);
    // A fault of the format further down comes first.
    EXPECT_EQ(Refusal(Head("2", names + " Z", "X") + blocks + InColor("Z", "X", values + "8")),
              "narrow: step out of range in pattern");
}

TEST(Model, HasOneCombinationWithoutInColors)
{
    PlainConverter converter;
    converter.Load("DotWeavePattern VERSION 2 BEGIN_OUT_INKS X END_OUT_INKS");
    EXPECT_EQ(converter.GetCombinationCount(), 1U);
    EXPECT_EQ(FractionOf(converter, 0), (Fraction{1, 1}));
    EXPECT_EQ(converter.GetDistribution().count, 1U);
    EXPECT_EQ(converter.GetDistribution().total, 1U);
}

TEST(Model, IsBuiltOnlyAfterTheHeaderWord)
{
    PlainConverter converter;
    EXPECT_EQ(converter.GetCombinationCount(), 0U);
    EXPECT_FALSE(converter.Parse("VERSION 2 BEGIN_OUT_INKS X END_OUT_INKS", 0));
    EXPECT_EQ(converter.GetCombinationCount(), 0U);
    EXPECT_EQ(converter.GetMaxStepOfInColor()[0], 0);
}

TEST(Model, GivesAnInColorWithoutBlockATopStepOf255)
{
    PlainConverter converter;
    converter.Load((Head("2", "A B", "X") + InColor("A", "X", "1 1:1 0-1 0-2")).c_str());
    EXPECT_EQ(converter.GetMaxStepOfInColor()[0], 1);
    EXPECT_EQ(converter.GetMaxStepOfInColor()[1], 255);
    EXPECT_EQ(converter.GetCombinationCount(), 2U);
}

TEST(Model, RefusesAGapInTheSteps)
{
    const std::string refusal = "narrow: step without value line in pattern";
    const auto text = [](const std::string& values) {
        return Head("2", "A", "X") + InColor("A", "X", values);
    };
    EXPECT_EQ(Refusal(text("2 1 0-1")), refusal);
    EXPECT_EQ(Refusal(text("1 1 0-1 3 1 0-1")), refusal);
    EXPECT_EQ(Refusal(text(EvenLine(1, 11) + EvenLine(2, 3) + EvenLine(4, 2))), refusal);
    EXPECT_EQ(Refusal(text("0 1 0-1")), "nothing");
    EXPECT_EQ(Refusal(text("1 1 0-1")), "nothing");
}

TEST(Model, LetsTheLaterInColorOwnAnInkAndTheBuildingOrderItsRow)
{
    PlainConverter converter;
    converter.Load(
        (Head("2", "A B", "X") + InColor("B", "X", "1 1 0-20") + InColor("A", "X", "1 1 0-10"))
            .c_str());
    EXPECT_EQ(converter.GetInColorOfOutInk()[0], 0);
    EXPECT_EQ(RowOf(converter, 0, 0)[1], 20);
}

TEST(Model, StoresNothingOfAnInkBeyondTheLanes)
{
    std::string inks;
    for (int i = 0; i < 40; ++i)
        inks += Numbered(" X", i);
    PlainConverter converter;
    converter.Load((Head("2", "A", inks) + InColor("A", "X39 X3", "1 1 0-1")).c_str());
    EXPECT_EQ(converter.GetOutInkCount(), 40);
    EXPECT_EQ(converter.GetInColorOfOutInk()[3], 0);
    for (std::uint32_t ink = 0; ink < 16; ++ink)
        EXPECT_EQ(converter.GetCombinations()[0].inkSteps[ink] != nullptr, ink == 3) << ink;
}

TEST(Model, StoresNothingOfAnInColorBeyondTheSixteenth)
{
    std::string names;
    for (int i = 0; i < 40; ++i)
        names += Numbered(" C", i);
    PlainConverter converter;
    converter.Load((Head("2", names, "X") + InColor("C39", "X", "1 1:1 0-1 0-2")).c_str());
    EXPECT_EQ(converter.GetInColorCount(), 40);
    EXPECT_EQ(converter.GetMaxStepOfInColor()[15], 255);
    EXPECT_EQ(converter.GetCombinationCount(), 2U);
}

TEST(Model, LeavesARecordOfARepeatedNameOutOfTheCombinations)
{
    // A takes index 2, and there are two names: the third record is not built.
    PlainConverter converter;
    converter.Load((Head("2", "A B A", "X") + InColor("A", "X", "1 1:1 0-1 0-2")).c_str());
    EXPECT_EQ(converter.GetInColorCount(), 2);
    EXPECT_EQ(converter.GetCombinationCount(), 1U);
    EXPECT_EQ(converter.GetInColorOfOutInk()[0], 2);
    EXPECT_EQ(converter.GetCombinations()[0].inkSteps[0], nullptr);
    EXPECT_EQ(converter.GetMaxStepOfInColor()[2], 0);
}

TEST(Model, RefusesFractionsWhoseDenominatorWrapsToZero)
{
    const std::string refusal = "narrow: fraction out of range in pattern";
    const std::string line = "1 1:65535 0-1 0-2 ";
    EXPECT_EQ(Refusal(Head("2", "A", "X") + InColor("A", "X", line + "2 3:65533 0-1 0-2")),
              refusal);
    EXPECT_EQ(Refusal(Head("2", "A B", "X") + InColor("A", "X", line) + InColor("B", "X", line)),
              refusal);
}

TEST(Model, WrapsTheDistributionIn32Bits)
{
    PlainConverter converter;
    converter.Load(
        (Head("2", "A", "X") + InColor("A", "X", "1 1:65536 0-1 0-2 2 1:65538 0-1 0-2")).c_str());
    // 65537 * 65539 is 2^32 + 262147.
    ASSERT_EQ(converter.GetCombinationCount(), 4U);
    EXPECT_EQ(FractionOf(converter, 0), (Fraction{1, 262147}));
    EXPECT_EQ(FractionOf(converter, 1), (Fraction{65536, 262147}));
    EXPECT_EQ(FractionOf(converter, 2), (Fraction{65538, 262147}));
    // 65536 * 65538 is 2^32 + 131072.
    EXPECT_EQ(FractionOf(converter, 3), (Fraction{131072, 262147}));
    const CombinationDistribution& distribution = converter.GetDistribution();
    EXPECT_EQ(distribution.total, 262147U);
    // Divided first: 262147 * 65536 has no place in 32 bits.
    EXPECT_EQ(distribution.cumulative[1], 1U);
    EXPECT_EQ(distribution.cumulative[2], 65537U);
    EXPECT_EQ(distribution.cumulative[3], 131075U);
}

TEST(Model, ResetFreesTheInColorsAndLeavesTheNames)
{
    PlainConverter converter;
    converter.Load(TestSupport::exampleText);
    converter.Reset();
    EXPECT_EQ(converter.GetInColors().Count(), 0);
    EXPECT_EQ(converter.GetInColorCount(), 2);
    EXPECT_EQ(converter.GetOutInkCount(), 3);
    EXPECT_EQ(converter.GetMaxStepOfInColor()[0], 3);
    for (const std::uint8_t inColor : converter.GetInColorOfOutInk())
        EXPECT_EQ(inColor, 0xFF);
}

} // namespace
} // namespace zvk::Pelkraft
