#include "tools/pelkraft/failure.h"

#include "tools/pelkraft/memory_end.h"
#include "tools/pelkraft/message_style.h"

#include <cstdio>
#include <new>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

// File names and messages of damaged files may hold anything; a terminal must not act on it.
std::string OneLine(std::string text)
{
    for (char& letter : text) {
        const auto code = static_cast<unsigned char>(letter);
        if (code < 0x20 || code == 0x7F)
            letter = '?';
    }
    return text;
}

void PrintLine(const char* kind, const std::string& file, const std::string& text)
{
    const std::string where = file.empty() ? std::string() : OneLine(file) + ": ";
    std::fprintf(stderr, "pelkraft: %s%s%s\n", where.c_str(), kind, OneLine(text).c_str());
    std::fflush(stderr);
}

ExitCode ReportFailure()
{
    try {
        throw;
    } catch (const Failure& failure) {
        PrintError(failure.File(), failure.what());
        return failure.Code();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& e) {
        PrintError({}, e.what());
        return ExitCode::ReadWrite;
    } catch (const char* text) {
        PrintError({}, text);
        return ExitCode::Unsupported;
    }
}

} // namespace

Failure::Failure(ExitCode newCode, std::string newFile, std::string newText)
    : code(newCode), file(std::move(newFile)), text(std::move(newText))
{}

void PrintError(const std::string& file, const std::string& text)
{
    PrintLine("", file, text);
}

void PrintWarning(const std::string& file, const std::string& text)
{
    if (!GetMessageStyle().quiet)
        PrintLine("warning: ", file, text);
}

void PrintNote(const std::string& file, const std::string& text)
{
    if (GetMessageStyle().verbose)
        PrintLine("", file, text);
}

ExitCode ReportCurrentException() noexcept
{
    try {
        return ReportFailure();
    } catch (const std::bad_alloc&) {
        // Also where there is no memory to report another failure.
        PrintOutOfMemory();
        return ExitCode::Memory;
    }
}

} // namespace zvk::Pelkraft::Client
