#include "tools/pelkraft/value_line_lints.h"

#include "pattern/pattern_reader.h"

#include <algorithm>
#include <numeric>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::int32_t highestInk = 255;

bool IsStepWord(std::string_view word)
{
    if (!word.empty() && word.back() == '+')
        word.remove_suffix(1);
    return IsPlainNumber(word);
}

bool IsRatioWord(const std::string& word)
{
    return !word.empty() && word.front() != ':' && word.back() != ':' &&
           word.find("::") == std::string::npos &&
           word.find_first_not_of("0123456789:") == std::string::npos;
}

class LineLint
{
public:
    LineLint(const ValueLine& newLine, Findings& newFindings) : line(newLine), findings(newFindings)
    {}

    void LintStep()
    {
        const PatternToken& token = *line.stepToken;
        if (line.step < 0 || line.step >= stepsOfInColor)
            Add(Severity::Error, "step-range", token,
                "step " + std::to_string(line.step) + " is outside of 0 to 7",
                "use steps from 0 to 7; a pixel has at most 8 of them");
        else if (!IsStepWord(token.text))
            Add(Severity::Warning, "number-odd", token,
                Quoted(token.text) + " is read as step " + std::to_string(line.step),
                "begin a value line with its step number, 0 to 7");
        else if (line.hasSuffix)
            Add(Severity::Note, "step-suffix", token,
                "the suffix + counts for the slow reference alone, which copies the step to all "
                "higher ones",
                "leave it out: any higher step is taken as the highest anyway");
    }

    void LintRatio()
    {
        const PatternToken& token = *line.ratioToken;
        const auto* const end = line.weights.begin() + line.count;
        const auto weights =
            1 + static_cast<std::size_t>(std::count(token.text.begin(), token.text.end(), ':'));
        if (weights > mostWeights)
            Add(Severity::Warning, "weights-surplus", token,
                "only the first 16 of " + std::to_string(weights) + " weights are read",
                "use up to 16 alternatives in a step");
        if (line.weightSum == 0)
            LintRefusedRatio();
        else if (!IsRatioWord(token.text))
            Add(Severity::Warning, "number-odd", token,
                Quoted(token.text) + " is read as " +
                    Counted(static_cast<std::size_t>(line.count), "weight", "weights") +
                    " with the sum " + std::to_string(line.weightSum),
                "write whole numbers joined by colons, such as 1:3");
        else if (std::find(line.weights.begin(), end, 0) != end)
            Add(Severity::Warning, "weight-zero", token, "an alternative of weight 0 never comes",
                "leave it out, or give it a weight");
    }

    void LintEntry(std::size_t index)
    {
        const PatternToken& token = *line.entryTokens[index];
        const std::int32_t value = line.values[index];
        const std::string position = std::to_string(line.positions[index]);
        const std::string sets = "sets position " + position + " to " + std::to_string(value);
        if (line.positions[index] >= positionsOfInColor)
            Add(Severity::Error, "position-range", token,
                "position " + position + " is outside of 0 to 15",
                "count the names between BEGIN_INKS and END_INKS from 0");
        else if (token.text.find('-') == std::string::npos)
            Add(Severity::Warning, "entry-plain", token,
                Quoted(token.text) + " has no \"-\" and " + sets,
                "write position-value, such as 0-" + std::to_string(value));
        else if (value == unsetValue)
            Add(Severity::Warning, "value-range", token, Quoted(token.text) + " sets nothing",
                "write a value from 0 to 255");
        else if (value < 0 || value > highestInk)
            Add(Severity::Warning, "value-range", token,
                "of the value " + std::to_string(value) + " the low 8 bits are used: " +
                    std::to_string(static_cast<std::uint32_t>(value) & 0xFFU),
                "write a value from 0 to 255");
        else if (!IsEntryWord(token.text))
            Add(Severity::Warning, "number-odd", token, Quoted(token.text) + " " + sets,
                "write position-value in digits, such as 0-64");
    }

    // Entries that the line should have, and doesn't.
    void LintEnd()
    {
        const auto& entries = line.entryTokens;
        const auto weights = static_cast<std::size_t>(line.count);
        const auto found = static_cast<std::size_t>(
            std::find(entries.begin(), entries.begin() + line.count, nullptr) - entries.begin());
        if (line.ratioToken == nullptr)
            Add(Severity::Warning, "line-broken", *line.stepToken,
                "the line ends after its step number",
                "write the ratio of the alternatives and an entry for each of them");
        else if (found < weights)
            Add(Severity::Error, "entry-missing", *line.ratioToken,
                "step " + std::to_string(line.step) + " has " +
                    Counted(weights, "weight", "weights") + " but " +
                    Counted(found, "entry", "entries"),
                "write one entry, position-value, for each weight");
    }

private:
    void LintRefusedRatio()
    {
        const auto* const end = line.weights.begin() + line.count;
        const bool belowZero =
            std::any_of(line.weights.begin(), end, [](std::int32_t weight) { return weight < 0; });
        const std::string sum =
            std::to_string(std::accumulate(line.weights.begin(), end, std::int64_t{0}));
        Add(Severity::Error, "weight-sum", *line.ratioToken,
            belowZero ? Quoted(line.ratioToken->text) + " holds a weight below 0"
                      : "the weights of " + Quoted(line.ratioToken->text) + " add up to " + sum,
            "write whole numbers above 0 joined by colons, such as 1:3");
    }

    void Add(Severity severity, const char* kind, const PatternToken& token, std::string message,
             std::string hint)
    {
        AddFinding(findings, severity, kind, token.place, std::move(message), std::move(hint));
    }

    const ValueLine& line;
    Findings& findings;
};

} // namespace

bool IsPlainNumber(std::string_view word)
{
    return !word.empty() && word.find_first_not_of("0123456789") == std::string_view::npos;
}

bool IsEntryWord(const std::string& word)
{
    const std::size_t dash = word.find('-');
    return dash != std::string::npos && IsPlainNumber(std::string_view(word).substr(0, dash)) &&
           IsPlainNumber(std::string_view(word).substr(dash + 1));
}

void LintValueLine(const ValueLine& line, std::int32_t version, Findings& findings)
{
    LineLint lint(line, findings);
    lint.LintStep();
    if (line.ratioToken != nullptr)
        lint.LintRatio();
    // Below it the values are refused as a whole.
    if (version >= mainRules.lowestVersion)
        for (std::size_t i = 0; i < line.entryTokens.size() && line.entryTokens[i] != nullptr; ++i)
            lint.LintEntry(i);
    lint.LintEnd();
}

} // namespace zvk::Pelkraft::Client
