#include "tests/tools/pattern_texts.h"
#include "tests/tools/tool_fixture.h"

#include <chrono>
#include <set>
#include <sstream>
#include <thread>

namespace zvk::Pelkraft::TestSupport {
namespace {

// A command line of the program, in a folder with the files that ExitCodes makes.
struct Call
{
    int code;
    std::vector<std::string> arguments;
};

class ExitCodes : public ToolFixture
{
protected:
    ExitCodes()
    {
        WriteTiff(Path("in.tif"), RandomImage(40, 30, 2, 8, 8), {});
        WriteTiff(Path("odd.tif"), RandomImage(40, 30, 1, 4, 8), {});
        const std::string whole = Bytes(Path("in.tif"));
        WriteBytes(Path("cut.tif"), whole.substr(0, whole.size() / 2));
        WriteBytes(Path("pattern.txt"), smallPattern);
        WriteBytes(Path("bad.txt"), "DotWeavePattern\n");
        FileForm form;
        form.compression = COMPRESSION_ADOBE_DEFLATE;
        WriteTiff(Path("large.tif"), RandomImage(2000, 2000, 4, 8, 8), form);
        WriteTiff(Path("wide.tif"), BlankImage(20000000, 1, 1, 8), form);
    }

    [[nodiscard]] std::vector<Call> Calls() const
    {
        const std::string in = Path("in.tif");
        const std::string out = Path("out.tif");
        const std::string pattern = Path("pattern.txt");
        return {{0, {"--help"}},
                {0, {"--version"}},
                {0, {"convert", in, out}},
                {0, {"simulate", pattern, in, out}},
                {0, {"pattern", pattern}},
                {0, {"info", in}},
                {0, {"coverage", in, "--limit", "400"}},
                {1, {"simulate", pattern, in, out, "--levels", "raw"}},
                {1, {"convert", in, out, "--bits", "1", "--tones", "raw"}},
                {1, {"coverage", in, "--limit", "1"}},
                {2, {}},
                {2, {"paint"}},
                {2, {"convert", in}},
                {2, {"convert", in, out, "--bits", "3"}},
                {2, {"convert", in, out, "--channels", "9"}},
                {2, {"convert", in, Path("out.png")}},
                {3, {"convert", Path("cut.tif"), out}},
                {3, {"convert", pattern, out}},
                {3, {"info", Path("cut.tif")}},
                {3, {"coverage", Path("cut.tif")}},
                {3, {"join", out, "Cyan=" + Path("cut.tif")}},
                {3, {"split", Path("cut.tif"), out}},
                {3, {"preview", Path("cut.tif"), Path("out.png")}},
                {3, {"simulate", pattern, Path("cut.tif"), out}},
                {4, {"simulate", Path("bad.txt"), in, out}},
                {4, {"pattern", Path("bad.txt")}},
                {5, {"convert", Path("odd.tif"), out}},
                {6, {"convert", Path("no.tif"), out}},
                {6, {"convert", in, Path("no/out.tif")}},
                {6, {"convert", in, in, "--no-clobber"}},
                {6, {"pattern", Path("no.txt")}}};
    }

    // Interrupted when the temporary file shows that the work is under way.
    [[nodiscard]] int InterruptedCode() const
    {
        // On a busy machine the program may be done before the signal: then once more.
        for (int attempt = 0; attempt < 20; ++attempt) {
            const std::size_t before = Files().size();
            Subprocess tool({PELKRAFT_TOOL, "convert", Path("large.tif"), Path("late.tif")},
                            folder + "/streams");
            while (Files().size() == before && !tool.HasEnded())
                std::this_thread::sleep_for(std::chrono::microseconds(100));
            tool.Interrupt(Interrupts().front());
            const int code = tool.Wait().exitCode;
            std::filesystem::remove(Path("late.tif"));
            if (code != 0)
                return code;
        }
        return 0;
    }

    // The codes at the end of the help.
    [[nodiscard]] std::set<int> ListedCodes() const
    {
        const std::string help = Run({"--help"}).output;
        std::istringstream lines(help.substr(help.find("Exit codes:\n")));
        std::set<int> codes;
        for (std::string line; std::getline(lines, line);) {
            if (line.size() > 2 && line[0] == ' ' && line[2] != ' ')
                codes.insert(std::stoi(line));
        }
        return codes;
    }
};

TEST_F(ExitCodes, AreAllReached)
{
    std::set<int> reached;
    for (const Call& call : Calls()) {
        const Outcome outcome = Run(call.arguments);
        std::string line;
        for (const std::string& argument : call.arguments)
            line += argument + ' ';
        EXPECT_EQ(call.code, outcome.exitCode) << line << "\n" << outcome.errors;
        reached.insert(outcome.exitCode);
    }
#if !defined(PELKRAFT_SANITIZED) && !defined(_WIN32)
    // A sanitizer ends the program itself where memory is short, and Wine has no limit.
    const Outcome small =
        Run({"convert", Path("wide.tif"), Path("out.tif"), "--bits", "16", "--threads", "1"},
            50UL << 20);
    EXPECT_EQ(7, small.exitCode) << small.errors;
#endif
    reached.insert(7);
    reached.insert(InterruptedCode());
    EXPECT_EQ(ListedCodes(), reached);
    EXPECT_EQ((std::set<int>{0, 1, 2, 3, 4, 5, 6, 7, 130}), reached);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
