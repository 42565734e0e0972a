#include "tools/pelkraft/shown_text.h"

#include <gtest/gtest.h>

#include <string>

namespace zvk::Pelkraft::Client {
namespace {

std::string Utf8(char32_t code)
{
    const auto byte = [](char32_t bits) { return static_cast<char>(bits); };
    if (code < 0x80)
        return {byte(code)};
    if (code < 0x800)
        return {byte(0xC0 | code >> 6), byte(0x80 | (code & 0x3F))};
    if (code < 0x10000)
        return {byte(0xE0 | code >> 12), byte(0x80 | (code >> 6 & 0x3F)),
                byte(0x80 | (code & 0x3F))};
    return {byte(0xF0 | code >> 18), byte(0x80 | (code >> 12 & 0x3F)),
            byte(0x80 | (code >> 6 & 0x3F)), byte(0x80 | (code & 0x3F))};
}

bool IsRefused(char32_t code)
{
    const bool control = (code < 0x20 && code != '\t') || (code >= 0x7F && code < 0xA0);
    const bool surrogate = code >= 0xD800 && code < 0xE000;
    const bool turns = (code >= 0x2028 && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
    return control || surrogate || turns;
}

TEST(ShownText, LetsEveryCharacterThroughThatDoesNothing)
{
    for (char32_t code = 0; code < 0x110000; ++code) {
        const std::string text = Utf8(code);
        if (!IsRefused(code))
            ASSERT_EQ(text, Shown(text)) << static_cast<std::uint32_t>(code);
        else
            ASSERT_EQ(std::string::npos, Shown(text).find_first_not_of('?'))
                << static_cast<std::uint32_t>(code);
    }
}

TEST(ShownText, HasAMarkForEachByteThatIsNoText)
{
    EXPECT_EQ("a??b", Shown("a\xFF\x80"
                            "b"));
    EXPECT_EQ("?", Shown("\xC3"));
    EXPECT_EQ("??a", Shown("\xE2\x80"
                           "a"));
    // A slash that takes more bytes than it needs, in two ways.
    EXPECT_EQ("??", Shown("\xC0\xAF"));
    EXPECT_EQ("???", Shown("\xE0\x80\xAF"));
    EXPECT_EQ("????", Shown("\xF4\x90\x80\x80"));
}

TEST(ShownText, IsPaddedByItsColumns)
{
    EXPECT_EQ("\xC3\xB6  ", PaddedRight("\xC3\xB6", 3));
    EXPECT_EQ("  \xC3\xB6", PaddedLeft("\xC3\xB6", 3));
    EXPECT_EQ("abc", PaddedRight("abc", 3));
    EXPECT_EQ("abcd", PaddedLeft("abcd", 3));
}

TEST(ShownText, IsCutAtTheStartOfACharacter)
{
    const std::string text = "a\xC3\xB6\xE8\x89\xB2z";
    EXPECT_EQ(5U, ShownColumns(text));
    EXPECT_EQ(8U, ShownColumns("\t"));
    EXPECT_EQ(text, LastColumns(text, 5));
    EXPECT_EQ("\xC3\xB6\xE8\x89\xB2z", LastColumns(text, 4));
    EXPECT_EQ("\xE8\x89\xB2z", LastColumns(text, 3));
    EXPECT_EQ("z", LastColumns(text, 2));
    EXPECT_EQ("", LastColumns(text, 0));
}

} // namespace
} // namespace zvk::Pelkraft::Client
