#include "tools/pelkraft/pattern_lints.h"

#include "tools/pelkraft/draw_lints.h"
#include "tools/pelkraft/outline_cursor.h"

#include <algorithm>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

constexpr int laneLimit = 16;

class WholeLint
{
public:
    WholeLint(const PatternText& newText, const PatternOutline& newOutline, Findings& newFindings)
        : text(newText), outline(newOutline), findings(newFindings)
    {}

    void Run()
    {
        if (text.EndsAtZero())
            Add(Severity::Warning, "text-cut", {text.Bytes().size(), 0},
                "a zero byte ends the text here; the rest of the file is not read",
                "save the pattern as plain text");
        LintVersion();
        LintNames();
        for (const InColour& inColour : outline.inColours)
            LintInColour(inColour);
        for (const auto& [upper, entry] : outline.outInkNames) {
            if (outline.feeders.count(entry.index) == 0)
                Add(Severity::Warning, "ink-unfed", entry.place,
                    "no in-colour feeds " + Quoted(entry.spelling) +
                        ": the sse engine leaves it 0, the x86 engine refuses the pattern",
                    "name it between BEGIN_INKS and END_INKS of an in-colour, or drop it here");
        }
    }

private:
    void Add(Severity severity, const char* kind, TextSpan place, std::string message,
             std::string hint)
    {
        AddFinding(findings, {severity, kind, place, std::move(message), std::move(hint)});
    }

    void LintVersion()
    {
        if (!outline.earlyVersion) {
            Add(Severity::Error, "version-missing", outline.earlyVersionPlace,
                "the text holds no VERSION with a number",
                "write VERSION 2 or VERSION 3 behind the header word");
            return;
        }
        const std::int32_t early = *outline.earlyVersion;
        if (early == outline.version)
            return;
        Add(Severity::Warning, "version-differs", outline.earlyVersionPlace,
            "the version is read twice: " + std::to_string(early) +
                " here, by which the random source is chosen, and " +
                std::to_string(outline.version) + " by the parser",
            "let the first VERSION in the text, comments included, be the only one");
    }

    void LintNames()
    {
        if (outline.InColourCount() == 0)
            Add(Severity::Error, "in-colours-missing", outline.inColoursPlace,
                "the pattern has no in-colour",
                "list one between BEGIN_IN_COLORS and END_IN_COLORS");
        if (outline.OutInkCount() == 0)
            Add(Severity::Error, "out-inks-missing", outline.outInksPlace,
                "the pattern has no out-ink", "list one between BEGIN_OUT_INKS and END_OUT_INKS");
        if (outline.InColourCount() > laneLimit)
            Add(Severity::Error, "in-colours-surplus", outline.inColoursPlace,
                "the pattern has " + std::to_string(outline.InColourCount()) + " in-colours",
                "use up to 16");
        if (outline.OutInkCount() > laneLimit)
            Add(Severity::Error, "out-inks-surplus", outline.outInksPlace,
                "the pattern has " + std::to_string(outline.OutInkCount()) + " out-inks",
                "use up to 16");
    }

    void LintInColour(const InColour& inColour)
    {
        if (inColour.name.empty())
            return;
        if (!inColour.described) {
            Add(Severity::Warning, "in-colour-undescribed", inColour.listed,
                Quoted(inColour.name) + " is listed, but no block describes it",
                "describe it between BEGIN_IN_COLOR and END_IN_COLOR, or drop it here");
            return;
        }
        if (inColour.stepCount == 0)
            Add(Severity::Warning, "in-colour-empty", *inColour.described,
                Quoted(inColour.name) + " has no value line", "write one for each step from 1");
        LintGaps(inColour);
        LintPositions(inColour);
    }

    void LintGaps(const InColour& inColour)
    {
        for (int step = 1; step < inColour.stepCount; ++step) {
            if (inColour.steps[static_cast<std::size_t>(step)].listed)
                continue;
            int next = step;
            while (!inColour.steps[static_cast<std::size_t>(next)].listed)
                ++next;
            Add(Severity::Error, "step-gap", inColour.steps[static_cast<std::size_t>(next)].place,
                "step " + std::to_string(step) + " of " + Quoted(inColour.name) +
                    " has no line, and step " + std::to_string(next) + " has one",
                "write a line for each step from 1 to the highest");
        }
    }

    void LintPositions(const InColour& inColour)
    {
        std::array<bool, positionLimit> used = {};
        for (const Step& step : inColour.steps) {
            for (std::size_t j = 0; j < step.count && step.listed; ++j)
                LintAlternative(inColour, step.alternatives[j], used);
        }
        for (std::size_t position = 0; position < inColour.inkCount; ++position) {
            if (!used[position] && inColour.stepCount > 0)
                Add(Severity::Warning, "position-unused", inColour.inks[position].place,
                    "no value line of " + Quoted(inColour.name) + " uses this ink, position " +
                        std::to_string(position),
                    "write entries with this position, or drop the ink here");
        }
    }

    void LintAlternative(const InColour& inColour, const Alternative& alternative,
                         std::array<bool, positionLimit>& used)
    {
        for (std::size_t position = 0; position < positionLimit; ++position) {
            if (alternative.values[position] == unsetInk)
                continue;
            used[position] = true;
            if (position >= inColour.inkCount)
                Add(Severity::Warning, "position-empty", alternative.place,
                    "position " + std::to_string(position) + " holds no ink: " +
                        Quoted(inColour.name) + " feeds " + std::to_string(inColour.inkCount),
                    "count the known names between BEGIN_INKS and END_INKS from 0");
        }
    }

    const PatternText& text;
    const PatternOutline& outline;
    Findings& findings;
};

} // namespace

void LintPattern(const PatternText& text, const PatternOutline& outline,
                 const CombinationModel& model, Findings& findings)
{
    WholeLint(text, outline, findings).Run();
    LintDraws(outline, model, findings);
}

} // namespace zvk::Pelkraft::Client
