#include "tools/pelkraft/pattern_report.h"

#include "tools/pelkraft/pattern_intention.h"
#include "tools/pelkraft/pattern_lints.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace zvk::Pelkraft::Client {
namespace {

std::string Line(const std::string& label, const std::string& words)
{
    std::string line = label;
    line.resize(std::max<std::size_t>(line.size() + 1, 14), ' ');
    return line + words + "\n";
}

std::string Joined(const std::vector<std::string>& words, const std::string& otherwise)
{
    std::string joined;
    for (const std::string& word : words)
        joined += (joined.empty() ? "" : ", ") + word;
    return joined.empty() ? otherwise : joined;
}

std::string Percent(double share)
{
    char words[32];
    std::snprintf(words, sizeof words, "%6.2f %%", 100 * share);
    return words;
}

std::string Plural(std::size_t count, const std::string& word)
{
    return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
}

std::string CountWords(const std::vector<const PatternReport*>& reports)
{
    std::size_t counts[3] = {};
    bool isFull = false;
    for (const PatternReport* report : reports) {
        for (const Severity severity : {Severity::Note, Severity::Warning, Severity::Error})
            counts[static_cast<int>(severity)] += CountFindings(report->findings, severity);
        isFull = isFull || report->findings.size() == mostFindings;
    }
    return Plural(counts[static_cast<int>(Severity::Error)], "error") + ", " +
           Plural(counts[static_cast<int>(Severity::Warning)], "warning") + ", " +
           Plural(counts[static_cast<int>(Severity::Note)], "note") +
           (isFull ? "; any more are left out\n" : "\n");
}

class Explanation
{
public:
    explicit Explanation(const PatternReport& newReport)
        : report(newReport), outline(newReport.outline), outInks(outline.OutInkList())
    {}

    std::string Write()
    {
        AddHead();
        for (std::size_t i = 0; i < outline.InColourCount(); ++i)
            AddInColour(i);
        AddOutInks();
        AddLimits();
        AddEngines();
        AddFindings();
        return std::move(words);
    }

private:
    void AddHead()
    {
        words += Shown(report.text.Path()) + "\n";
        const bool first = outline.Generation() == 1;
        std::string version = std::to_string(outline.version);
        if (!outline.earlyVersion)
            version += ", and no VERSION with a number that would choose the random source";
        else if (*outline.earlyVersion != outline.version)
            version += ", but the first VERSION in the text, which chooses the random source, is " +
                       std::to_string(*outline.earlyVersion);
        words += Line("version",
                      version + (first ? ", first" : ", second") + " generation of random sources");
        words += Line("seed", std::to_string(outline.seed));
    }

    void AddInColour(std::size_t index)
    {
        const InColorRecord& record = outline.Record(index);
        std::vector<std::string> fed;
        for (std::size_t p = 0; p < static_cast<std::size_t>(record.numInks); ++p)
            fed.push_back(NameOf(record.inks[p]));
        std::string line = Shown(outline.inColours[index].name);
        if (record.numSteps == 0)
            line += ": no steps";
        else
            line += ": steps 0 to " + std::to_string(record.numSteps - 1);
        line += "; feeds " + Joined(fed, "no ink") + "; " +
                std::to_string(report.model.draws[index].combinations) + " of 32 combinations";
        words += Line("in-colour", line);
        for (std::size_t step = 0; step < static_cast<std::size_t>(record.numSteps); ++step)
            AddStep(index, step);
    }

    void AddStep(std::size_t inColour, std::size_t number)
    {
        const InColorRecord& record = outline.Record(inColour);
        const StepValues& step = record.steps[number];
        std::string label = "  step " + std::to_string(number);
        if (!outline.inColours[inColour].steps[number].listed) {
            words += Line(label, number == 0 ? "no ink" : "has no line");
            return;
        }
        for (std::size_t i = 0; i < static_cast<std::size_t>(step.numRandoms); ++i) {
            std::vector<std::string> sets;
            for (std::size_t p = 0; p < static_cast<std::size_t>(record.numInks); ++p) {
                if (step.table[i][p] != unsetValue)
                    sets.push_back(NameOf(record.inks[p]) + " " + std::to_string(step.table[i][p]));
            }
            words += Line(i == 0 ? label : "",
                          Percent(step.fractions[i].numerator /
                                  static_cast<double>(step.fractions[i].denominator)) +
                              "  " + Joined(sets, "no ink"));
        }
    }

    std::string NameOf(int outInk) const
    {
        const auto index = static_cast<std::size_t>(outInk);
        return Shown(index < outInks.size() ? outInks[index] : "out-ink " + std::to_string(outInk));
    }

    void AddOutInks()
    {
        for (int i = 0; i < static_cast<int>(outline.OutInkCount()); ++i) {
            std::vector<std::string> feeders;
            if (const auto found = report.feeders.find(i); found != report.feeders.end())
                std::transform(found->second.begin(), found->second.end(),
                               std::back_inserter(feeders), [this](int feeder) {
                                   const auto index = static_cast<std::size_t>(feeder);
                                   return Shown(outline.inColours[index].name);
                               });
            words += Line("out-ink", NameOf(i) + ": fed by " + Joined(feeders, "nothing"));
        }
    }

    void AddLimits()
    {
        const CombinationModel& model = report.model;
        words += Line("combinations", std::to_string(model.combinations) + " of 1024" +
                                          (model.obstacle.empty() ? "" : "; " + model.obstacle));
        if (!model.obstacle.empty())
            return;
        words += Line("values", std::to_string(model.places) +
                                    " of the 16 that the sse engine can store for a combination");
        words +=
            Line("field", std::to_string(model.fieldSize) + " entries" +
                              (outline.Generation() == 1 ? ", drawn with a common denominator of " +
                                                               std::to_string(model.total)
                                                         : ""));
    }

    void AddEngines()
    {
        for (const EngineVerdict& verdict : report.verdicts) {
            std::string line = EngineName(verdict.engine) + ": ";
            if (verdict.refusal)
                line += "refuses it: \"" + *verdict.refusal + "\"";
            else
                line +=
                    "loads" + std::string(IsAutomatic(verdict.engine) ? ", and is auto here" : "");
            if (!verdict.refusal && verdict.engine == DotWeavePattern::Reference &&
                outline.version > 2)
                line += "; at this version it reads entries as plain values";
            words += Line("engine", line);
        }
    }

    static bool IsAutomatic(DotWeavePattern::Engine engine)
    {
        return engine == (SseEngineRuns() ? DotWeavePattern::Sse : DotWeavePattern::X86);
    }

    void AddFindings()
    {
        if (!report.findings.empty())
            words += '\n';
        for (const Finding& finding : report.findings)
            words += FindingWords(finding, report.text);
        words += '\n' + CountWords({&report});
    }

    const PatternReport& report;
    const PatternOutline& outline;
    std::vector<std::string> outInks;
    std::string words;
};

} // namespace

PatternReport::PatternReport(const PatternText& newText)
    : text(newText), outline(ReadOutline(text.Bytes())), model(BuildCombinations(outline)),
      verdicts(TryEngines(text))
{
    const PatternOutline meant = ReadIntention(text, findings);
    LintPattern(text, meant, BuildCombinations(meant), findings);
    if (LoadingEngines().empty() && CountFindings(findings, Severity::Error) == 0)
        AddRefusal();
    SortFindings(findings);

    for (std::size_t i = 0; i < outline.inColours.size(); ++i) {
        const InColorRecord& record = outline.Record(i);
        for (std::size_t position = 0; position < static_cast<std::size_t>(record.numInks);
             ++position) {
            std::vector<int>& naming = feeders[record.inks[position]];
            if (naming.empty() || naming.back() != static_cast<int>(i))
                naming.push_back(static_cast<int>(i));
        }
    }
}

void PatternReport::AddRefusal()
{
    const std::string words = Refusal();
    const bool isPlaced = outline.refused && words == TextOf(outline.refused->refusal);
    AddFinding(findings, Severity::Error, "refused", isPlaced ? outline.refused->place : TextSpan{},
               "the text is refused" + std::string(isPlaced ? " here" : "") + ": \"" + words + "\"",
               "correct what the other findings name");
}

ExitCode PatternReport::Code() const
{
    if (LoadingEngines().empty())
        return ExitCode::BadPattern;
    const bool found = CountFindings(findings, Severity::Error) > 0 ||
                       CountFindings(findings, Severity::Warning) > 0;
    return found ? ExitCode::Warnings : ExitCode::Done;
}

std::string PatternReport::LoadingEngines() const
{
    std::vector<std::string> names;
    for (const EngineVerdict& verdict : verdicts) {
        if (!verdict.refusal)
            names.push_back(EngineName(verdict.engine));
    }
    return Joined(names, "");
}

std::string PatternReport::Refusal() const
{
    const auto refused =
        std::find_if(verdicts.begin(), verdicts.end(), [](const EngineVerdict& verdict) {
            return verdict.refusal && verdict.engine != DotWeavePattern::Reference;
        });
    return refused == verdicts.end() ? std::string() : *refused->refusal;
}

std::string ExplainPattern(const PatternReport& report)
{
    return Explanation(report).Write();
}

std::string LintWords(const std::vector<const PatternReport*>& reports)
{
    std::string words;
    for (const PatternReport* report : reports) {
        for (const Finding& finding : report->findings)
            words += FindingWords(finding, report->text);
    }
    return words + (words.empty() ? "" : "\n") + CountWords(reports);
}

} // namespace zvk::Pelkraft::Client
