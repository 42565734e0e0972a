#include "tools/pelkraft/image_options.h"

#include "tools/pelkraft/failure.h"

#include <CLI/CLI.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {
namespace {

std::vector<int> FirstPages(const PageChoice& choice)
{
    std::vector<int> pages;
    for (int page = 1; page <= 12; ++page) {
        if (choice.Takes(page))
            pages.push_back(page);
    }
    return pages;
}

TEST(PageChoiceTest, NumbersAndRangesAreTaken)
{
    EXPECT_EQ(FirstPages(PageChoice("1,3-5")), (std::vector<int>{1, 3, 4, 5}));
    EXPECT_EQ(FirstPages(PageChoice("11")), std::vector<int>{11});
    EXPECT_EQ(FirstPages(PageChoice("4-5,2,2-4")), (std::vector<int>{2, 3, 4, 5}));
    EXPECT_EQ(PageChoice("4-5,2").Last(), 5);
}

TEST(PageChoiceTest, AllHasNoLastPage)
{
    EXPECT_EQ(FirstPages(PageChoice("all")).size(), 12U);
    EXPECT_EQ(PageChoice("all").Last(), 0);
}

TEST(PageChoiceTest, OtherWordsAreWrongUsage)
{
    for (const char* words : {"", "0", "-1", "1-", "3-2", "1,", ",1", "1 2", "1x", "+1", "every",
                              "99999999999", "1--2", "1-2-3"}) {
        try {
            PageChoice choice(words);
            ADD_FAILURE() << words;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.Code(), ExitCode::Usage) << words;
            EXPECT_NE(std::string(failure.what()).find("1,3-5"), std::string::npos) << words;
        }
    }
}

InputOptions Parsed(std::vector<std::string> words, RangeWords known = RangeWords::All)
{
    InputOptions input;
    CLI::App verb;
    AddInputOptions(verb, input, known);
    std::reverse(words.begin(), words.end());
    verb.parse(words);
    return input;
}

std::string Refusal(const std::vector<std::string>& words, RangeWords known = RangeWords::All)
{
    try {
        Parsed(words, known);
        return "taken";
    } catch (const Failure& failure) {
        return failure.Code() == ExitCode::Usage ? failure.what() : "not as wrong usage";
    }
}

TEST(InputOptionsTest, KeepTheRangeUnlessTold)
{
    const InputOptions plain = Parsed({});
    EXPECT_FALSE(plain.dotRange);
    EXPECT_EQ(plain.rangeWork, RangeWork::Keep);
    EXPECT_EQ(Parsed({"--dot-range", "scale"}).rangeWork, RangeWork::Scale);
    EXPECT_EQ(Parsed({"--dot-range=full"}).rangeWork, RangeWork::Full);
    EXPECT_EQ(Parsed({"--dot-range", "keep"}).rangeWork, RangeWork::Keep);
}

TEST(InputOptionsTest, TakeARangeOfTwoSamples)
{
    const InputOptions input = Parsed({"--dot-range", "250,5"});
    ASSERT_TRUE(input.dotRange);
    EXPECT_EQ(input.dotRange->none, 250);
    EXPECT_EQ(input.dotRange->full, 5);
    EXPECT_EQ(input.rangeWork, RangeWork::Keep);
    EXPECT_EQ(Parsed({"--dot-range", "0,65535"}).dotRange->full, 65535);
    for (const char* const words :
         {"", "5", "5,", ",5", "5,5", "5;6", "x,5", "0,65536", "5,250,", "5, 250", "wide"})
        EXPECT_NE(Refusal({"--dot-range", words}).find("scale, full, and the samples"),
                  std::string::npos)
            << words;
}

TEST(InputOptionsTest, LeaveTheWorkOnARangeToVerbsThatWriteIt)
{
    for (const char* const words : {"scale", "full"}) {
        const std::string text = Refusal({"--dot-range", words}, RangeWords::ReadingAlone);
        EXPECT_NE(text.find("supported are keep, and the samples"), std::string::npos) << text;
    }
    EXPECT_TRUE(Parsed({"--dot-range", "5,250"}, RangeWords::ReadingAlone).dotRange);
}

TEST(InputOptionsTest, TakeALimitInBytesOrInGreaterUnits)
{
    EXPECT_EQ(Parsed({}).spoolLimit, std::uint64_t{16} << 30);
    EXPECT_EQ(Parsed({"--spool-limit", "77"}).spoolLimit, 77U);
    EXPECT_EQ(Parsed({"--spool-limit", "3K"}).spoolLimit, 3072U);
    EXPECT_EQ(Parsed({"--spool-limit", "500M"}).spoolLimit, std::uint64_t{500} << 20);
    EXPECT_EQ(Parsed({"--spool-limit=2G"}).spoolLimit, std::uint64_t{2} << 30);
    for (const char* const words :
         {"", "M", "5T", "5MB", "1.5G", "x", "99999999999999999999", "99999999999G"})
        EXPECT_NE(Refusal({"--spool-limit", words}).find("500M"), std::string::npos) << words;
}

} // namespace
} // namespace zvk::Pelkraft::Client
