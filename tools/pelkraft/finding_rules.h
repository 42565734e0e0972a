#pragma once

#include "tools/pelkraft/findings.h"

#include <cstddef>
#include <vector>

namespace zvk::Pelkraft::Client {

// The words for all findings of a kind.
struct FindingRule
{
    const char* kind;
    Severity severity;
    const char* summary;
    const char* help;
};

// Every kind of finding in a pattern text, in the order of the alphabet.
const std::vector<FindingRule>& FindingRules();

// The index of a kind among the rules.
std::size_t RuleOfKind(const std::string& kind);

} // namespace zvk::Pelkraft::Client
