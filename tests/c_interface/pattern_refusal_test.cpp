#include "tests/c_interface/pattern_calls.h"
#include "tests/pattern/pattern_support.h"
#include "tests/support/guarded_arena.h"
#include "tests/support/guarded_buffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr std::int32_t bothEngines = -1;

// A text with a mark '@' in front of the word that is to be named, or without one where no place
// is.
struct RefusedCase
{
    std::string marked;
    const char* words;
    std::int32_t engine = bothEngines;
};

// The text without its mark, and the place of that.
struct MarkedText
{
    explicit MarkedText(const std::string& marked)
    {
        const std::size_t mark = marked.find('@');
        text = marked.substr(0, mark);
        if (mark == std::string::npos)
            return;
        const std::size_t lineStart = text.rfind('\n') + 1;
        line = 1 + static_cast<std::uint32_t>(std::count(text.begin(), text.end(), '\n'));
        column = 1 + static_cast<std::uint32_t>(text.size() - lineStart);
        text += marked.substr(mark + 1);
    }

    std::string text;
    std::uint32_t line = 0;
    std::uint32_t column = 0;
};

void ExpectRefusal(const RefusedCase& refused, std::int32_t engine)
{
    SCOPED_TRACE(testing::Message() << refused.marked << "\nengine " << engine);
    const MarkedText marked(refused.marked);
    const plk_failure failure = FailureOf(marked.text, engine);
    EXPECT_EQ(failure.status, PLK_BAD_TEXT);
    EXPECT_STREQ(failure.field, "text");
    EXPECT_EQ(failure.line, marked.line);
    EXPECT_EQ(failure.column, marked.column);
    EXPECT_EQ(failure.given, 0);
    EXPECT_EQ(failure.needed, 0);
    const std::string sentence = failure.text;
    std::ostringstream words;
    words << '"' << refused.words << '"';
    EXPECT_NE(sentence.find(words.str()), std::string::npos) << sentence;
    std::ostringstream place;
    place << "at line " << marked.line << ", column " << marked.column;
    EXPECT_EQ(sentence.find(place.str()) != std::string::npos, marked.line != 0) << sentence;
}

void ExpectRefusals(const std::vector<RefusedCase>& cases)
{
    for (const RefusedCase& refused : cases)
        for (const std::int32_t engine : {PLK_ENGINE_AUTOMATIC, PLK_ENGINE_X86, PLK_ENGINE_SSE})
            if (refused.engine == bothEngines ||
                (refused.engine == PLK_ENGINE_X86) == (engine == PLK_ENGINE_X86))
                ExpectRefusal(refused, engine);
}

// The lines before the first in-colour.
const std::string head = "DotWeavePattern\nVERSION 2\nBEGIN_OUT_INKS X Y END_OUT_INKS\n"
                         "BEGIN_IN_COLORS C D END_IN_COLORS\n";

std::string Block(const std::string& name, const std::string& values)
{
    return "BEGIN_IN_COLOR\n  " + name + "\nBEGIN_INKS X Y END_INKS\nBEGIN_VALUES\n" + values +
           "\nEND_VALUES\nEND_IN_COLOR\n";
}

TEST(PatternText, IsRefusedWhereItIsNoPattern)
{
    const char* const noVersion = "Internal Message: no version in dotweave pattern";
    const char* const noHeader = "Internal Message: init from dotweave pattern failed";
    const char* const nothing =
        "DotWeavePattern::Init invalid DotWeave pattern configuration file!";
    ExpectRefusals({
        {"", noVersion},
        {"DotWeavePattern", noVersion},
        {"DotWeavePattern\n  @VERSION", noVersion},
        {"# VERSION 2", noHeader},
        {"\n\n @dotweavepattern VERSION 2", noHeader},
        {"DotWeavePattern VERSION 2", nothing},
        {"DotWeavePattern VERSION 2\n@BEGIN_IN_COLORS END_IN_COLORS", nothing},
        {"DotWeavePattern VERSION 2\nBEGIN_IN_COLORS C END_IN_COLORS\n @BEGIN_OUT_INKS", nothing},
    });
}

TEST(PatternText, IsRefusedAtTheWordThatBreaksARule)
{
    ExpectRefusals({
        {head + Block("C", "1 1 0-1\n@8 1 0-1"), "step out of range in pattern"},
        {head + Block("C", "1 1 0-1\n  @-1 1 0-1"), "step out of range in pattern"},
        {head + Block("C", "1 1 @16-1"), "ink position out of range in pattern"},
        {head + Block("C", "1 @0:0 0-1 0-2"), "sum of weights out of range in pattern"},
        {head + "BEGIN_IN_COLOR\n@BEGIN_INKS X END_INKS",
         "BEGIN_INKS without in-colour in pattern"},
        {"DotWeavePattern VERSION 2\n@BEGIN_IN_COLORS C",
         "BEGIN_IN_COLORS without END_IN_COLORS in pattern"},
        {head + "@BEGIN_IN_COLORS E END_IN_COLORS", "in-colour without record in pattern"},
        {"DotWeavePattern #VERSION\nVERSION 1 BEGIN_OUT_INKS X END_OUT_INKS BEGIN_IN_COLORS C "
         "END_IN_COLORS\n" +
             Block("C", "1 1 @0-1"),
         "unsupported pattern version"},
        {head + "BEGIN_IN_COLOR C BEGIN_INKS X X X X X X X X X X X X X X X X\n@Y",
         "too many ink positions in pattern"},
    });
}

TEST(PatternText, IsRefusedAtTheNameOfTheInColourThatBreaksARule)
{
    const std::string sound = Block("C", "1 1:1 0-1 1-2");
    const std::string many = "1 1:1:1:1 0-1 0-2 0-3 0-4\n2 1:2:3:4:5:6:7:8 "
                             "0-1 0-2 0-3 0-4 0-5 0-6 0-7 0-8";
    std::string crowd = "DotWeavePattern VERSION 2 BEGIN_OUT_INKS X Y END_OUT_INKS BEGIN_IN_COLORS "
                        "A B C D END_IN_COLORS\n";
    const std::string sixteen =
        "1 1:1:1:1:1:1:1:1:1:1:1:1:1:1:1:1 0-1 0-1 0-1 0-1 0-1 0-1 0-1 0-1 0-1 0-1 0-1 0-1 0-1 "
        "0-1 0-1 0-1";
    crowd += Block("A", sixteen) + Block("B", sixteen) + Block("C", "1 1:1:1:1 0-1 0-1 0-1 0-1");
    ExpectRefusals({
        {head + sound + Block("@D", "2 1 0-1"), "step without value line in pattern"},
        {head + sound + Block("@D", many + "\n3 1:1 0-1 0-1"),
         "numCombinations > MAXS_CHANNEL_RANDOM"},
        {crowd + Block("@D", "1 1:1 0-1 0-1"), "numCombinations > MAXS_TOTAL_RANDOM"},
    });
}

TEST(PatternText, IsRefusedAtTheInColourWhoseFractionsWrap)
{
    // The product of the denominators of C is 2 to the power of 32.
    const std::string wraps = "1 1:65535 0-1 0-1\n2 3:65533 0-1 0-1";
    ExpectRefusals({{head + Block("@C", wraps), "fraction out of range in pattern"}});
    // That of C and D together is, too.
    ExpectRefusals({{head + Block("C", "1 1:65535 0-1 0-1") + Block("@D", "1 1:65535 0-1 0-1"),
                     "fraction out of range in pattern"}});
}

TEST(PatternText, IsRefusedForTheLimitsOfItsEngine)
{
    const std::string sixteen = Names(" N", 16);
    const std::string inColour = " END_IN_COLORS\nBEGIN_IN_COLOR N0 BEGIN_INKS X END_INKS ";
    const std::string manyInColours =
        "DotWeavePattern VERSION 2 BEGIN_OUT_INKS X END_OUT_INKS\nBEGIN_IN_COLORS" + sixteen +
        "\n @N16 N17" + inColour;
    std::string manyInks = "DotWeavePattern VERSION 2 BEGIN_OUT_INKS" + sixteen +
                           "\n\t@N16 END_OUT_INKS BEGIN_IN_COLORS C END_IN_COLORS BEGIN_IN_COLOR C "
                           "BEGIN_INKS" +
                           sixteen + " END_INKS";
    const std::string unfed = "DotWeavePattern VERSION 2 BEGIN_OUT_INKS X\n@Z END_OUT_INKS "
                              "BEGIN_IN_COLORS C END_IN_COLORS BEGIN_IN_COLOR C BEGIN_INKS X "
                              "END_INKS BEGIN_VALUES 1 1 0-1";
    const std::string single = "DotWeavePattern VERSION 3 BEGIN_OUT_INKS X END_OUT_INKS "
                               "BEGIN_IN_COLORS C END_IN_COLORS BEGIN_IN_COLOR C BEGIN_INKS X "
                               "END_INKS BEGIN_VALUES 1 1 0-1";
    // The values are looked at before the names are counted.
    std::string full = Head("2", Names(" C", 17), Names(" X", 6));
    for (int i = 0; i < 6; ++i)
        full += InColor(Numbered("C", i), Numbered("X", i),
                        "1 1" + Numbered(" 0-", 30 + i) + "\n2 1" + Numbered(" 0-", 40 + i) +
                            "\n3 1" + Numbered(" 0-", 50 + i));
    ExpectRefusals({
        {manyInColours, "Array too long for SSE register", PLK_ENGINE_SSE},
        {manyInColours, "Array too long for pattern tables", PLK_ENGINE_X86},
        {manyInks, "Array too long for SSE register", PLK_ENGINE_SSE},
        {manyInks, "Array too long for pattern tables", PLK_ENGINE_X86},
        {unfed, "out-ink without in-colour in pattern", PLK_ENGINE_X86},
        {single, "pattern without random combinations", PLK_ENGINE_X86},
        {full, "capacity exceeded in mComonTrans", PLK_ENGINE_SSE},
    });
}

TEST(PatternText, HasItsLinesAndColumnsAsEditorsCountThem)
{
    // A line ends with CR and LF, and a letter of two bytes is one column.
    std::string text = "DotWeavePattern\r\nVERSION 2\r\nBEGIN_OUT_INKS X END_OUT_INKS\r\n"
                       "BEGIN_IN_COLORS C END_IN_COLORS BEGIN_IN_COLOR C BEGIN_VALUES\r\n"
                       "1 1 \"\xC3\xA4\" 9 1 0-1";
    EXPECT_EQ(Brief(FailureOf(text)), "7 text 5:9");
}

TEST(PatternText, MayEndWithOneZeroByte)
{
    const std::string text = exampleText;
    const PatternHandle with = MakeHandle(std::string_view(text.c_str(), text.size() + 1));
    const PatternHandle without = MakeHandle(text);
    EXPECT_EQ(SavedBytesOf(with.get()), SavedBytesOf(without.get()));

    const std::string two = text + std::string(2, '\0');
    const auto lines = static_cast<int>(std::count(text.begin(), text.end(), '\n'));
    EXPECT_EQ(Brief(FailureOf(two)), Numbered("7 text ", lines + 1) + ":1");
    std::string within = text;
    within.replace(within.find("Black"), 1, 1, '\0');
    const plk_failure failure = FailureOf(within);
    EXPECT_EQ(Brief(failure), "7 text 6:16");
    EXPECT_STREQ(failure.text,
                 "text has a zero byte before its end; take it away at line 6, column 16");
    EXPECT_EQ(Brief(FailureOf(std::string(2, '\0'))), "7 text 1:1");
    EXPECT_EQ(Brief(FailureOf(std::string(1, '\0'))), "7 text");
}

TEST(PatternText, IsReadWhereItStandsAndNoFurther)
{
    const std::string text = exampleText;
    std::string crlf;
    for (const char byte : text.substr(0, text.size() - 1))
        crlf += byte == '\n' ? std::string("\r\n") : std::string(1, byte);
    const Bytes steps = {2, 1, 1, 0, 3, 1, 2, 1, 2, 0};
    for (const std::string& written : {text, crlf}) {
        const GuardedArena arena(written.size());
        unsigned char* const place = arena.Place(written.size(), Flush::AtEnd);
        std::copy(written.begin(), written.end(), place);
        arena.MakeReadOnly();
        const PatternHandle handle =
            MakeHandle({reinterpret_cast<const char*>(place), written.size()});
        EXPECT_EQ(RunRow(handle.get(), 3, steps), RunRow(MakeHandle(text).get(), 3, steps));
    }
}

TEST(PatternCreate, NamesTheArgumentThatIsWrong)
{
    const std::string text = exampleText;
    const auto create = [](const char* given, std::uint64_t bytes, const plk_pattern_spec* spec) {
        plk_pattern* pattern = nullptr;
        plk_failure failure = JunkFailure();
        EXPECT_EQ(plk_pattern_create(given, bytes, spec, &pattern, &failure), failure.status);
        EXPECT_EQ(pattern, nullptr);
        plk_pattern_free(pattern);
        return Brief(failure);
    };
    EXPECT_EQ(create(nullptr, 0, nullptr), "1 text");
    EXPECT_EQ(create(nullptr, 10, nullptr), "1 text");
    EXPECT_EQ(create(text.data(), UINT64_MAX, nullptr), "1 bytes");
    const plk_pattern_spec none = {0, 0};
    EXPECT_EQ(create(text.data(), text.size(), &none), "1 spec.size");
    struct
    {
        plk_pattern_spec spec;
        std::uint32_t more;
    } longer = {{sizeof longer, PLK_ENGINE_X86}, 1};
    EXPECT_EQ(create(text.data(), text.size(), &longer.spec), "3 spec.size");

    plk_failure failure = JunkFailure();
    EXPECT_EQ(plk_pattern_create(text.data(), text.size(), nullptr, nullptr, &failure),
              PLK_INVALID);
    EXPECT_EQ(Brief(failure), "1 pattern");
    for (const std::int32_t engine : {1, 4, -1, INT32_MAX, INT32_MIN}) {
        failure = FailureOf(text, engine);
        EXPECT_EQ(Brief(failure), "1 engine");
        EXPECT_EQ(failure.given, engine);
    }
    // Nothing is asked of a text before that.
    EXPECT_EQ(Brief(FailureOf("", 1)), "1 engine");
}

TEST(PatternCreate, TakesARecordThatIsShorterOrLonger)
{
    const std::string text = exampleText;
    struct
    {
        plk_pattern_spec spec;
        std::uint32_t more;
    } longer = {{sizeof longer, PLK_ENGINE_X86}, 0};
    plk_pattern* pattern = nullptr;
    ASSERT_EQ(plk_pattern_create(text.data(), text.size(), &longer.spec, &pattern, nullptr),
              PLK_OK);
    EXPECT_EQ(SavedBytesOf(pattern), SavedBytesOf(MakeHandle(text, PLK_ENGINE_X86).get()));
    plk_pattern_free(pattern);

    // Only its size is read, so that the engine is 0.
    const plk_pattern_spec shorter = {4, 1};
    ASSERT_EQ(plk_pattern_create(text.data(), text.size(), &shorter, &pattern, nullptr), PLK_OK);
    EXPECT_EQ(SavedBytesOf(pattern), SavedBytesOf(MakeHandle(text).get()));
    plk_pattern_free(pattern);
    plk_pattern_free(nullptr);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
