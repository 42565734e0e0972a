#include "tools/pelkraft/failure.h"

#include "pelkraft/plan.hpp"
#include "tools/pelkraft/input_file.h"
#include "tools/pelkraft/memory_end.h"
#include "tools/pelkraft/message_style.h"
#include "tools/pelkraft/page_warnings.h"
#include "tools/pelkraft/shown_text.h"
#include "tools/pelkraft/terminal.h"

#include <cstdio>
#include <new>

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* errorColour = "\033[1;31m";
constexpr const char* warningColour = "\033[1;35m";
constexpr const char* usualColour = "\033[0m";

// File names and messages of damaged files may hold anything; a terminal must not act on it.
void PrintLine(const char* colour, const char* kind, const std::string& file,
               const std::string& text)
{
    const std::string where = file.empty() ? std::string() : Shown(InputName(file)) + ": ";
    const bool coloured = *colour != 0 && GetMessageStyle().colour && ErrorsTakeColours();
    const char* const start = coloured ? colour : "";
    const char* const end = coloured ? usualColour : "";
    // A warning is known by its kind, an error by the program's name.
    if (*kind != 0)
        std::fprintf(stderr, "pelkraft: %s%s%s%s%s\n", where.c_str(), start, kind, end,
                     Shown(text).c_str());
    else
        std::fprintf(stderr, "%spelkraft:%s %s%s\n", start, end, where.c_str(),
                     Shown(text).c_str());
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
    } catch (const PelkraftError& refusal) {
        if (refusal.GetStatus() == PLK_NO_MEMORY)
            throw std::bad_alloc();
        PrintError({}, refusal.what());
        return ExitCode::Unsupported;
    } catch (const std::exception& e) {
        PrintError({}, e.what());
        return ExitCode::ReadWrite;
    } catch (const char* text) {
        PrintError({}, text);
        return ExitCode::Unsupported;
    }
}

} // namespace

void PrintError(const std::string& file, const std::string& text)
{
    PrintLine(errorColour, "", file, text);
}

void PrintWarning(const std::string& file, const std::string& text)
{
    if (!PageWarnings::Keep(file, text) && !GetMessageStyle().quiet)
        PrintLine(warningColour, "warning: ", file, text);
}

bool NotesAreWanted()
{
    return GetMessageStyle().verbose;
}

void PrintNote(const std::string& file, const std::string& text)
{
    if (NotesAreWanted())
        PrintLine("", "", file, text);
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
