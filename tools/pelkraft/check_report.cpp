#include "tools/pelkraft/check_report.h"

#include "tools/pelkraft/findings.h"
#include "tools/pelkraft/sarif.h"

#include <algorithm>
#include <map>

namespace zvk::Pelkraft::Client {
namespace {

const CheckRule& RuleOf(const CheckFinding& finding)
{
    return CheckRules()[finding.rule];
}

std::string PartOf(const CheckFinding& finding)
{
    return "page " + std::to_string(finding.page);
}

std::string Sentence(const CheckFinding& finding)
{
    return finding.tag + " is " + finding.found + "; expected is " + finding.expected + "; " +
           finding.advice;
}

std::size_t CountLevel(const std::vector<CheckedFile>& files, const std::string& level)
{
    std::size_t count = 0;
    for (const CheckedFile& file : files)
        count += static_cast<std::size_t>(
            std::count_if(file.findings.begin(), file.findings.end(),
                          [&](const CheckFinding& found) { return level == RuleOf(found).level; }));
    return count;
}

} // namespace

std::string CheckWords(const CheckedFile& file)
{
    std::string text;
    for (const CheckFinding& finding : file.findings)
        text += Shown(file.path) + ": " + PartOf(finding) + ": " + RuleOf(finding).level + ": " +
                Shown(Sentence(finding)) + " [" + RuleOf(finding).name + "]\n";
    return text.empty() && file.failure.empty() ? Shown(file.path) + ": nothing found\n" : text;
}

std::string CheckJson(const std::vector<CheckedFile>& files)
{
    Json list = Json::array();
    for (const CheckedFile& file : files) {
        Json json = {{"file", file.path}};
        if (!file.failure.empty())
            json["error"] = file.failure;
        json["findings"] = Json::array();
        for (const CheckFinding& finding : file.findings)
            json["findings"].push_back({{"rule", RuleOf(finding).name},
                                        {"level", RuleOf(finding).level},
                                        {"page", finding.page},
                                        {"tag", finding.tag},
                                        {"found", finding.found},
                                        {"expected", finding.expected},
                                        {"advice", finding.advice}});
        list.push_back(std::move(json));
    }
    return JsonText({{"schema", 1},
                     {"errors", CountLevel(files, "error")},
                     {"warnings", CountLevel(files, "warning")},
                     {"files", std::move(list)}});
}

std::string CheckSarif(const std::vector<CheckedFile>& files, ExitCode code)
{
    std::vector<SarifRule> rules;
    for (const CheckRule& rule : CheckRules())
        rules.push_back({rule.name, rule.level, rule.summary,
                         "pelkraft check names tag and page, what it found, what it expected, and "
                         "what to do."});
    std::vector<SarifResult> results;
    for (const CheckedFile& file : files) {
        std::map<std::string, std::size_t> counts;
        for (const CheckFinding& finding : file.findings) {
            SarifResult result;
            result.rule = finding.rule;
            result.message = Sentence(finding);
            result.path = file.path;
            result.part = PartOf(finding);
            const std::string content = finding.tag + '\n' + finding.found;
            result.fingerprint = SarifFingerprint(
                RuleOf(finding).name, content, counts[RuleOf(finding).name + ('\n' + content)]++);
            results.push_back(std::move(result));
        }
    }
    return SarifLog(rules, results, static_cast<int>(code));
}

std::string RuleWords()
{
    constexpr std::size_t nameColumn = 24;
    constexpr std::size_t levelColumn = 34;
    std::string text;
    for (const CheckRule& rule : CheckRules()) {
        std::string line = rule.name;
        line.resize(nameColumn, ' ');
        line += rule.level;
        line.resize(levelColumn, ' ');
        text += line + rule.summary + '\n';
    }
    return text;
}

} // namespace zvk::Pelkraft::Client
