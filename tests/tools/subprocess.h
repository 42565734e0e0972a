#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// The end of a program, and its output.
struct Outcome
{
    // -1 if a signal ended it.
    int exitCode = -1;
    int signalNumber = 0;
    std::string output;
    std::string errors;
};

// A program that runs beside the test, both its streams kept in files.
class Subprocess
{
public:
    Subprocess(const std::vector<std::string>& command, const std::string& scratchFolder);
    // prepare runs in the new process before the program starts; only where a process forks.
    Subprocess(const std::vector<std::string>& command, const std::string& scratchFolder,
               const std::function<void()>& prepare);

    // The system's number of the process, or its handle.
    std::intptr_t Id() const { return id; }
    // True if there is nothing left to wait for.
    [[nodiscard]] bool HasEnded() const;
    // One of Interrupts().
    void Interrupt(int number) const;
    [[nodiscard]] Outcome Wait();

private:
    std::intptr_t id;
    std::string outputPath;
    std::string errorPath;
};

// The ways of this system to ask a program to stop: numbers of signals or of console events.
[[nodiscard]] std::vector<int> Interrupts();

// Runs pelkraft itself and waits for it. memoryBytes limits what it may allocate; 0 does not. A
// program built with sanitizers goes without the limit, since it needs more for itself, and so
// does one for Windows, since Wine has none.
[[nodiscard]] Outcome RunTool(const std::string& scratchFolder,
                              const std::vector<std::string>& arguments,
                              unsigned long memoryBytes = 0);

} // namespace zvk::Pelkraft::TestSupport
