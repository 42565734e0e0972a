#include "pelkraft/dither.h"
#include "tests/tools/tool_fixture.h"

namespace zvk::Pelkraft::TestSupport {
namespace {

class MaskVerb : public ToolFixture
{
protected:
    // The ranks of the library, the low byte of each first.
    static std::string Ranks()
    {
        std::string bytes;
        for (int place = 0; place < 65536; ++place) {
            bytes += static_cast<char>(plk_dither_mask()[place] % 256);
            bytes += static_cast<char>(plk_dither_mask()[place] / 256);
        }
        return bytes;
    }
};

TEST_F(MaskVerb, ExportsTheRanksToAFile)
{
    ASSERT_TRUE(EndedSilently(Run({"mask", "--export", "raw16", Path("ranks")})));
    EXPECT_TRUE(Bytes(Path("ranks")) == Ranks());
    EXPECT_TRUE(
        Refused(Run({"mask", "--export", "raw16", Path("ranks"), "--no-clobber"}), 6, {"ranks"}));
}

TEST_F(MaskVerb, ExportsTheRanksToTheStandardOutputStream)
{
    for (const bool named : {false, true}) {
        std::vector<std::string> arguments = {"mask", "--export", "raw16", "--explain"};
        if (named)
            arguments.emplace_back("-");
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(0, outcome.exitCode);
        EXPECT_TRUE(outcome.output == Ranks());
    }
}

TEST_F(MaskVerb, WritesNothingOnADryRun)
{
    const Outcome outcome =
        Run({"mask", "--export", "raw16", Path("ranks"), "--dry-run", "--explain"});
    EXPECT_EQ(0, outcome.exitCode);
    EXPECT_NE(std::string::npos, outcome.output.find("131072 bytes"));
    EXPECT_FALSE(std::filesystem::exists(Path("ranks")));
}

TEST_F(MaskVerb, WantsOneOfItsTwoOptions)
{
    EXPECT_TRUE(Refused(Run({"mask"}), 2, {"--verify", "--export raw16"}));
    EXPECT_TRUE(Refused(Run({"mask", "--verify", "--export", "raw16"}), 2, {"--export"}));
    EXPECT_TRUE(Refused(Run({"mask", "--export", "raw8"}), 2, {"raw16"}));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
