#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace zvk::Pelkraft::Client {

// The options that every verb has.
struct CommonOptions
{
    // The processor's own number, unless the command line gives another.
    int threads = 1;
    // Prints the plan, and does the work all the same.
    bool explain = false;
    // Prints as JSON.
    bool json = false;
    // Checks everything that can be known beforehand, and writes nothing.
    bool dryRun = false;
};

// Lets --color never count where the command line is wrong, and its options take no effect.
void TakeColourWish(const std::vector<std::string>& words);

enum class JsonUse
{
    // --json is about the plan, and wants --explain.
    Plan,
    // --json is about what the verb prints anyway, and about the plan.
    Result,
};

// Adds -q, -v, --progress, --color, --threads, --explain, --json and --dry-run to a verb. The
// first four take effect by themselves as soon as the command line is read; the verb asks options
// for the others.
void AddCommonOptions(CLI::App& verb, CommonOptions& options, JsonUse jsonUse = JsonUse::Plan);

} // namespace zvk::Pelkraft::Client
