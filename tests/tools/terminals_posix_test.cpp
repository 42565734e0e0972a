#include "tests/tools/pseudo_terminal.h"
#include "tests/tools/tool_fixture.h"

#include <functional>

namespace zvk::Pelkraft::TestSupport {
namespace {

class Terminals : public ToolFixture
{
protected:
    Terminals()
    {
        FileForm form;
        form.photometric = PHOTOMETRIC_MINISWHITE;
        WriteTiffPages(Path("in.tif"), {RandomImage(15, 25, 1, 8, 8)}, form);
    }

    // Runs the program with a terminal in place of one of its streams.
    [[nodiscard]] Outcome RunOn(int stream, std::vector<std::string> arguments)
    {
        const PseudoTerminal terminal(80);
        arguments.insert(arguments.begin(), PELKRAFT_TOOL);
        // A terminal that nobody reads takes no more than some pages, and then holds the program.
        Subprocess tool(arguments, folder + "/streams", [&] {
            dup2(terminal.Slave(), stream);
            alarm(20);
        });
        Outcome outcome = tool.Wait();
        shown = terminal.ReadAll();
        return outcome;
    }

    std::string shown;
};

TEST_F(Terminals, TakeNoPicturesAndNoMask)
{
    const struct
    {
        std::vector<std::string> arguments;
        const char* what;
    } uses[] = {{{"convert", Path("in.tif"), "-"}, "a picture"},
                {{"preview", Path("in.tif"), "-"}, "a picture"},
                {{"preview", Path("in.tif"), "-", "--crop", "0,0,5,5"}, "a picture"},
                {{"mask", "--export", "raw16"}, "the mask"},
                {{"mask", "--export", "raw16", "-"}, "the mask"}};
    for (const auto& use : uses) {
        for (const bool dry : {false, true}) {
            std::vector<std::string> arguments = use.arguments;
            if (dry)
                arguments.emplace_back("--dry-run");
            EXPECT_TRUE(Refused(RunOn(STDOUT_FILENO, arguments), 2,
                                {"standard output: is a terminal; " + std::string(use.what) +
                                 " goes to a file or into a pipe"}))
                << arguments[0];
            EXPECT_EQ("", shown) << arguments[0];
        }
    }
    EXPECT_EQ(std::vector<std::string>{"in.tif"}, Files());
}

TEST_F(Terminals, SeeFilesWritten)
{
    EXPECT_TRUE(EndedSilently(RunOn(STDOUT_FILENO, {"preview", Path("in.tif"), Path("o.png")})));
    EXPECT_TRUE(EndedSilently(RunOn(STDOUT_FILENO, {"mask", "--export", "raw16", Path("m.raw")})));
    EXPECT_EQ((std::vector<std::string>{"in.tif", "m.raw", "o.png"}), Files());
}

TEST_F(Terminals, GiveNoPicture)
{
    EXPECT_TRUE(Refused(RunOn(STDIN_FILENO, {"convert", "-", Path("out.tif")}), 6,
                        {"standard input: cannot be read: it is a terminal, and no regular file "
                         "or pipe"}));
    EXPECT_TRUE(Refused(Run({"convert", "/dev/zero", Path("out.tif")}), 6,
                        {"/dev/zero: cannot be read: it is not a regular file or a pipe"}));
    EXPECT_EQ(std::vector<std::string>{"in.tif"}, Files());
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
