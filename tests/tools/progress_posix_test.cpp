#include "tests/tools/pseudo_terminal.h"
#include "tests/tools/tool_fixture.h"

#include <nlohmann/json.hpp>
#include <stdlib.h>
#include <unistd.h>

#include <sstream>
#include <utility>

namespace zvk::Pelkraft::TestSupport {
namespace {

class Progress : public ToolFixture
{
protected:
    Progress() { WriteTiffPages(Path("in.tif"), {RandomImage(15, 25, 4, 8, 8)}, {}); }

    // Runs the program on a terminal so wide, and gives all that it shows there.
    [[nodiscard]] std::string Shown(unsigned columns, const std::vector<std::string>& options = {},
                                    const char* kind = "xterm")
    {
        const PseudoTerminal terminal(columns);
        std::vector<std::string> command = {PELKRAFT_TOOL, "convert", Path("in.tif"),
                                            Path("out.tif")};
        command.insert(command.end(), options.begin(), options.end());
        Subprocess tool(command, folder + "/streams", [&] {
            dup2(terminal.Slave(), STDERR_FILENO);
            setenv("TERM", kind, 1);
            unsetenv("NO_COLOR");
            unsetenv("COLUMNS");
            for (const auto& [name, value] : variables)
                setenv(name.c_str(), value.c_str(), 1);
        });
        outcome = tool.Wait();
        return terminal.ReadAll();
    }

    std::vector<std::pair<std::string, std::string>> variables;
    Outcome outcome;
};

const std::string wipe = "\r\033[K";

TEST_F(Progress, IsShownOnATerminalAndWiped)
{
    const std::string shown = Shown(200);
    EXPECT_TRUE(EndedSilently(outcome));
    EXPECT_EQ(0U, shown.find("\rpelkraft: convert " + Path("out.tif") + " 100 %, 0:00 left, "))
        << shown;
    EXPECT_NE(std::string::npos, shown.find(" rows/s")) << shown;
    ASSERT_LE(wipe.size(), shown.size());
    EXPECT_EQ(wipe, shown.substr(shown.size() - wipe.size()));
    EXPECT_EQ(std::string::npos, shown.find('\n'));
    EXPECT_EQ(std::string::npos, shown.find("page"));
}

TEST_F(Progress, NamesThePageWhereThereAreSeveral)
{
    WriteTiffPages(Path("in.tif"), {RandomImage(15, 25, 4, 8, 8), RandomImage(15, 25, 4, 8, 8)},
                   {});
    EXPECT_NE(std::string::npos, Shown(200).find(", page 1 of 2")) << outcome.errors;
    std::vector<nlohmann::json> objects;
    std::istringstream lines(Convert({"--progress", "json"}).errors);
    for (std::string line; std::getline(lines, line);)
        objects.push_back(nlohmann::json::parse(line));
    ASSERT_FALSE(objects.empty());
    EXPECT_EQ(2, objects.back()["page"]);
    EXPECT_EQ(2, objects.back()["pages"]);
}

TEST_F(Progress, StaysWithinTheWidthOfTheTerminal)
{
    for (const unsigned columns : {1U, 5U, 12U, 30U, 60U, 80U}) {
        const std::string shown = Shown(columns);
        const std::size_t end = shown.find(wipe);
        ASSERT_NE(std::string::npos, end) << columns;
        EXPECT_LE(end, columns) << shown;
    }
    // The shell may know what the terminal doesn't.
    variables = {{"COLUMNS", "30"}};
    EXPECT_LE(Shown(0).find(wipe), 30U);
    variables = {{"COLUMNS", "no number"}};
    const std::string usual = Shown(0);
    EXPECT_LE(usual.find(wipe), 80U);
    EXPECT_GT(usual.find(wipe), 40U);
}

TEST_F(Progress, IsLeftOutWhereNobodyCanReadIt)
{
    EXPECT_EQ("", Shown(80, {}, "dumb"));
    EXPECT_EQ("", Shown(80, {"--progress", "never"}));
    EXPECT_EQ("", Shown(80, {"--quiet"}));
    EXPECT_EQ("", Convert().errors);
}

TEST_F(Progress, TakesColoursForMessagesAlone)
{
    std::filesystem::remove(Path("in.tif"));
    const std::string red = "\033[1;31mpelkraft:\033[0m ";
    EXPECT_EQ(0U, Shown(80).find(red));
    EXPECT_EQ(0U, Shown(80, {"--color", "never"}).find("pelkraft: "));
    // A wrong command line too, before its options take effect.
    EXPECT_EQ(0U, Shown(80, {"--colour"}).find(red));
    EXPECT_EQ(0U, Shown(80, {"--bits", "3", "--color", "never"}).find("pelkraft: "));
    EXPECT_EQ(0U, Shown(80, {"--color=never", "--bits", "3"}).find("pelkraft: "));
    EXPECT_EQ(0U, Shown(80, {}, "dumb").find("pelkraft: "));
    variables = {{"NO_COLOR", "1"}};
    EXPECT_EQ(0U, Shown(80).find("pelkraft: "));
}

TEST_F(Progress, OfJsonIsAnObjectALineBesideTheData)
{
    const Outcome run = Convert({"--progress=json", "--explain", "--json"});
    EXPECT_EQ(0, run.exitCode);
    EXPECT_FALSE(nlohmann::json::parse(run.output)["pages"].empty());
    std::istringstream lines(run.errors);
    nlohmann::json last;
    for (std::string line; std::getline(lines, line);)
        last = nlohmann::json::parse(line);
    EXPECT_EQ(25, last["rows_done"]);
    EXPECT_EQ(25, last["rows_total"]);
    EXPECT_EQ(1, last["page"]);
    EXPECT_EQ(1, last["pages"]);
    EXPECT_EQ(0.0, last["seconds_left"]);
    EXPECT_GE(last["rate"], 0.0);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
