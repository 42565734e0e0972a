#include "tests/tools/tool_fixture.h"

#include <fstream>
#include <regex>
#include <sstream>
#include <string>

namespace zvk::Pelkraft::TestSupport {
namespace {

using BuildInfo = ToolFixture;

std::string Line(const std::string& text, const std::string& label)
{
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind(label + "  ", 0) == 0)
            return line.substr(line.find_first_not_of(' ', label.size()));
    }
    return "no line " + label;
}

TEST_F(BuildInfo, TellsTheVersionOfTheProject)
{
    const Outcome outcome = Run({"--version"});
    EXPECT_TRUE(EndedSilently(outcome));
    EXPECT_EQ("pelkraft " PELKRAFT_EXPECTED_VERSION "\n", outcome.output);
}

TEST_F(BuildInfo, TellsHowTheProgramWasBuilt)
{
    const Outcome outcome = Run({"--buildinfo"});
    EXPECT_TRUE(EndedSilently(outcome));
    const std::string& text = outcome.output;
    EXPECT_EQ(0u, text.find("pelkraft " PELKRAFT_EXPECTED_VERSION "\n"));
#if defined(__clang__)
    const std::string compiler = "Clang " + std::to_string(__clang_major__) + ".";
#else
    const std::string compiler = "GNU " + std::to_string(__GNUC__) + ".";
#endif
    EXPECT_EQ(0u, Line(text, "compiler").find(compiler)) << text;
    EXPECT_EQ(PELKRAFT_EXPECTED_BUILD_TYPE, Line(text, "build type"));
#if defined(__x86_64__) || defined(__i386__)
    EXPECT_EQ("built in, taken from level 3 on", Line(text, "vector road"));
#else
    EXPECT_EQ("not built", Line(text, "vector road"));
#endif
    EXPECT_EQ(PELKRAFT_EXPECTED_TIFF, Line(text, "libtiff"));
    EXPECT_EQ(PELKRAFT_EXPECTED_PNG, Line(text, "libpng"));
}

#if defined(__linux__) && defined(__x86_64__)
TEST_F(BuildInfo, TellsTheLevelThatTheSystemListsForItsProcessor)
{
    std::ifstream file("/proc/cpuinfo");
    const std::string info(std::istreambuf_iterator<char>(file), {});
    const auto has = [&](const char* flag) {
        return std::regex_search(info, std::regex("flags[^\n]* " + std::string(flag) + "[ \n]"));
    };
    const std::string level = Line(Run({"--buildinfo"}).output, "processor level");
    const std::vector<std::string> names = {"2, SSE2",   "3, SSSE3", "4, SSE4.1",
                                            "5, SSE4.2", "6, AVX2",  "7, AVX-512"};
    std::size_t at = 0;
    for (const char* flag : {"ssse3", "sse4_1", "sse4_2", "avx2", "avx512_?vbmi"}) {
        if (!has(flag))
            break;
        ++at;
    }
    EXPECT_EQ(names[at], level);
}
#endif

TEST_F(BuildInfo, NeedsNoVerbAndTakesNone)
{
    EXPECT_TRUE(Refused(Run({"--versions"}), 2, {}));
    EXPECT_TRUE(Refused(Run({"convert", "--buildinfo"}), 2, {}));
    const Outcome help = Run({"--help"});
    EXPECT_NE(std::string::npos, help.output.find("--version"));
    EXPECT_NE(std::string::npos, help.output.find("--buildinfo"));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
