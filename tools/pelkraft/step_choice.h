#pragma once

#include "tools/pelkraft/step_inks.h"
#include "tools/pelkraft/step_levels.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

struct LoadedPattern;

// The steps of a pattern's in-colours, and the way to them that is asked for.
struct StepChoice
{
    // The way of an in-colour whose samples have so many tones.
    StepWay WayOf(std::size_t inColour, int tones) const;
    // True for an in-colour that would be dithered if its inks rose from step to step.
    bool IsFlat(std::size_t inColour, int tones) const;

    Levels levels = Levels::Automatic;
    // By in-colour.
    std::vector<int> topSteps;
    // Empty where no tone is dithered.
    std::vector<StepInks> inks;
};

// The in-colours and their steps.
std::vector<SteppedColour> ColoursOf(const LoadedPattern& pattern);

// The inks of a tone that has a name: coverage, by the pattern's shares, or equal, in equal
// distances. Other names have none.
std::optional<std::vector<StepInks>> InksOfTone(const LoadedPattern& pattern,
                                                const std::string& tone);

// True for levels that are asked about the inks of steps.
bool TakesInks(Levels levels);

// Inks that do not rise are refused where the way is dither without another choice. A sentence
// about them ends with the advice, which says by what name a person chooses other ones.
StepChoice ChooseStepsByInks(const LoadedPattern& pattern, Levels levels,
                             std::vector<StepInks> inks, const std::string& advice);

// Says why an in-colour whose inks do not rise is quantized; empty for others.
std::string FlatInksWords(const LoadedPattern& pattern, const StepChoice& steps,
                          std::size_t inColour, const std::string& advice);

} // namespace zvk::Pelkraft::Client
