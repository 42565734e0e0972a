#include "zvk/diagnostics.h"

#include "system_tools/code_points.h"
#include "system_tools/line_buffer.h"

#include <atomic>
#include <charconv>
#include <cstdio>
#include <cwchar>
#include <limits>

namespace zvk::Diagnostics {
namespace {

class StandardErrorSink final : public ILogSink
{
public:
    void Write(const wchar_t* line) override
    {
        if (line == nullptr)
            return;
        // A stream that the host has turned wide refuses bytes.
        if (std::fwide(stderr, 0) > 0) {
            std::fwprintf(stderr, L"%ls\n", line);
            return;
        }
        LineBuffer<char> bytes;
        while (*line != 0)
            PutCodePoint(bytes, TakeCodePoint(line));
        bytes.End('\n');
        // One call for line and line end, so that lines of several threads don't mix.
        std::fwrite(bytes.Data(), 1, bytes.Length(), stderr);
        // Some systems hold back what goes to a file, and a fault that is logged may end the
        // process.
        std::fflush(stderr);
    }
};

// Both are there before the first constructor of a host runs and after its last destructor.
constinit StandardErrorSink builtInSink;
constinit std::atomic<ILogSink*> defaultSink{&builtInSink};

// Whatever could end or overwrite a line becomes a blank: a failure is one line of the log.
constexpr char32_t KeepOnOneLine(char32_t codePoint)
{
    const bool isControl = codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0);
    const bool isSeparator = codePoint == 0x2028 || codePoint == 0x2029;
    return isControl || isSeparator ? U' ' : codePoint;
}

template <typename Character>
void AppendText(LineBuffer<wchar_t>& line, const Character* text)
{
    while (*text != 0)
        PutCodePoint(line, KeepOnOneLine(TakeCodePoint(text)));
}

template <typename Character>
void WriteLine(const wchar_t* context, const Character* text, ILogSink& sink)
{
    LineBuffer<wchar_t> line;
    AppendText(line, context != nullptr ? context : L"");
    if (text != nullptr)
        AppendText(line, text);
    else
        AppendText(line, "(no text)");
    line.End(L'\0');
    try {
        sink.Write(line.Data());
    } catch (...) {
        // The failure that is being logged is the one that the caller has to see.
    }
}

} // namespace

namespace Seh {

ILogSink& GetDefaultLog()
{
    return *defaultSink.load(std::memory_order_acquire);
}

void SetDefaultLog(ILogSink* sink)
{
    defaultSink.store(sink != nullptr ? sink : &builtInSink, std::memory_order_release);
}

} // namespace Seh

void StandardExceptionLogger::Log(unsigned long code, const wchar_t* context, ILogSink& sink)
{
    char digits[std::numeric_limits<unsigned long>::digits10 + 2] = {};
    std::to_chars(digits, digits + sizeof(digits) - 1, code);
    WriteLine(context, digits, sink);
}

void StandardExceptionLogger::Log(const std::exception& e, const wchar_t* context, ILogSink& sink)
{
    WriteLine(context, e.what(), sink);
}

void StandardExceptionLogger::Log(const std::exception* e, const wchar_t* context, ILogSink& sink)
{
    WriteLine(context, e != nullptr ? e->what() : nullptr, sink);
}

void StandardExceptionLogger::Log(const char* text, const wchar_t* context, ILogSink& sink)
{
    WriteLine(context, text, sink);
}

void StandardExceptionLogger::Log(const wchar_t* text, const wchar_t* context, ILogSink& sink)
{
    WriteLine(context, text, sink);
}

} // namespace zvk::Diagnostics
