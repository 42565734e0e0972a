#include "tests/tools/pattern_texts.h"
#include "tests/tools/replaced_text.h"
#include "tests/tools/tool_fixture.h"
#include "tests/tools/well_formed.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <sstream>

namespace zvk::Pelkraft::TestSupport {
namespace {

using Json = nlohmann::json;

class PatternExplained : public ToolFixture
{
protected:
    Outcome Explain(const std::string& text, const std::vector<std::string>& options = {})
    {
        WriteBytes(Path("pattern.txt"), text);
        std::vector<std::string> arguments = {"pattern", Path("pattern.txt")};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return Run(arguments);
    }

    Json ExplainJson(const std::string& text)
    {
        return Json::parse(Explain(text, {"--json"}).output);
    }
};

TEST_F(PatternExplained, TellsWhatTheTextSays)
{
    const Outcome outcome = Explain(smallPattern);
    EXPECT_TRUE(EndedSilently(outcome));
    const char* inColour = "in-colour     Cyan: steps 0 to 3; feeds Cyan, LightCyan; "
                           "2 of 32 combinations\n";
    for (const char* line :
         {"version       2, first generation of random sources\n", "seed          1234\n", inColour,
          "  step 0      no ink\n", "  step 1      100.00 %  LightCyan 64\n",
          "  step 2       25.00 %  LightCyan 128\n", "               75.00 %  Cyan 40\n",
          "out-ink       LightCyan: fed by Cyan\n", "combinations  2 of 1024\n",
          "values        3 of the 16 that the sse engine can store for a combination\n",
          "field         65536 entries, drawn with a common denominator of 4\n",
          "0 errors, 0 warnings, 0 notes\n"})
        EXPECT_NE(std::string::npos, outcome.output.find(line)) << line << outcome.output;
    for (const char* engine : {"reference", "x86", "sse"})
        EXPECT_NE(std::string::npos, outcome.output.find(std::string(engine) + ": loads"));
}

TEST_F(PatternExplained, TellsOfTwoVersions)
{
    const std::string late = "# VERSION 3\n";
    EXPECT_NE(std::string::npos,
              Explain(late + smallPattern)
                  .output.find("version       2, but the first VERSION in the text, which chooses "
                               "the random source, is 3, second generation"));
    EXPECT_NE(std::string::npos,
              Explain(Replaced(smallPattern, "VERSION 2\n", ""))
                  .output.find("version       1, and no VERSION with a number that would choose "
                               "the random source, first generation"));
}

TEST_F(PatternExplained, SpeaksJson)
{
    const Json json = ExplainJson(smallPattern);
    EXPECT_EQ((Json{{"parser", 2}, {"check", 2}, {"generation", 1}}), json["version"]);
    EXPECT_EQ(1234, json["seed"]);
    ASSERT_EQ(2U, json["inColours"].size());
    const Json& cyan = json["inColours"][0];
    EXPECT_EQ("Cyan", cyan["name"]);
    EXPECT_EQ(3, cyan["topStep"]);
    EXPECT_EQ((Json{"Cyan", "LightCyan"}), cyan["feeds"]);
    EXPECT_EQ((Json{{"used", 2}, {"limit", 32}}), cyan["combinations"]);
    const Json& second = cyan["steps"][2]["alternatives"];
    ASSERT_EQ(2U, second.size());
    EXPECT_EQ(0.25, second[0]["probability"]);
    EXPECT_EQ((Json::array({{{"position", 1}, {"ink", "LightCyan"}, {"value", 128}}})),
              second[0]["values"]);
    EXPECT_EQ(0.75, second[1]["probability"]);
    EXPECT_EQ((Json{"Cyan"}), json["outInks"][1]["fedBy"]);
    EXPECT_EQ((Json{{"used", 2}, {"limit", 1024}}), json["limits"]["combinations"]);
    EXPECT_EQ((Json{{"used", 3}, {"limit", 16}, {"combination", 0}}), json["limits"]["places"]);
    EXPECT_EQ(4, json["limits"]["commonDenominator"]);
    EXPECT_EQ(Json::array(), json["findings"]);
    for (const Json& engine : json["engines"]) {
        EXPECT_TRUE(engine["loads"]);
        EXPECT_TRUE(engine["refusal"].is_null());
    }
}

TEST_F(PatternExplained, TellsTheSizeOfTheSecondGenerationsField)
{
    // Quarters: 100000 / 4 + 1 times 4.
    const Json json = ExplainJson(Replaced(smallPattern, "VERSION 2", "VERSION 3"));
    EXPECT_EQ(2, json["version"]["generation"]);
    EXPECT_EQ(100004, json["limits"]["fieldEntries"]);
}

TEST_F(PatternExplained, GivesTheWordsOfAnEngineThatRefuses)
{
    // 17 values that no ink shares: one place too many for the vector engine alone.
    std::string text = "DotWeavePattern VERSION 2 BEGIN_OUT_INKS A B C END_OUT_INKS\n"
                       "BEGIN_IN_COLORS A B C END_IN_COLORS\n";
    int value = 1;
    for (const char* name : {"A", "B", "C"}) {
        text += std::string("BEGIN_IN_COLOR ") + name + " BEGIN_INKS " + name +
                " END_INKS BEGIN_VALUES\n";
        for (int step = 1; step <= (*name == 'C' ? 3 : 7); ++step)
            text += std::to_string(step) + " 1 0-" + std::to_string(value++) + "\n";
        text += "END_VALUES END_IN_COLOR\n";
    }
    const Outcome outcome = Explain(text, {"--json"});
    EXPECT_EQ(1, outcome.exitCode);
    const Json json = Json::parse(outcome.output);
    EXPECT_EQ(17, json["limits"]["places"]["used"]);
    EXPECT_TRUE(json["engines"][1]["loads"]);
    EXPECT_FALSE(json["engines"][2]["loads"]);
    EXPECT_EQ("capacity exceeded in mComonTrans", json["engines"][2]["refusal"]);
    ASSERT_EQ(1U, json["findings"].size());
    EXPECT_EQ("places-surplus", json["findings"][0]["kind"]);
}

TEST_F(PatternExplained, KeepsJsonWholeWhateverTheBytes)
{
    const std::string text = Replaced(
        Replaced(smallPattern, "Cyan LightCyan Black", "Cyan LightCyan Black \"\xFF\x1B\\\""),
        "#comment", "#\"\\ \x01 \xC3");
    const Outcome outcome = Explain(text, {"--json"});
    EXPECT_EQ(1, outcome.exitCode);
    const Json json = Json::parse(outcome.output);
    EXPECT_EQ("\xEF\xBF\xBD\x1B\\", json["outInks"][3]["name"]);
    EXPECT_EQ("ink-unfed", json["findings"][0]["kind"]);
    // A terminal must not act on it.
    EXPECT_EQ(std::string::npos, Explain(text).output.find('\x1B'));
}

TEST_F(PatternExplained, ShippedExampleFitsEveryEngine)
{
    const Outcome outcome = Run({"pattern", PELKRAFT_EXAMPLES "/patterns/six_ink.txt", "--json"});
    EXPECT_TRUE(EndedSilently(outcome));
    const Json json = Json::parse(outcome.output);
    EXPECT_EQ(4U, json["inColours"].size());
    EXPECT_EQ(6U, json["outInks"].size());
    EXPECT_EQ(Json::array(), json["findings"]);
    EXPECT_EQ(128, json["limits"]["combinations"]["used"]);
    EXPECT_LE(json["limits"]["places"]["used"], 16);
    for (const Json& engine : json["engines"])
        EXPECT_TRUE(engine["loads"]) << engine;
}

struct PlottedShare
{
    double expected = -1;
    double measured = -1;
};

// The shares that the drawing's tooltips tell of one ink value.
PlottedShare ShareIn(const std::string& svg, const std::string& what)
{
    const std::string title = "<title>" + what + ", expected ";
    const std::size_t at = svg.find(title);
    PlottedShare share;
    char words[64] = {};
    if (at == std::string::npos)
        return share;
    std::istringstream rest(svg.substr(at + title.size()));
    rest >> share.expected >> words >> words >> share.measured;
    return share;
}

TEST_F(PatternExplained, PlotsExpectedBesideMeasuredShares)
{
    const struct
    {
        const char* what;
        double expected;
    } shares[] = {{"Cyan step 0: Cyan 0", 100},      {"Cyan step 1: LightCyan 64", 100},
                  {"Cyan step 2: Cyan 0", 25},       {"Cyan step 2: Cyan 40", 75},
                  {"Cyan step 2: LightCyan 0", 75},  {"Cyan step 2: LightCyan 128", 25},
                  {"Cyan step 3: LightCyan 0", 100}, {"Black step 1: Black 255", 100}};
    for (const char* version : {"VERSION 2", "VERSION 3"}) {
        const bool exact = version == std::string("VERSION 3");
        const Outcome outcome =
            Explain(Replaced(smallPattern, "VERSION 2", version), {"--plot", Path("plot.svg")});
        EXPECT_TRUE(EndedSilently(outcome));
        const std::string svg = Bytes(Path("plot.svg"));
        EXPECT_TRUE(IsWellFormed(svg));
        for (const auto& [what, expected] : shares) {
            const PlottedShare share = ShareIn(svg, what);
            EXPECT_EQ(expected, share.expected) << what;
            const double p = expected / 100;
            const double sigma = 100 * std::sqrt(p * (1 - p) / 65536);
            EXPECT_NEAR(expected, share.measured, exact ? 0 : 4 * sigma + 0.005) << what;
        }
    }
}

// The fills of the two bars of an ink value.
std::vector<int> RedOfBars(const std::string& svg, const std::string& what)
{
    std::vector<int> red;
    std::size_t at = svg.find("<title>" + what + ",");
    EXPECT_NE(std::string::npos, at) << what;
    const std::size_t end = svg.find("</g>", at);
    const std::string fill = "<rect ";
    for (at = svg.find(fill, at); at < end; at = svg.find(fill, at + 1))
        red.push_back(std::stoi(svg.substr(svg.find("fill=\"#", at) + 7, 2), nullptr, 16));
    return red;
}

// Drops of 1 and 2 are as plain to see as those of 64 and 128. Cyan holds no red.
TEST_F(PatternExplained, PlotsShadesThatCanBeToldApart)
{
    for (const auto& values :
         {std::vector<int>{1, 2, 3}, {1, 2, 255}, {64, 128, 255}, {253, 254, 255}, {5, 5, 5}}) {
        const std::string odd = Replaced(
            Replaced(Replaced(smallPattern, "1 1 1-64", "1 1 0-" + std::to_string(values[0])),
                     "2 1:3 1-128 0-40", "2 1 0-" + std::to_string(values[1])),
            "3 1 0-255", "3 1 0-" + std::to_string(values[2]));
        Explain(Replaced(odd, "1 1 0-255", "1 1 0-" + std::to_string(values[2])),
                {"--plot", Path("plot.svg")});
        const std::string svg = Bytes(Path("plot.svg"));
        EXPECT_TRUE(IsWellFormed(svg));
        const int full = RedOfBars(svg, "Cyan step 3: Cyan " + std::to_string(values[2]))[0];
        int last = RedOfBars(svg, "Cyan step 0: Cyan 0")[0];
        EXPECT_EQ(255, last);
        for (std::size_t step = 1; step <= 3; ++step) {
            const int value = values[step - 1];
            const std::vector<int> bars = RedOfBars(svg, "Cyan step " + std::to_string(step) +
                                                             ": Cyan " + std::to_string(value));
            ASSERT_EQ(2U, bars.size());
            EXPECT_EQ(bars[0], bars[1]);
            const bool isSame = step > 1 && value == values[step - 2];
            EXPECT_LE(bars[0], isSame ? last : last - (255 - full) / 26) << value;
            last = bars[0];
        }
        EXPECT_LT(full, 100);
        EXPECT_NE(std::string::npos, svg.find(">full colour is the highest value, " +
                                              std::to_string(values[2]) + "; "));
    }
}

TEST_F(PatternExplained, NamesTheCurvesOfItsPlot)
{
    EXPECT_TRUE(EndedSilently(Explain(smallPattern, {"--plot", Path("plot.svg")})));
    const std::string svg = Bytes(Path("plot.svg"));
    const std::size_t title = svg.find("Cyan: mean ink by step");
    const std::string curves = svg.substr(title, svg.find("translate", title) - title);
    // A line of its own colour stands ahead of each name, and a curve of it in the area.
    for (const char* name : {"all inks", "Cyan", "LightCyan"}) {
        const std::size_t at = curves.find(std::string(">").append(name).append("</text>"));
        ASSERT_NE(std::string::npos, at) << name;
        const std::size_t line = curves.rfind("stroke=\"#", at);
        const std::string colour = curves.substr(line, 16);
        std::size_t strokes = 0;
        for (std::size_t next = curves.find(colour); next != std::string::npos;
             next = curves.find(colour, next + 1))
            ++strokes;
        EXPECT_LE(2U, strokes) << name << colour;
    }
    EXPECT_EQ(std::string::npos, curves.find(">Black</text>"));
}

TEST_F(PatternExplained, PlotsNamesThatXmlCantHold)
{
    const std::string text =
        Replaced(Replaced(smallPattern, "Cyan LightCyan Black", "Cyan \"<&\xFF\x01\\\"> Black"),
                 "Cyan LightCyan\n", "Cyan \"<&\xFF\x01\\\">\n");
    EXPECT_TRUE(EndedSilently(Explain(text, {"--plot", Path("plot.svg")})));
    const std::string svg = Bytes(Path("plot.svg"));
    EXPECT_TRUE(IsWellFormed(svg));
    EXPECT_NE(std::string::npos, svg.find("&lt;&amp;??\\&gt;"));
}

TEST_F(PatternExplained, RefusesToPlotWhatNoDrawingEngineLoads)
{
    const std::string first = Replaced(smallPattern, "VERSION 2", "VERSION 1");
    const Outcome outcome = Explain(first, {"--plot", Path("plot.svg")});
    EXPECT_TRUE(Refused(outcome, 4, {"pattern.txt", "\"unsupported pattern version\"", "x86"}));
    EXPECT_EQ(std::vector<std::string>{"pattern.txt"}, Files());
    // The reference engine alone takes it.
    EXPECT_EQ(1, Explain(first).exitCode);
}

TEST_F(PatternExplained, NamesFilesThatAreNoText)
{
    EXPECT_TRUE(Refused(Run({"pattern", Path("missing.txt")}), 6,
                        {"missing.txt: cannot be read: No such file"}));
    EXPECT_TRUE(Refused(Run({"pattern", folder}), 6, {"not a regular file"}));
    WriteBytes(Path("large.txt"), smallPattern);
    std::filesystem::resize_file(Path("large.txt"), (1U << 20) + 1);
    EXPECT_TRUE(Refused(Run({"pattern", Path("large.txt")}), 3, {"large.txt", " 1 MiB"}));
    EXPECT_TRUE(Refused(Run({"pattern"}), 2, {"FILE"}));
    WriteBytes(Path("pattern.txt"), smallPattern);
    EXPECT_EQ(6, Run({"pattern", Path("pattern.txt"), "--plot", "/proc/plot.svg"}).exitCode);
}

TEST_F(PatternExplained, MeetsAnEmptyText)
{
    const Outcome outcome = Explain("");
    EXPECT_TRUE(Refused(outcome, 4,
                        {"pattern.txt", "no engine loads it",
                         "\"Internal Message: no version in dotweave pattern\""}));
    EXPECT_NE(std::string::npos, outcome.output.find("pattern.txt:1:1: error: the text holds no"));
}

TEST_F(PatternExplained, StaysShortOnTextsThatAreNoPattern)
{
    std::string names;
    for (int i = 0; i < 20000; ++i)
        names.append(" n").append(std::to_string(i));
    const std::string text =
        "DotWeavePattern VERSION 2 BEGIN_OUT_INKS" + names + " END_OUT_INKS BEGIN_IN_COLORS" +
        names + " END_IN_COLORS BEGIN_IN_COLOR n1 BEGIN_INKS x" + names +
        " END_INKS BEGIN_VALUES 1 1 0-300" + names + " END_VALUES END_IN_COLOR";
    const Outcome outcome = Explain(text, {"--json"});
    EXPECT_EQ(4, outcome.exitCode);
    const Json json = Json::parse(outcome.output);
    EXPECT_EQ(1000U, json["findings"].size());
    for (const Json& finding : json["findings"])
        ASSERT_LE(finding["text"].get<std::string>().size(), 160U);
    EXPECT_EQ(20000U, json["outInks"].size());
}

TEST_F(PatternExplained, MeetsEveryTruncationWithoutACrash)
{
    const std::string whole = smallPattern;
    for (std::size_t size = 0; size < whole.size(); size += 7) {
        const Outcome outcome = Explain(whole.substr(0, size), {"--json"});
        EXPECT_EQ(0, outcome.signalNumber);
        const Json json = Json::parse(outcome.output);
        bool loads = false;
        for (const Json& engine : json["engines"])
            loads = loads || engine["loads"].get<bool>();
        EXPECT_EQ(loads ? 1 : 4, outcome.exitCode) << size;
        EXPECT_FALSE(json["findings"].empty()) << size;
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
