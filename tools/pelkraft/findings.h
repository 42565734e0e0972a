#pragma once

#include "tools/pelkraft/pattern_text.h"
#include "tools/pelkraft/shown_text.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zvk::Pelkraft::Client {

enum class Severity
{
    // Worth knowing; the pattern is fine.
    Note,
    // Most likely not what the author meant.
    Warning,
    // An engine that draws combinations refuses the text for it.
    Error,
};

// A fault or an oddity in a piece of a pattern text, and a hint for its author.
struct Finding
{
    Severity severity = Severity::Warning;
    // For programs: short words joined by dashes, the same for the same kind of finding.
    std::string kind;
    TextSpan place;
    std::string message;
    std::string hint;
    // Takes the place of the piece, where that is certainly what the author meant.
    std::optional<std::string> replacement;
};

using Findings = std::vector<Finding>;

// A text that is no pattern has something wrong in every word: more than this are left out.
constexpr std::size_t mostFindings = 1000;
void AddFinding(Findings& findings, Severity severity, const char* kind, TextSpan place,
                std::string message, std::string hint, std::optional<std::string> replacement = {});

const char* SeverityName(Severity severity);

// In the order of the text; at the same place the graver first.
void SortFindings(Findings& findings);

std::size_t CountFindings(const Findings& findings, Severity severity);

// "file:line:column: warning: message", the line of the text, a caret below it, and the hint.
std::string FindingWords(const Finding& finding, const PatternText& text);

// The line of the finding, or where it is long the piece of it around the place.
std::string_view FindingLine(const Finding& finding, const PatternText& text);

// A word between quotes for a message, cut where it is long.
std::string Quoted(const std::string& word);

// "1 entry", "2 entries".
std::string Counted(std::size_t count, const std::string& one, const std::string& many);

} // namespace zvk::Pelkraft::Client
