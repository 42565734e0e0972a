#include "tools/pelkraft/tone_option.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/findings.h"
#include "tools/pelkraft/simulation.h"
#include "tools/pelkraft/small_file.h"

namespace zvk::Pelkraft::Client {
namespace {

std::vector<SteppedColour> ColoursOf(const LoadedPattern& pattern)
{
    std::vector<SteppedColour> colours;
    for (std::size_t i = 0; i < pattern.inColours.size(); ++i)
        colours.push_back({pattern.inColours[i], pattern.topSteps[i] + 1});
    return colours;
}

std::vector<StepInks> InksOf(const LoadedPattern& pattern, const std::string& tone)
{
    const std::vector<SteppedColour> colours = ColoursOf(pattern);
    if (tone == "coverage")
        return CoverageInks(ReadOutline(pattern.text.Bytes()), colours, pattern.outInks);
    if (tone == "equal")
        return EqualInks(colours);
    return ReadStepInks(tone, ReadSmallFile(tone, {"a table of inks"}), colours);
}

std::string FlatWords(const LoadedPattern& pattern, const StepChoice& steps, std::size_t inColour,
                      int step)
{
    return "in-colour " + Shown(pattern.inColours[inColour]) + ": " +
           FlatStepWords(steps.inks[inColour], step);
}

} // namespace

StepChoice ChooseSteps(const LoadedPattern& pattern, Levels levels, const std::string& tone)
{
    StepChoice steps;
    steps.levels = levels;
    steps.topSteps = pattern.topSteps;
    if (levels == Levels::Quantize || levels == Levels::Raw)
        return steps;
    steps.inks = InksOf(pattern, tone);
    if (levels == Levels::Automatic)
        return steps;
    for (std::size_t i = 0; i < steps.inks.size(); ++i)
        if (const auto step = FindFlatStep(steps.inks[i]))
            throw Failure(ExitCode::BadPattern, pattern.text.Path(),
                          FlatWords(pattern, steps, i, *step) +
                              "; --levels dither wants more ink at each step, which --tone equal "
                              "or a CSV file may give");
    return steps;
}

void WarnOfFlatInks(const LoadedPattern& pattern, const StepChoice& steps, std::size_t inColour)
{
    if (const auto step = FindFlatStep(steps.inks[inColour]))
        PrintWarning(pattern.text.Path(),
                     FlatWords(pattern, steps, inColour, *step) +
                         ", so that its tones are quantized; --tone equal or a CSV file may give "
                         "inks that can be dithered");
}

} // namespace zvk::Pelkraft::Client
