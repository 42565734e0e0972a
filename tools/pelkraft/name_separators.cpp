#include "tools/pelkraft/name_separators.h"

#include "pattern/pattern_reader.h"
#include "pattern/pattern_words.h"
#include "tools/pelkraft/keyword_slips.h"
#include "tools/pelkraft/near_names.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* separators = ",;";

// Lists in which a name must not stand twice, and other places of names.
enum class Section
{
    None,
    OutInks,
    InColours,
    OtherNames
};

constexpr std::pair<std::string_view, Section> sections[] = {
    {"BEGIN_OUT_INKS", Section::OutInks},    {"BEGIN_IN_COLORS", Section::InColours},
    {"BEGIN_IN_COLOR", Section::OtherNames}, {"BEGIN_INKS", Section::OtherNames},
    {"END_INKS", Section::OtherNames},       {"END_VALUES", Section::OtherNames},
    {"END_OUT_INKS", Section::None},         {"END_IN_COLORS", Section::None},
    {"END_IN_COLOR", Section::None},         {"BEGIN_VALUES", Section::None}};

std::string WithoutSeparators(const std::string& name)
{
    const std::size_t first = name.find_first_not_of(separators);
    if (first == std::string::npos)
        return {};
    return name.substr(first, name.find_last_not_of(separators) + 1 - first);
}

std::string MarksOf(const std::string& name, const std::string& left)
{
    const auto marks = [&](char mark) {
        return std::count(name.begin(), name.end(), mark) -
               std::count(left.begin(), left.end(), mark);
    };
    if (marks(',') > 0 && marks(';') > 0)
        return "commas and semicolons";
    const std::string mark = marks(',') > 0 ? "comma" : "semicolon";
    return marks(',') + marks(';') == 1 ? mark : mark + 's';
}

class SeparatorDropper
{
public:
    SeparatorDropper(const std::vector<PatternToken>& newTokens, Findings& newFindings)
        : tokens(newTokens), findings(newFindings)
    {}

    std::vector<PatternToken> Run()
    {
        FindNames();
        std::vector<PatternToken> dropped;
        for (std::size_t i = 0; i < tokens.size(); ++i) {
            const std::string left = isName[i] ? WithoutSeparators(tokens[i].text) : tokens[i].text;
            const bool isClean = left.size() == tokens[i].text.size();
            if (!isClean)
                Tell(tokens[i], left);
            if (isClean || IsOpenToDoubt(left))
                dropped.push_back(tokens[i]);
            else if (!left.empty())
                dropped.push_back({left, tokens[i].place, tokens[i].openQuote});
        }
        return dropped;
    }

private:
    // The section that a keyword, or a slip of one, begins or goes back to.
    std::optional<Section> SectionAfter(const PatternToken& token)
    {
        for (const auto& [keyword, section] : sections)
            if (UpperCase(token.text) == keyword)
                return section;
        for (const auto& [keyword, section] : sections)
            if (slips.IsSlipOf(token, keyword))
                return section;
        return {};
    }

    void FindNames()
    {
        Section section = Section::None;
        for (const PatternToken& token : tokens) {
            const std::optional<Section> after = SectionAfter(token);
            section = after.value_or(section);
            isName.push_back(!after && section != Section::None && !token.openQuote);
            if (!after && (section == Section::OutInks || section == Section::InColours))
                spellings[{section, UpperCase(WithoutSeparators(token.text))}].insert(
                    UpperCase(token.text));
        }
    }

    // The names of one list that differ in these letters alone may be two.
    bool IsOpenToDoubt(const std::string& left) const
    {
        if (left.empty())
            return false;
        for (const Section list : {Section::OutInks, Section::InColours}) {
            const auto found = spellings.find({list, UpperCase(left)});
            if (found != spellings.end() && found->second.size() > 1)
                return true;
        }
        return false;
    }

    void Tell(const PatternToken& token, const std::string& left)
    {
        const std::string marks = MarksOf(token.text, left);
        const std::string message =
            left.empty() ? Quoted(token.text) + " is taken as a name by itself"
                         : "the " + marks + " of " + Quoted(token.text) + " " +
                               (marks.back() == 's' ? "are" : "is") + " taken as part of the name";
        const bool isOpen = IsOpenToDoubt(left);
        AddFinding(findings, Severity::Warning, "name-separator", token.place,
                   message + "; names are parted by blanks",
                   isOpen ? "leave the " + marks + " out and list " + Quoted(left) + " once"
                          : "leave the " + marks + " out, wherever the name stands",
                   isOpen ? std::nullopt : std::optional(left.empty() ? left : NameAsWord(left)));
    }

    const std::vector<PatternToken>& tokens;
    Findings& findings;
    KeywordSlips slips;
    // By token.
    std::vector<bool> isName;
    // The spellings of the names in each list that are the same without separators.
    std::map<std::pair<Section, std::string>, std::set<std::string>> spellings;
};

bool HasSeparator(const PatternToken& token)
{
    return WithoutSeparators(token.text).size() != token.text.size();
}

} // namespace

std::vector<PatternToken> DropNameSeparators(const std::vector<PatternToken>& tokens,
                                             Findings& findings)
{
    if (std::none_of(tokens.begin(), tokens.end(), HasSeparator))
        return tokens;
    return SeparatorDropper(tokens, findings).Run();
}

std::string NameAsWord(const std::string& name)
{
    const bool isPlain =
        name.find_first_of(" \t\r\n") == std::string::npos && name.front() != patternComment;
    return isPlain ? name : '"' + name + '"';
}

} // namespace zvk::Pelkraft::Client
