#include "tests/tools/pattern_texts.h"
#include "tests/tools/replaced_text.h"
#include "tests/tools/tool_fixture.h"
#include "tools/pelkraft/pattern_fix.h"
#include "tools/pelkraft/pattern_report.h"

#include <utility>

namespace zvk::Pelkraft::TestSupport {
namespace {

using namespace Client;

using Changes = std::vector<std::pair<std::string, std::string>>;

std::string With(const Changes& changes)
{
    std::string text = smallPattern;
    for (const auto& [from, to] : changes)
        text = Replaced(text, from, to);
    return text;
}

FixedText Fixed(const std::string& text)
{
    return FixPattern(PatternText("text", text));
}

// Each text has as many faults as its list is long.
const std::vector<Changes> separatedNames = {
    {{"Cyan LightCyan Black\n", "Cyan, LightCyan Black\n"}},
    {{"Cyan LightCyan Black\n", "Cyan LightCyan Black;\n"}},
    {{"Cyan LightCyan Black\n", "Cyan ,LightCyan Black\n"}},
    {{"Cyan LightCyan\nEND", "Cyan, LightCyan\nEND"}},
    {{"Cyan Black\n", "Cyan, Black\n"}},
    {{"BEGIN_IN_COLOR\nBlack\n", "BEGIN_IN_COLOR\nBlack,\n"}},
    // In both lists, where the two agree, and the library loads it so.
    {{"Cyan LightCyan Black\n", "Cyan, LightCyan Black\n"},
     {"Cyan LightCyan\nEND", "Cyan, LightCyan\nEND"}},
    {{"Cyan Black\n", "Cyan; Black\n"}, {"BEGIN_IN_COLOR\nCyan\n", "BEGIN_IN_COLOR\nCyan;\n"}},
    // Letters of another case are the same name.
    {{"Cyan LightCyan Black\n", "Cyan LightCyan,; Black\n"},
     {"Cyan LightCyan\nEND", "Cyan LightCyan;\nEND"}},
};

TEST(NameSeparators, AreFoundAndNothingElseIs)
{
    for (const Changes& changes : separatedNames) {
        SCOPED_TRACE(changes[0].second);
        const PatternText text("text", With(changes));
        const PatternReport report(text);
        std::size_t found = 0;
        for (const Finding& finding : report.findings) {
            // The library knows no in-colour of this name, and says so in its own words.
            if (finding.kind == "refused")
                continue;
            ++found;
            EXPECT_EQ("name-separator", finding.kind) << finding.message << finding.hint;
            EXPECT_EQ(Severity::Warning, finding.severity);
            EXPECT_NE(std::string::npos, finding.message.find("names are parted by blanks"));
        }
        EXPECT_EQ(changes.size(), found);
    }
}

TEST(NameSeparators, AreDroppedInAllPlacesByFix)
{
    for (const Changes& changes : separatedNames) {
        const FixedText fixed = Fixed(With(changes));
        EXPECT_EQ(smallPattern, fixed.bytes) << changes[0].second;
        EXPECT_EQ(changes.size(), fixed.changes);
    }
}

TEST(NameSeparators, AreDroppedWhereTheyStandAlone)
{
    EXPECT_EQ(With({{"Cyan LightCyan Black\n", "Cyan  LightCyan Black\n"}}),
              Fixed(With({{"Cyan LightCyan Black\n", "Cyan , LightCyan Black\n"}})).bytes);
    const std::string text = With({{"Cyan LightCyan Black\n", "Cyan , LightCyan Black\n"},
                                   {"Cyan LightCyan\nEND", "Cyan , LightCyan\nEND"}});
    EXPECT_EQ(With({{"Cyan LightCyan Black\n", "Cyan  LightCyan Black\n"},
                    {"Cyan LightCyan\nEND", "Cyan  LightCyan\nEND"}}),
              Fixed(text).bytes);
    const PatternText lone("text", text);
    EXPECT_EQ("\",\" is taken as a name by itself; names are parted by blanks",
              PatternReport(lone).findings.front().message);
}

TEST(NameSeparators, LeaveNamesInTheirQuotes)
{
    const std::string quoted = With({{"Cyan LightCyan Black", "Cyan \"Light Cyan\" Black"},
                                     {"Cyan LightCyan\n", "Cyan \"Light Cyan\"\n"}});
    for (const char* odd : {"\"Light Cyan\",", "\"Light Cyan,\"", ";\"Light Cyan\""})
        EXPECT_EQ(quoted,
                  Fixed(With({{"Cyan LightCyan Black", "Cyan " + std::string(odd) + " Black"},
                              {"Cyan LightCyan\n", "Cyan \"Light Cyan\"\n"}}))
                      .bytes)
            << odd;
    // Nothing closes this quote, and what stands in it is no name.
    const PatternText open("text", With({{"BEGIN_INKS\nBlack", "BEGIN_INKS\n\"Black"}}) + ",");
    for (const Finding& finding : PatternReport(open).findings)
        EXPECT_NE("name-separator", finding.kind);
}

// A list that would hold the name twice may mean two inks.
TEST(NameSeparators, StayWhereNamesWouldBecomeTheSame)
{
    const std::string text = With({{"Cyan LightCyan Black\n", "Cyan LightCyan Black black,\n"}});
    EXPECT_EQ(text, Fixed(text).bytes);
    const PatternText odd("text", text);
    const PatternReport report(odd);
    ASSERT_FALSE(report.findings.empty());
    EXPECT_EQ("name-separator", report.findings.front().kind);
    EXPECT_EQ("leave the comma out and list \"black\" once", report.findings.front().hint);
    EXPECT_FALSE(report.findings.front().replacement);
}

// Comments without their mark, keywords and value lines hold commas too.
TEST(NameSeparators, AreLookedForInNamesAlone)
{
    for (const Changes& changes :
         {Changes{{"VERSION 2", "see above, please\nVERSION 2"}},
          Changes{{"END_INKS", "END_INKS,"}}, Changes{{"BEGIN_OUT_INKS", "BEGIN_OUT_INKS;"}},
          Changes{{"1-128 0-40", "1-128, 0-40"}},
          Changes{{"LightCyan Black\n", "\"Light, Cyan\" Black\n"},
                  {"LightCyan\n", "\"Light, Cyan\"\n"}}}) {
        const PatternText text("text", With(changes));
        for (const Finding& finding : PatternReport(text).findings)
            EXPECT_NE("name-separator", finding.kind) << changes[0].second;
    }
    EXPECT_EQ(smallPattern, Fixed(With({{"BEGIN_OUT_INKS", "BEGIN_OUT_INKS,"}})).bytes);
}

TEST(NameSeparators, StandInNoHint)
{
    for (const Changes& changes :
         {Changes{{"Cyan LightCyan Black\n", "Cyan, LightCyan, Black,\n"}},
          Changes{{"Cyan LightCyan Black\n", "Cyan,LightCyan Black\n"},
                  {"Cyan LightCyan\nEND", "CyanLightCyan\nEND"}},
          Changes{{"Cyan LightCyan Black\n", "Cyan LightCyan, LightCyan Black\n"},
                  {"Cyan LightCyan\nEND", "Cyan LightCyan;\nEND"}}}) {
        const PatternText text("text", With(changes));
        for (const Finding& finding : PatternReport(text).findings) {
            const std::string proposed = finding.hint.substr(0, finding.hint.find('?'));
            const bool isProposal = proposed.starts_with("did you mean ");
            EXPECT_FALSE(isProposal && proposed.find_first_of(",;") != std::string::npos)
                << finding.hint;
            EXPECT_EQ(std::string::npos, finding.replacement.value_or("").find_first_of(",;"));
        }
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
