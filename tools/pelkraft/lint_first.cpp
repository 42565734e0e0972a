#include "tools/pelkraft/lint_first.h"

#include "tools/pelkraft/failure.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace zvk::Pelkraft::Client {
namespace {

// More of them fill the screen, and come of the first few.
constexpr std::size_t mostErrors = 10;

// The reference engine draws for each in-colour by itself, and reads values at any version.
constexpr const char* kindsOfOtherEngines[] = {
    "version-low",      "combinations-surplus", "in-colour-combinations-surplus",
    "total-wraps",      "total-unreachable",    "field-skewed",
    "places-surplus",   "draw-missing",         "weights-apart",
    "weights-permuted", "weights-together",     "ink-unfed"};

bool Concerns(const Finding& finding, DotWeavePattern::Engine engine)
{
    return engine != DotWeavePattern::Reference ||
           std::find(std::begin(kindsOfOtherEngines), std::end(kindsOfOtherEngines),
                     finding.kind) == std::end(kindsOfOtherEngines);
}

std::string WarningWords(const Finding& first, std::size_t count, const PatternText& text)
{
    const TextPlace place = text.PlaceOf(first.place.offset);
    std::string words = "line " + std::to_string(place.line) + ", column " +
                        std::to_string(place.column) + ": " + Shown(first.message) + "; " +
                        Shown(first.hint);
    if (count > 1)
        words += " (" + std::to_string(count - 1) + " more of this kind)";
    return words;
}

} // namespace

ShownFindings::ShownFindings(const PatternReport& report, DotWeavePattern::Engine engine)
    : text(report.text)
{
    std::vector<std::pair<const Finding*, std::size_t>> kinds;
    for (const Finding& finding : report.findings) {
        if (finding.severity == Severity::Note || !Concerns(finding, engine))
            continue;
        if (finding.severity == Severity::Error) {
            if (++errors <= mostErrors)
                std::fputs(FindingWords(finding, text).c_str(), stderr);
            continue;
        }
        ++warnings;
        const auto known = std::find_if(kinds.begin(), kinds.end(), [&](const auto& kind) {
            return kind.first->kind == finding.kind;
        });
        if (known == kinds.end())
            kinds.emplace_back(&finding, 1);
        else
            ++known->second;
    }
    for (const auto& [first, count] : kinds)
        PrintWarning(text.Path(), WarningWords(*first, count, text));
}

void ShownFindings::StopAtErrors() const
{
    if (errors > 0)
        throw Failure(ExitCode::BadPattern, text.Path(),
                      "has " + Counted(errors, "error", "errors") +
                          ", and nothing was written; pelkraft pattern lint shows all findings");
}

} // namespace zvk::Pelkraft::Client
