#include "tests/tools/pattern_texts.h"
#include "tests/tools/replaced_text.h"
#include "tests/tools/tool_fixture.h"
#include "tests/tools/well_formed.h"

#include <nlohmann/json.hpp>

#include <filesystem>

namespace zvk::Pelkraft::TestSupport {
namespace {

using Json = nlohmann::json;

class PatternVerbs : public ToolFixture
{
protected:
    PatternVerbs()
    {
        WriteBytes(Path("good.txt"), smallPattern);
        WriteBytes(Path("odd.txt"),
                   Replaced(smallPattern, "LightCyan\nEND_INKS", "LihgtCyan\nEND_INKS"));
        WriteBytes(Path("bad.txt"), Replaced(smallPattern, "3 1 0-255", "8 1 0-255"));
    }

    [[nodiscard]] Outcome Verb(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), "pattern");
        return Run(arguments);
    }
};

TEST_F(PatternVerbs, EndWithTheCodeOfTheWorstText)
{
    for (const char* verb : {"explain", "lint"}) {
        for (const char* format : {"text", "json", "sarif"}) {
            SCOPED_TRACE(format);
            const auto code = [&](const std::vector<std::string>& names) {
                std::vector<std::string> arguments = {verb, "--format", format};
                for (const std::string& name : names)
                    arguments.push_back(Path(name));
                return Verb(arguments).exitCode;
            };
            EXPECT_EQ(0, code({"good.txt"}));
            EXPECT_EQ(1, code({"good.txt", "odd.txt", "good.txt"}));
            EXPECT_EQ(4, code({"odd.txt", "bad.txt", "good.txt"}));
            EXPECT_EQ(6, code({"good.txt", "missing.txt"}));
        }
    }
}

TEST_F(PatternVerbs, ExplainEachTextAsWithoutAVerb)
{
    const std::string good = Verb({Path("good.txt")}).output;
    const std::string odd = Verb({Path("odd.txt")}).output;
    EXPECT_EQ(good, Verb({"explain", Path("good.txt")}).output);
    EXPECT_EQ(good + "\n" + odd, Verb({"explain", Path("good.txt"), Path("odd.txt")}).output);
}

TEST_F(PatternVerbs, LintWithOneLineOfCounts)
{
    const Outcome outcome = Verb({"lint", Path("odd.txt"), Path("bad.txt"), Path("good.txt")});
    EXPECT_EQ(0U, outcome.output.find(Path("odd.txt") + ":14:6: warning: \"LihgtCyan\" is not"));
    EXPECT_NE(std::string::npos, outcome.output.find(Path("bad.txt") + ":19:1: error: step 8"));
    EXPECT_NE(std::string::npos, outcome.output.find("\n\n1 error, 1 warning, 0 notes\n"));
    EXPECT_EQ("pelkraft: " + Path("bad.txt") +
                  ": no engine loads it: \"step out of range in pattern\"\n",
              outcome.errors);
    EXPECT_EQ("0 errors, 0 warnings, 0 notes\n", Verb({"lint", Path("good.txt")}).output);
}

TEST_F(PatternVerbs, SpeakJsonOfSeveralTexts)
{
    const Json json =
        Json::parse(Verb({"lint", "--format", "json", Path("odd.txt"), Path("bad.txt")}).output);
    EXPECT_EQ(1, json["schema"]);
    EXPECT_EQ((Json{{"errors", 1}, {"warnings", 1}, {"notes", 0}}), json["counts"]);
    ASSERT_EQ(2U, json["texts"].size());
    EXPECT_EQ(Path("odd.txt"), json["texts"][0]["file"]);
    EXPECT_EQ((Json{{"errors", 0}, {"warnings", 1}, {"notes", 0}}), json["texts"][0]["counts"]);
    const Json& finding = json["texts"][0]["findings"][0];
    EXPECT_EQ("ink-unknown", finding["kind"]);
    EXPECT_EQ("LightCyan", finding["fix"]);
    EXPECT_TRUE(json["texts"][1]["findings"][0]["fix"].is_null());
    EXPECT_FALSE(json["texts"][1]["engines"][0]["loads"]);
    // --json is another word for it.
    EXPECT_EQ(json, Json::parse(Verb({"lint", "--json", Path("odd.txt"), Path("bad.txt")}).output));

    const Json explained =
        Json::parse(Verb({"explain", "--json", Path("odd.txt"), Path("bad.txt")}).output);
    EXPECT_EQ(json["counts"], explained["counts"]);
    EXPECT_EQ(Json::parse(Verb({Path("odd.txt"), "--json"}).output), explained["texts"][0]);
}

TEST_F(PatternVerbs, GiveSharesAndMeansInJson)
{
    const Json json = Json::parse(Verb({Path("good.txt"), "--json"}).output);
    EXPECT_EQ(1, json["schema"]);
    EXPECT_EQ((Json{{"errors", 0}, {"warnings", 0}, {"notes", 0}}), json["counts"]);
    // Step 2 of Cyan: a quarter of 128 LightCyan, else 40 of Cyan.
    const Json& step = json["inColours"][0]["steps"][2];
    EXPECT_DOUBLE_EQ(0.25 * 128 + 0.75 * 40, step["meanInk"]["expected"]);
    EXPECT_NEAR(62, step["meanInk"]["measured"].get<double>(), 0.5);
    ASSERT_EQ(2U, step["shares"].size());
    EXPECT_EQ("Cyan", step["shares"][0]["ink"]);
    EXPECT_DOUBLE_EQ(30, step["shares"][0]["mean"]["expected"]);
    const Json& light = step["shares"][1];
    ASSERT_EQ(2U, light["values"].size());
    EXPECT_EQ(128, light["values"][1]["value"]);
    EXPECT_EQ(0.25, light["values"][1]["expected"]);
    EXPECT_NEAR(0.25, light["values"][1]["measured"].get<double>(), 0.01);
    EXPECT_NE(0.25, light["values"][1]["measured"].get<double>());

    // Nothing can be measured where nothing draws.
    const Json bad = Json::parse(Verb({Path("bad.txt"), "--json"}).output);
    const Json& first = bad["inColours"][0]["steps"][1];
    EXPECT_EQ(64, first["meanInk"]["expected"]);
    EXPECT_TRUE(first["meanInk"]["measured"].is_null());
}

TEST_F(PatternVerbs, PlotTextsOnOnePage)
{
    const Outcome one = Verb({"plot", Path("good.txt")});
    EXPECT_TRUE(EndedSilently(one));
    EXPECT_TRUE(IsWellFormed(one.output));
    EXPECT_TRUE(EndedSilently(Verb({"plot", Path("good.txt"), "--output", Path("one.svg")})));
    EXPECT_TRUE(one.output == Bytes(Path("one.svg")));
    EXPECT_TRUE(EndedSilently(Verb({Path("good.txt"), "--plot", Path("two.svg")})));
    EXPECT_TRUE(one.output == Bytes(Path("two.svg")));

    // A quarter of 128 in 255, of which 0.4 counts in all inks, three quarters of 40, and the
    // spectrum of what draws.
    for (const char* told : {"<title>Cyan step 2: mean of LightCyan, expected 12.55 %, measured ",
                             "<title>Cyan step 2: mean of Cyan, expected 11.76 %, measured ",
                             "<title>Cyan step 2: mean of all inks, expected 16.78 %, measured ",
                             "; in all inks a light one counts 0.4<",
                             ">Cyan step 2: power of the drops of LightCyan by waves per pixel;"})
        EXPECT_NE(std::string::npos, one.output.find(told)) << told;
    EXPECT_EQ(std::string::npos, one.output.find("power of the drops of Black"));

    const Outcome both = Verb({"plot", Path("good.txt"), Path("odd.txt")});
    EXPECT_EQ(1, both.exitCode);
    EXPECT_TRUE(IsWellFormed(both.output));
    for (const char* name : {"good.txt", "odd.txt"})
        EXPECT_NE(std::string::npos, both.output.find("Ink values of " + Path(name)));
    EXPECT_EQ(4, Verb({"plot", Path("bad.txt"), "--output", Path("bad.svg")}).exitCode);
    EXPECT_FALSE(std::filesystem::exists(Path("bad.svg")));
    EXPECT_TRUE(Refused(Verb({"plot", Path("good.txt"), "--output", Path("one.png")}), 2,
                        {"one.png: would be an SVG file under an ending that says PNG"}));
    EXPECT_EQ(
        6, Verb({"plot", Path("good.txt"), "--output", Path("one.svg"), "--no-clobber"}).exitCode);
}

TEST_F(PatternVerbs, KeepTheFormWithoutAVerb)
{
    EXPECT_TRUE(Refused(Verb({}), 2, {"FILE"}));
    EXPECT_TRUE(Refused(Verb({"lint"}), 2, {"TEXT"}));
    EXPECT_TRUE(Refused(Verb({"diff", Path("good.txt")}), 2, {"B is missing"}));
    EXPECT_EQ(2, Verb({"diff", Path("good.txt"), Path("odd.txt"), Path("bad.txt")}).exitCode);
    EXPECT_TRUE(Refused(Verb({"lnit", Path("odd.txt")}), 2, {"\"lnit\"", "Did you mean lint?"}));
    EXPECT_EQ(2, Verb({"lint", "--json", "--format", "text", Path("good.txt")}).exitCode);
    EXPECT_EQ(2, Verb({"diff", "--format", "sarif", Path("good.txt"), Path("odd.txt")}).exitCode);
    // With its folder a file may be named as a verb is.
    std::filesystem::copy_file(Path("odd.txt"), Path("lint"));
    EXPECT_EQ(1, Verb({Path("lint")}).exitCode);
    EXPECT_EQ(2, Verb({Path("good.txt"), "lint", Path("odd.txt")}).exitCode);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
