#include "tests/tools/pattern_texts.h"
#include "tests/tools/tool_fixture.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <ostream>

namespace zvk::Pelkraft::TestSupport {
namespace {

using Json = nlohmann::json;

// One fault put into the small pattern, and what must be said of it.
struct Broken
{
    const char* name;
    const char* from;
    const char* to;
    int line;
    int column;
    const char* severity;
    const char* kind;
    // The marks under the line of the text.
    const char* caret;
    const char* hint;
    int exitCode;
};

const Broken brokenTexts[] = {
    {"UnknownInk", "Cyan LightCyan\nEND_INKS", "Cyan LightCyam\nEND_INKS", 14, 6, "warning",
     "ink-unknown", "     ^~~~~~~~~", "did you mean LightCyan?", 1},
    {"UnknownInColour", "BEGIN_IN_COLOR\nBlack", "BEGIN_IN_COLOR\nBlock", 23, 1, "warning",
     "in-colour-unknown", "^~~~~", "did you mean Black?", 4},
    {"KeywordCase", "END_OUT_INKS", "End_Out_Inks", 7, 1, "error", "keyword-case", "^~~~~~~~~~~~",
     "write END_OUT_INKS", 4},
    {"StepGap", "2 1:3 1-128 0-40\n", "", 18, 1, "error", "step-gap", "^",
     "write a line for each step", 1},
    {"VersionDiffers", "VERSION 2", "# VERSION 3 came later\nVERSION 2", 2, 3, "warning",
     "version-differs", "  ^~~~~~~", "let the first VERSION", 1},
    {"VersionMissing", "VERSION 2\n", "", 1, 1, "error", "version-missing", "^",
     "write VERSION 2 or VERSION 3", 4},
    {"InkUnfed", "Cyan LightCyan Black\n", "Cyan LightCyan Black Varnish\n", 6, 22, "warning",
     "ink-unfed", "                     ^~~~~~~", "between BEGIN_INKS and END_INKS", 1},
    {"InkFedTwice", "BEGIN_INKS\nBlack", "BEGIN_INKS\nBlack cyan", 25, 7, "warning",
     "ink-fed-twice", "      ^~~~", "feed each ink from one place", 1},
    {"WeightsApart", "3 1 0-255", "3 2:6 0-255 0-128", 19, 3, "warning", "weights-apart", "  ^~~",
     "write 1:3 here", 1},
    {"WeightsTogether", "3 1 0-255", "3 1:3 0-255 1-128", 19, 3, "note", "weights-together",
     "  ^~~", "keep the order of the inks", 0},
    {"WeightsPermuted", "3 1 0-255", "3 3:1 0-255 0-128", 19, 3, "note", "weights-permuted",
     "  ^~~", "move the entries", 0},
    {"TotalUnreachable", "1:3 1-128", "1:32768 1-128", 18, 3, "warning", "total-unreachable",
     "  ^~~~~~~", "write VERSION 3", 1},
    {"StepOutOfRange", "3 1 0-255", "8 1 0-255", 19, 1, "error", "step-range", "^",
     "use steps from 0 to 7", 4},
    {"PositionOutOfRange", "1 1 1-64", "1 1 16-64", 17, 5, "error", "position-range", "    ^~~~~",
     "from 0", 4},
    {"PositionEmpty", "1 1 1-64", "1 1 2-64", 17, 5, "warning", "position-empty", "    ^~~~",
     "count the known names", 1},
    {"EntryMissing", "2 1:3 1-128 0-40", "2 1:3 1-128", 18, 3, "error", "entry-missing", "  ^~~",
     "write one entry", 4},
    {"EntrySurplus", "1 1 1-64", "1 1 1-64 0-3", 17, 10, "error", "entry-surplus", "         ^~~",
     "give the ratio a weight", 4},
    {"WeightSum", "2 1:3", "2 0:0", 18, 3, "error", "weight-sum", "  ^~~", "such as 1:3", 4},
    {"WeightBelowZero", "2 1:3", "2 3:-1", 18, 3, "error", "weight-sum", "  ^~~~", "above 0", 4},
    {"HeaderMissing", "DotWeavePattern\n", "", 1, 1, "error", "header-missing", "^~~~~~~",
     "begin the text with the word DotWeavePattern", 4},
    {"HeaderBehindMark", "DotWeavePattern",
     "\xEF\xBB\xBF"
     "DotWeavePattern",
     1, 1, "error", "header-missing", "^~~~~~~~~~~~~~~~", "without a byte order mark", 4},
    {"VersionLow", "VERSION 2", "VERSION 1", 17, 5, "error", "version-low", "    ^~~~",
     "ahead of the first BEGIN_IN_COLOR", 1},
    {"ListOpen", "END_INKS\nBEGIN_VALUES\n1 1 1", "BEGIN_VALUES\n1 1 1", 15, 1, "error",
     "section-open", "^~~~~~~~~~~~", "write END_INKS ahead of it", 1},
    {"ListClosedWrongly", "END_IN_COLORS", "END_IN_COLOR", 10, 1, "error", "section-closed-wrongly",
     "^~~~~~~~~~~~", "write END_IN_COLORS", 4},
    {"QuoteOpen", "BEGIN_INKS\nBlack", "BEGIN_INKS\n\"Black", 25, 1, "warning", "quote-open",
     "^~~~~~", "a second double quote", 1},
    {"InColourUndescribed", "Cyan Black\nEND_IN_COLORS", "Cyan Black Gold\nEND_IN_COLORS", 9, 12,
     "warning", "in-colour-undescribed", "           ^~~~", "drop it here", 1},
    {"StepRepeated", "3 1 0-255", "3 1 0-255\n3 1 0-250", 20, 1, "warning", "step-repeated", "^",
     "keep one line", 1},
    {"SeedMisspelt", "RANDOM_SEED 1234", "RANDOM_SEAD 1234", 3, 1, "warning", "keyword-misspelt",
     "^~~~~~~~~~~", "did you mean RANDOM_SEED?", 1},
    {"KeywordMisspelt", "BEGIN_VALUES\n1 1 1", "BEGIN_VALEUS\n1 1 1", 16, 1, "error",
     "keyword-misspelt", "^~~~~~~~~~~~", "did you mean BEGIN_VALUES?", 1},
    {"KeywordGlued", "BEGIN_INKS\nBlack", "BEGIN_INKSBlack", 24, 1, "error", "keyword-glued",
     "^~~~~~~~~~~~~~~", "put a blank or a line end after BEGIN_INKS", 1},
    {"ClosingGlued", "LightCyan\nEND_INKS", "LightCyanEND_INKS", 14, 6, "error", "keyword-glued",
     "     ^~~~~~~~~~~~~~~~~", "put a blank or a line end ahead of END_INKS", 1},
    {"HeaderUnknown", "DotWeavePattern", "DotPattern", 1, 1, "error", "header-missing",
     "^~~~~~~~~~", "did you mean DotWeavePattern?", 4},
    {"ListOutside", "VERSION 2", "VERSION 2\nBEGIN_INKS Cyan", 3, 1, "warning", "word-skipped",
     "^~~~~~~~~~", "put it between BEGIN_IN_COLOR and END_IN_COLOR", 1},
    {"EndOutside", "VERSION 2", "VERSION 2\nEND_VALUES", 3, 1, "warning", "word-skipped",
     "^~~~~~~~~~", "open what it closes with BEGIN_VALUES", 1},
    {"KeywordUnknown", "BEGIN_VALUES\n1 1 1", "BEGIN_STEPS\n1 1 1", 16, 1, "warning",
     "in-colour-unknown", "^~~~~~~~~~~", "value lines with BEGIN_VALUES", 1},
    {"WordSkipped", "RANDOM_SEED 1234", "SEED 1234", 3, 1, "warning", "word-skipped", "^~~~",
     "begin a comment with #", 1},
    {"VersionHigh", "VERSION 2", "VERSION 9", 2, 1, "warning", "version-high", "^~~~~~~",
     "write VERSION 3", 1},
    {"TabAndLetters", "1 1 1-64", "1\t1\t\"1-\"\xC3\xA9", 17, 5, "warning", "number-odd",
     " \t \t^~~~~", "such as 0-64", 1},
};

void PrintTo(const Broken& broken, std::ostream* out)
{
    *out << broken.name;
}

class PatternLint : public ToolFixture, public ::testing::WithParamInterface<Broken>
{
protected:
    std::string Text() const
    {
        std::string text = smallPattern;
        const std::size_t at = text.find(GetParam().from);
        EXPECT_NE(std::string::npos, at);
        return text.replace(at, std::string(GetParam().from).size(), GetParam().to);
    }

    static std::string LineOf(const std::string& text, int number)
    {
        std::size_t start = 0;
        for (int line = 1; line < number; ++line)
            start = text.find('\n', start) + 1;
        return text.substr(start, text.find('\n', start) - start);
    }
};

TEST_P(PatternLint, FindsTheFaultAtItsPlace)
{
    const Broken& broken = GetParam();
    WriteBytes(Path("broken.txt"), Text());
    const Outcome outcome = Run({"pattern", Path("broken.txt")});
    EXPECT_EQ(broken.exitCode, outcome.exitCode) << outcome.output;
    const std::string head = Path("broken.txt") + ":" + std::to_string(broken.line) + ":" +
                             std::to_string(broken.column) + ": " + broken.severity + ": ";
    const std::string shown =
        "\n    " + LineOf(Text(), broken.line) + "\n    " + broken.caret + "\n    hint: ";
    // Only one of the findings at this place is the fault.
    bool found = false;
    for (std::size_t at = outcome.output.find(head); at != std::string::npos;
         at = outcome.output.find(head, at + 1)) {
        const std::size_t line = outcome.output.find('\n', at);
        const std::size_t hint = line + shown.size();
        found = found || (outcome.output.compare(line, shown.size(), shown) == 0 &&
                          outcome.output.substr(hint, outcome.output.find('\n', hint) - hint)
                                  .find(broken.hint) != std::string::npos);
    }
    EXPECT_TRUE(found) << head << shown << broken.hint << "\nin\n" << outcome.output;
}

TEST_P(PatternLint, TellsProgramsTheSame)
{
    const Broken& broken = GetParam();
    WriteBytes(Path("broken.txt"), Text());
    const Outcome outcome = Run({"pattern", Path("broken.txt"), "--json"});
    EXPECT_EQ(broken.exitCode, outcome.exitCode);
    const Json json = Json::parse(outcome.output);
    int found = 0;
    for (const Json& finding : json["findings"]) {
        if (finding["kind"] != broken.kind || finding["line"] != broken.line ||
            finding["column"] != broken.column)
            continue;
        ++found;
        EXPECT_EQ(broken.severity, finding["severity"]);
        EXPECT_NE(std::string::npos, finding["hint"].get<std::string>().find(broken.hint));
        EXPECT_EQ(LineOf(Text(), broken.line), finding["text"]);
    }
    EXPECT_EQ(1, found) << outcome.output;
    // A text that no engine loads has a reason for it.
    const bool hasError =
        std::any_of(json["findings"].begin(), json["findings"].end(),
                    [](const Json& finding) { return finding["severity"] == "error"; });
    EXPECT_TRUE(hasError || broken.exitCode != 4) << outcome.output;
}

INSTANTIATE_TEST_SUITE_P(EveryFault, PatternLint, ::testing::ValuesIn(brokenTexts),
                         [](const auto& fault) { return std::string(fault.param.name); });

class PatternLints : public ToolFixture
{
protected:
    Json FindingsOf(const std::string& text)
    {
        WriteBytes(Path("broken.txt"), text);
        return Json::parse(Run({"pattern", Path("broken.txt"), "--json"}).output)["findings"];
    }

    static std::vector<std::string> Kinds(const Json& findings)
    {
        std::vector<std::string> kinds;
        for (const Json& finding : findings)
            kinds.push_back(finding["kind"]);
        return kinds;
    }
};

TEST_F(PatternLints, TellOfAllFaultsAtOnce)
{
    std::string text = smallPattern;
    for (const auto& [from, to] :
         {std::pair<std::string, std::string>{"END_OUT_INKS", "end_out_inks"},
          {"1 1 1-64", "1 1 1-640"},
          {"2 1:3 1-128 0-40", "2 1:3 1-128"},
          {"BEGIN_INKS\nBlack", "BEGIN_INKS\nBlack Gold"}})
        text.replace(text.find(from), from.size(), to);
    EXPECT_EQ(
        (std::vector<std::string>{"keyword-case", "value-range", "entry-missing", "ink-unknown"}),
        Kinds(FindingsOf(text)));
}

// One slip, and not what comes of it.
TEST_F(PatternLints, SayOneFaultOnce)
{
    const struct
    {
        const char* from;
        const char* to;
        std::vector<std::string> kinds;
    } faults[] = {
        {"Cyan LightCyan\nEND_INKS", "Cyam LightCyan\nEND_INKS", {"ink-unknown"}},
        // Two letters have changed places, and the word is short.
        {"Cyan LightCyan\nEND_INKS", "Cyna LightCyan\nEND_INKS", {"ink-unknown"}},
        {"1 1 1-64\n", "1 1 1-64\n0-3 1-7\n", {"entry-surplus", "entry-surplus"}},
        {"DotWeavePattern\nVERSION 2", "DotWeavePattern", {"version-missing"}},
        {"BEGIN_IN_COLOR\nBlack", "BEGIN_IN_COLOR\nBlock", {"in-colour-unknown", "refused"}},
        {"LightCyan\nEND_INKS", "END_INKS", {"ink-unfed", "position-empty"}},
        {"1 1 0-255\nEND_VALUES\nEND_IN_COLOR\n",
         "1 1:1 0-255\nEND_VALUES\nEND_IN_COLOR\n",
         {"entry-missing"}},
        {"2 1:3 1-128 0-40", "2 1:3 1-128 16-40", {"position-range"}},
        {"2 1:3 1-128 0-40", "2 1:-3 1-128 0-40", {"weight-sum"}},
        {"1 1 1-64", "1 2 0-5\n1 1 1-64", {"step-repeated"}},
        {"1 1 1-64", "1 1\n1 1 1-64", {"entry-missing"}},
        {"1 1 1-64", "1 1 1-64\n1 1", {"entry-missing"}},
        {"1 1 0-255\nEND_VALUES\nEND_IN_COLOR\n",
         "1 1\nEND_VALUES\nEND_IN_COLOR\n",
         {"entry-missing"}},
        {"VERSION 2\n", "VERSION 1\n", {"version-low"}}};
    for (const auto& [from, to, kinds] : faults) {
        std::string text = smallPattern;
        text.replace(text.rfind(from), std::string(from).size(), to);
        EXPECT_EQ(kinds, Kinds(FindingsOf(text))) << to;
    }
}

TEST_F(PatternLints, CountTheEntriesOfAPositionWithoutInk)
{
    std::string text = smallPattern;
    text.replace(text.find("LightCyan\nEND_INKS"), 9, "");
    const Json finding = FindingsOf(text)[1];
    EXPECT_EQ("position-empty", finding["kind"]);
    EXPECT_EQ(17, finding["line"]);
    EXPECT_NE(std::string::npos, finding["message"].get<std::string>().find("; 1 more entry has"));
}

TEST_F(PatternLints, NameTheCodeOfATextAndKeepItFromTheTerminal)
{
    std::string text = "\xFF\xFE";
    for (const char letter : std::string(smallPattern))
        text.append(1, letter).append(1, '\0');
    WriteBytes(Path("wide.txt"), text);
    const Outcome outcome = Run({"pattern", Path("wide.txt")});
    EXPECT_EQ(4, outcome.exitCode);
    EXPECT_NE(std::string::npos, outcome.output.find("error: the text is in UTF-16\n    ??D\n    "
                                                     "^~~\n    hint: save it as UTF-8"))
        << outcome.output;
    const std::string odd = "\xC2\x9B\xC3\xA9\xE2\x82 \xED";
    WriteBytes(Path("odd.txt"), odd);
    EXPECT_NE(std::string::npos,
              Run({"pattern", Path("odd.txt")}).output.find("\n    ??\xC3\xA9?? ?\n"));
}

// Whatever the width and the order of the bytes, and whether a mark tells it or not.
TEST_F(PatternLints, SayNothingMoreOfATextInWideCharacters)
{
    const struct
    {
        const char* code;
        std::size_t before;
        std::size_t after;
        std::string mark;
    } codes[] = {{"UTF-16", 0, 1, ""},
                 {"UTF-16", 1, 0, ""},
                 {"UTF-16", 0, 1, "\xFF\xFE"},
                 {"UTF-16", 1, 0, "\xFE\xFF"},
                 {"UTF-32", 0, 3, ""},
                 {"UTF-32", 3, 0, ""},
                 {"UTF-32", 0, 3, std::string("\xFF\xFE\0\0", 4)},
                 {"UTF-32", 3, 0, std::string("\0\0\xFE\xFF", 4)}};
    for (const auto& [code, before, after, mark] : codes) {
        std::string text = mark;
        for (const char letter : std::string(smallPattern))
            text += std::string(before, '\0') + letter + std::string(after, '\0');
        const Json findings = FindingsOf(text);
        ASSERT_EQ(1U, findings.size()) << findings;
        EXPECT_EQ("header-missing", findings[0]["kind"]);
        EXPECT_EQ(std::string("the text is in ") + code, findings[0]["message"]);
    }
    EXPECT_EQ(std::vector<std::string>{"header-missing"},
              Kinds(FindingsOf("\x89PNG" + std::string(5, '\0') + "picture")));
}

// A block or a list of this very name counts more than one that was taken for it.
TEST_F(PatternLints, TakeBackAGuess)
{
    std::string text = smallPattern;
    const std::string black = text.substr(text.rfind("BEGIN_IN_COLOR\n"));
    text += black;
    text.replace(text.find(black) + 15, 5, "Block");
    EXPECT_EQ((std::vector<std::string>{"in-colour-unknown", "refused"}), Kinds(FindingsOf(text)));
}

// Whatever ends the lines, and with names of letters that take several bytes.
TEST_F(PatternLints, CountLinesAndColumnsAsTheyAreSeen)
{
    for (const std::string end : {"\n", "\r\n", "\r"}) {
        std::string text = smallPattern;
        const std::string inks = "Cyan LightCyan Black\n";
        text.replace(text.find(inks), inks.size(), "Cyan LightCyan Black \xC3\x96l Varnish\n");
        for (std::size_t at = text.find('\n'); at != std::string::npos;
             at = text.find('\n', at + end.size()))
            text.replace(at, 1, end);
        const Json findings = FindingsOf(text);
        const auto last = std::find_if(findings.begin(), findings.end(),
                                       [](const Json& finding) { return finding["column"] == 25; });
        ASSERT_NE(last, findings.end()) << findings;
        EXPECT_EQ("ink-unfed", (*last)["kind"]);
        EXPECT_EQ(6, (*last)["line"]);
    }
}

TEST_F(PatternLints, CountCombinations)
{
    // Two alternatives each, none of them shared: 2 to the 6th in one in-colour.
    std::string text = "DotWeavePattern VERSION 2 BEGIN_OUT_INKS A END_OUT_INKS\n"
                       "BEGIN_IN_COLORS A END_IN_COLORS\nBEGIN_IN_COLOR\nA\n"
                       "BEGIN_INKS A END_INKS BEGIN_VALUES\n";
    for (int step = 1; step <= 6; ++step)
        text += std::to_string(step) + " 1:" + std::to_string(step) + " 0-1 0-2\n";
    const Json findings = FindingsOf(text + "END_VALUES END_IN_COLOR\n");
    ASSERT_EQ((std::vector<std::string>{"in-colour-combinations-surplus"}), Kinds(findings));
    EXPECT_EQ(4, findings[0]["line"]);
    EXPECT_NE(std::string::npos, findings[0]["message"].get<std::string>().find("64"));
}

TEST_F(PatternLints, FindSharesThatTheSecondGenerationCantKeep)
{
    // 1/6, 1/2 and 1/3: the field has thirds, and no sixth.
    std::string text = smallPattern;
    text.replace(text.find("VERSION 2"), 9, "VERSION 3");
    text.replace(text.find("2 1:3 1-128 0-40"), 16, "2 1:3:2 1-128 0-40 0-50");
    const Json findings = FindingsOf(text);
    ASSERT_EQ((std::vector<std::string>{"field-skewed"}), Kinds(findings));
    EXPECT_NE(std::string::npos, findings[0]["message"].get<std::string>().find("16.66 percent"))
        << findings[0];
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
