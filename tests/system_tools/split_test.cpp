#include "zvk/split.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

namespace zvk {
namespace {

using Pieces = std::vector<std::string>;

const Pieces whiteSpace = {" ", "\t", "\n"};

// The first delimiter found cuts off a piece; the rest of the text is a text like the first.
Pieces NaiveSplit(const std::string& text, const Pieces& delimiters)
{
    for (std::size_t position = 0; position < text.size(); ++position) {
        for (const std::string& delimiter : delimiters) {
            if (delimiter.empty() || !text.substr(position).starts_with(delimiter))
                continue;
            Pieces pieces = {text.substr(0, position)};
            const std::string rest = text.substr(position + delimiter.size());
            for (const std::string& piece : NaiveSplit(rest, delimiters))
                pieces.push_back(piece);
            return pieces;
        }
    }
    return {text};
}

Pieces WithoutEmptyOnes(const Pieces& pieces)
{
    Pieces kept;
    for (const std::string& piece : pieces) {
        if (!piece.empty())
            kept.push_back(piece);
    }
    return kept;
}

TEST(Split, CutsAtEachDelimiter)
{
    EXPECT_EQ((Pieces{"VERSION", "2", "END"}), split("VERSION 2\tEND\n", whiteSpace, false));
}

TEST(Split, CollapsesRunsOfDelimiters)
{
    EXPECT_EQ((Pieces{"VERSION", "2"}), split("VERSION \t\n  2", whiteSpace, false));
    EXPECT_EQ((Pieces{"VERSION"}), split("  VERSION\n\n ", whiteSpace, false));
}

TEST(Split, KeepsEmptyPiecesOnDemand)
{
    EXPECT_EQ((Pieces{"", "a", "", "b", ""}), split(",a,,b,", {","}, true));
    EXPECT_EQ((Pieces{"", ""}), split(",", {","}, true));
}

TEST(Split, LeavesATextWithoutDelimiterWhole)
{
    EXPECT_EQ((Pieces{"VERSION"}), split("VERSION", whiteSpace, false));
    EXPECT_EQ((Pieces{"VERSION"}), split("VERSION", whiteSpace, true));
    EXPECT_EQ((Pieces{"a b"}), split("a b", {}, false));
    EXPECT_EQ((Pieces{"\r"}), split("\r", whiteSpace, false));
}

TEST(Split, FindsNothingInNothing)
{
    EXPECT_EQ(Pieces{}, split("", whiteSpace, false));
    EXPECT_EQ(Pieces{}, split(" \t\n", whiteSpace, false));
    EXPECT_EQ((Pieces{""}), split("", whiteSpace, true));
}

TEST(Split, PassesOverAnEmptyDelimiter)
{
    EXPECT_EQ((Pieces{"a", "b"}), split("a,b", {"", ","}, false));
    EXPECT_EQ((Pieces{"a,b"}), split("a,b", {""}, true));
}

TEST(Split, TakesTheFirstDelimiterOfTheListThatMatches)
{
    EXPECT_EQ((Pieces{"a", ">b"}), split("a->b", {"-", "->"}, true));
    EXPECT_EQ((Pieces{"a", "b"}), split("a->b", {"->", "-"}, true));
}

TEST(Split, CarriesZeroBytesAndHighBytes)
{
    const std::string text("a\0b\xFF c", 6);
    EXPECT_EQ((Pieces{std::string("a\0b\xFF", 4), "c"}), split(text, {" "}, false));
    EXPECT_EQ((Pieces{"a", "b\xFF c"}), split(text, {std::string(1, '\0')}, false));
}

TEST(Split, AgreesWithTheNaiveOneOnEveryShortText)
{
    const std::vector<Pieces> lists = {{},          {"a"},  {"a", "b"},       {"ab", "a"},
                                       {"a", "ab"}, {"aa"}, {"", "bb", "ab"}, {"c", "bc", "abc"}};
    for (int code = 0; code < 3 * 3 * 3 * 3 * 3 * 3; ++code) {
        std::string text;
        for (int rest = code; rest != 0; rest /= 3)
            text += static_cast<char>('a' + rest % 3);
        for (const Pieces& delimiters : lists) {
            const Pieces expected = NaiveSplit(text, delimiters);
            EXPECT_EQ(expected, split(text, delimiters, true)) << text;
            EXPECT_EQ(WithoutEmptyOnes(expected), split(text, delimiters, false)) << text;
        }
    }
}

} // namespace
} // namespace zvk
