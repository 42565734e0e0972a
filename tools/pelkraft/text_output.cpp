#include "tools/pelkraft/text_output.h"

#include "tools/pelkraft/atomic_output.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/file_calls.h"
#include "tools/pelkraft/input_file.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/system_calls.h"

#include <cstdio>

namespace zvk::Pelkraft::Client {

void WriteWholeFile(const std::string& path, const std::string& bytes, const OutputRules& rules)
{
    AtomicOutput output(path, rules);
    output.Write(bytes);
    StopIfInterrupted(path);
    output.Commit();
}

void PrintText(const std::string& text)
{
    if (const int error = WriteAll(standardOutput, text.data(), text.size()); error != 0)
        throw Failure(ExitCode::ReadWrite, {},
                      "the standard output can't be written: " + ErrorText(error));
}

void PrintBeside(const std::string& outputPath, const std::string& text)
{
    if (outputPath != standardStream) {
        PrintText(text);
        return;
    }
    [[maybe_unused]] const int ignored = WriteAll(standardError, text.data(), text.size());
}

void RefuseTerminal(const std::string& what)
{
    if (OutputIsSeen())
        throw Failure(ExitCode::Usage, OutputName(standardStream),
                      "is a terminal; " + what + " goes to a file or into a pipe");
}

std::string ByteWords(std::uint64_t count)
{
    return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

std::string SpeedWords(std::uint64_t rows, std::chrono::steady_clock::duration time)
{
    const double seconds = std::chrono::duration<double>(time).count();
    const double rate = seconds > 0 ? static_cast<double>(rows) / seconds : 0;
    char line[128];
    std::snprintf(line, sizeof line, "%llu rows in %.3f s, %.0f rows per second",
                  static_cast<unsigned long long>(rows), seconds, rate);
    return line;
}

void PrintSpeed(const std::string& outputPath, std::uint64_t rows,
                std::chrono::steady_clock::duration time)
{
    PrintBeside(outputPath, SpeedWords(rows, time) + '\n');
}

} // namespace zvk::Pelkraft::Client
