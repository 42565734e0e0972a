#include "pattern/early_check.h"

#include "tests/pattern/pattern_support.h"
#include "zvk/split.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace zvk::Pelkraft {
namespace {

using TestSupport::WhatIsThrown;

const std::string noVersion = "wide: Internal Message: no version in dotweave pattern";

std::int32_t Check(const char* text)
{
    return CheckPatternText(text, zvk::split);
}

std::string Refusal(const char* text)
{
    return WhatIsThrown([text] { Check(text); });
}

TEST(EarlyCheck, RefusesANullPointer)
{
    EXPECT_EQ(Refusal(nullptr), "wide: Internal Message: no input dotweave pattern");
}

TEST(EarlyCheck, RefusesATextThatIsTooShortForAVersion)
{
    for (const char* text : {"", "V", "VERSIO", "      "})
        EXPECT_EQ(Refusal(text), noVersion) << text;
}

TEST(EarlyCheck, RefusesATextWithoutTheWord)
{
    EXPECT_EQ(Refusal("DotWeavePattern version 2"), noVersion);
    EXPECT_EQ(Refusal("DotWeavePattern VERSIO N2"), noVersion);
}

TEST(EarlyCheck, RefusesAWordWithoutAPieceBehindIt)
{
    for (const char* text :
         {"VERSION", "DotWeavePattern VERSION", "VERSION \t\n ", "VERSION2", "VERSION\r3"})
        EXPECT_EQ(Refusal(text), noVersion) << text;
}

TEST(EarlyCheck, ReadsTheSecondPieceAsANumber)
{
    EXPECT_EQ(Check("VERSION 3"), 3);
    EXPECT_EQ(Check("DotWeavePattern\nVERSION\t2\nRANDOM_SEED 7"), 2);
    EXPECT_EQ(Check("VERSION    \n\t 12x"), 12);
    EXPECT_EQ(Check("VERSION\r\n3\r\n"), 3);
    EXPECT_EQ(Check("VERSIONS 5 6"), 5);
    EXPECT_EQ(Check("VERSION two"), 0);
    EXPECT_EQ(Check("VERSION -1"), -1);
    EXPECT_EQ(Check("VERSION 99999999999"), INT32_MAX);
}

TEST(EarlyCheck, TakesTheFirstWordEvenInACommentOrInQuotes)
{
    EXPECT_EQ(Check("#VERSION 2\nVERSION 3"), 2);
    EXPECT_EQ(Check("\"x VERSION 4\" VERSION 3"), 4);
    EXPECT_EQ(Check("MYVERSION 5 VERSION 3"), 5);
}

TEST(EarlyCheck, SeesTwentyBytesAndAsManyAsStandInFront)
{
    // At position 0 the piece is 20 bytes: the word, 12 blanks and one byte of the number.
    EXPECT_EQ(Check("VERSION            34"), 3);
    EXPECT_EQ(Refusal("VERSION             34"), noVersion);
    // Each byte in front lets one more be seen.
    EXPECT_EQ(Check("xVERSION            34"), 34);
    EXPECT_EQ(Check("xVERSION             34"), 3);
    EXPECT_EQ(Check("xxVERSION             34"), 34);
    for (const std::size_t ahead : {0U, 1U, 30U, 60U})
        for (const std::size_t between : {1U, 12U, 13U, 40U, 42U, 43U, 72U, 73U}) {
            const std::string text =
                std::string(ahead, ' ') + "VERSION" + std::string(between, ' ') + "3";
            TextSpan place;
            const auto version = FindEarlyVersion(text, zvk::split, place);
            EXPECT_EQ(version.has_value(), 7 + between < ahead + 20) << ahead << ", " << between;
            EXPECT_EQ(version.value_or(3), 3);
            EXPECT_EQ(place.offset, ahead);
        }
}

} // namespace
} // namespace zvk::Pelkraft
