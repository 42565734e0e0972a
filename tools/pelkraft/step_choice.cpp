#include "tools/pelkraft/step_choice.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/loaded_pattern.h"
#include "tools/pelkraft/pattern_outline.h"
#include "tools/pelkraft/shown_text.h"

#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

std::string FlatWords(const LoadedPattern& pattern, const StepChoice& steps, std::size_t inColour,
                      int step)
{
    return "in-colour " + Shown(pattern.inColours[inColour]) + ": " +
           FlatStepWords(steps.inks[inColour], step);
}

} // namespace

StepWay StepChoice::WayOf(std::size_t inColour, int tones) const
{
    if (levels == Levels::Raw)
        return StepWay::Raw;
    if (levels == Levels::Dither)
        return StepWay::Dither;
    const bool dithers = levels == Levels::Automatic && tones > topSteps[inColour] + 1;
    return dithers && !FindFlatStep(inks[inColour]) ? StepWay::Dither : StepWay::Quantize;
}

bool StepChoice::IsFlat(std::size_t inColour, int tones) const
{
    return levels == Levels::Automatic && tones > topSteps[inColour] + 1 &&
           FindFlatStep(inks[inColour]);
}

std::vector<SteppedColour> ColoursOf(const LoadedPattern& pattern)
{
    std::vector<SteppedColour> colours;
    for (std::size_t i = 0; i < pattern.inColours.size(); ++i)
        colours.push_back({pattern.inColours[i], pattern.topSteps[i] + 1});
    return colours;
}

std::optional<std::vector<StepInks>> InksOfTone(const LoadedPattern& pattern,
                                                const std::string& tone)
{
    const std::vector<SteppedColour> colours = ColoursOf(pattern);
    if (tone == "coverage")
        return CoverageInks(ReadOutline(pattern.text.Bytes()), colours, pattern.outInks);
    if (tone == "equal")
        return EqualInks(colours);
    return std::nullopt;
}

bool TakesInks(Levels levels)
{
    return levels != Levels::Quantize && levels != Levels::Raw;
}

StepChoice ChooseStepsByInks(const LoadedPattern& pattern, Levels levels,
                             std::vector<StepInks> inks, const std::string& advice)
{
    StepChoice steps;
    steps.levels = levels;
    steps.topSteps = pattern.topSteps;
    steps.inks = std::move(inks);
    if (levels != Levels::Dither)
        return steps;
    for (std::size_t i = 0; i < steps.inks.size(); ++i)
        if (const auto step = FindFlatStep(steps.inks[i]))
            throw Failure(ExitCode::BadPattern, pattern.text.Path(),
                          FlatWords(pattern, steps, i, *step) +
                              "; a dither wants more ink at each step" + advice);
    return steps;
}

std::string FlatInksWords(const LoadedPattern& pattern, const StepChoice& steps,
                          std::size_t inColour, const std::string& advice)
{
    const auto step = FindFlatStep(steps.inks[inColour]);
    if (!step)
        return {};
    return FlatWords(pattern, steps, inColour, *step) +
           ", so that its tones are quantized: a dither wants more ink at each step" + advice;
}

} // namespace zvk::Pelkraft::Client
