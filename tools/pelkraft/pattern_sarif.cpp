#include "tools/pelkraft/pattern_sarif.h"

#include "tools/pelkraft/finding_rules.h"
#include "tools/pelkraft/sarif.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

std::vector<SarifRule> Rules()
{
    std::vector<SarifRule> rules;
    for (const FindingRule& rule : FindingRules())
        rules.push_back({rule.kind, SeverityName(rule.severity), rule.summary, rule.help});
    return rules;
}

std::string Trimmed(std::string_view line)
{
    constexpr std::string_view blanks = " \t\r";
    line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
    return std::string(line.substr(0, line.find_last_not_of(blanks) + 1));
}

SarifRegion RegionOf(const Finding& finding, const PatternText& text)
{
    const TextPlace start = text.PlaceOf(finding.place.offset);
    const TextPlace end = text.PlaceOf(finding.place.offset + finding.place.length);
    SarifRegion region;
    region.line = start.line;
    region.column = start.column;
    region.endLine = end.line;
    region.endColumn = end.column;
    region.byteOffset = finding.place.offset;
    region.byteLength = finding.place.length;
    region.snippet = FindingLine(finding, text);
    return region;
}

void AddResults(const PatternReport& report, std::vector<SarifResult>& results)
{
    // By what the fingerprint is made of: lines that are equal differ in their number.
    std::map<std::string, std::size_t> seen;
    for (const Finding& finding : report.findings) {
        const std::string line =
            Trimmed(report.text.Line(report.text.PlaceOf(finding.place.offset).line));
        SarifResult result;
        result.rule = RuleOfKind(finding.kind);
        result.level = SeverityName(finding.severity);
        result.message = finding.message + "; " + finding.hint;
        result.path = report.text.Path();
        result.region = RegionOf(finding, report.text);
        result.fingerprint =
            SarifFingerprint(finding.kind, line, seen[finding.kind + '\n' + line]++);
        result.replacement = finding.replacement;
        result.replacementWords = finding.hint;
        results.push_back(std::move(result));
    }
}

} // namespace

std::string PatternSarif(const std::vector<const PatternReport*>& reports, ExitCode code)
{
    std::vector<SarifResult> results;
    for (const PatternReport* report : reports)
        AddResults(*report, results);
    return SarifLog(Rules(), results, static_cast<int>(code));
}

} // namespace zvk::Pelkraft::Client
