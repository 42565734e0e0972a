#pragma once

#include <sys/types.h>

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
    // prepare runs in the new process before the program starts.
    Subprocess(const std::vector<std::string>& command, const std::string& scratchFolder,
               const std::function<void()>& prepare = {});

    pid_t Id() const { return id; }
    // True if there is nothing left to wait for.
    [[nodiscard]] bool HasEnded() const;
    [[nodiscard]] Outcome Wait();

private:
    pid_t id;
    std::string outputPath;
    std::string errorPath;
};

// Runs pelkraft itself and waits for it. memoryBytes limits what it may allocate; 0 does not, and
// a program built with sanitizers goes without the limit, since it needs more for itself.
[[nodiscard]] Outcome RunTool(const std::string& scratchFolder,
                              const std::vector<std::string>& arguments,
                              unsigned long memoryBytes = 0);

} // namespace zvk::Pelkraft::TestSupport
