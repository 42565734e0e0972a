#pragma once

#include "pattern/pattern_handler.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zvk::Pelkraft {

// Upper-cased name to index.
using NameTable = std::map<std::string, std::int32_t>;

constexpr const char* patternHeader = "DotWeavePattern";
constexpr char patternComment = '#';

// The points in which the two parsers of the one format differ.
struct ReaderRules
{
    std::int32_t weightsOfLine;
    std::int32_t positions;
    std::uint32_t highestWeightSum;
    // An entry below it is refused.
    std::int32_t lowestVersion;
    // Else an entry names its position at version 2 alone, and at others takes its place in the
    // line.
    bool entriesAlwaysNamePosition;
};

constexpr ReaderRules mainRules = {
    .weightsOfLine = mostWeights,
    .positions = positionsOfInColor,
    .highestWeightSum = std::numeric_limits<std::uint32_t>::max(),
    .lowestVersion = 2,
    .entriesAlwaysNamePosition = true,
};

// Walks the tokens of a pattern text. Names go into the two tables, all else to the handler.
class PatternReader
{
public:
    PatternReader(const ReaderRules& newRules, NameTable& newInColorNames,
                  NameTable& newOutInkNames, PatternHandler& newHandler);

    // False if the header word is missing: then nothing else was looked at.
    bool Read(const std::vector<PatternToken>& newTokens);
    // Asks for no header word.
    void ReadSections(const std::vector<PatternToken>& newTokens);

private:
    void ReadTopLevel(const PatternToken& token);
    void ReadOutInkNames(const PatternToken& opening);
    void ReadInColorNames(const PatternToken& opening);
    void FinishInColorNames(const PatternToken& opening, std::int32_t count);
    void ReadInColor(const PatternToken& opening);
    void ReadInks(const PatternToken& opening, std::int32_t inColor);
    void ReadValues(const PatternToken& opening, std::int32_t inColor);
    bool ReadValueLine(const PatternToken& stepToken, ValueLine& line);
    bool ReadWeights(ValueLine& line) const;
    bool ReadEntry(std::int32_t alternative, ValueLine& line) const;

    bool Is(const PatternToken& token, std::string_view keyword) const;
    std::int32_t FindName(NameList list, const PatternToken& token) const;
    // Null when the tokens are used up.
    const PatternToken* NextToken();
    // Null at the end of the section too, which is used up with it.
    const PatternToken* NextTokenOf(const PatternToken& opening, std::string_view closing);
    // Null where the line breaks off.
    const PatternToken* NextTokenOf(const ValueLine& line);
    std::int32_t NextNumber(const PatternToken& keyword);

    const ReaderRules rules;
    NameTable& inColorNames;
    NameTable& outInkNames;
    PatternHandler& handler;
    const std::vector<PatternToken>* tokens = nullptr;
    std::size_t cursor = 0;
    std::int32_t version = 1;
    // True if the last section that was left had an end.
    bool closed = false;
};

} // namespace zvk::Pelkraft
