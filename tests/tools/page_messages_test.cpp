#include "tests/tools/pattern_texts.h"
#include "tests/tools/tool_fixture.h"
#include "tools/pelkraft/page_groups.h"

#include <algorithm>

namespace zvk::Pelkraft::TestSupport {
namespace {

class PageMessages : public ToolFixture
{
protected:
    PageMessages() { WriteBytes(Path("pattern.txt"), smallPattern); }

    // One picture after the other, each a page.
    void WritePages(const std::vector<TiffImage>& pages) const
    {
        FileForm form;
        form.photometric = PHOTOMETRIC_SEPARATED;
        WriteTiffPages(Path("in.tif"), pages, form);
    }

    [[nodiscard]] Outcome Simulate(const std::vector<std::string>& options) const
    {
        std::vector<std::string> arguments = {"simulate", Path("pattern.txt"), Path("in.tif"),
                                              Path("out.tif")};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return Run(arguments);
    }

    [[nodiscard]] static long Lines(const std::string& text, const std::string& words)
    {
        long count = 0;
        for (std::size_t at = 0; (at = text.find(words, at)) != std::string::npos; ++at)
            ++count;
        return count;
    }
};

const TiffImage small = RandomImage(20, 10, 3, 8, 1);

TEST_F(PageMessages, ExplainEqualPagesOnce)
{
    const std::vector<TiffImage> equal(200, small);
    WritePages(equal);
    for (const Outcome& outcome :
         {Convert({"--explain", "--dry-run"}), Simulate({"--explain", "--dry-run", "-q"})}) {
        EXPECT_EQ(0U, outcome.output.find("pages 1-200"));
        EXPECT_EQ(1, Lines(outcome.output, "page"));
        EXPECT_LT(Lines(outcome.output, "\n"), 30);
    }
    std::vector<TiffImage> mixed(5, small);
    mixed[2] = RandomImage(30, 10, 3, 8, 1);
    WritePages(mixed);
    for (const Outcome& outcome :
         {Convert({"--explain", "--dry-run"}), Simulate({"--explain", "--dry-run", "-q"})}) {
        EXPECT_EQ(0U, outcome.output.find("pages 1-2, 4-5"));
        EXPECT_NE(std::string::npos, outcome.output.find("\npage 3"));
        EXPECT_EQ(2, Lines(outcome.output, "page"));
    }
    WritePages({small});
    EXPECT_EQ(0U, Convert({"--explain"}).output.find("page 1\n"));
}

// Three channels are one more than the pattern's two in-colours.
TEST_F(PageMessages, CountWarningsOfAKind)
{
    const std::string said = "channel 2 (Yellow) is not used: no in-colour of the pattern takes it";
    const std::string order = "no channel bears the names of these in-colours, which take channels "
                              "in their order: Black from channel 1 (Magenta)\n";
    const std::string start = "pelkraft: " + Path("in.tif") + ": warning: ";
    const TiffImage two = RandomImage(20, 10, 2, 8, 1);
    WritePages({small});
    EXPECT_EQ(start + order + start + said + '\n', Simulate({}).errors);
    WritePages({small, small, two, small});
    EXPECT_EQ(start + "4 pages: " + order + start + "3 pages: " + said + '\n', Simulate({}).errors);
    EXPECT_NE(std::string::npos, Simulate({"-v"}).errors.find(start + "pages 1-2, 4: " + said));
    EXPECT_EQ(start + "2 pages: " + order + start + "page 2: " + said + '\n',
              Simulate({"--page", "2-3"}).errors);
    EXPECT_EQ("", Simulate({"-q"}).errors);
    EXPECT_EQ(1, Simulate({}).exitCode);
}

TEST_F(PageMessages, NameThePageOfAFailure)
{
    const TiffImage odd = RandomImage(20, 10, 3, 4, 1);
    WritePages({odd});
    EXPECT_TRUE(Refused(Convert(), 5, {"in.tif: has samples of 4 bits"}));
    WritePages({small, odd, small});
    EXPECT_TRUE(Refused(Convert(), 5, {"in.tif: page 2: has samples of 4 bits"}));
    EXPECT_TRUE(Refused(Simulate({"-q"}), 5, {"in.tif: page 2: has samples of 4 bits"}));
    EXPECT_TRUE(Refused(Convert({"--page", "1", "--channels", "5"}), 2,
                        {"in.tif: page 1: has no channel \"5\""}));
    EXPECT_TRUE(EndedSilently(Convert({"--page", "1,3"})));
}

TEST(PageGroups, BringEqualTextsTogether)
{
    Client::PageGroups groups;
    for (const int page : {1, 2, 3, 5, 1, 2})
        groups.Add(page, page == 3 ? "odd" : "even");
    ASSERT_EQ(2U, groups.All().size());
    EXPECT_EQ("pages 1-2, 5", Client::PageLabel(groups.All()[0].pages));
    EXPECT_EQ("page 3", Client::PageLabel(groups.All()[1].pages));
    EXPECT_EQ("3 pages: ", Client::PageCountWords({1, 2, 5}, true));
    EXPECT_EQ("", Client::PageCountWords({1}, false));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
