#include "tests/tools/io_fixture.h"

#include <fcntl.h>
#include <unistd.h>

namespace zvk::Pelkraft::TestSupport {
namespace {

class StandardStreams : public IoFixture
{
protected:
    [[nodiscard]] Outcome RunPrepared(const std::vector<std::string>& arguments,
                                      const std::function<void()>& prepare) const
    {
        std::vector<std::string> command = {PELKRAFT_TOOL};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return Subprocess(command, folder + "/streams", prepare).Wait();
    }
};

// Uses that print something on the standard output stream.
const std::vector<std::string> printingUses = {"plain", "simulate", "plot", "json", "help"};

TEST_F(StandardStreams, ThatTakeNoMoreEndTheProgramBeforeAFileAppears)
{
    for (const ToolUse& use : uses) {
        if (std::find(printingUses.begin(), printingUses.end(), use.name) == printingUses.end())
            continue;
        SCOPED_TRACE(use.name);
        PrepareTargets(use, true);
        const FolderState before = State();
        const auto fill = [] { dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO); };
        EXPECT_TRUE(Refused(RunPrepared(use.arguments, fill), 6,
                            {"the standard output can't be written", "No space left"}));
        EXPECT_TRUE(State() == before);
        const auto shut = [] { close(STDOUT_FILENO); };
        EXPECT_TRUE(Refused(RunPrepared(use.arguments, shut), 6, {"the standard output"}));
        EXPECT_TRUE(State() == before);
    }
    for (const char* const option : {"--version", "--buildinfo", "--help"}) {
        const auto fill = [] { dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO); };
        EXPECT_TRUE(Refused(RunPrepared({option}, fill), 6, {"the standard output"})) << option;
    }
}

// The files that are opened come to stand where messages go.
TEST_F(StandardStreams, ThatAreClosedBringNoMessageIntoAFile)
{
    const std::vector<std::string> targets = {"out.tif", "seen.png"};
    const std::vector<std::string> arguments = {"simulate",       Path("pattern.txt"),
                                                Path("inks.tif"), Path("out.tif"),
                                                "--preview",      Path("seen.png")};
    const ToolUse use = {"simulate", arguments, targets};
    ASSERT_TRUE(EndedSilently(RunUse(use)));
    const FolderState good = State();
    PrepareTargets(use, true);
    const auto shutAll = [] { close_range(STDIN_FILENO, STDERR_FILENO, 0); };
    EXPECT_EQ(0, RunPrepared(arguments, shutAll).exitCode);
    EXPECT_TRUE(State() == good);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
