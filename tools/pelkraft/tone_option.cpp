#include "tools/pelkraft/tone_option.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/loaded_pattern.h"
#include "tools/pelkraft/near_names.h"
#include "tools/pelkraft/small_file.h"
#include "tools/pelkraft/system_calls.h"

#include <filesystem>
#include <system_error>

namespace zvk::Pelkraft::Client {
namespace {

void RefuseMisspeltKind(const std::string& tone)
{
    const std::string nearest = NearestName(tone, {"coverage", "equal"});
    std::error_code unknown;
    if (!nearest.empty() && !std::filesystem::exists(PathOf(tone), unknown))
        throw Failure(ExitCode::Usage, {},
                      "--tone " + tone + " is neither a kind of tone nor a file. Did you mean " +
                          nearest + "?");
}

} // namespace

StepChoice ChooseSteps(const LoadedPattern& pattern, Levels levels, const std::string& tone)
{
    if (!TakesInks(levels))
        return ChooseStepsByInks(pattern, levels, {}, toneAdvice);
    auto inks = InksOfTone(pattern, tone);
    if (!inks) {
        RefuseMisspeltKind(tone);
        inks = ReadStepInks(tone, ReadSmallFile(tone, {"a table of inks"}), ColoursOf(pattern));
    }
    return ChooseStepsByInks(pattern, levels, *std::move(inks), toneAdvice);
}

} // namespace zvk::Pelkraft::Client
