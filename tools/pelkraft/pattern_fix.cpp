#include "tools/pelkraft/pattern_fix.h"

#include "tools/pelkraft/pattern_report.h"

#include <algorithm>

namespace zvk::Pelkraft::Client {
namespace {

// A hint may become plain when another one has been taken.
constexpr int mostRounds = 8;

std::size_t Weight(const PatternReport& report)
{
    return CountFindings(report.findings, Severity::Error) +
           CountFindings(report.findings, Severity::Warning);
}

// Takes the hints from the last to the first, so that places stay where they are.
std::size_t TakeHints(const PatternReport& report, std::string& bytes)
{
    std::size_t changes = 0;
    std::size_t end = bytes.size();
    for (auto finding = report.findings.rbegin(); finding != report.findings.rend(); ++finding) {
        const TextSpan place = finding->place;
        if (!finding->replacement || place.offset + place.length > end)
            continue;
        bytes.replace(place.offset, place.length, *finding->replacement);
        end = place.offset;
        ++changes;
    }
    return changes;
}

// Engines that draw combinations and load the old text load the new one, one engine does at all,
// and there is less to find. The reference is slow and prints nothing; its limits are not asked
// for, as in the findings.
bool IsBetter(const PatternReport& before, const PatternReport& after)
{
    for (std::size_t i = 0; i < before.verdicts.size(); ++i) {
        const bool draws = before.verdicts[i].engine != DotWeavePattern::Reference;
        if (draws && !before.verdicts[i].refusal && after.verdicts[i].refusal)
            return false;
    }
    return !after.LoadingEngines().empty() && Weight(after) < Weight(before);
}

} // namespace

FixedText FixPattern(const PatternText& text)
{
    const PatternReport before(text);
    FixedText fixed = {text.Bytes(), 0, false};
    for (int round = 0; round < mostRounds; ++round) {
        const PatternText current(text.Path(), fixed.bytes);
        const std::size_t changes = TakeHints(PatternReport(current), fixed.bytes);
        fixed.changes += changes;
        if (changes == 0)
            break;
    }
    if (fixed.changes == 0)
        return fixed;
    const PatternText after(text.Path(), fixed.bytes);
    if (IsBetter(before, PatternReport(after)))
        return fixed;
    return {text.Bytes(), 0, true};
}

} // namespace zvk::Pelkraft::Client
