#include "tests/system_tools/recording_sink.h"
#include "zvk/diagnostics.h"

#include <gtest/gtest.h>

#include <climits>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

namespace zvk::Diagnostics {
namespace {

using Lines = std::vector<std::wstring>;

constexpr const wchar_t* context = L"FillFrom has thrown C++ exception: ";

template <typename Thing>
Lines LinesOf(const Thing& thing, const wchar_t* newContext = context)
{
    RecordingSink sink;
    StandardExceptionLogger::Log(thing, newContext, sink);
    return sink.Lines();
}

Lines LineWith(const std::wstring& text)
{
    return {context + text};
}

class SinkThatThrows final : public ILogSink
{
public:
    void Write(const wchar_t*) override
    {
        ++calls;
        switch (calls) {
        case 1:
            throw std::runtime_error("disk full");
        case 2:
            throw std::bad_alloc();
        case 3:
            throw "text";
        default:
            throw calls;
        }
    }

    int calls = 0;
};

TEST(ExceptionLogger, WritesANumberBehindTheContext)
{
    EXPECT_EQ(LineWith(L"0"), LinesOf(0ul));
    EXPECT_EQ(LineWith(L"3221225477"), LinesOf(0xC0000005ul));
    EXPECT_EQ(LineWith(std::to_wstring(ULONG_MAX)), LinesOf(ULONG_MAX));
}

TEST(ExceptionLogger, WritesWhatAnExceptionSaysOfItself)
{
    const std::runtime_error failure("row too short");
    const std::exception& reference = failure;
    const std::exception* const pointer = &failure;
    EXPECT_EQ(LineWith(L"row too short"), LinesOf(reference));
    EXPECT_EQ(LineWith(L"row too short"), LinesOf(pointer));
}

TEST(ExceptionLogger, WritesANarrowOrAWideText)
{
    const char* const narrow = "zvk::Pelkraft::Convert unsupported conversion";
    const wchar_t* const wide = L"zvk::Pelkraft::Convert unsupported conversion";
    EXPECT_EQ(LineWith(wide), LinesOf(narrow));
    EXPECT_EQ(LineWith(wide), LinesOf(wide));
}

TEST(ExceptionLogger, WidensUtf8AndAnyOtherByte)
{
    const char* const utf8 = "\xC3\xA9\xE2\x82\xAC";
    const char* const latin1 = "caf\xE9";
    EXPECT_EQ(LineWith(L"\u00E9\u20AC"), LinesOf(utf8));
    EXPECT_EQ(LineWith(L"caf\u00E9"), LinesOf(latin1));
}

TEST(ExceptionLogger, WritesALineForEmptyTextsToo)
{
    const char* const empty = "";
    EXPECT_EQ(LineWith(L""), LinesOf(empty));
    EXPECT_EQ(Lines{L""}, LinesOf(empty, L""));
}

TEST(ExceptionLogger, ToleratesNullPointers)
{
    const std::exception* const noException = nullptr;
    const char* const noNarrow = nullptr;
    const wchar_t* const noWide = nullptr;
    EXPECT_EQ(LineWith(L"(no text)"), LinesOf(noException));
    EXPECT_EQ(LineWith(L"(no text)"), LinesOf(noNarrow));
    EXPECT_EQ(LineWith(L"(no text)"), LinesOf(noWide));
    EXPECT_EQ(Lines{L"(no text)"}, LinesOf(noWide, nullptr));
    EXPECT_EQ(Lines{L"7"}, LinesOf(7ul, nullptr));

    class Silent final : public std::exception
    {
        const char* what() const noexcept override { return nullptr; }
    } silent;
    const std::exception& reference = silent;
    EXPECT_EQ(LineWith(L"(no text)"), LinesOf(reference));
}

TEST(ExceptionLogger, KeepsAnyTextOnOneLine)
{
    const char* const narrow = "a\nb\r\nc\td\x1B[2J\x7F\xC2\x85\xE2\x80\xA8z\n";
    const wchar_t* const wide = L"a\nb\r\nc\td\x1B[2J\x7F\u0085\u2029z\n";
    EXPECT_EQ(LineWith(L"a b  c d [2J   z "), LinesOf(narrow));
    EXPECT_EQ(LineWith(L"a b  c d [2J   z "), LinesOf(wide));
    EXPECT_EQ(Lines{L"a b: 7"}, LinesOf(7ul, L"a\nb: "));
}

TEST(ExceptionLogger, WritesTextsOfEveryLengthWhole)
{
    std::string text;
    std::wstring wideText;
    for (int i = 0; i < 5000; ++i) {
        ASSERT_EQ(LineWith(wideText), LinesOf(text.c_str()));
        text += static_cast<char>('a' + i % 26);
        wideText += static_cast<wchar_t>(L'a' + i % 26);
        if (i > 1100)
            i += 500;
    }
}

TEST(ExceptionLogger, LetsNothingOutOfASinkThatThrows)
{
    SinkThatThrows sink;
    const std::runtime_error failure("row too short");
    EXPECT_NO_THROW(StandardExceptionLogger::Log(1ul, context, sink));
    EXPECT_NO_THROW(StandardExceptionLogger::Log(failure, context, sink));
    EXPECT_NO_THROW(StandardExceptionLogger::Log(&failure, context, sink));
    EXPECT_NO_THROW(StandardExceptionLogger::Log("text", context, sink));
    EXPECT_NO_THROW(StandardExceptionLogger::Log(L"text", context, sink));
    EXPECT_EQ(5, sink.calls);
}

TEST(ExceptionLogger, LeavesTheFailureInFlightAloneWhenTheSinkThrows)
{
    static const char* const failure = "row too short";
    SinkThatThrows sink;
    try {
        try {
            throw failure;
        } catch (const char* text) {
            StandardExceptionLogger::Log(text, context, sink);
            throw;
        }
    } catch (const char* text) {
        EXPECT_EQ(failure, text);
    }
    EXPECT_EQ(1, sink.calls);
}

} // namespace
} // namespace zvk::Diagnostics
