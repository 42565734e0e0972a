#include "system_tools/code_points.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zvk::Diagnostics {
namespace {

template <typename Character>
std::vector<char32_t> TakeAll(const std::basic_string<Character>& text)
{
    std::vector<char32_t> codePoints;
    const Character* rest = text.c_str();
    while (*rest != 0)
        codePoints.push_back(TakeCodePoint(rest));
    EXPECT_EQ(text.c_str() + text.size(), rest);
    return codePoints;
}

template <typename Character>
std::basic_string<Character> Put(char32_t codePoint)
{
    LineBuffer<Character> line;
    PutCodePoint(line, codePoint);
    return {line.Data(), line.Length()};
}

using CodePoints = std::vector<char32_t>;

TEST(CodePoints, AreReadFromUtf8OfEveryLength)
{
    EXPECT_EQ((CodePoints{'A', 0x7F}), TakeAll<char>("A\x7F"));
    EXPECT_EQ((CodePoints{0x80, 0xE9, 0x7FF}), TakeAll<char>("\xC2\x80\xC3\xA9\xDF\xBF"));
    EXPECT_EQ((CodePoints{0x800, 0x20AC}), TakeAll<char>("\xE0\xA0\x80\xE2\x82\xAC"));
    EXPECT_EQ((CodePoints{0xD7FF, 0xE000, 0xFFFF}),
              TakeAll<char>("\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF"));
    EXPECT_EQ((CodePoints{0x10000, 0x1F5A8, 0x10FFFF}),
              TakeAll<char>("\xF0\x90\x80\x80\xF0\x9F\x96\xA8\xF4\x8F\xBF\xBF"));
}

// None of these texts holds a valid sequence, so each byte comes out as itself.
TEST(CodePoints, AreTheBytesThemselvesWhereUtf8IsBroken)
{
    const std::string brokenTexts[] = {
        "\x80",             // a follower without lead
        "\xBF\xBF",         //
        "\xC3",             // cut by the end
        "\xE2\x82",         //
        "\xF0\x9F\x96",     //
        "\xE9t\xE9",        // Latin-1
        "\xE2\x82z",        // cut by a letter
        "\xC0\x80",         // longer than needed
        "\xC1\xBF",         //
        "\xE0\x9F\xBF",     //
        "\xF0\x8F\xBF\xBF", //
        "\xED\xA0\x80",     // surrogates
        "\xED\xBF\xBF",     //
        "\xF4\x90\x80\x80", // past the last code point
        "\xF7\xBF\xBF\xBF", //
        "\xF8\x90\x80\x80", // leads of nothing
        "\xF8\x88\x80\x80\x80",
        "\xFE\xFF",
    };
    for (const std::string& text : brokenTexts) {
        CodePoints bytes;
        for (const char byte : text)
            bytes.push_back(static_cast<unsigned char>(byte));
        EXPECT_EQ(bytes, TakeAll(text)) << testing::PrintToString(text);
    }
}

TEST(CodePoints, GoOnBehindABrokenSequence)
{
    EXPECT_EQ((CodePoints{0xE2, 0x82, 0xE9, 'x'}), TakeAll<char>("\xE2\x82\xC3\xA9x"));
}

TEST(CodePoints, AreReadFromWideText)
{
    EXPECT_EQ((CodePoints{'A', 0xE9, 0x20AC, 0x1F5A8}),
              TakeAll<wchar_t>(L"A\u00E9\u20AC\U0001F5A8"));
    const std::wstring pair = {static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDDA8), L'!'};
    EXPECT_EQ((CodePoints{0x1F5A8, '!'}), TakeAll(pair));
}

TEST(CodePoints, AreReplacedWhereWideTextHoldsNone)
{
    const auto high = static_cast<wchar_t>(0xD83D);
    const auto low = static_cast<wchar_t>(0xDDA8);
    EXPECT_EQ((CodePoints{0xFFFD}), TakeAll<wchar_t>({high}));
    EXPECT_EQ((CodePoints{0xFFFD, 'x'}), TakeAll<wchar_t>({high, L'x'}));
    EXPECT_EQ((CodePoints{0xFFFD, 0x1F5A8}), TakeAll<wchar_t>({high, high, low}));
    EXPECT_EQ((CodePoints{0xFFFD, 0xE000}), TakeAll<wchar_t>({high, static_cast<wchar_t>(0xE000)}));
    EXPECT_EQ((CodePoints{0xFFFD, 'x'}), TakeAll<wchar_t>({low, L'x'}));
    if (sizeof(wchar_t) > 2) {
        EXPECT_EQ((CodePoints{0xFFFD}), TakeAll<wchar_t>({static_cast<wchar_t>(0x110000)}));
        EXPECT_EQ((CodePoints{0xFFFD}), TakeAll<wchar_t>({static_cast<wchar_t>(-1)}));
    }
}

TEST(CodePoints, AreWrittenAsUtf8)
{
    EXPECT_EQ("A", Put<char>('A'));
    EXPECT_EQ("\x7F", Put<char>(0x7F));
    EXPECT_EQ("\xC2\x80", Put<char>(0x80));
    EXPECT_EQ("\xDF\xBF", Put<char>(0x7FF));
    EXPECT_EQ("\xE0\xA0\x80", Put<char>(0x800));
    EXPECT_EQ("\xEF\xBF\xBF", Put<char>(0xFFFF));
    EXPECT_EQ("\xF0\x90\x80\x80", Put<char>(0x10000));
    EXPECT_EQ("\xF4\x8F\xBF\xBF", Put<char>(0x10FFFF));
}

TEST(CodePoints, SurviveTheWayThereAndBack)
{
    for (char32_t codePoint = 1; codePoint <= 0x10FFFF; ++codePoint) {
        if (codePoint == 0xD800)
            codePoint = 0xE000;
        // Compared first, since a million expectations take their time.
        const CodePoints expected = {codePoint};
        if (TakeAll(Put<char>(codePoint)) != expected ||
            TakeAll(Put<wchar_t>(codePoint)) != expected)
            ADD_FAILURE() << "code point " << static_cast<unsigned>(codePoint);
    }
}

} // namespace
} // namespace zvk::Diagnostics
