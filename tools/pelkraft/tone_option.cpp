#include "tools/pelkraft/tone_option.h"

#include "tools/pelkraft/loaded_pattern.h"
#include "tools/pelkraft/small_file.h"

namespace zvk::Pelkraft::Client {

StepChoice ChooseSteps(const LoadedPattern& pattern, Levels levels, const std::string& tone)
{
    if (!TakesInks(levels))
        return ChooseStepsByInks(pattern, levels, {});
    auto inks = InksOfTone(pattern, tone);
    if (!inks)
        inks = ReadStepInks(tone, ReadSmallFile(tone, {"a table of inks"}), ColoursOf(pattern));
    return ChooseStepsByInks(pattern, levels, *std::move(inks));
}

} // namespace zvk::Pelkraft::Client
