#include "tools/pelkraft/pattern_report.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {
namespace {

// A value that finds no memory for its content follows a null pointer when it is destroyed.
template <typename Value>
struct AllocatorOrEnd : std::allocator<Value>
{
    template <typename Other>
    struct rebind
    {
        using other = AllocatorOrEnd<Other>;
    };

    AllocatorOrEnd() = default;
    template <typename Other>
    AllocatorOrEnd(const AllocatorOrEnd<Other>&) noexcept
    {}

    // Being noexcept it ends the program where there is none.
    Value* allocate(std::size_t count) noexcept { return std::allocator<Value>::allocate(count); }
};

// In the order of insertion.
using Json = nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool,
                                  std::int64_t, std::uint64_t, double, AllocatorOrEnd>;

Json AlternativeJson(const InColour& inColour, const Step& step, const Alternative& alternative,
                     const std::vector<std::string>& outInks)
{
    Json json;
    json["weight"] = alternative.weight;
    json["probability"] = alternative.weight / static_cast<double>(step.weightSum);
    json["values"] = Json::array();
    for (std::size_t p = 0; p < positionLimit; ++p) {
        if (alternative.values[p] == unsetInk)
            continue;
        Json value;
        value["position"] = p;
        const auto index =
            p < inColour.inkCount ? static_cast<std::size_t>(inColour.inks[p].outInk) : p;
        value["ink"] =
            p < inColour.inkCount && index < outInks.size() ? Json(outInks[index]) : Json(nullptr);
        value["value"] = alternative.values[p];
        json["values"].push_back(value);
    }
    return json;
}

Json InColourJson(const PatternReport& report, std::size_t index,
                  const std::vector<std::string>& outInks)
{
    const InColour& inColour = report.outline.inColours[index];
    Json json;
    json["name"] = inColour.name;
    json["described"] = inColour.described.has_value();
    json["topStep"] = inColour.stepCount == 0 ? Json(nullptr) : Json(inColour.stepCount - 1);
    json["feeds"] = Json::array();
    for (std::size_t p = 0; p < inColour.inkCount; ++p) {
        const auto outInk = static_cast<std::size_t>(inColour.inks[p].outInk);
        json["feeds"].push_back(outInk < outInks.size() ? Json(outInks[outInk]) : Json(nullptr));
    }
    if (index < report.model.draws.size())
        json["combinations"] = {{"used", report.model.draws[index].combinations},
                                {"limit", inColourCombinationLimit}};
    json["steps"] = Json::array();
    for (std::size_t number = 0; number < static_cast<std::size_t>(inColour.stepCount); ++number) {
        const Step& step = inColour.steps[number];
        Json said;
        said["step"] = number;
        said["listed"] = step.listed;
        said["alternatives"] = Json::array();
        for (std::size_t i = 0; i < step.count; ++i)
            said["alternatives"].push_back(
                AlternativeJson(inColour, step, step.alternatives[i], outInks));
        json["steps"].push_back(said);
    }
    return json;
}

Json OutInkJson(const PatternReport& report, int index, const std::string& name)
{
    Json json;
    json["name"] = name;
    json["fedBy"] = Json::array();
    const auto found = report.feeders.find(index);
    for (const int feeder : found == report.feeders.end() ? std::vector<int>() : found->second)
        json["fedBy"].push_back(report.outline.inColours[static_cast<std::size_t>(feeder)].name);
    return json;
}

Json LimitsJson(const CombinationModel& model)
{
    Json json;
    json["combinations"] = {{"used", model.combinations}, {"limit", combinationLimit}};
    if (!model.obstacle.empty()) {
        json["obstacle"] = model.obstacle;
        return json;
    }
    json["places"] = {
        {"used", model.places}, {"limit", placeLimit}, {"combination", model.fullest}};
    json["commonDenominator"] = model.total;
    json["fieldEntries"] = model.fieldSize;
    return json;
}

Json EnginesJson(const PatternReport& report)
{
    Json json = Json::array();
    std::transform(report.verdicts.begin(), report.verdicts.end(), std::back_inserter(json),
                   [](const EngineVerdict& verdict) {
                       return Json{
                           {"name", EngineName(verdict.engine)},
                           {"loads", !verdict.refusal.has_value()},
                           {"refusal", verdict.refusal ? Json(*verdict.refusal) : Json(nullptr)}};
                   });
    return json;
}

Json FindingsJson(const PatternReport& report)
{
    Json json = Json::array();
    for (const Finding& finding : report.findings) {
        const TextPlace place = report.text.PlaceOf(finding.place.offset);
        json.push_back({{"severity", SeverityName(finding.severity)},
                        {"kind", finding.kind},
                        {"line", place.line},
                        {"column", place.column},
                        {"message", finding.message},
                        {"hint", finding.hint},
                        {"text", FindingLine(finding, report.text)}});
    }
    return json;
}

} // namespace

std::string PatternJson(const PatternReport& report)
{
    const PatternOutline& outline = report.outline;
    const std::vector<std::string> outInks = outline.OutInkList();
    Json json;
    json["file"] = report.text.Path();
    json["version"] = {
        {"parser", outline.version},
        {"check", outline.earlyVersion ? Json(*outline.earlyVersion) : Json(nullptr)},
        {"generation", outline.Generation()}};
    json["seed"] = outline.seed;
    json["inColours"] = Json::array();
    for (int i = 0; i < outline.InColourCount(); ++i) {
        if (static_cast<std::size_t>(i) < outline.inColours.size())
            json["inColours"].push_back(InColourJson(report, static_cast<std::size_t>(i), outInks));
    }
    json["outInks"] = Json::array();
    for (int i = 0; i < outline.OutInkCount(); ++i)
        json["outInks"].push_back(OutInkJson(report, i, outInks[static_cast<std::size_t>(i)]));
    json["limits"] = LimitsJson(report.model);
    json["engines"] = EnginesJson(report);
    json["findings"] = FindingsJson(report);
    // Names may hold bytes that are no UTF-8.
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace zvk::Pelkraft::Client
