#include "pattern/tokenizer.h"

#include "pattern/pattern_words.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace zvk::Pelkraft {
namespace {

using Tokens = std::vector<std::string>;

Tokens Cut(const std::string& text, char comment = '#')
{
    Tokens texts;
    for (const PatternToken& token : CutTokens(text, comment))
        texts.push_back(token.text);
    return texts;
}

TEST(Tokenizer, CutsAtTheFourWhiteSpacesAlone)
{
    EXPECT_EQ(Cut("a b\tc\nd\re"), (Tokens{"a", "b", "c", "d", "e"}));
    EXPECT_EQ(Cut(" \t\r\n a \r\n\r\n b "), (Tokens{"a", "b"}));
    EXPECT_EQ(Cut("a\vb\fc"), (Tokens{"a\vb\fc"}));
    EXPECT_EQ(Cut(""), Tokens{});
    EXPECT_EQ(Cut(" \n"), Tokens{});
}

TEST(Tokenizer, BeginsACommentOnlyWhereNoTokenHasBegun)
{
    EXPECT_EQ(Cut("#gone\nkept"), Tokens{"kept"});
    EXPECT_EQ(Cut("#gone\rkept"), Tokens{"kept"});
    EXPECT_EQ(Cut("a#b"), Tokens{"a#b"});
    EXPECT_EQ(Cut("a #b c\nd"), (Tokens{"a", "d"}));
    EXPECT_EQ(Cut("\"\"#b"), Tokens{"#b"});
    EXPECT_EQ(Cut("# \"open quote\nnext"), Tokens{"next"});
    EXPECT_EQ(Cut("#to the end"), Tokens{});
    EXPECT_EQ(Cut("a ;b\n#c", ';'), (Tokens{"a", "#c"}));
}

TEST(Tokenizer, KeepsWhiteSpaceAndCommentCharacterInQuotes)
{
    EXPECT_EQ(Cut("\"light cyan\""), Tokens{"light cyan"});
    EXPECT_EQ(Cut("\"a\n#b\tc\""), Tokens{"a\n#b\tc"});
    EXPECT_EQ(Cut("li\"ght c\"yan x"), (Tokens{"light cyan", "x"}));
    EXPECT_EQ(Cut("a\" \"#b"), Tokens{"a #b"});
}

TEST(Tokenizer, StoresAnEmptyTokenForAPairOfQuotes)
{
    EXPECT_EQ(Cut("\"\""), Tokens{""});
    EXPECT_EQ(Cut("a \"\" b"), (Tokens{"a", "", "b"}));
    EXPECT_EQ(Cut("\"\"\"\""), Tokens{""});
}

TEST(Tokenizer, StoresTheTokenThatTheTextEndsIn)
{
    EXPECT_EQ(Cut("a \"open b"), (Tokens{"a", "open b"}));
    EXPECT_EQ(Cut("a \""), (Tokens{"a", ""}));
    EXPECT_EQ(Cut("last"), Tokens{"last"});
}

TEST(Tokenizer, TakesHighBytesAsOrdinary)
{
    EXPECT_EQ(Cut("\x80\xA0\xFF \xC3\xA4"), (Tokens{"\x80\xA0\xFF", "\xC3\xA4"}));
}

// The piece of text that each token came from.
Tokens Pieces(const std::string& text)
{
    Tokens pieces;
    for (const PatternToken& token : CutTokens(text, '#'))
        pieces.push_back(text.substr(token.place.offset, token.place.length));
    return pieces;
}

TEST(Tokenizer, KnowsThePlaceOfEachToken)
{
    EXPECT_EQ(Pieces(" ab\t#no\n\"c d\"e \"\"\r\nf"), (Tokens{"ab", "\"c d\"e", "\"\"", "f"}));
    EXPECT_EQ(Pieces("a \"b\n c "), (Tokens{"a", "\"b\n c "}));
    for (const auto& [text, isOpen] : {std::pair{"a \"b", true},
                                       {"\"a\" b", false},
                                       {"\"a\"", false},
                                       {"a\"", true},
                                       {"\"#", true}})
        EXPECT_EQ(CutTokens(text, '#').back().openQuote, isOpen) << text;
}

TEST(TextLines, CountAsEditorsDo)
{
    const std::string text = "ab\n\tc\r\n\xC3\xA9 d\re";
    const TextLines lines(text);
    const struct
    {
        std::size_t offset;
        int line;
        int column;
    } places[] = {{0, 1, 1}, {2, 1, 3},  {3, 2, 1},  {4, 2, 2},  {6, 2, 4}, {7, 3, 1},
                  {9, 3, 2}, {10, 3, 3}, {12, 4, 1}, {13, 4, 2}, {99, 4, 2}};
    for (const auto& [offset, line, column] : places) {
        EXPECT_EQ(lines.PlaceOf(offset, text).line, line) << offset;
        EXPECT_EQ(lines.PlaceOf(offset, text).column, column) << offset;
    }
    EXPECT_EQ(lines.Line(2, text), "\tc");
    EXPECT_EQ(lines.Line(3, text), "\xC3\xA9 d");
    EXPECT_EQ(lines.Line(4, text), "e");
}

TEST(Number, StopsAtTheFirstByteThatIsNoDigit)
{
    EXPECT_EQ(ReadNumber("3+"), 3);
    EXPECT_EQ(ReadNumber("12:7"), 12);
    EXPECT_EQ(ReadNumber("007"), 7);
    EXPECT_EQ(ReadNumber("1e5"), 1);
}

TEST(Number, TakesLeadingWhiteSpaceAndOneSign)
{
    EXPECT_EQ(ReadNumber(" \t\n\v\f\r42"), 42);
    EXPECT_EQ(ReadNumber("+5"), 5);
    EXPECT_EQ(ReadNumber("-5"), -5);
    EXPECT_EQ(ReadNumber("--5"), 0);
    EXPECT_EQ(ReadNumber("- 5"), 0);
}

TEST(Number, IsZeroWithoutDigits)
{
    for (const char* text : {"", "x1", "+", "-", "END_VALUES", "\2401"})
        EXPECT_EQ(ReadNumber(text), 0) << text;
}

TEST(Number, SaturatesBeyond32Bits)
{
    EXPECT_EQ(ReadNumber("2147483647"), INT32_MAX);
    EXPECT_EQ(ReadNumber("2147483648"), INT32_MAX);
    EXPECT_EQ(ReadNumber("-2147483648"), INT32_MIN);
    EXPECT_EQ(ReadNumber("-2147483649"), INT32_MIN);
    EXPECT_EQ(ReadNumber("99999999999999999999999999999999"), INT32_MAX);
    EXPECT_EQ(ReadNumber("-99999999999999999999999999999999"), INT32_MIN);
}

TEST(UpperCasing, TouchesAsciiLettersAlone)
{
    EXPECT_EQ(UpperCase("LightCyan-2 az{`@["), "LIGHTCYAN-2 AZ{`@[");
    EXPECT_EQ(UpperCase("\xE4\xC3\xA4\xFF"), "\xE4\xC3\xA4\xFF");
}

} // namespace
} // namespace zvk::Pelkraft
