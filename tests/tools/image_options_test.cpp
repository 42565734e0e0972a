#include "tools/pelkraft/image_options.h"

#include "tools/pelkraft/failure.h"

#include <gtest/gtest.h>

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

} // namespace
} // namespace zvk::Pelkraft::Client
