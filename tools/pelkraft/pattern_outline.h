#pragma once

#include "tools/pelkraft/pattern_text.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

constexpr int stepLimit = 8;
constexpr int positionLimit = 16;
constexpr int weightLimit = 16;
constexpr int noIndex = -1;
// What a step says of an ink that it leaves alone.
constexpr std::int32_t unsetInk = -1;

// One of the ways in which a step may come out.
struct Alternative
{
    Alternative() { values.fill(unsetInk); }

    std::int32_t weight = 1;
    // By ink position. A second line for the same step adds to what the first one set.
    std::array<std::int32_t, positionLimit> values;
    TextSpan place;
};

struct Step
{
    // A value line was read for it.
    bool listed = false;
    // The alternatives that count: of step 0 one as soon as its in-colour is selected.
    std::size_t count = 0;
    std::int64_t weightSum = 1;
    std::vector<Alternative> alternatives;
    TextSpan place;
    TextSpan ratioPlace;
};

struct FedInk
{
    int outInk = 0;
    TextSpan place;
};

// What a pattern text says of one input colour.
struct InColour
{
    std::string name;
    TextSpan listed;
    // Its name in the block that describes it.
    std::optional<TextSpan> described;
    // By ink position.
    std::vector<FedInk> inks;
    // How many of them an end of the list has confirmed.
    std::size_t inkCount = 0;
    std::array<Step, stepLimit> steps;
    // The highest step listed, plus 1.
    int stepCount = 0;
};

// An entry of one of the two tables of names.
struct NamedIndex
{
    std::string spelling;
    int index = 0;
    TextSpan place;
};

// What a pattern text says, read as the library reads it.
struct PatternOutline
{
    bool hasHeader = false;
    // By the parser, which takes the last one in the text, and by the check ahead of it.
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
    std::vector<InColour> inColours;
    // By out-ink index the in-colour whose step byte it follows.
    std::map<int, int> feeders;

    int InColourCount() const { return static_cast<int>(inColourNames.size()); }
    int OutInkCount() const { return static_cast<int>(outInkNames.size()); }
    // Names by index, as many as the engines count; what repeated names leave empty is numbered.
    std::vector<std::string> InColourList() const;
    std::vector<std::string> OutInkList() const;
    // 2 from version 3 on, by the check that chooses.
    int Generation() const { return earlyVersion.value_or(1) >= 3 ? 2 : 1; }
};

// Two fractions of a step are the same to the library only if both their numbers are.
bool SameDistribution(const Step& left, const Step& right);

} // namespace zvk::Pelkraft::Client
