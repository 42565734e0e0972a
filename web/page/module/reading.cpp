#include "web/page/module/reading.h"

#include "pattern/pattern_words.h"
#include "tools/pelkraft/ink_colours.h"
#include "tools/pelkraft/ink_values.h"
#include "tools/pelkraft/json.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace zvk::Pelkraft::Page {
namespace {

using Client::Json;

Json PlaceJson(const TextSpan& place)
{
    return place.length == 0 ? Json(nullptr) : Json{place.offset, place.length};
}

Json StepJson(const Client::StepPlaces& places)
{
    Json entries = Json::array();
    for (const TextSpan& entry : places.entries)
        entries.push_back(PlaceJson(entry));
    return {
        {"step", PlaceJson(places.step)}, {"ratio", PlaceJson(places.ratio)}, {"entries", entries}};
}

Json InColourJson(const Client::PatternOutline& outline, std::size_t index)
{
    const Client::InColourPlaces& places = outline.inColours[index];
    const InColorRecord& record = outline.Record(index);
    Json inks = Json::array();
    for (std::size_t p = 0; p < static_cast<std::size_t>(record.numInks); ++p)
        inks.push_back(PlaceJson(places.inks[p]));
    Json steps = Json::array();
    for (std::size_t number = 0; number < static_cast<std::size_t>(record.numSteps); ++number)
        steps.push_back(StepJson(places.steps[number]));
    return {{"listed", PlaceJson(places.listed)},
            {"described", PlaceJson(places.described.value_or(TextSpan()))},
            {"inks", inks},
            {"steps", steps}};
}

Json OutInkJson(const Client::PatternOutline& outline, const std::string& name)
{
    const auto found = outline.outInkNames.find(UpperCase(name));
    const Client::InkLook look = Client::LookOfInk(name, {});
    return {{"place",
             found == outline.outInkNames.end() ? Json(nullptr) : PlaceJson(found->second.place)},
            {"colour", Client::HexWords(look.colour)},
            {"opacity", look.opacity},
            {"strength", look.strength}};
}

Json FindingJson(const Client::Finding& finding)
{
    return {finding.place.offset, finding.place.length};
}

// Simulation takes the automatic engine, which is one of these two.
bool Draws(const Client::PatternReport& report)
{
    for (const Client::EngineVerdict& verdict : report.verdicts) {
        const bool asked = verdict.engine ==
                           (Client::SseEngineRuns() ? DotWeavePattern::Sse : DotWeavePattern::X86);
        if (asked)
            return !verdict.refusal;
    }
    return false;
}

} // namespace

std::string PlacesJson(const Client::PatternReport& report)
{
    const Client::PatternOutline& outline = report.outline;
    Json json;
    json["runs"] = Draws(report);
    json["fullInk"] = Client::HighestInkValue(outline);
    json["inColours"] = Json::array();
    for (std::size_t i = 0; i < outline.InColourCount(); ++i)
        json["inColours"].push_back(InColourJson(outline, i));
    json["outInks"] = Json::array();
    for (const std::string& name : outline.OutInkList())
        json["outInks"].push_back(OutInkJson(outline, name));
    json["findings"] = Json::array();
    for (const Client::Finding& finding : report.findings)
        json["findings"].push_back(FindingJson(finding));
    return Client::JsonText(json);
}

} // namespace zvk::Pelkraft::Page
