#include "tests/system_tools/recording_sink.h"
#include "tests/system_tools/standard_error_capture.h"
#include "zvk/diagnostics.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <string>

namespace zvk::Diagnostics {
namespace {

using Pelkraft::TestSupport::StandardErrorCapture;

TEST(DefaultLog, WritesToTheStandardErrorStreamAtFirst)
{
    const StandardErrorCapture capture;
    StandardExceptionLogger::Log("no such row", L"FillFrom: ", Seh::GetDefaultLog());
    StandardExceptionLogger::Log(7ul, L"FillFrom: ", Seh::GetDefaultLog());
    EXPECT_EQ("FillFrom: no such row\nFillFrom: 7\n", capture.Text());
}

TEST(DefaultLog, IsTheSinkThatWasSetUntilNullBringsTheBuiltInOneBack)
{
    ILogSink& builtIn = Seh::GetDefaultLog();
    RecordingSink first;
    RecordingSink second;
    Seh::SetDefaultLog(&first);
    EXPECT_EQ(&first, &Seh::GetDefaultLog());
    Seh::SetDefaultLog(&second);
    EXPECT_EQ(&second, &Seh::GetDefaultLog());
    Seh::SetDefaultLog(nullptr);
    EXPECT_EQ(&builtIn, &Seh::GetDefaultLog());
}

TEST(BuiltInSink, WritesUtf8)
{
    const StandardErrorCapture capture;
    Seh::GetDefaultLog().Write(L"caf\u00E9 \u20AC \U0001F5A8");
    EXPECT_EQ("caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x96\xA8\n", capture.Text());
}

TEST(BuiltInSink, WritesALineOfAnyLength)
{
    const StandardErrorCapture capture;
    std::string expected;
    for (const std::size_t length : {0u, 1u, 510u, 511u, 512u, 513u, 1023u, 1024u, 100000u}) {
        Seh::GetDefaultLog().Write(std::wstring(length, L'x').c_str());
        expected += std::string(length, 'x') + "\n";
    }
    EXPECT_EQ(expected, capture.Text());
}

TEST(BuiltInSink, IgnoresNull)
{
    const StandardErrorCapture capture;
    Seh::GetDefaultLog().Write(nullptr);
    EXPECT_EQ("", capture.Text());
}

TEST(BuiltInSink, LeavesTheStreamNarrow)
{
    const StandardErrorCapture capture;
    Seh::GetDefaultLog().Write(L"line");
    EXPECT_LE(std::fwide(stderr, 0), 0);
    EXPECT_LT(0, std::fprintf(stderr, "host\n"));
    EXPECT_EQ("line\nhost\n", capture.Text());
}

// On Windows a stream is neither wide nor narrow.
#if !defined(_WIN32)

[[noreturn]] void LogOntoAWideStream()
{
    // Only a stream that has no orientation yet takes one.
    if (std::freopen("/dev/fd/2", "a", stderr) == nullptr || std::fwide(stderr, 1) <= 0)
        std::exit(3);
    Seh::GetDefaultLog().Write(L"from the log");
    std::fputws(L"from the host\n", stderr);
    std::exit(std::fwide(stderr, 0) > 0 ? 0 : 4);
}

TEST(BuiltInSinkDeathTest, ReachesAStreamThatTheHostHasMadeWide)
{
    EXPECT_EXIT(LogOntoAWideStream(), testing::ExitedWithCode(0), "from the log\nfrom the host\n");
}

#endif

} // namespace
} // namespace zvk::Diagnostics
