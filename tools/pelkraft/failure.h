#pragma once

#include "tools/pelkraft/exit_code.h"

#include <exception>
#include <string>
#include <utility>

namespace zvk::Pelkraft::Client {

// Ends a command: which file, what is wrong with it, and where it helps what is supported.
class Failure : public std::exception
{
public:
    Failure(ExitCode newCode, std::string newFile, std::string newText)
        : code(newCode), file(std::move(newFile)), text(std::move(newText))
    {}

    const char* what() const noexcept override { return text.c_str(); }
    ExitCode Code() const noexcept { return code; }
    const std::string& File() const noexcept { return file; }

private:
    ExitCode code;
    std::string file;
    std::string text;
};

// One line on the standard error stream each, whatever the texts hold. An empty file is left out.
// While pages are visited, warnings wait for those of the other pages.
void PrintError(const std::string& file, const std::string& text);
void PrintWarning(const std::string& file, const std::string& text);
// Tells those who ask for it what was done.
void PrintNote(const std::string& file, const std::string& text);
bool NotesAreWanted();

// Prints what the exception that is being handled says, and gives the code to exit with.
ExitCode ReportCurrentException() noexcept;

} // namespace zvk::Pelkraft::Client
