#include "tests/tools/pattern_texts.h"
#include "tests/tools/replaced_text.h"
#include "tests/tools/tool_fixture.h"
#include "tools/pelkraft/finding_rules.h"
#include "tools/pelkraft/sarif.h"

#include <nlohmann/json.hpp>

#include <fstream>
#include <regex>
#include <set>

namespace zvk::Pelkraft::TestSupport {
namespace {

using Json = nlohmann::json;
using namespace Client;

class PatternSarif : public ToolFixture
{
protected:
    Json LogOf(const std::string& name, const std::string& text)
    {
        WriteBytes(Path(name), text);
        return Json::parse(Run({"pattern", "lint", "--format", "sarif", Path(name)}).output);
    }

    // Two faults: a name, and a value in two lines that are equal but for their blanks.
    static std::string TwoFaults()
    {
        return Replaced(
            Replaced(smallPattern, "LightCyan\nEND_INKS", "\"\xC3\x84\" LihgtCyan\nEND_INKS"),
            "1 1 1-64\n", "1 1 1-640\n  1 1 1-640\n");
    }
};

TEST_F(PatternSarif, HoldsWhatReadersOfTheFormLookFor)
{
    const Json log = LogOf("a b%.txt", TwoFaults());
    EXPECT_EQ("2.1.0", log["version"]);
    EXPECT_NE(std::string::npos, log["$schema"].get<std::string>().find("sarif-schema-2.1.0"));
    ASSERT_EQ(1U, log["runs"].size());
    const Json& run = log["runs"][0];
    EXPECT_EQ("unicodeCodePoints", run["columnKind"]);
    EXPECT_EQ("pelkraft", run["tool"]["driver"]["name"]);
    EXPECT_EQ(1, run["invocations"][0]["exitCode"]);
    EXPECT_TRUE(run["invocations"][0]["executionSuccessful"]);
    const Json& rules = run["tool"]["driver"]["rules"];
    for (const Json& rule : rules) {
        EXPECT_FALSE(rule["help"]["text"].get<std::string>().empty());
        EXPECT_FALSE(rule["shortDescription"]["text"].get<std::string>().empty());
    }
    for (const Json& result : run["results"]) {
        EXPECT_EQ(result["ruleId"], rules[result["ruleIndex"].get<std::size_t>()]["id"]);
        EXPECT_EQ(1U, result["partialFingerprints"].size());
        const Json& place = result["locations"][0]["physicalLocation"];
        const std::string uri = place["artifactLocation"]["uri"];
        EXPECT_EQ(0U, uri.find("file:///"));
        EXPECT_NE(std::string::npos, uri.find("/a%20b%25.txt"));
    }
}

TEST_F(PatternSarif, PlacesFindingsInCodePointsAndBytes)
{
    const std::string text = TwoFaults();
    const Json results = LogOf("text.txt", text)["runs"][0]["results"];
    const auto found = std::find_if(results.begin(), results.end(), [](const Json& result) {
        return result["message"]["text"].get<std::string>().find("\"LihgtCyan\"") == 0;
    });
    ASSERT_NE(results.end(), found);
    EXPECT_EQ("ink-unknown", (*found)["ruleId"]);
    EXPECT_EQ("warning", (*found)["level"]);
    const Json& region = (*found)["locations"][0]["physicalLocation"]["region"];
    // The letter before it takes two bytes.
    EXPECT_EQ(14, region["startLine"]);
    EXPECT_EQ(10, region["startColumn"]);
    EXPECT_EQ(14, region["endLine"]);
    EXPECT_EQ(19, region["endColumn"]);
    EXPECT_EQ(text.find("LihgtCyan"), region["byteOffset"]);
    EXPECT_EQ(9, region["byteLength"]);
    EXPECT_EQ("Cyan \"\xC3\x84\" LihgtCyan", region["snippet"]["text"]);
    const Json& change = (*found)["fixes"][0]["artifactChanges"][0]["replacements"][0];
    EXPECT_EQ("LightCyan", change["insertedContent"]["text"]);
    EXPECT_EQ(text.find("LihgtCyan"), change["deletedRegion"]["byteOffset"]);
}

TEST_F(PatternSarif, KeepsFingerprintsWhereOtherLinesChange)
{
    const auto prints = [&](const std::string& text) {
        std::set<std::string> all;
        const Json log = LogOf("text.txt", text);
        for (const Json& result : log["runs"][0]["results"])
            all.insert(result["partialFingerprints"].begin().value());
        return all;
    };
    const std::set<std::string> before = prints(TwoFaults());
    // Equal lines differ in their number.
    EXPECT_EQ(5U, before.size());
    EXPECT_EQ(before, prints(Replaced(TwoFaults(), "#comment", "\n\n#comment")));
    EXPECT_EQ(before, prints(Replaced(TwoFaults(), "  1 1 1-640", "\t1 1 1-640")));
    EXPECT_NE(before, prints(Replaced(TwoFaults(), "1-640", "1-650")));
}

TEST_F(PatternSarif, HasARuleForEveryKind)
{
    const auto& rules = FindingRules();
    for (std::size_t i = 0; i < rules.size(); ++i) {
        EXPECT_EQ(i, RuleOfKind(rules[i].kind));
        const std::string before = i == 0 ? "" : rules[i - 1].kind;
        EXPECT_LT(before, rules[i].kind);
    }
    // All that the sources call by a kind.
    std::set<std::string> kinds;
    for (const char* source :
         {"draw_lints", "glued_keywords", "name_separators", "pattern_intention", "pattern_lints",
          "pattern_report", "ratio_blanks", "value_line_lints"}) {
        const std::string text =
            Bytes(PELKRAFT_SOURCES "/tools/pelkraft/" + std::string(source) + ".cpp");
        ASSERT_FALSE(text.empty());
        const std::regex call("(?:Error|Warn|Severity::[A-Z][a-z]+)[,(]\\s*(?:isInk \\? )?"
                              "\"([a-z-]+)\"(?: : \"([a-z-]+)\")?");
        for (std::sregex_iterator at(text.begin(), text.end(), call), end; at != end; ++at) {
            kinds.insert((*at)[1]);
            if ((*at)[2].matched)
                kinds.insert((*at)[2]);
        }
    }
    std::set<std::string> known;
    for (const FindingRule& rule : rules)
        known.insert(rule.kind);
    EXPECT_EQ(kinds, known);
}

TEST(Sarif, WritesPathsAsUris)
{
    const auto uriOf = [](const std::string& path) {
        SarifResult result;
        result.path = path;
        const Json log = Json::parse(SarifLog({{"rule", "note", "", ""}}, {result}, 0));
        return log["runs"][0]["results"][0]["locations"][0]["physicalLocation"]["artifactLocation"]
                  ["uri"]
                      .get<std::string>();
    };
    EXPECT_EQ("a/b-c_d.txt", uriOf("a/b-c_d.txt"));
    EXPECT_EQ("a%3Ab%20%C3%84.txt", uriOf("a:b \xC3\x84.txt"));
    EXPECT_EQ("file:///home/x.txt", uriOf("/home/x.txt"));
    EXPECT_EQ("file:///C:/a%20b/x.txt", uriOf("C:\\a b\\x.txt"));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
