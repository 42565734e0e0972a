#include "tools/pelkraft/pattern_lints.h"

#include "tools/pelkraft/draw_lints.h"

#include <algorithm>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

// The engines do the same for all versions from this one on.
constexpr std::int32_t highestVersion = 3;

class PatternLint
{
public:
    PatternLint(const PatternText& newText, const PatternOutline& newOutline, Findings& newFindings)
        : text(newText), outline(newOutline), findings(newFindings)
    {}

    void Run()
    {
        // The header has been told of, and what else there is to say comes of it.
        const bool isNoPattern =
            !outline.hasHeader && !outline.earlyVersion && outline.InColourCount() == 0;
        if (isNoPattern || !text.WideCode().empty())
            return;
        if (text.EndsAtZero())
            Add(Severity::Warning, "text-cut", {text.Bytes().size(), 0},
                "a zero byte ends the text here; the rest of the file is not read",
                "save the pattern as plain text");
        LintVersion();
        LintNames();
        for (std::size_t i = 0; i < outline.inColours.size(); ++i)
            LintInColour(outline.inColours[i], outline.Record(i));
        for (const auto& [upper, entry] : outline.outInkNames) {
            if (outline.feeders.count(entry.index) == 0)
                Add(Severity::Warning, "ink-unfed", entry.place,
                    "no in-colour feeds " + Quoted(entry.spelling) +
                        ": it gets no drop, and old processors refuse the pattern",
                    "name it between BEGIN_INKS and END_INKS of an in-colour, or drop it here");
        }
    }

private:
    void Add(Severity severity, const char* kind, TextSpan place, std::string message,
             std::string hint)
    {
        AddFinding(findings, severity, kind, place, std::move(message), std::move(hint));
    }

    void LintVersion()
    {
        if (!outline.earlyVersion) {
            Add(Severity::Error, "version-missing", outline.earlyVersionPlace,
                "the text holds no VERSION with a number",
                "write VERSION 2 or VERSION 3 after the header word");
            return;
        }
        const std::int32_t early = *outline.earlyVersion;
        if (early > highestVersion)
            Add(Severity::Warning, "version-high", outline.earlyVersionPlace,
                "version " + std::to_string(early) + " is read as version 3, the highest one",
                "write VERSION 3, or VERSION 2 if that was meant");
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
        if (outline.InColourCount() > outInkLanes)
            Add(Severity::Error, "in-colours-surplus", outline.inColoursPlace,
                "the pattern has " + std::to_string(outline.InColourCount()) + " in-colours",
                "use up to 16");
        if (outline.OutInkCount() > outInkLanes)
            Add(Severity::Error, "out-inks-surplus", outline.outInksPlace,
                "the pattern has " + std::to_string(outline.OutInkCount()) + " out-inks",
                "use up to 16");
    }

    void LintInColour(const InColourPlaces& places, const InColorRecord& record)
    {
        if (places.name.empty())
            return;
        if (!places.described) {
            Add(Severity::Warning, "in-colour-undescribed", places.listed,
                Quoted(places.name) + " is listed, but no block describes it",
                "describe it between BEGIN_IN_COLOR and END_IN_COLOR, or drop it here");
            return;
        }
        if (record.numSteps == 0)
            Add(Severity::Warning, "in-colour-empty", *places.described,
                Quoted(places.name) + " has no value line", "write one for each step from 1");
        LintGaps(places, record);
        LintPositions(places, record);
    }

    void LintGaps(const InColourPlaces& places, const InColorRecord& record)
    {
        for (int step = 1; step < record.numSteps; ++step) {
            if (places.steps[static_cast<std::size_t>(step)].listed)
                continue;
            int next = step;
            while (!places.steps[static_cast<std::size_t>(next)].listed)
                ++next;
            Add(Severity::Error, "step-gap", places.steps[static_cast<std::size_t>(next)].step,
                "step " + std::to_string(step) + " of " + Quoted(places.name) +
                    " has no line, and step " + std::to_string(next) + " has one",
                "write a line for each step from 1 to the highest");
        }
    }

    // Each position once, at its first entry.
    void LintPositions(const InColourPlaces& places, const InColorRecord& record)
    {
        const auto inks = static_cast<std::size_t>(record.numInks);
        const bool isWhole =
            record.numSteps > 0 && std::none_of(places.steps.begin(), places.steps.end(),
                                                [](const StepPlaces& step) { return step.broken; });
        for (std::size_t position = 0; position < positionsOfInColor; ++position) {
            std::size_t more = 0;
            const TextSpan* entry = FirstEntry(places, record, position, more);
            if (entry == nullptr && position < inks && isWhole)
                Add(Severity::Warning, "position-unused", places.inks[position],
                    "no value line of " + Quoted(places.name) + " uses this ink, position " +
                        std::to_string(position),
                    "write entries with this position, or drop the ink here");
            if (entry != nullptr && position >= inks)
                Add(Severity::Warning, "position-empty", *entry,
                    "position " + std::to_string(position) +
                        " holds no ink: " + Quoted(places.name) + " feeds " + std::to_string(inks) +
                        (more == 0 ? ""
                                   : "; " + Counted(more, "more entry has", "more entries have") +
                                         " this position"),
                    "count the known names between BEGIN_INKS and END_INKS from 0");
        }
    }

    // Null where no line sets the position; more counts the entries after the first.
    static const TextSpan* FirstEntry(const InColourPlaces& places, const InColorRecord& record,
                                      std::size_t position, std::size_t& more)
    {
        const TextSpan* first = nullptr;
        for (std::size_t step = 0; step < places.steps.size(); ++step)
            for (std::size_t j = 0; j < places.steps[step].entries.size(); ++j) {
                if (record.steps[step].table[j][position] == unsetValue)
                    continue;
                const TextSpan& entry = places.steps[step].entries[j];
                more += first == nullptr ? 0 : 1;
                if (first == nullptr)
                    first = &entry;
            }
        return first;
    }

    const PatternText& text;
    const PatternOutline& outline;
    Findings& findings;
};

} // namespace

void LintPattern(const PatternText& text, const PatternOutline& outline,
                 const CombinationModel& model, Findings& findings)
{
    PatternLint(text, outline, findings).Run();
    LintDraws(outline, model, findings);
}

} // namespace zvk::Pelkraft::Client
