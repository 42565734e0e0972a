#pragma once

#include "pattern/pattern_reader.h"
#include "pattern/tokenizer.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// The places at which the text speaks of a step.
struct StepPlaces
{
    // There is a value line for it.
    bool listed = false;
    // The line is refused or lacks an entry.
    bool broken = false;
    TextSpan step;
    TextSpan ratio;
    // By alternative.
    std::vector<TextSpan> entries;
};

// The places at which the text speaks of an in-colour; its record holds what the text says.
struct InColourPlaces
{
    std::string name;
    TextSpan listed;
    // Its name in the block that describes it.
    std::optional<TextSpan> described;
    // By ink position.
    std::array<TextSpan, positionsOfInColor> inks;
    std::array<StepPlaces, stepsOfInColor> steps;
};

// An entry of one of the two tables of names.
struct NamedIndex
{
    std::string spelling;
    std::int32_t index = 0;
    TextSpan place;
};

// The first rule that a text breaks, where the library stops.
struct RefusedPlace
{
    PatternRefusal refusal;
    TextSpan place;
};

// The model of a pattern text, with the places that it comes from.
struct PatternOutline
{
    bool hasHeader = false;
    // The version by the last VERSION in the text, and by the check ahead of the parser.
    std::int32_t version = 1;
    std::optional<std::int32_t> earlyVersion;
    TextSpan versionPlace;
    TextSpan earlyVersionPlace;
    std::int32_t seed = 42;

    // By upper-cased name.
    std::map<std::string, NamedIndex> inColourNames;
    std::map<std::string, NamedIndex> outInkNames;
    TextSpan inColoursPlace;
    TextSpan outInksPlace;
    // By in-colour index.
    std::vector<InColourPlaces> inColours;
    InColorRecords<InColorRecord> records;
    // By out-ink index the in-colour whose step byte it follows.
    std::map<std::int32_t, std::int32_t> feeders;
    std::optional<RefusedPlace> refused;

    std::size_t InColourCount() const { return inColourNames.size(); }
    std::size_t OutInkCount() const { return outInkNames.size(); }
    // An empty one for an in-colour without a block.
    const InColorRecord& Record(std::size_t inColour) const;
    // Names by index, as many as the engines count; what repeated names leave empty is numbered.
    std::vector<std::string> InColourList() const;
    std::vector<std::string> OutInkList() const;
    // 2 from version 3 on, by the check that chooses.
    int Generation() const { return earlyVersion.value_or(1) >= 3 ? 2 : 1; }
};

// Stores in an outline all that a reader finds, by the rules of the library: where the library
// stops, it keeps the place and goes on.
class OutlineHandler : public PatternHandler
{
public:
    explicit OutlineHandler(PatternOutline& newOutline) : outline(newOutline) {}

    void TakeVersion(std::int32_t version, const PatternToken& keyword) override;
    void TakeSeed(std::int32_t seed) override { outline.seed = seed; }
    void AllocateInColors(std::int32_t count) override;
    void SelectInColor(std::int32_t inColor, const PatternToken& name) override;
    void TakeInk(std::int32_t inColor, std::int32_t position, std::int32_t outInk,
                 const PatternToken& name) override;
    void TakeInkCount(std::int32_t inColor, std::int32_t count) override;
    void BeginValueLines(std::int32_t) override {}
    void TakeValueLine(std::int32_t inColor, const ValueLine& line) override;
    void Refuse(PatternRefusal refusal, const PatternToken& at) override;
    void BeginNames(NameList list, const PatternToken& opening) override;
    void TakeName(NameList list, std::int32_t index, const PatternToken& name) override;

protected:
    std::map<std::string, NamedIndex>& Names(NameList list) const;
    InColourPlaces& Places(std::int32_t inColour) const;

    PatternOutline& outline;
};

// Reads a text by the rules of the library, to its end.
PatternOutline ReadOutline(const std::string& text);

} // namespace zvk::Pelkraft::Client
