#pragma once

#include "tools/pelkraft/checked_page.h"

#include <cstddef>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// A fault of a page, found by a rule.
struct CheckFinding
{
    // The index of its rule.
    std::size_t rule = 0;
    int page = 1;
    std::string tag;
    std::string found;
    std::string expected;
    std::string advice;
};

using CheckFindings = std::vector<CheckFinding>;

// A rule about pages. Its name is for the command line and for programs.
struct CheckRule
{
    const char* name;
    // "error" or "warning".
    const char* level;
    const char* summary;
    // The first page of the file is there for comparison.
    void (*check)(const CheckedPage& page, const CheckedPage& first, CheckFindings& findings);
};

const std::vector<CheckRule>& CheckRules();

// The indices of rules from a list of names between commas; an unknown name is wrong usage.
std::vector<std::size_t> ChooseRules(const std::string& list);

// Runs rules on all pages of a file, and tells where a directory can't be read.
CheckFindings CheckFile(const RawTiff& file, const std::vector<std::size_t>& rules);

} // namespace zvk::Pelkraft::Client
