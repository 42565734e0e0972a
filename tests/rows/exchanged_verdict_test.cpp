#include "tests/rows/refusal.h"
#include "tests/rows/taught_row.h"
#include "tests/support/guarded_buffer.h"
#include "tests/support/structured_handler.h"
#include "zvk/diagnostics.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

namespace {

// The last question to the filter of this program.
struct Question
{
    int number = 0;
    unsigned long code = 0;
    unsigned long recordedCode = 0;
    const void* sink = nullptr;
};

Question last;

} // namespace

// In the place of the companion's: it lets the guard handle everything.
namespace zvk::Diagnostics::Seh {

long LogAllCatchNothing(_EXCEPTION_POINTERS* pointers, unsigned long code, ILogSink& sink)
{
    last = {last.number + 1, code, pointers->ExceptionRecord->ExceptionCode, &sink};
    return EXCEPTION_EXECUTE_HANDLER;
}

} // namespace zvk::Diagnostics::Seh

namespace zvk::Pelkraft::TestSupport {
namespace {

class Verdict : public ::testing::Test
{
protected:
    // Runs a conversion, which must end without failure, exception or line of the log.
    template <typename Call>
    void ExpectQuietEnd(Call call)
    {
        last = {};
        unsigned long passed = 0;
        std::string end;
        EXPECT_EQ(std::vector<std::wstring>{}, AllLinesOf([&] {
                      passed = RunUnderHandler([&] {
                                   call();
                                   end = returned;
                               }).code;
                  }));
        EXPECT_EQ(0UL, passed);
        EXPECT_EQ(returned, end);
        EXPECT_EQ(1, last.number);
        EXPECT_EQ(last.recordedCode, last.code);
    }
};

TEST_F(Verdict, ToHandleAFaultEndsTheConversionWithoutAResult)
{
    const GuardedBuffer open(std::vector<unsigned char>(100, 0xA5));
    const ImageRow source(100, 1, 8, false, open.data() + open.size());
    ImageRow row(100, 1, 8, false, open.data());
    const int map[] = {0};
    for (const bool portable : {false, true}) {
        ExpectQuietEnd([&] { row.FillFrom(source, false, portable); });
        EXPECT_EQ(STATUS_ACCESS_VIOLATION, last.code);
        ExpectQuietEnd([&] { row.FillFromWithRemap(source, map, false, portable); });
        EXPECT_EQ(STATUS_ACCESS_VIOLATION, last.code);
        ExpectQuietEnd([&] { row.FillFromWithPixelRepeat(source, 1, false, portable); });
        EXPECT_EQ(STATUS_ACCESS_VIOLATION, last.code);
    }
    EXPECT_EQ(std::vector<unsigned char>(100, 0xA5), open.bytes());
}

TEST_F(Verdict, ToHandleAThrowEndsTheConversionWithoutAFailure)
{
    TaughtRow row;
    row.lesson = [] { throw "paper jam"; };
    ExpectQuietEnd([&] { row.FillFrom(ImageRow(), nullptr); });
    row.lesson = [] { throw 5; };
    ExpectQuietEnd([&] { row.FillFromWithPixelRepeat(ImageRow(), 1, nullptr); });
}

TEST_F(Verdict, IsAskedForWithTheDefaultLog)
{
    class SilentSink final : public Diagnostics::ILogSink
    {
    public:
        void Write(const wchar_t*) override {}
    };
    SilentSink sink;
    TaughtRow row;
    row.lesson = [] { RaiseException(STATUS_INTEGER_DIVIDE_BY_ZERO, 0, 0, nullptr); };
    Diagnostics::Seh::SetDefaultLog(&sink);
    last = {};
    row.FillFrom(ImageRow(), nullptr);
    Diagnostics::Seh::SetDefaultLog(nullptr);
    EXPECT_EQ(1, last.number);
    EXPECT_EQ(STATUS_INTEGER_DIVIDE_BY_ZERO, last.code);
    EXPECT_EQ(static_cast<Diagnostics::ILogSink*>(&sink), last.sink);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
