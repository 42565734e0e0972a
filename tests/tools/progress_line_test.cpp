#include "tools/pelkraft/progress_line.h"

#include "tools/pelkraft/shown_text.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

namespace zvk::Pelkraft::Client {
namespace {

ProgressState HalfDone()
{
    ProgressState state;
    state.label = "convert /plates/1/out.tif";
    state.page = 2;
    state.pages = 3;
    state.rows = 5000;
    state.allRows = 10000;
    state.seconds = 62.5;
    return state;
}

// 5,000 rows in 62.5 seconds are 80 a second, and as many are left.
TEST(ProgressLine, TellsShareTimePageAndRate)
{
    EXPECT_EQ("pelkraft: convert /plates/1/out.tif  50 %, 1:03 left, page 2 of 3, 80 rows/s",
              ProgressLine(HalfDone(), 79));
    ProgressState state = HalfDone();
    state.pages = 1;
    EXPECT_EQ("pelkraft: convert /plates/1/out.tif  50 %, 1:03 left, 80 rows/s",
              ProgressLine(state, 79));
    state.rows = 9999;
    EXPECT_NE(std::string::npos, ProgressLine(state, 79).find(" 99 %, 0:01 left"));
    state.rows = state.allRows;
    EXPECT_NE(std::string::npos, ProgressLine(state, 79).find(" 100 %, 0:00 left"));
    // A hundredth in 100 seconds leaves 9,900 seconds.
    state.rows = 100;
    state.seconds = 100;
    EXPECT_NE(std::string::npos, ProgressLine(state, 79).find("  1 %, 2:45:00 left"));
    state.rows = 0;
    state.allRows = 0;
    EXPECT_NE(std::string::npos, ProgressLine(state, 79).find("100 %"));
}

TEST(ProgressLine, NeverExceedsItsColumns)
{
    ProgressState state = HalfDone();
    for (const char* label : {"convert a.tif", "convert /plates/1/out.tif",
                              "simulate /a/very/long/path/to/somewhere/else/of/a/disk/page.tif",
                              "convert \xE8\x89\xB2\xE8\x89\xB2\xE8\x89\xB2/gr\xC3\xB6\xC3\x9F"
                              "e\xE8\x89\xB2\xE8\x89\xB2\xE8\x89\xB2\xE8\x89\xB2.tif"}) {
        state.label = label;
        std::size_t longest = 0;
        for (std::size_t columns = 0; columns <= 140; ++columns) {
            const std::string line = ProgressLine(state, columns);
            EXPECT_LE(ShownColumns(line), columns) << line;
            EXPECT_EQ(line, Shown(line));
            EXPECT_EQ(columns >= 6, line.find("50 %") != std::string::npos) << columns;
            EXPECT_EQ(columns >= 41, line.find("80 rows/s") != std::string::npos) << line;
            longest = std::max(longest, ShownColumns(line));
        }
        EXPECT_EQ(longest, ShownColumns(ProgressLine(state, 1000)));
    }
    state.label = "convert /plates/1/out.tif";
    EXPECT_EQ("pelkraft: .../plates/1/out.tif  50 %, 1:03 left, page 2 of 3, 80 rows/s",
              ProgressLine(state, 71));
}

TEST(ProgressLine, KeepsATerminalsControlCharactersOut)
{
    ProgressState state = HalfDone();
    state.label = "convert a\033[31m\nb\xC2\x9B.tif";
    EXPECT_EQ(0U, ProgressLine(state, 100).find("pelkraft: convert a?[31m?b??.tif "));
}

TEST(ProgressLine, IsAnObjectForPrograms)
{
    ProgressState state = HalfDone();
    state.label = "convert \"a\xFF\n.tif";
    const std::string line = ProgressJson(state);
    EXPECT_EQ(line.size() - 1, line.find('\n'));
    const auto json = nlohmann::json::parse(line);
    EXPECT_EQ(2, json["page"]);
    EXPECT_EQ(3, json["pages"]);
    EXPECT_EQ(5000, json["rows_done"]);
    EXPECT_EQ(10000, json["rows_total"]);
    EXPECT_EQ(80.0, json["rate"]);
    EXPECT_EQ(62.5, json["seconds_left"]);
    // Before the first row nothing is known of them.
    state.rows = 0;
    state.seconds = 0;
    EXPECT_EQ(0.0, nlohmann::json::parse(ProgressJson(state))["seconds_left"]);
}

} // namespace
} // namespace zvk::Pelkraft::Client
