#include "tests/tools/tool_fixture.h"

#include <sstream>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr std::size_t mostColumns = 100;

class Help : public ToolFixture
{
protected:
    [[nodiscard]] std::string TextOf(const std::vector<std::string>& verb) const
    {
        std::vector<std::string> arguments = verb;
        arguments.emplace_back("--help");
        const Outcome outcome = Run(arguments);
        EXPECT_TRUE(EndedSilently(outcome));
        return outcome.output;
    }

    // Every verb that a help text names, and those below it, each as the words that call it.
    void AddVerbs(const std::vector<std::string>& above,
                  std::vector<std::vector<std::string>>& verbs) const
    {
        verbs.push_back(above);
        std::istringstream lines(TextOf(above));
        bool inside = false;
        for (std::string line; std::getline(lines, line);) {
            if (line == "Subcommands:" || line.empty()) {
                inside = !line.empty();
                continue;
            }
            if (!inside || line.rfind("   ", 0) == 0)
                continue;
            std::vector<std::string> verb = above;
            verb.push_back(line.substr(2, line.find(' ', 2) - 2));
            AddVerbs(verb, verbs);
        }
    }

    [[nodiscard]] std::vector<std::vector<std::string>> AllVerbs() const
    {
        std::vector<std::vector<std::string>> verbs;
        AddVerbs({}, verbs);
        return verbs;
    }
};

// Letters, not bytes.
std::size_t Columns(const std::string& line)
{
    return static_cast<std::size_t>(std::count_if(line.begin(), line.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
    }));
}

TEST_F(Help, OfEveryVerbFitsIts100Columns)
{
    const auto verbs = AllVerbs();
    EXPECT_GE(verbs.size(), 4U);
    for (const auto& verb : verbs) {
        const std::string text = TextOf(verb);
        SCOPED_TRACE(text);
        std::istringstream lines(text);
        std::size_t longest = 0;
        for (std::string line; std::getline(lines, line);)
            longest = std::max(longest, Columns(line));
        EXPECT_LE(longest, mostColumns);
        EXPECT_GT(longest, 50U);
        EXPECT_EQ(std::string::npos, text.find("\n\n\n"));
    }
}

TEST_F(Help, OfEveryVerbTellsTheExitCodes)
{
    for (const auto& verb : AllVerbs()) {
        const std::string text = TextOf(verb);
        const std::size_t codes = text.find("\nExit codes:\n");
        ASSERT_NE(std::string::npos, codes) << text;
        for (const char* code : {"\n  0  ", "\n  1  ", "\n  2  ", "\n  3  ", "\n  4  ", "\n  5  ",
                                 "\n  6  ", "\n  7  ", "\n  130  "})
            EXPECT_NE(std::string::npos, text.find(code, codes)) << code << " in " << text;
    }
}

TEST_F(Help, OfEveryVerbHasTheCommonOptions)
{
    for (const auto& verb : AllVerbs()) {
        if (verb.empty())
            continue;
        const std::string text = TextOf(verb);
        for (const char* option :
             {"\n  -q, --quiet ", "\n  -v, --verbose ", "\n  --progress auto|never|json ",
              "\n  --color auto|never ", "\n  --threads 1..256 ", "\n  --explain ", "\n  --json ",
              "\n  --dry-run "})
            EXPECT_NE(std::string::npos, text.find(option)) << option << " in " << text;
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
