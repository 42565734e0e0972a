#include "tools/pelkraft/simulation_explain.h"

#include "tools/pelkraft/option_values.h"
#include "tools/pelkraft/pattern_engines.h"
#include "tools/pelkraft/shown_text.h"

namespace zvk::Pelkraft::Client {
namespace {

const char* WayWords(StepWay way)
{
    return way == StepWay::Raw ? "raw" : way == StepWay::Quantize ? "quantized" : "dithered";
}

const char* ChoiceWords(const SimulationPlan& plan, std::size_t inColour)
{
    return plan.choice.byName[inColour] ? "name" : "order";
}

std::string EngineWords(const LoadedPattern& pattern)
{
    const bool automatic = pattern.engine == DotWeavePattern::Automatic;
    return (automatic ? "automatic" : EngineName(pattern.engine)) + " engine";
}

} // namespace

std::string ExplainSimulation(const SimulationPlan& plan, const LoadedPattern& pattern)
{
    std::string text = ": " + std::to_string(plan.from.width) + " x " +
                       std::to_string(plan.from.height) + " pixels, by the " +
                       EngineWords(pattern) + '\n';
    for (std::size_t i = 0; i < pattern.inColours.size(); ++i)
        text += "  in-colour " + Shown(pattern.inColours[i]) + ": channel " +
                Shown(ChannelWords(plan.channels, plan.choice.map[i])) + " by " +
                ChoiceWords(plan, i) + ", steps 0 to " + std::to_string(pattern.topSteps[i]) +
                ", " + WayWords(plan.steps.ways[i]) + '\n';
    return text + "  out-inks " + Shown(Joined(pattern.outInks, ", ")) + '\n';
}

std::string ChoicesOf(const SimulationPlan& plan, const LoadedPattern& pattern)
{
    std::string text = EngineWords(pattern);
    for (std::size_t i = 0; i < pattern.inColours.size(); ++i)
        text += "; " + pattern.inColours[i] + " from channel " +
                ChannelWords(plan.channels, plan.choice.map[i]) + " by " + ChoiceWords(plan, i) +
                ", " + WayWords(plan.steps.ways[i]);
    return text;
}

Json ExplainSimulationJson(const SimulationPlan& plan, const LoadedPattern& pattern, int page)
{
    Json inColours = Json::array();
    for (std::size_t i = 0; i < pattern.inColours.size(); ++i) {
        const int channel = plan.choice.map[i];
        inColours.push_back(
            {{"name", pattern.inColours[i]},
             {"channel", channel},
             {"channel_name", plan.channels[static_cast<std::size_t>(channel)].name},
             {"by", ChoiceWords(plan, i)},
             {"top_step", pattern.topSteps[i]},
             {"levels", WayWords(plan.steps.ways[i])}});
    }
    return {{"page", page},
            {"width", plan.from.width},
            {"height", plan.from.height},
            {"engine", EngineName(pattern.engine)},
            {"in_colours", std::move(inColours)},
            {"out_inks", pattern.outInks}};
}

} // namespace zvk::Pelkraft::Client
