#pragma once

#include "pattern/pattern_model.h"

#include <cstdint>

namespace zvk::Pelkraft {

// Takes what a reader finds in a pattern text, in the order of the text. An index names an
// in-colour that has a record, a position is below the limit of the reader's rules.
class IPatternSink
{
public:
    virtual void TakeVersion(std::int32_t version) = 0;
    virtual void TakeSeed(std::int32_t seed) = 0;
    // Frees the records that there are.
    virtual void AllocateInColors(std::int32_t count) = 0;
    virtual void SelectInColor(std::int32_t inColor) = 0;
    virtual void TakeInk(std::int32_t inColor, std::int32_t position, std::int32_t outInk) = 0;
    virtual void TakeInkCount(std::int32_t inColor, std::int32_t count) = 0;
    virtual void BeginValueLines(std::int32_t inColor) = 0;
    virtual void TakeValueLine(std::int32_t inColor, const ValueLine& line) = 0;

protected:
    ~IPatternSink() = default;
};

} // namespace zvk::Pelkraft
