#include "tools/pelkraft/loaded_pattern.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/ink_values.h"
#include "tools/pelkraft/pattern_engines.h"
#include "tools/pelkraft/pattern_outline.h"

namespace zvk::Pelkraft::Client {
LoadedPattern::LoadedPattern(const PatternText& newText, DotWeavePattern::Engine newEngine)
    : text(newText), engine(newEngine)
{
    if (engine == DotWeavePattern::Sse && !SseEngineRuns())
        throw Failure(ExitCode::Unsupported, {},
                      "this processor doesn't run the sse engine; supported are auto, x86 and "
                      "reference");
    const auto pattern = Make();
    const PatternOutline outline = ReadOutline(text.Bytes());
    inColours = outline.InColourList();
    outInks = outline.OutInkList();
    inColours.resize(static_cast<std::size_t>(pattern->GetInColorCount()));
    outInks.resize(static_cast<std::size_t>(pattern->GetOutColorCount()));
    for (int i = 0; i < pattern->GetInColorCount(); ++i) {
        // The reference engine answers the number of value lines, which is another thing.
        const auto index = static_cast<std::size_t>(i);
        const int answer = RunsOnOneThread() ? outline.Record(index).numSteps - 1
                                             : pattern->GetNumberOfStepsForInColor(i);
        topSteps.push_back(answer >= 0 && answer < stepsOfInColor ? answer : 0);
    }
    // There the reference engine reads entries in a way of its own.
    if (!RunsOnOneThread() || outline.version <= 2)
        fullInk = HighestInkValue(outline);
}

std::unique_ptr<DotWeavePattern> LoadedPattern::Make() const
{
    std::string refusal;
    auto pattern = TryPattern(text, engine, refusal);
    if (pattern == nullptr)
        throw Failure(ExitCode::BadPattern, text.Path(),
                      "the " + EngineName(engine) + " engine doesn't load it; the engine says: \"" +
                          refusal + "\"; pelkraft pattern shows where, and which engines load it");
    return pattern;
}

} // namespace zvk::Pelkraft::Client
