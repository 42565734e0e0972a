#pragma once

#include "pattern/dot_weave_pattern_converter.h"

#include <string>

namespace zvk::Pelkraft {

// Repairs the rows once after parsing, so that a pixel is a lookup without a test: unset values
// become 0, and steps that the in-colour does not have take the values of its last one.
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
