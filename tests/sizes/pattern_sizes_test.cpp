#include "pelkraft/plan.h"
#include "tests/bounds/placements.h"
#include "tests/pattern/pattern_grid.h"
#include "tests/pattern/pattern_support.h"
#include "tests/sizes/limited_memory.h"
#include "tests/support/guarded_buffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdio>
#include <optional>

// Numbers of any size in a pattern's text: the text is refused in one of the words that the class
// lists, or its rows are the same on both engines.
namespace zvk::Pelkraft::TestSupport {
namespace {

using Engine = DotWeavePattern::Engine;

constexpr const char* numbers[] = {"0",
                                   "1",
                                   "-1",
                                   "7",
                                   "16",
                                   "255",
                                   "32768",
                                   "65535",
                                   "65536",
                                   "65537",
                                   "16777216",
                                   "1073741824",
                                   "2147483647",
                                   "2147483648",
                                   "-2147483648",
                                   "-2147483649",
                                   "4294967295",
                                   "4294967296",
                                   "4294967297",
                                   "9223372036854775807",
                                   "9223372036854775808",
                                   "18446744073709551616",
                                   "999999999999999999999999999999999999999999"};

// Each % is a place for a number, and ^ for the others.
constexpr const char* places[] = {
    "VERSION % RANDOM_SEED 5 ^ 1 1:1 0-1 0-2",
    "VERSION 2 RANDOM_SEED % ^ 1 1:1 0-1 0-2",
    "VERSION 3 RANDOM_SEED % ^ 1 1:1 0-1 0-2",
    "VERSION 2 RANDOM_SEED 5 ^ % 1:1 0-1 0-2",
    "VERSION 2 RANDOM_SEED 5 ^ 1 % 0-1",
    "VERSION 3 RANDOM_SEED 5 ^ 1 1:% 0-1 0-2",
    "VERSION 2 RANDOM_SEED 5 ^ 1 %:1 0-1 0-2",
    "VERSION 2 RANDOM_SEED 5 ^ 1 %:% 0-1 0-2",
    "VERSION 3 RANDOM_SEED 5 ^ 1 %:% 0-1 0-2",
    "VERSION 2 RANDOM_SEED 5 ^ 1 %:%:%:%:% 0-1 0-2 0-3 0-4 0-5",
    "VERSION 2 RANDOM_SEED 5 ^ 1 1:% 0-1 0-2\n2 %:3 0-1 0-2\n3 5:% 0-1 0-2",
    "VERSION 3 RANDOM_SEED 5 ^ 1 1:% 0-1 0-2\n2 %:3 0-1 0-2",
    "VERSION 2 RANDOM_SEED 5 ^ 1 1:1 %-1 0-2",
    "VERSION 2 RANDOM_SEED 5 ^ 1 1:1 0-% 0-2",
    "VERSION 3 RANDOM_SEED 5 ^ 1 1:1 0-% %-2",
};

constexpr const char* refusals[] = {
    "narrow: unsupported pattern version",
    "narrow: step out of range in pattern",
    "narrow: ink position out of range in pattern",
    "narrow: sum of weights out of range in pattern",
    "narrow: step without value line in pattern",
    "narrow: fraction out of range in pattern",
    "narrow: numCombinations > MAXS_CHANNEL_RANDOM",
    "narrow: numCombinations > MAXS_TOTAL_RANDOM",
    "narrow: pattern without random combinations",
    "narrow: capacity exceeded in mComonTrans",
    "std::bad_alloc",
};

// A number beyond 32 bits is read as the last one within.
std::string LimitOf(const std::string& number)
{
    const bool isNegative = number.front() == '-';
    const std::string limit = isNegative ? "-2147483648" : "2147483647";
    const bool isBeyond =
        number.size() > limit.size() || (number.size() == limit.size() && number > limit);
    return isBeyond ? limit : number;
}

std::string TextWith(const std::string& place, const std::string& number)
{
    std::string text = "DotWeavePattern ";
    for (const char letter : place) {
        if (letter == '%')
            text += number;
        else if (letter == '^')
            text += " BEGIN_OUT_INKS X Y END_OUT_INKS BEGIN_IN_COLORS A END_IN_COLORS "
                    "BEGIN_IN_COLOR A BEGIN_INKS X Y END_INKS BEGIN_VALUES\n";
        else
            text += letter;
    }
    return text + "\nEND_VALUES END_IN_COLOR\n";
}

class PatternSizes : public ::testing::Test
{
protected:
    // Returns the first rows, each a pixel wider than the last one; nothing if the text is refused.
    std::optional<Bytes> RowsOf(const std::string& text, Engine engine)
    {
        std::string own = text;
        std::optional<DotWeavePattern> pattern;
        const std::string end = WhatIsThrown([&] { pattern.emplace(own.data(), engine); });
        if (engine == DotWeavePattern::X86 || engine == DotWeavePattern::Sse)
            ExpectHandle(text, engine, end);
        if (end != "nothing") {
            EXPECT_NE(std::end(refusals), std::find(std::begin(refusals), std::end(refusals), end))
                << end << ": " << text;
            ++refused;
            return std::nullopt;
        }
        ++loaded;
        Bytes rows;
        for (std::size_t pixels = 0; pixels != 35; ++pixels) {
            const GuardedBuffer source(NoisySteps(pixels));
            const GuardedBuffer destination(pixels * 2, Flush::AtEnd, 0xA5);
            pattern->ApplyPattern(source.data(), destination.data(),
                                  static_cast<unsigned long>(pixels));
            const Bytes row = destination.bytes();
            rows.insert(rows.end(), row.begin(), row.end());
        }
        return rows;
    }

    // A handle ends as the class does.
    static void ExpectHandle(const std::string& text, Engine engine, const std::string& end)
    {
        const plk_pattern_spec spec = {sizeof spec, engine};
        plk_pattern* handle = nullptr;
        plk_failure failure = {};
        failure.size = sizeof failure;
        const plk_status status =
            plk_pattern_create(text.data(), text.size(), &spec, &handle, &failure);
        const plk_status refusal = end == "std::bad_alloc" ? PLK_NO_MEMORY : PLK_BAD_TEXT;
        EXPECT_EQ(end == "nothing" ? PLK_OK : refusal, status) << end << ": " << text;
        plk_pattern_free(handle);
    }

    // By engine.
    using Outcome = std::array<std::optional<Bytes>, 4>;

    Outcome OutcomeOf(const std::string& text)
    {
        Outcome outcome;
        for (const Engine engine : {DotWeavePattern::Automatic, DotWeavePattern::Reference,
                                    DotWeavePattern::X86, DotWeavePattern::Sse})
            outcome[static_cast<std::size_t>(engine)] = RowsOf(text, engine);
        const auto& portable = outcome[DotWeavePattern::X86];
        const auto& vector = outcome[DotWeavePattern::Sse];
        if (portable && vector) {
            EXPECT_TRUE(*portable == *vector) << text;
        }
        return outcome;
    }

    const LimitedMemory limited;
    std::uint64_t loaded = 0;
    std::uint64_t refused = 0;
};

TEST_F(PatternSizes, EndInTheWordsOrInTheSameRows)
{
    for (const char* const place : places)
        for (const char* const number : numbers) {
            const Outcome outcome = OutcomeOf(TextWith(place, number));
            if (const std::string limit = LimitOf(number); limit != number) {
                EXPECT_TRUE(outcome == OutcomeOf(TextWith(place, limit))) << place << number;
            }
        }
    std::printf("%" PRIu64 " patterns with numbers of any size\n", loaded);
    std::printf("%" PRIu64 " refused patterns with numbers of any size\n", refused);
    EXPECT_GT(loaded, 100U);
    EXPECT_GT(refused, 100U);
}

// Lists of as many names as there are places, and one more.
TEST_F(PatternSizes, HoldForAnyCountOfNames)
{
    for (const int inColors : {1, 15, 16, 17, 255, 256, 257, 1 << 15, 1 << 16})
        for (const Engine engine : {DotWeavePattern::X86, DotWeavePattern::Sse,
                                    DotWeavePattern::Reference, DotWeavePattern::Automatic}) {
            std::string names;
            for (int i = 0; i != inColors; ++i)
                names += Numbered(" N", i);
            for (const bool many : {false, true}) {
                std::string text = Head("2", many ? names : "A", many ? "X" : names);
                const std::string end = WhatIsThrown([&] { DotWeavePattern(text.data(), engine); });
                const bool isLong = end == "narrow: Array too long for pattern tables" ||
                                    end == "narrow: Array too long for SSE register";
                const bool isUnfed = end == "narrow: out-ink without in-colour in pattern";
                EXPECT_TRUE(end == "nothing" || isLong || isUnfed) << end << " " << inColors;
            }
        }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
