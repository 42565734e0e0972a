#pragma once

#include "tools/pelkraft/pattern_report.h"

#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// One thing that two patterns do in different ways, in words of a person.
struct PatternDifference
{
    // For programs: short words joined by dashes.
    std::string kind;
    // The in-colour and its step, or nothing.
    std::string inColour;
    int step = -1;
    // The out-ink, or nothing.
    std::string ink;
    // They say what each of the two does.
    std::string left;
    std::string right;
};

// Compares what the texts do, not their letters: random source and seed, names and their order,
// steps, the alternatives of each with their shares in any order, expected shares of values, and
// mean inks.
std::vector<PatternDifference> CompareReports(const PatternReport& left,
                                              const PatternReport& right);

// For people and for programs.
std::string DifferenceWords(const std::vector<PatternDifference>& all, const std::string& leftPath,
                            const std::string& rightPath);
std::string DifferenceJson(const std::vector<PatternDifference>& differences,
                           const std::string& leftPath, const std::string& rightPath);

} // namespace zvk::Pelkraft::Client
