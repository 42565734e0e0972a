#pragma once

#include "pattern/pattern_model.h"
#include "pattern/tokenizer.h"

#include <cstdint>
#include <string_view>

namespace zvk::Pelkraft {

// The rules of the format that a text can break while it is read.
enum class PatternRefusal
{
    UnsupportedVersion,
    StepOutOfRange,
    PositionOutOfRange,
    TooManyPositions,
    InksWithoutInColor,
    InColorsWithoutEnd,
    InColorWithoutRecord,
    WeightSumOutOfRange,
};

// The library's words for it.
const char* TextOf(PatternRefusal refusal);

// The two lists of names.
enum class NameList
{
    OutInks,
    InColors,
};

// Says whether a section ends at a token that is not its closing word.
enum class SectionEnd
{
    None,
    // The section goes on, as if the token did not stand there.
    Skipped,
    // The token is taken for the closing word.
    Here,
    // The closing word is missing, and the token belongs to what follows.
    Before,
};

constexpr std::int32_t noIndex = -1;

// Takes all that a reader finds in a pattern text, in the order of the text. An index names an
// in-colour that has a record, a position is below the limit of the reader's rules.
//
// The operations that are not pure are there for handlers that show an author what is wrong with a
// text. Their bodies here are the library's own reading: a text that breaks a rule is refused at
// once, and no token is taken for another.
class PatternHandler
{
public:
    virtual void TakeVersion(std::int32_t version, const PatternToken& keyword) = 0;
    virtual void TakeSeed(std::int32_t seed) = 0;
    // Frees the records that there are.
    virtual void AllocateInColors(std::int32_t count) = 0;
    virtual void SelectInColor(std::int32_t inColor, const PatternToken& name) = 0;
    virtual void TakeInk(std::int32_t inColor, std::int32_t position, std::int32_t outInk,
                         const PatternToken& name) = 0;
    virtual void TakeInkCount(std::int32_t inColor, std::int32_t count) = 0;
    virtual void BeginValueLines(std::int32_t inColor) = 0;
    virtual void TakeValueLine(std::int32_t inColor, const ValueLine& line) = 0;

    // If it returns, the reader goes on without what is refused.
    virtual void Refuse(PatternRefusal refusal, const PatternToken& at);

    virtual void BeginNames(NameList, const PatternToken&) {}
    virtual void TakeName(NameList, std::int32_t, const PatternToken&) {}
    // A token that means nothing outside of all sections; the header word is one too.
    virtual void SkipToken(const PatternToken&) {}
    // The values of a block whose in-colour is not known.
    virtual void SkipValues(const PatternToken& /* opening */, const PatternToken& /* block */) {}
    // A line that is refused, or breaks off after its last token.
    virtual void TakeBrokenLine(std::int32_t, const ValueLine&) {}
    // The text ends within a section.
    virtual void TakeOpenSection(const PatternToken&, std::string_view) {}

    // True if a token stands for a keyword that it is not.
    virtual bool Means(const PatternToken&, std::string_view) { return false; }
    // The index of the name that stands in no list and may mean one of it.
    virtual std::int32_t FindMeantName(NameList, const PatternToken&) { return noIndex; }
    virtual SectionEnd FindEnd(const PatternToken&, const PatternToken& /* opening */,
                               std::string_view /* closing */)
    {
        return SectionEnd::None;
    }
    // True if the token after a keyword is its number; it is null at the end of the text.
    virtual bool IsNumberOf(const PatternToken& /* keyword */, const PatternToken*) { return true; }
    // True if a line breaks off ahead of a token, which then begins the next one.
    virtual bool BreaksLine(const PatternToken&, const ValueLine&) { return false; }

protected:
    ~PatternHandler() = default;
};

} // namespace zvk::Pelkraft
