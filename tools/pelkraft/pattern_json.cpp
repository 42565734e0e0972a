#include "tools/pelkraft/ink_shares.h"
#include "tools/pelkraft/json.h"
#include "tools/pelkraft/pattern_report.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace zvk::Pelkraft::Client {
namespace {

// A key that is gone or means another thing takes a new number; new keys don't.
constexpr int schemaVersion = 1;

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

// A number that isn't there is NaN, which JSON knows as null.
Json MeanJson(const MeanInk& mean)
{
    return {{"expected", mean.expected}, {"measured", mean.measured}};
}

Json SharesJson(const StepShares& shares, const std::vector<std::string>& outInks)
{
    Json json = Json::array();
    for (const InkShares& ink : shares.inks) {
        Json values = Json::array();
        for (const ValueShare& share : ink.values)
            values.push_back({{"value", share.value},
                              {"expected", share.expected},
                              {"measured", share.measured}});
        json.push_back({{"ink", NameJson(outInks, ink.outInk)},
                        {"mean", MeanJson(MeanOf(ink))},
                        {"values", values}});
    }
    return json;
}

Json InColourJson(const PatternReport& report, std::size_t index,
                  const std::vector<std::string>& outInks, const std::vector<StepShares>& shares)
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
        const auto found = std::find_if(shares.begin(), shares.end(), [&](const StepShares& one) {
            return one.inColour == static_cast<int>(index) && one.step == static_cast<int>(number);
        });
        if (found != shares.end()) {
            said["shares"] = SharesJson(*found, outInks);
            said["meanInk"] = MeanJson(MeanOf(*found));
        }
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
                        {"fix", finding.replacement ? Json(*finding.replacement) : Json(nullptr)},
                        {"text", FindingLine(finding, report.text)}});
    }
    return json;
}

Json CountsJson(const std::vector<const PatternReport*>& reports)
{
    Json json;
    for (const auto& [severity, name] :
         {std::pair(Severity::Error, "errors"), std::pair(Severity::Warning, "warnings"),
          std::pair(Severity::Note, "notes")}) {
        std::size_t count = 0;
        for (const PatternReport* report : reports)
            count += CountFindings(report->findings, severity);
        json[name] = count;
    }
    return json;
}

std::vector<StepShares> SharesOf(const PatternReport& report)
{
    std::string refusal;
    const auto pattern = TryDrawingPattern(report.text, refusal);
    return MeasureShares(report.outline, report.model, pattern.get());
}

Json ReportJson(const PatternReport& report, const std::vector<StepShares>& shares)
{
    const PatternOutline& outline = report.outline;
    const std::vector<std::string> outInks = outline.OutInkList();
    Json json;
    json["schema"] = schemaVersion;
    json["file"] = report.text.Path();
    json["version"] = {
        {"parser", outline.version},
        {"check", outline.earlyVersion ? Json(*outline.earlyVersion) : Json(nullptr)},
        {"generation", outline.Generation()}};
    json["seed"] = outline.seed;
    json["inColours"] = Json::array();
    for (std::size_t i = 0; i < outline.InColourCount(); ++i)
        json["inColours"].push_back(InColourJson(report, i, outInks, shares));
    json["outInks"] = Json::array();
    for (std::size_t i = 0; i < outInks.size(); ++i)
        json["outInks"].push_back(OutInkJson(report, static_cast<int>(i), outInks[i]));
    json["limits"] = LimitsJson(report.model);
    json["engines"] = EnginesJson(report);
    json["counts"] = CountsJson({&report});
    json["findings"] = FindingsJson(report);
    return json;
}

Json MeasuredJson(const PatternReport& report)
{
    return ReportJson(report, SharesOf(report));
}

Json LintJson(const PatternReport& report)
{
    Json json;
    json["file"] = report.text.Path();
    json["engines"] = EnginesJson(report);
    json["counts"] = CountsJson({&report});
    json["findings"] = FindingsJson(report);
    return json;
}

std::string ListJson(const std::vector<const PatternReport*>& reports,
                     Json (*jsonOf)(const PatternReport&))
{
    Json texts = Json::array();
    std::transform(reports.begin(), reports.end(), std::back_inserter(texts),
                   [jsonOf](const PatternReport* report) { return jsonOf(*report); });
    return JsonText(
        {{"schema", schemaVersion}, {"counts", CountsJson(reports)}, {"texts", std::move(texts)}});
}

} // namespace

std::string PatternJson(const PatternReport& report)
{
    return JsonText(MeasuredJson(report));
}

std::string PatternJson(const PatternReport& report, const std::vector<StepShares>& shares)
{
    return JsonText(ReportJson(report, shares));
}

std::string ExplainTextsJson(const std::vector<const PatternReport*>& reports)
{
    return ListJson(reports, MeasuredJson);
}

std::string LintTextsJson(const std::vector<const PatternReport*>& reports)
{
    return ListJson(reports, LintJson);
}

} // namespace zvk::Pelkraft::Client
