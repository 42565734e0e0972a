#pragma once

#include "pattern/pattern_sink.h"
#include "pattern/tokenizer.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zvk::Pelkraft {

// Upper-cased name to index.
using NameTable = std::map<std::string, std::int32_t>;

// In what the two parsers of the one format differ.
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

// Walks the tokens of a pattern text. Names go into the two tables, all else to the sink.
class PatternReader
{
public:
    PatternReader(const ReaderRules& newRules, NameTable& newInColorNames,
                  NameTable& newOutInkNames, IPatternSink& newSink);

    // False if the header word is missing: then nothing else was looked at. Throws.
    bool Read(const std::vector<PatternToken>& newTokens);

private:
    void ReadTopLevel(const PatternToken& token);
    void ReadOutInkNames();
    void ReadInColorNames();
    void FinishInColorNames(std::int32_t count);
    void ReadInColor();
    void ReadInks(std::int32_t inColor);
    void SkipValues();
    void ReadValues(std::int32_t inColor);
    bool ReadValueLine(const PatternToken& stepToken, ValueLine& line);
    void ReadWeights(std::string_view token, ValueLine& line) const;
    void ReadEntry(std::string_view token, std::int32_t alternative, ValueLine& line) const;

    // Null when the tokens are used up.
    const PatternToken* NextToken();
    // Null at the closing word too, which is used up with it.
    const PatternToken* NextTokenUpTo(std::string_view closingWord);
    std::int32_t NextNumber();

    const ReaderRules rules;
    NameTable& inColorNames;
    NameTable& outInkNames;
    IPatternSink& sink;
    const std::vector<PatternToken>* tokens = nullptr;
    std::size_t cursor = 0;
    std::int32_t version = 1;
};

} // namespace zvk::Pelkraft
