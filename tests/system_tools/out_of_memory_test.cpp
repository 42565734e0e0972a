#include "system_tools/line_buffer.h"
#include "tests/support/counted_memory.h"
#include "tests/system_tools/standard_error_capture.h"
#include "zvk/diagnostics.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <cwchar>
#include <new>
#include <string>

namespace zvk::Diagnostics {
namespace {

using Pelkraft::TestSupport::DeniedMemory;
using Pelkraft::TestSupport::StandardErrorCapture;

constexpr const wchar_t* context = L"FillFrom has thrown C++ exception: ";

// Needs no memory itself, so that it can watch what happens without any.
class CountingSink final : public ILogSink
{
public:
    void Write(const wchar_t* line) override
    {
        ++calls;
        length = std::wcslen(line);
        startsWithContext = std::wcsncmp(line, context, std::wcslen(context)) == 0;
        lastCharacter = length != 0 ? line[length - 1] : L'\0';
    }

    int calls = 0;
    std::size_t length = 0;
    bool startsWithContext = false;
    wchar_t lastCharacter = L'\0';
};

TEST(LogWithoutMemory, WritesAShortLineWhole)
{
    CountingSink sink;
    {
        const DeniedMemory denied;
        StandardExceptionLogger::Log(std::bad_alloc(), context, sink);
    }
    EXPECT_EQ(1, sink.calls);
    EXPECT_TRUE(sink.startsWithContext);
    EXPECT_EQ(std::wcslen(context) + std::strlen(std::bad_alloc().what()), sink.length);
}

TEST(LogWithoutMemory, CutsALongLine)
{
    const std::string text(3000, 'x');
    CountingSink sink;
    {
        const DeniedMemory denied;
        StandardExceptionLogger::Log(text.c_str(), context, sink);
    }
    EXPECT_EQ(1, sink.calls);
    EXPECT_TRUE(sink.startsWithContext);
    EXPECT_EQ(L'x', sink.lastCharacter);
    EXPECT_GT(sink.length, std::wcslen(context) + 100);
    EXPECT_LT(sink.length, std::wcslen(context) + text.size());
}

TEST(LogWithoutMemory, StillEndsALineOfTheBuiltInSink)
{
    const StandardErrorCapture capture;
    const std::wstring line(3000, L'x');
    {
        const DeniedMemory denied;
        Seh::GetDefaultLog().Write(line.c_str());
    }
    const std::string text = capture.Text();
    EXPECT_GT(text.size(), 100u);
    EXPECT_LT(text.size(), 3000u);
    EXPECT_EQ(std::string(text.size() - 1, 'x') + "\n", text);
}

TEST(LogWithoutMemory, LeavesNoHoleInALineWhenMemoryComesBack)
{
    LineBuffer<char> line;
    {
        const DeniedMemory denied;
        for (int i = 0; i < 3000; ++i)
            line.Append('x');
    }
    const std::size_t cutLength = line.Length();
    line.Append('y');
    EXPECT_EQ(cutLength, line.Length());
}

} // namespace
} // namespace zvk::Diagnostics
