#include "tools/pelkraft/check_rules.h"

#include "tools/pelkraft/check_rule_list.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/file_damage.h"
#include "tools/pelkraft/findings.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/near_names.h"

#include <algorithm>
#include <numeric>
#include <set>

namespace zvk::Pelkraft::Client {
namespace {

// A damaged file has something wrong on every page: more than this say nothing new.
constexpr std::size_t mostFileFindings = 1000;
constexpr const char* truncatedName = "truncated";

std::size_t IndexOf(const std::string& name)
{
    const std::vector<CheckRule>& rules = CheckRules();
    const auto found = std::find_if(rules.begin(), rules.end(),
                                    [&](const CheckRule& rule) { return name == rule.name; });
    return static_cast<std::size_t>(found - rules.begin());
}

[[noreturn]] void RefuseName(const std::string& name)
{
    std::vector<std::string> names;
    for (const CheckRule& rule : CheckRules())
        names.emplace_back(rule.name);
    const std::string near = NearestName(name, names);
    throw Failure(ExitCode::Usage, {},
                  "--rules names " + Quoted(name) + ", which is no rule" +
                      (near.empty() ? std::string() : "; did you mean " + near + '?') +
                      "; pelkraft check --rules list shows them all");
}

void AddBrokenDirectory(CheckFindings& findings, const RawTiff& file, int page,
                        std::uint64_t offset, const std::string& found)
{
    findings.push_back(
        {IndexOf(truncatedName), page, "directory", found + " at byte " + std::to_string(offset),
         "a directory within the " + std::to_string(file.Size()) + " bytes of the file, read once",
         "get the whole file again from where it was made"});
}

[[noreturn]] void RefuseFirstDirectory(const RawTiff& file, std::uint64_t offset)
{
    const std::string words = DamageWords(file.Whole());
    throw Failure(ExitCode::BadInput, file.Path(),
                  words.empty() ? "is damaged in its first directory, at byte " +
                                      std::to_string(offset) + "; get a whole copy of it"
                                : words);
}

} // namespace

const std::vector<CheckRule>& CheckRules()
{
    static const std::vector<CheckRule> rules = {
        {"ink-names", "warning", "There is a name for each ink.", CheckInkNames},
        {"number-of-inks", "error", "NumberOfInks agrees with the channels.", CheckNumberOfInks},
        {"ink-set", "warning", "InkSet agrees with the inks.", CheckInkSet},
        {"duplicate-ink", "error", "No two inks have the same name.", CheckDuplicates},
        {"misspelt-ink", "warning", "Process inks are spelt as usual.", CheckSpelling},
        {"dot-range", "error", "DotRange lies within the samples.", CheckDotRange},
        {"polarity", "warning", "The tags agree on whether high samples are much ink.",
         CheckPolarity},
        {"extra-samples", "error", "ExtraSamples counts the channels that are no colours.",
         CheckExtraSamples},
        {"profile", "error", "The ICC profile is whole and about as many channels.", CheckProfile},
        {"resolution-missing", "warning", "The page has a resolution and its unit.",
         CheckResolution},
        {"resolution-unequal", "warning", "The resolution is the same across and down.",
         CheckSquarePixels},
        {"resolution-implausible", "warning", "A press could have the resolution.",
         CheckLikelihood},
        {"orientation", "warning", "The page stands as it is stored.", CheckOrientation},
        {truncatedName, "error", "All that the tags name lies within the file.", CheckTruncation},
        {"byte-count", "error", "Uncompressed strips and tiles have bytes for their rows.",
         CheckByteCounts}};
    return rules;
}

std::vector<std::size_t> ChooseRules(const std::string& list)
{
    std::vector<std::size_t> chosen;
    if (list == "all") {
        chosen.resize(CheckRules().size());
        std::iota(chosen.begin(), chosen.end(), std::size_t{0});
        return chosen;
    }
    for (std::size_t start = 0; start <= list.size();) {
        const std::size_t end = std::min(list.find(',', start), list.size());
        const std::string name = list.substr(start, end - start);
        if (IndexOf(name) == CheckRules().size())
            RefuseName(name);
        chosen.push_back(IndexOf(name));
        start = end + 1;
    }
    std::sort(chosen.begin(), chosen.end());
    chosen.erase(std::unique(chosen.begin(), chosen.end()), chosen.end());
    return chosen;
}

CheckFindings CheckFile(const RawTiff& file, const std::vector<std::size_t>& rules)
{
    CheckFindings findings;
    std::set<std::uint64_t> seen;
    std::optional<CheckedPage> first;
    int page = 1;
    const bool reportsBroken =
        std::find(rules.begin(), rules.end(), IndexOf(truncatedName)) != rules.end();
    for (std::uint64_t offset = file.FirstDirectory(); offset != 0; ++page) {
        StopIfInterrupted(file.Path());
        std::optional<RawDirectory> directory = file.DirectoryAt(offset);
        if (!directory && page == 1)
            RefuseFirstDirectory(file, offset);
        const bool again = !seen.insert(offset).second;
        if (!directory || again) {
            if (reportsBroken)
                AddBrokenDirectory(findings, file, page, offset,
                                   again ? "that of an earlier page" : "none");
            break;
        }
        const CheckedPage checked = ReadCheckedPage(file, page, std::move(directory->tags));
        if (!first)
            first = checked;
        for (const std::size_t rule : rules) {
            const std::size_t before = findings.size();
            CheckRules()[rule].check(checked, *first, findings);
            for (std::size_t i = before; i < findings.size(); ++i)
                findings[i].rule = rule;
        }
        if (findings.size() > mostFileFindings) {
            findings.resize(mostFileFindings);
            break;
        }
        offset = directory->next;
    }
    return findings;
}

} // namespace zvk::Pelkraft::Client
