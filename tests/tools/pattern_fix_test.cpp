#include "tests/tools/pattern_texts.h"
#include "tests/tools/replaced_text.h"
#include "tests/tools/tool_fixture.h"
#include "tools/pelkraft/pattern_fix.h"
#include "tools/pelkraft/pattern_report.h"
#include "tools/pelkraft/unified_diff.h"

#include <filesystem>
#include <set>
#include <utility>

namespace zvk::Pelkraft::TestSupport {
namespace {

using namespace Client;

std::string With(const std::vector<std::pair<std::string, std::string>>& changes)
{
    std::string text = smallPattern;
    for (const auto& [from, to] : changes)
        text = Replaced(text, from, to);
    return text;
}

// In place of the whole word: BEGIN_IN_COLOR begins BEGIN_IN_COLORS.
std::string WithWord(const std::string& word, const std::string& other)
{
    std::string text = smallPattern;
    std::size_t at = text.find(word);
    while (std::string(" \n").find(text[at + word.size()]) == std::string::npos)
        at = text.find(word, at + 1);
    return text.replace(at, word.size(), other);
}

FixedText Fixed(const std::string& text)
{
    return FixPattern(PatternText("text", text));
}

TEST(PatternFix, PutsBackWhatWasCertainlyMeant)
{
    const std::vector<std::vector<std::pair<std::string, std::string>>> faults = {
        {{"LightCyan\nEND_INKS", "LihgtCyan\nEND_INKS"}},
        {{"END_OUT_INKS", "End_Out_Inks"}},
        {{"DotWeavePattern", "dotweavepattern"}},
        {{"DotWeavePattern", "\xEF\xBB\xBF"
                             "DotWeavePattern"}},
        {{"BEGIN_IN_COLOR\nBlack", "BEGIN_IN_COLOR\nBlcak"}},
        {{"BEGIN_IN_COLOR\nBlack", "BEGIN_IN_COLOR\nBlakc"},
         {"BEGIN_INKS\nBlack", "BEGIN_INKS\nBalck"},
         {"VERSION 2", "version 2"},
         {"LightCyan\nEND_INKS", "LightCyam\nEND_INKS"}},
    };
    for (const auto& fault : faults) {
        const FixedText fixed = Fixed(With(fault));
        EXPECT_EQ(smallPattern, fixed.bytes) << fault[0].second;
        EXPECT_EQ(fault.size(), fixed.changes);
        EXPECT_FALSE(fixed.isGivenUp);
    }
}

// Each keyword of the small pattern, with two letters swapped and with one left out.
TEST(PatternFix, PutsBackEveryMisspeltKeyword)
{
    for (const std::string keyword :
         {"DotWeavePattern", "VERSION", "RANDOM_SEED", "BEGIN_OUT_INKS", "END_OUT_INKS",
          "BEGIN_IN_COLORS", "END_IN_COLORS", "BEGIN_IN_COLOR", "END_IN_COLOR", "BEGIN_INKS",
          "END_INKS", "BEGIN_VALUES", "END_VALUES"}) {
        std::string swapped = keyword;
        std::swap(swapped[4], swapped[5]);
        std::string shortened = keyword;
        shortened.erase(2, 1);
        for (const std::string& slip : {swapped, shortened}) {
            SCOPED_TRACE(slip);
            const std::string odd = WithWord(keyword, slip);
            const PatternText text("text", odd);
            const PatternReport report(text);
            ASSERT_EQ(1U, report.findings.size());
            EXPECT_EQ("keyword-misspelt", report.findings.front().kind);
            EXPECT_EQ(odd.find(slip), report.findings.front().place.offset);
            EXPECT_EQ(slip.size(), report.findings.front().place.length);
            EXPECT_EQ(smallPattern, Fixed(odd).bytes);
        }
    }
}

// Every gap beside a keyword of the small pattern, closed.
TEST(PatternFix, PutsABlankBesideEveryGluedKeyword)
{
    const std::set<std::string> keywords = {
        "DotWeavePattern", "VERSION",       "RANDOM_SEED",    "BEGIN_OUT_INKS", "END_OUT_INKS",
        "BEGIN_IN_COLORS", "END_IN_COLORS", "BEGIN_IN_COLOR", "END_IN_COLOR",   "BEGIN_INKS",
        "END_INKS",        "BEGIN_VALUES",  "END_VALUES"};
    const std::string whole = smallPattern;
    int closed = 0;
    for (std::size_t gap = whole.find_first_of(" \n"); gap + 1 < whole.size();
         gap = whole.find_first_of(" \n", gap + 1)) {
        const std::size_t start = whole.find_last_of(" \n", gap - 1) + 1;
        const std::string before = whole.substr(start, gap - start);
        const std::string after =
            whole.substr(gap + 1, whole.find_first_of(" \n", gap + 1) - gap - 1);
        // The comment's words are none, and without a blank it would be none itself.
        const bool isComment = before == "line" || after.front() == '#';
        if (isComment || keywords.count(before) + keywords.count(after) == 0)
            continue;
        ++closed;
        std::string glued = whole;
        glued.erase(gap, 1);
        SCOPED_TRACE(before + after);
        const PatternText text("text", glued);
        const PatternReport report(text);
        ASSERT_EQ(1U, report.findings.size());
        EXPECT_EQ("keyword-glued", report.findings.front().kind);
        EXPECT_EQ(start, report.findings.front().place.offset);
        EXPECT_EQ(before.size() + after.size(), report.findings.front().place.length);
        std::string parted = whole;
        parted[gap] = ' ';
        EXPECT_EQ(parted, Fixed(glued).bytes);
    }
    EXPECT_EQ(27, closed);
}

TEST(PatternFix, PartsKeywordsFromQuotesAndFromEachOther)
{
    const std::string spaced =
        With({{"LightCyan Black", "\"Light Cyan\" Black"},
              {"Cyan LightCyan\nEND_INKS\nBEGIN", "\"Light Cyan\" Cyan END_INKS BEGIN"},
              {"BEGIN_INKS\n", "BEGIN_INKS "}});
    for (const char* glued : {"BEGIN_INKS\"Light Cyan\"", "\"BEGIN_INKS\"\"Light Cyan\""})
        EXPECT_EQ(1, Fixed(std::string(spaced).replace(
                               spaced.find("BEGIN_INKS "),
                               std::string("BEGIN_INKS \"Light Cyan\"").size(), glued))
                         .changes);
    std::string all = spaced;
    const std::string list = "BEGIN_INKS \"Light Cyan\" Cyan END_INKS BEGIN";
    all.replace(all.find(list), list.size(), "BEGIN_INKS\"Light Cyan\" CyanEND_INKSBEGIN");
    EXPECT_EQ(spaced, Fixed(all).bytes);
    // The text speaks of Sky, so that this is the block and not the list.
    const std::string sky = With({{"Cyan Black\nEND_IN_COLORS", "Sky Black\nEND_IN_COLORS"},
                                  {"BEGIN_IN_COLOR\nCyan", "BEGIN_IN_COLORSky"}});
    EXPECT_NE(std::string::npos, Fixed(sky).bytes.find("BEGIN_IN_COLOR Sky\n"));
}

TEST(PatternFix, LeavesNamesWhole)
{
    // An ink of a strange name is one where it is listed and fed.
    const std::string named = With({{"LightCyan Black", "END_INKS2 Black"},
                                    {"LightCyan\nEND_INKS\n", "END_INKS2\nEND_INKS\n"}});
    const PatternText text("text", named);
    EXPECT_TRUE(PatternReport(text).findings.empty());
    // In quotes too, and where a letter too many is a slip.
    EXPECT_EQ("keyword-misspelt",
              PatternReport(PatternText("text", With({{"BEGIN_VALUES", "BEGIN_VALUESX"}})))
                  .findings.front()
                  .kind);
}

// A file that is no pattern ends in time, and without a call for each keyword.
TEST(PatternFix, PartsNoMoreThanAnAuthorGlues)
{
    std::string keywords = "DotWeavePattern VERSION 2 ";
    std::string words = keywords;
    for (int i = 0; i < 100000; ++i)
        keywords += "END_INKS";
    for (int i = 0; i < 80000; ++i)
        words += "BEGIN_INKSx ";
    for (const std::string& bytes : {keywords, words}) {
        const PatternText text("text", bytes);
        const PatternReport report(text);
        for (const Finding& finding : report.findings)
            EXPECT_NE("keyword-glued", finding.kind);
        EXPECT_FALSE(report.findings.empty());
    }
}

// One letter parts the words for the list and for a block, and a wrong letter may stand for both.
TEST(PatternFix, TellsTheListOfInColoursFromABlock)
{
    EXPECT_EQ(smallPattern, Fixed(With({{"BEGIN_IN_COLORS", "BEGIN_IN_COLOS"}})).bytes);
    EXPECT_EQ(smallPattern, Fixed(With({{"END_IN_COLORS", "END_IN_COLOS"}})).bytes);
    EXPECT_EQ(smallPattern, Fixed(With({{"BEGIN_IN_COLOR\n", "BEGIN_IN_COLOS\n"}})).bytes);
    EXPECT_EQ(smallPattern, Fixed(With({{"END_IN_COLOR\n", "END_IN_COLOS\n"}})).bytes);
}

TEST(PatternFix, QuotesNamesWithBlanks)
{
    const std::string text = With({{"Cyan LightCyan Black", "Cyan \"Light Cyan\" Black"},
                                   {"Cyan LightCyan\n", "Cyan LigthCyan\n"}});
    const FixedText fixed = Fixed(text);
    EXPECT_NE(std::string::npos, fixed.bytes.find("\nCyan \"Light Cyan\"\nEND_INKS"))
        << fixed.bytes;
}

TEST(PatternFix, LeavesAloneWhatIsOpenToDoubt)
{
    const std::vector<std::vector<std::pair<std::string, std::string>>> faults = {
        {},
        // Nothing is near, or two names are equally near, or the name is in use.
        {{"LightCyan\nEND_INKS", "Varnish\nEND_INKS"}},
        {{"Cyan LightCyan Black", "Cyan LightCyan LightCyam Black"},
         {"Cyan LightCyan\n", "Cyan LightCyab\n"}},
        {{"Cyan LightCyan\n", "Cyan Cyam LightCyan\n"}},
        // The weight may be what is missing.
        {{"1 1 1-64", "1 1 1-64 0-3"}},
        {{"2 1:3 1-128 0-40", "2 1:3 1-128"}},
        // A comment without its mark is no keyword, however near it comes.
        {{"#comment up", "VERIFIED up"}},
        {{"1-64", "1-640"}},
    };
    for (const auto& fault : faults) {
        const std::string text = With(fault);
        const FixedText fixed = Fixed(text);
        EXPECT_EQ(text, fixed.bytes);
        EXPECT_EQ(0U, fixed.changes);
    }
}

// A second fault, which stays, makes every engine refuse the text.
TEST(PatternFix, GivesUpWhereTheTextWouldNotLoad)
{
    const std::string text =
        With({{"LightCyan\nEND_INKS", "LihgtCyan\nEND_INKS"}, {"3 1 0-255", "9 1 0-255"}});
    const FixedText fixed = Fixed(text);
    EXPECT_EQ(text, fixed.bytes);
    EXPECT_TRUE(fixed.isGivenUp);
}

// Without its values the text loads on the slow reference, whose limits no printer has.
TEST(PatternFix, AsksTheEnginesThatPrint)
{
    for (const char* ratio : {"3:7", "30:70", "1:30"}) {
        const std::string whole = With({{"2 1:3 1-128", "2 " + std::string(ratio) + " 1-128"}});
        const FixedText fixed = Fixed(Replaced(whole, "BEGIN_VALUES", "BEGIN_VALUE"));
        EXPECT_EQ(whole, fixed.bytes) << ratio;
        EXPECT_FALSE(fixed.isGivenUp);
    }
}

TEST(PatternFix, JoinsTheWeightsOfARatio)
{
    for (const char* ratio : {"1 : 3", "1: 3", "1 :3", "1\t:  3"}) {
        const std::string odd = With({{"2 1:3", "2 " + std::string(ratio)}});
        const PatternText text("text", odd);
        const PatternReport report(text);
        ASSERT_EQ(1U, report.findings.size()) << ratio;
        EXPECT_EQ("weights-parted", report.findings.front().kind);
        EXPECT_EQ("write \"1:3\" without blanks", report.findings.front().hint);
        EXPECT_EQ(smallPattern, Fixed(odd).bytes);
    }
    EXPECT_EQ(With({{"2 1:3 1-128 0-40", "2 1:3:4 1-128 0-40 0-2"}}),
              Fixed(With({{"2 1:3 1-128 0-40", "2 1 : 3 : 4 1-128 0-40 0-2"}})).bytes);
    // The step may be what is missing here, and there the ratio ends with the line.
    for (const auto& [from, to] : {std::pair<const char*, const char*>{"2 1:3", "1 : 3"},
                                   {"2 1:3 1-128", "2 1 #1\n:3 1-128"},
                                   {"Cyan LightCyan Black", "Cyan LightCyan Black 1 2 : 3"}}) {
        const PatternText text("text", With({{from, to}}));
        for (const Finding& finding : PatternReport(text).findings)
            EXPECT_NE("weights-parted", finding.kind) << to;
    }
}

TEST(UnifiedDiff, IsWhatPatchReads)
{
    EXPECT_EQ("", UnifiedDiff("a", "x\ny\n", "x\ny\n"));
    EXPECT_EQ("--- a\n+++ a\n@@ -1,1 +1,1 @@\n-x\n\\ No newline at end of file\n+y\n"
              "\\ No newline at end of file\n",
              UnifiedDiff("a", "x", "y"));
    std::string lines;
    for (int i = 1; i <= 30; ++i)
        lines += std::to_string(i) + "\n";
    std::string changed = lines;
    // Lines 5 and 12 share a hunk, since six lines lie between them; 20 has its own.
    for (const char* line : {"\n5\n", "\n12\n", "\n20\n"})
        changed.replace(changed.find(line), std::string(line).size(), "\nX\n");
    EXPECT_EQ("--- a\n+++ a\n@@ -2,14 +2,14 @@\n 2\n 3\n 4\n-5\n+X\n 6\n 7\n 8\n 9\n 10\n 11\n-12\n"
              "+X\n 13\n 14\n 15\n@@ -17,7 +17,7 @@\n 17\n 18\n 19\n-20\n+X\n 21\n 22\n 23\n",
              UnifiedDiff("a", lines, changed));
}

class PatternFixVerb : public ToolFixture
{
protected:
    PatternFixVerb() { WriteBytes(Path("odd.txt"), odd); }

    const std::string odd = With({{"LightCyan\nEND_INKS", "LihgtCyan\nEND_INKS"}});
};

TEST_F(PatternFixVerb, WritesTheTextBack)
{
    WriteBytes(Path("good.txt"), smallPattern);
    const auto time = std::filesystem::last_write_time(Path("good.txt"));
    EXPECT_TRUE(EndedSilently(Run({"pattern", "fix", Path("odd.txt"), Path("good.txt")})));
    EXPECT_EQ(smallPattern, Bytes(Path("odd.txt")));
    // A text that is fine isn't touched.
    EXPECT_EQ(time, std::filesystem::last_write_time(Path("good.txt")));
    EXPECT_EQ((std::vector<std::string>{"good.txt", "odd.txt"}), Files());
}

TEST_F(PatternFixVerb, WritesElsewhere)
{
    EXPECT_EQ(smallPattern, Run({"pattern", "fix", Path("odd.txt"), "--output", "-"}).output);
    EXPECT_TRUE(
        EndedSilently(Run({"pattern", "fix", Path("odd.txt"), "--output", Path("new.txt")})));
    EXPECT_EQ(smallPattern, Bytes(Path("new.txt")));
    EXPECT_EQ(odd, Bytes(Path("odd.txt")));
    EXPECT_EQ(6,
              Run({"pattern", "fix", Path("odd.txt"), "--output", Path("new.txt"), "--no-clobber"})
                  .exitCode);
    EXPECT_TRUE(Refused(
        Run({"pattern", "fix", Path("odd.txt"), Path("new.txt"), "--output", Path("x.txt")}), 2,
        {"x.txt", "2 texts"}));
}

TEST_F(PatternFixVerb, ShowsTheDifferenceInADryRun)
{
    const Outcome outcome = Run({"pattern", "fix", "--dry-run", Path("odd.txt")});
    EXPECT_TRUE(EndedSilently(outcome));
    EXPECT_EQ(UnifiedDiff(Path("odd.txt"), odd, smallPattern), outcome.output);
    EXPECT_NE(std::string::npos, outcome.output.find("\n-Cyan LihgtCyan\n+Cyan LightCyan\n"));
    EXPECT_EQ(odd, Bytes(Path("odd.txt")));
}

TEST_F(PatternFixVerb, EndsWithTheCodeOfTheTextAsItBecomes)
{
    WriteBytes(Path("odd.txt"),
               With({{"LightCyan\nEND_INKS", "LihgtCyan\nEND_INKS"}, {"1 1 1-64", "1 1 1-640"}}));
    const Outcome left = Run({"pattern", "fix", Path("odd.txt")});
    EXPECT_EQ(1, left.exitCode);
    EXPECT_EQ(
        "pelkraft: " + Path("odd.txt") +
            ": warning: 1 place changed, and the rest has no safe hint; pelkraft pattern lint "
            "shows 1 warning\n",
        left.errors);
    EXPECT_EQ(With({{"1 1 1-64", "1 1 1-640"}}), Bytes(Path("odd.txt")));
    EXPECT_EQ("pelkraft: " + Path("odd.txt") +
                  ": warning: no finding has a safe hint, and it stays as it is; pelkraft pattern "
                  "lint shows 1 warning\n",
              Run({"pattern", "fix", Path("odd.txt")}).errors);

    const std::string bad =
        With({{"LightCyan\nEND_INKS", "LihgtCyan\nEND_INKS"}, {"3 1 0-255", "9 1 0-255"}});
    WriteBytes(Path("bad.txt"), bad);
    const Outcome outcome = Run({"pattern", "fix", Path("bad.txt")});
    EXPECT_EQ(4, outcome.exitCode);
    EXPECT_EQ("pelkraft: " + Path("bad.txt") +
                  ": warning: the safe hints alone don't mend it, and it stays as it is; pelkraft "
                  "pattern lint shows 1 error and 1 warning\npelkraft: " +
                  Path("bad.txt") + ": no engine loads it: \"step out of range in pattern\"\n",
              outcome.errors);
    EXPECT_EQ(bad, Bytes(Path("bad.txt")));
    WriteBytes(Path("zero.txt"), odd + std::string(1, '\0'));
    EXPECT_TRUE(Refused(Run({"pattern", "fix", Path("zero.txt")}), 4, {"zero.txt", "zero byte"}));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
