#pragma once

#include "tools/pelkraft/outline_cursor.h"
#include "tools/pelkraft/pattern_outline.h"

namespace zvk::Pelkraft::Client {

// Reads the value lines of an in-colour up to the end of their list.
class ValueLineReader
{
public:
    ValueLineReader(OutlineCursor& newCursor, std::int32_t newVersion, bool& newToldOfVersion);

    void ReadInto(InColour& inColour, const PatternWord& opening);

private:
    struct Line;

    void ReadLine(const PatternWord& stepWord, InColour& inColour);
    int ReadStep(const PatternWord& word);
    void ReadRatio(const PatternWord& word, Line& line);
    void JudgeRatio(const PatternWord& word, const Line& line);
    bool ReadEntries(Line& line);
    void ReadEntry(const PatternWord& word, std::size_t index, Line& line);
    void JudgeEntry(const PatternWord& word, int position, std::int32_t value);
    void TellOfVersion(const PatternWord& word);
    void Store(const Line& line, InColour& inColour);

    OutlineCursor& cursor;
    std::int32_t version;
    bool& toldOfVersion;
};

} // namespace zvk::Pelkraft::Client
