#include "c_interface/plan_handle.h"

#include <string>

namespace zvk::Pelkraft {
namespace {

// The words of a plan need no escapes.
std::string Quoted(const std::string& text)
{
    return '"' + text + '"';
}

std::string Truth(bool value)
{
    return value ? "true" : "false";
}

std::string FormatText(const plk_format& format)
{
    return "{\"width\":" + std::to_string(format.width) +
           ",\"channels\":" + std::to_string(format.channels) +
           ",\"bits\":" + std::to_string(format.bits) + ",\"planar\":" + Truth(format.planar != 0) +
           "}";
}

std::string EntryText(std::int32_t entry)
{
    if (entry >= 0)
        return std::to_string(entry);
    if (entry == PLK_EMPTY)
        return "\"empty\"";
    return "{\"constant\":" + std::to_string(-2 - entry) + "}";
}

// The items as a list, each in words of JSON.
template <typename Items, typename Words>
std::string List(const Items& items, const Words& words)
{
    std::string text = "[";
    for (const auto& item : items)
        text.append(text.size() > 1 ? "," : "").append(words(item));
    return text + "]";
}

std::string SamplesText(std::int32_t samples)
{
    if (samples == PLK_SAMPLES_AS_TONES)
        return "\"tones\"";
    return samples == PLK_SAMPLES_AS_LEVELS ? "\"levels\"" : "\"fill\"";
}

} // namespace

std::string TextOf(const plk_plan& plan)
{
    return ToText(Describe(plan.rows));
}

std::string JsonOf(const plk_plan& plan)
{
    const PlanSpec& spec = plan.spec;
    const PlanWords words = Describe(plan.rows);
    return "{\"schema\":1,\"source\":" + FormatText(spec.source) +
           ",\"target\":" + FormatText(spec.target) +
           ",\"map\":" + (spec.maps ? List(spec.map, EntryText) : "null") +
           ",\"repeat\":" + std::to_string(spec.repeat) + ",\"mirror\":" + Truth(spec.mirror != 0) +
           ",\"samples\":" + SamplesText(spec.samples) + ",\"invert\":" + Truth(spec.invert != 0) +
           ",\"clip\":" + Truth(spec.clip != 0) + ",\"stream\":" + Truth(spec.stream != 0) +
           ",\"road\":" + Quoted(words.road) + ",\"level\":" + Quoted(words.level) +
           ",\"steps\":" + List(words.steps, Quoted) +
           ",\"bytes_read\":" + std::to_string(words.bytesRead) +
           ",\"bytes_written\":" + std::to_string(words.bytesWritten) +
           ",\"in_place\":" + Truth(plan.allowsInPlace) + "}\n";
}

} // namespace zvk::Pelkraft
