#include "tests/tools/convert_failures.h"

#include <sys/resource.h>
#include <sys/stat.h>

namespace zvk::Pelkraft::TestSupport {
namespace {

TEST_F(ConvertFailures, NameADeviceThatIsNoTarget)
{
    MakeInput();
    for (const std::string target : {"/proc/out.tif", "/dev/null"}) {
        EXPECT_TRUE(Refused(Run({"convert", Path("in.tif"), target}), 6,
                            {target + ": cannot be written: "}));
    }
    EXPECT_TRUE(LeftNothing());
    struct stat status = {};
    ASSERT_EQ(0, stat("/dev/null", &status));
    EXPECT_TRUE(S_ISCHR(status.st_mode));
}

// A sanitizer ends the program itself where memory is short.
#if !defined(PELKRAFT_SANITIZED)
TEST_F(ConvertFailures, TellWhenMemoryIsShort)
{
    FileForm form;
    form.compression = COMPRESSION_ADOBE_DEFLATE;
    WriteTiff(Path("in.tif"), BlankImage(20000000, 1, 1, 8), form);
    EXPECT_TRUE(Refused(Convert({"--bits", "16", "--threads", "1"}, 50UL << 20), 7, {"memory"}));
    EXPECT_TRUE(LeftNothing());
}
#endif

TEST_F(ConvertFailures, LeaveTheOldFileWhenTheDiskIsFull)
{
    MakeInput(16);
    WriteBytes(Path("out.tif"), "old");
    Subprocess tool({PELKRAFT_TOOL, "convert", Path("in.tif"), Path("out.tif")},
                    folder + "/streams", [] {
                        const rlimit limit = {2000, 2000};
                        setrlimit(RLIMIT_FSIZE, &limit);
                    });
    EXPECT_TRUE(Refused(tool.Wait(), 6, {"out.tif", "cannot be written"}));
    EXPECT_EQ("old", Bytes(Path("out.tif")));
    EXPECT_EQ((std::vector<std::string>{"in.tif", "out.tif"}), Files());
}

TEST_F(ConvertFailures, DontComeFromALinkAsTheOutput)
{
    MakeInput();
    WriteBytes(Path("target.tif"), "old");
    chmod(Path("target.tif").c_str(), 0640);
    std::filesystem::create_symlink("target.tif", Path("out.tif"));
    ASSERT_TRUE(EndedSilently(Convert()));
    EXPECT_TRUE(std::filesystem::is_symlink(Path("out.tif")));
    EXPECT_EQ(RandomImage(40, 30, 3, 8, 8).samples, Output().samples);
    struct stat status = {};
    ASSERT_EQ(0, stat(Path("target.tif").c_str(), &status));
    EXPECT_EQ(0640U, status.st_mode & 0777);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
