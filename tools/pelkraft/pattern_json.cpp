#include "tools/pelkraft/json.h"
#include "tools/pelkraft/pattern_report.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {
namespace {

Json NameJson(const std::vector<std::string>& outInks, std::int32_t index)
{
    return static_cast<std::size_t>(index) < outInks.size()
               ? Json(outInks[static_cast<std::size_t>(index)])
               : Json(nullptr);
}

Json AlternativeJson(const InColorRecord& record, const StepValues& step, std::size_t index,
                     const std::vector<std::string>& outInks)
{
    const Fraction& fraction = step.fractions[index];
    Json json;
    json["weight"] = fraction.numerator;
    json["probability"] = fraction.numerator / static_cast<double>(fraction.denominator);
    json["values"] = Json::array();
    for (std::size_t p = 0; p < positionsOfInColor; ++p) {
        if (step.table[index][p] == unsetValue)
            continue;
        Json value;
        value["position"] = p;
        value["ink"] = p < static_cast<std::size_t>(record.numInks)
                           ? NameJson(outInks, record.inks[p])
                           : Json(nullptr);
        value["value"] = step.table[index][p];
        json["values"].push_back(value);
    }
    return json;
}

Json InColourJson(const PatternReport& report, std::size_t index,
                  const std::vector<std::string>& outInks)
{
    const InColourPlaces& places = report.outline.inColours[index];
    const InColorRecord& record = report.outline.Record(index);
    Json json;
    json["name"] = places.name;
    json["described"] = places.described.has_value();
    json["topStep"] = record.numSteps == 0 ? Json(nullptr) : Json(record.numSteps - 1);
    json["feeds"] = Json::array();
    for (std::size_t p = 0; p < static_cast<std::size_t>(record.numInks); ++p)
        json["feeds"].push_back(NameJson(outInks, record.inks[p]));
    json["combinations"] = {{"used", report.model.draws[index].combinations},
                            {"limit", MAXS_CHANNEL_RANDOM}};
    json["steps"] = Json::array();
    for (std::size_t number = 0; number < static_cast<std::size_t>(record.numSteps); ++number) {
        const StepValues& step = record.steps[number];
        Json said;
        said["step"] = number;
        said["listed"] = places.steps[number].listed;
        said["alternatives"] = Json::array();
        for (std::size_t i = 0; i < static_cast<std::size_t>(step.numRandoms); ++i)
            said["alternatives"].push_back(AlternativeJson(record, step, i, outInks));
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
    json["combinations"] = {{"used", model.combinations}, {"limit", MAXS_TOTAL_RANDOM}};
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
    for (std::size_t i = 0; i < outline.InColourCount(); ++i)
        json["inColours"].push_back(InColourJson(report, i, outInks));
    json["outInks"] = Json::array();
    for (std::size_t i = 0; i < outInks.size(); ++i)
        json["outInks"].push_back(OutInkJson(report, static_cast<int>(i), outInks[i]));
    json["limits"] = LimitsJson(report.model);
    json["engines"] = EnginesJson(report);
    json["findings"] = FindingsJson(report);
    return JsonText(json);
}

} // namespace zvk::Pelkraft::Client
