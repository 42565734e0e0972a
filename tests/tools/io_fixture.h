#pragma once

#include "tests/tools/tool_fixture.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// One use of the program that reads and writes files of the test's folder.
struct ToolUse
{
    std::string name;
    std::vector<std::string> arguments;
    // The files that it writes.
    std::vector<std::string> targets;
};

// Every name in a folder, with a link's destination or a file's bytes.
using FolderState = std::map<std::string, std::string>;

// Runs the program with failing_calls preloaded. The folder holds the inputs of all uses.
class IoFixture : public ToolFixture
{
protected:
    IoFixture();

    // Puts every target to what it was before: a short old file, or none.
    void PrepareTargets(const ToolUse& use, bool withOld) const;
    [[nodiscard]] FolderState State() const;

    // failing is an order to failing_calls, or empty.
    [[nodiscard]] Subprocess Start(const ToolUse& use, const std::string& failing = {}) const;
    [[nodiscard]] Outcome RunUse(const ToolUse& use, const std::string& failing = {}) const
    {
        return Start(use, failing).Wait();
    }
    // Counts the calls of each kind that the last program made that ended by itself.
    [[nodiscard]] std::map<std::string, long> Calls() const;

    std::vector<ToolUse> uses;

private:
    void MakeInputs() const;
};

// The numbers of calls to try: all where the whole is asked for, else 1, 2, 4, 8 and so on, fewer
// under a sanitizer, and the last.
[[nodiscard]] std::vector<long> CallNumbers(long count);

// The program's output, without the digits of the time that it took.
[[nodiscard]] std::string WithoutTimes(const std::string& output);

// Every name stands for what it was, or for what the program makes of it when nothing fails.
[[nodiscard]] ::testing::AssertionResult
IsOldOrNew(const FolderState& state, const FolderState& before, const FolderState& after);

} // namespace zvk::Pelkraft::TestSupport
