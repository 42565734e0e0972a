#pragma once

#include "tools/pelkraft/exit_code.h"
#include "tools/pelkraft/output_rules.h"

#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

enum class PatternFormat
{
    Text,
    Json,
    Sarif,
};

// The work of the verbs below pelkraft pattern, each on the texts of some files. What they find
// gives the code: that of the worst text.
ExitCode ExplainTexts(const std::vector<std::string>& paths, PatternFormat format);
ExitCode LintTexts(const std::vector<std::string>& paths, PatternFormat format);

// It tells where a verb writes, and how.
struct PatternOutput
{
    // Empty or "-" is the standard output.
    std::string path;
    OutputRules rules;
    bool dryRun = false;
};

// Draws the texts one below the other.
ExitCode PlotTexts(const std::vector<std::string>& paths, const PatternOutput& output);

// Writes each text back, or a single one to another place.
ExitCode FixTexts(const std::vector<std::string>& paths, const PatternOutput& output);

// The code is 1 where the two texts differ in what they do.
ExitCode DiffTexts(const std::string& left, const std::string& right, PatternFormat format);

} // namespace zvk::Pelkraft::Client
