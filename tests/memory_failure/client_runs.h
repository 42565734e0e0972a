#pragma once

#include "tests/memory_failure/failing_memory.h"
#include "tests/tools/tool_fixture.h"

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// A command line of the program, and what it works on. IN.tif, OUT.tif, PATTERN, SVG and PNG
// stand for files of the test's folder.
struct ClientCase
{
    const char* name;
    std::vector<std::string> arguments;
    // The program exits with this code while there is memory.
    int exitCode;
    std::function<void(const std::string& path)> writePicture;
    const char* pattern;
    // Without memory for one way to compress, libtiff takes another.
    bool mayCompressElse = false;
};

// Or the test's report would show the record's bytes.
void PrintTo(const ClientCase& clientCase, std::ostream* out);

const std::vector<ClientCase>& ClientCases();

// Names the allocation of a run that fails.
struct FailingAllocation
{
    std::uint64_t number;
    bool forEver = false;
    // Counted from the start of the process, not from that of main.
    bool fromStart = false;
    // A run that a checker of memory watches. It takes a hundred times as long.
    bool watched = false;
};

// Runs of one command line, each with another allocation that fails.
class ClientRuns
{
public:
    explicit ClientRuns(const ClientCase& newCase);

    // Runs it with all memory, and keeps what it leaves and how much it allocates. Watched runs are
    // compared with a watched one: the checker has another processor.
    [[nodiscard]] ::testing::AssertionResult Undisturbed(bool watched = false);
    std::uint64_t CountFromMain() const { return fromMain; }
    std::uint64_t CountAheadOfMain() const { return fromStart - std::min(fromMain, fromStart); }

    // The run ends with the code for memory, or gives all that it gives undisturbed. It leaves
    // the old outputs or the whole new ones, and no other file. One that is watched loses no
    // memory and touches none that isn't its own.
    [[nodiscard]] ::testing::AssertionResult EndsWell(const FailingAllocation& failing);
    int CountFailed() const { return failed; }
    // Runs that did all their work without the allocation that failed.
    int CountSurvived() const { return survived; }

private:
    struct Left
    {
        Outcome outcome;
        // The bytes of each output, in the order of the names.
        std::vector<std::string> outputs;
        std::vector<std::string> files;
        std::uint64_t asked = 0;
        std::uint64_t failed = 0;
        // A run that ends at once holds memory until then; one that leaves main must not.
        bool lostMemory = false;
    };

    Outcome Execute(const FailingAllocation& failing) const;
    Left Run(const FailingAllocation& failing);
    bool IsWhole(const Left& left) const;
    bool HoldsNewOutputs(const Left& left) const;
    bool EndedForMemory(const Left& left) const;

    ClientCase clientCase;
    ToolFolder folder;
    std::vector<std::string> command;
    std::string record;
    Left undisturbed;
    std::vector<std::uint16_t> samples;
    std::uint64_t fromMain = 0;
    std::uint64_t fromStart = 0;
    int failed = 0;
    int survived = 0;
};

} // namespace zvk::Pelkraft::TestSupport
