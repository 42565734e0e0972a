#include "tests/tools/pattern_texts.h"
#include "tests/tools/replaced_text.h"
#include "tests/tools/tool_fixture.h"

#include <nlohmann/json.hpp>

#include <set>

namespace zvk::Pelkraft::TestSupport {
namespace {

using Json = nlohmann::json;

class PatternDiff : public ToolFixture
{
protected:
    Outcome Diff(const std::string& other, const std::string& format = "text")
    {
        WriteBytes(Path("a.txt"), smallPattern);
        WriteBytes(Path("b.txt"), other);
        return Run({"pattern", "diff", "--format", format, Path("a.txt"), Path("b.txt")});
    }
};

TEST_F(PatternDiff, PassesOverLetters)
{
    const std::string plain = smallPattern;
    for (const std::string& other :
         {plain, Replaced(plain, "#comment", "# another comment"),
          Replaced(plain, "1 1 1-64\n", "1 1 1-64   "),
          Replaced(plain, "Cyan LightCyan\nEND_INKS", "CYAN lightcyan\nEND_INKS"),
          // Alternatives in another order, weights on another scale, a part that never comes, and
          // one that is written as two.
          Replaced(plain, "1:3 1-128 0-40", "3:1 0-40 1-128"),
          Replaced(plain, "1:3 1-128 0-40", "2:6 1-128 0-40"),
          Replaced(plain, "1:3 1-128 0-40", "1:2:1 1-128 0-40 0-40"),
          // Positions in another order.
          Replaced(Replaced(Replaced(Replaced(plain, "Cyan LightCyan\nEND_INKS",
                                              "LightCyan Cyan\nEND_INKS"),
                                     "1 1 1-64", "1 1 0-64"),
                            "1-128 0-40", "0-128 1-40"),
                   "3 1 0-255", "3 1 1-255")}) {
        const Outcome outcome = Diff(other);
        EXPECT_TRUE(EndedSilently(outcome)) << outcome.output << other;
        EXPECT_EQ(Path("a.txt") + " and " + Path("b.txt") + ": no difference\n", outcome.output);
        EXPECT_TRUE(Json::parse(Diff(other, "json").output)["same"]);
    }
}

TEST_F(PatternDiff, NamesWhatTheTextsDoDifferently)
{
    const struct
    {
        const char* from;
        const char* to;
        std::vector<std::string> words;
    } changes[] = {
        {"VERSION 2", "VERSION 3", {"random-source: first generation -> second generation"}},
        {"1234", "1235", {"seed: 1234 -> 1235"}},
        {"3 1 0-255\n", "", {"Cyan: steps: steps 0 to 3 -> steps 0 to 2"}},
        {"1:3 1-128 0-40",
         "1:1 1-128 0-40",
         {"Cyan step 2: alternative Cyan 40: 75.00 % -> 50.00 %",
          "Cyan step 2: alternative LightCyan 128: 25.00 % -> 50.00 %",
          "Cyan step 2: mean-ink Cyan: 30.00 -> 20.00",
          "Cyan step 2: mean-ink LightCyan: 32.00 -> 64.00"}},
        {"1 1 1-64",
         "1 1 0-64",
         {"Cyan step 1: alternative LightCyan 64: 100.00 % -> never",
          "Cyan step 1: alternative Cyan 64: never -> 100.00 %"}},
        {"1 1 1-64",
         "1 99999:1 1-64 1-63",
         {"Cyan step 1: alternative LightCyan 63: never -> 0.00 %"}},
    };
    for (const auto& [from, to, words] : changes) {
        const Outcome outcome = Diff(Replaced(smallPattern, from, to));
        EXPECT_EQ(1, outcome.exitCode) << to;
        for (const std::string& word : words)
            EXPECT_NE(std::string::npos, outcome.output.find("  " + word + "\n")) << word << "\n"
                                                                                  << outcome.output;
    }
    const Outcome order = Diff(
        Replaced(Replaced(smallPattern, "Cyan Black\nEND_IN_COLORS", "Black Cyan\nEND_IN_COLORS"),
                 "Cyan LightCyan Black\n", "Black Cyan LightCyan\n"));
    EXPECT_EQ(1, order.exitCode);
    EXPECT_NE(std::string::npos, order.output.find("in-colours: Cyan, Black -> Black, Cyan\n"));
    EXPECT_NE(std::string::npos,
              order.output.find("out-inks: Cyan, LightCyan, Black -> Black, Cyan, LightCyan\n"));
    EXPECT_NE(std::string::npos, order.output.find(": 2 differences\n")) << order.output;
}

TEST_F(PatternDiff, SpeaksJson)
{
    const Json json =
        Json::parse(Diff(Replaced(smallPattern, "1:3 1-128", "1:1 1-128"), "json").output);
    EXPECT_EQ(1, json["schema"]);
    EXPECT_FALSE(json["same"]);
    EXPECT_EQ(Path("a.txt"), json["left"]);
    std::set<std::string> kinds;
    for (const Json& difference : json["differences"]) {
        kinds.insert(difference["kind"]);
        EXPECT_EQ("Cyan", difference["inColour"]);
        EXPECT_EQ(2, difference["step"]);
    }
    EXPECT_EQ((std::set<std::string>{"alternative", "share", "mean-ink"}), kinds);
}

TEST_F(PatternDiff, NeedsTextsThatLoad)
{
    const Outcome outcome = Diff(Replaced(smallPattern, "3 1 0-255", "8 1 0-255"));
    EXPECT_TRUE(Refused(outcome, 4, {"b.txt", "no engine loads it"}));
    EXPECT_EQ("", outcome.output);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
