#pragma once

#include "pattern/pattern_model.h"
#include "pattern/tokenizer.h"
#include "tools/pelkraft/findings.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace zvk::Pelkraft::Client {

// Digits alone.
bool IsPlainNumber(std::string_view word);
// position-value, in digits.
bool IsEntryWord(const std::string& word);

// Finds what is wrong or odd about the words of a value line, broken or not, that stands in a text
// of this version.
void LintValueLine(const ValueLine& line, std::int32_t version, Findings& findings);

} // namespace zvk::Pelkraft::Client
