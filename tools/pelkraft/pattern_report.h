#pragma once

#include "tools/pelkraft/combination_model.h"
#include "tools/pelkraft/exit_code.h"
#include "tools/pelkraft/findings.h"
#include "tools/pelkraft/ink_shares.h"
#include "tools/pelkraft/pattern_engines.h"
#include "tools/pelkraft/pattern_outline.h"

#include <map>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// All that the program knows about a pattern text.
struct PatternReport
{
    explicit PatternReport(const PatternText& newText);

    // Says whether an engine loads the text, and whether something was found.
    ExitCode Code() const;
    // The engines that load the text, joined by commas; empty if none does.
    std::string LoadingEngines() const;
    // The words of the first engine that draws combinations and refuses the text.
    std::string Refusal() const;

    const PatternText& text;
    // The text by the rules of the library.
    PatternOutline outline;
    CombinationModel model;
    // By out-ink index the in-colours, by index, that name it.
    std::map<int, std::vector<int>> feeders;
    std::vector<EngineVerdict> verdicts;
    Findings findings;

private:
    // Gives a reason if no engine loads the text and no finding is an error.
    void AddRefusal();
};

// For people: all of it, or the findings in several texts alone.
std::string ExplainPattern(const PatternReport& report);
std::string LintWords(const std::vector<const PatternReport*>& reports);

// For programs: one JSON object.
std::string PatternJson(const PatternReport& report);
// With these shares, which may lack what would be measured.
std::string PatternJson(const PatternReport& report, const std::vector<StepShares>& shares);
// One object for several texts: all that is known of each, or its findings alone.
std::string ExplainTextsJson(const std::vector<const PatternReport*>& reports);
std::string LintTextsJson(const std::vector<const PatternReport*>& reports);

} // namespace zvk::Pelkraft::Client
