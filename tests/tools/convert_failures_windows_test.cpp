#include "tests/tools/convert_failures.h"
#include "tools/pelkraft/input_file.h"
#include "tools/pelkraft/mapped_file.h"

#include <windows.h>

namespace zvk::Pelkraft::TestSupport {
namespace {

TEST_F(ConvertFailures, NameADeviceThatIsNoTarget)
{
    MakeInput();
    for (const std::string target : {"NUL", "nowhere\\out.tif", "a?b.tif"}) {
        EXPECT_TRUE(Refused(Run({"convert", Path("in.tif"), target}), 6,
                            {target + ": cannot be written: "}));
    }
    EXPECT_TRUE(Refused(Run({"convert", "NUL", Path("out.tif")}), 6,
                        {"NUL: cannot be read: it is not a regular file"}));
    EXPECT_TRUE(LeftNothing());
}

TEST_F(ConvertFailures, LeaveAFileThatMustNotBeWritten)
{
    MakeInput();
    WriteBytes(Path("out.tif"), "old");
    const std::filesystem::path target = Path("out.tif");
    ASSERT_NE(0, SetFileAttributesW(target.c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_TRUE(Refused(Convert(), 6, {"out.tif: cannot be written: Permission denied"}));
    EXPECT_EQ("old", Bytes(Path("out.tif")));
    EXPECT_EQ((std::vector<std::string>{"in.tif", "out.tif"}), Files());
    ASSERT_NE(0, SetFileAttributesW(target.c_str(), FILE_ATTRIBUTE_NORMAL));
}

TEST_F(ConvertFailures, LeaveAFileThatAnotherProgramHolds)
{
    MakeInput();
    WriteBytes(Path("out.tif"), "old");
    const std::filesystem::path target = Path("out.tif");
    const HANDLE held = CreateFileW(target.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(INVALID_HANDLE_VALUE, held);
    EXPECT_TRUE(Refused(Convert(), 6, {"out.tif: cannot be written: Permission denied"}));
    CloseHandle(held);
    EXPECT_EQ("old", Bytes(Path("out.tif")));
    EXPECT_EQ((std::vector<std::string>{"in.tif", "out.tif"}), Files());
}

// No disk fails here, so that the system's exception for it is raised by hand.
TEST_F(ConvertFailures, ReadZerosWhereTheDiskFails)
{
    WriteBytes(Path("in.tif"), std::string(100000, 'x'));
    const Client::InputFile file(Path("in.tif"), Client::FileKind::Tiff);
    const Client::MappedFile mapped(file.Descriptor(), file.Size());
    const auto* const bytes = static_cast<const volatile char*>(mapped.Data());
    ASSERT_NE(nullptr, bytes);
    EXPECT_EQ('x', bytes[0]);
    EXPECT_EQ('x', bytes[99999]);
    EXPECT_FALSE(mapped.Failed());

    const ULONG_PTR reading = 0;
    const auto address = reinterpret_cast<ULONG_PTR>(mapped.Data()) + 50000;
    const ULONG_PTR status = 0xC0000185;
    const ULONG_PTR information[] = {reading, address, status};
    RaiseException(static_cast<DWORD>(EXCEPTION_IN_PAGE_ERROR), 0, 3, information);
    EXPECT_TRUE(mapped.Failed());
    EXPECT_EQ('\0', bytes[50000]);
    EXPECT_EQ('\0', bytes[0]);
    EXPECT_EQ('\0', bytes[99999]);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
