#pragma once

#include <string>

#include "pattern/dot_weave_pattern_converter.h"

namespace zvk::Pelkraft {

// Repairs the rows once after parsing, so that a pixel is a lookup without a test: an unset
// value is 0, and a step above the top step of the in-colour is as the top step.
class DotWeavePatternConverterX86 final : public DotWeavePatternConverter
{
public:
    // Throws "out-ink without in-colour in pattern" too.
    bool Parse(const std::string& text, int flag) override;

private:
    void RepairRows();
    std::int32_t TopStepOfInk(std::size_t outInk) const;
};

} // namespace zvk::Pelkraft
