#pragma once

#include "tools/pelkraft/check_rules.h"
#include "tools/pelkraft/exit_code.h"
#include "tools/pelkraft/json.h"

#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// A file, and what was found, or why it can't be read.
struct CheckedFile
{
    std::string path;
    CheckFindings findings;
    std::string failure;
};

std::string CheckWords(const CheckedFile& file);
std::string CheckJson(const std::vector<CheckedFile>& files);
// The rules are those that were chosen.
std::string CheckSarif(const std::vector<CheckedFile>& files, ExitCode code);
// A line for each rule.
std::string RuleWords();

} // namespace zvk::Pelkraft::Client
