#include "tests/tools/tool_fixture.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <stdexcept>

namespace zvk::Pelkraft::TestSupport {
namespace {

// A terminal that nobody looks at: the program writes to one end, the test reads the other.
class PseudoTerminal
{
public:
    PseudoTerminal() : master(posix_openpt(O_RDWR | O_NOCTTY))
    {
        if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0)
            throw std::runtime_error("no terminal to be had");
        // Held open, so that what was written stays when the program ends.
        slave = open(ptsname(master), O_RDWR | O_NOCTTY);
    }
    ~PseudoTerminal()
    {
        close(slave);
        close(master);
    }
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    int Slave() const { return slave; }

    [[nodiscard]] std::string ReadAll() const
    {
        fcntl(master, F_SETFL, O_NONBLOCK);
        std::string text;
        char piece[256];
        for (ssize_t count = 0; (count = read(master, piece, sizeof piece)) > 0;)
            text.append(piece, static_cast<std::size_t>(count));
        return text;
    }

private:
    int master;
    int slave = -1;
};

using Progress = ToolFixture;

TEST_F(Progress, IsShownOnATerminalAndWiped)
{
    WriteTiff(Path("in.tif"), RandomImage(15, 25, 4, 8, 8), {});
    const PseudoTerminal terminal;
    Subprocess tool({PELKRAFT_TOOL, "convert", Path("in.tif"), Path("out.tif")},
                    folder + "/streams", [&] { dup2(terminal.Slave(), STDERR_FILENO); });
    EXPECT_TRUE(EndedSilently(tool.Wait()));
    const std::string shown = terminal.ReadAll();
    EXPECT_NE(std::string::npos, shown.find("\rpelkraft: convert " + Path("out.tif"))) << shown;
    EXPECT_NE(std::string::npos, shown.find(" %")) << shown;
    const std::string wipe = "\r\033[K";
    ASSERT_LE(wipe.size(), shown.size());
    EXPECT_EQ(wipe, shown.substr(shown.size() - wipe.size()));
    EXPECT_EQ(std::string::npos, shown.find('\n'));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
