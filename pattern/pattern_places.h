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

namespace zvk::Pelkraft {

struct PlacedName
{
    std::string spelling;
    TextSpan place;
};

// One of the two lists of names.
struct PlacedNames
{
    // By upper-cased name; engines count these.
    NameTable table;
    // The name that was listed last at each index.
    std::vector<PlacedName> listed;
    std::optional<TextSpan> opening;

    // The names as the text spells them, as many as engines count. One is empty where a repeated
    // name has moved on to another index.
    std::vector<std::string> GetSpellings() const;
};

// The places at which a text says what an engine may refuse.
struct PatternPlaces
{
    PlacedNames inColors;
    PlacedNames outInks;
    // By in-colour the name that its last block gives.
    std::map<std::int32_t, TextSpan> described;
    // The name with which a list has more than an engine takes.
    std::optional<TextSpan> surplusName;
    // The first word, if it isn't the header word.
    std::optional<TextSpan> wrongHeader;
    bool hasHeader = false;
    // The word at which reading has stopped.
    std::optional<TextSpan> refused;
};

// Reads a text by the rules of the library, up to the first that it breaks.
PatternPlaces ReadPlaces(const std::string& text);

} // namespace zvk::Pelkraft
