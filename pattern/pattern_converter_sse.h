#pragma once

#include "pattern/dot_weave_pattern_converter.h"
#include "pattern/sse_row.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace zvk::Pelkraft {

// The tables of one combination have an entry for each out-ink lane: a step x from mLower to mUpper
// has the value mComonTrans[x + mOffset], any other step has 0. A lane without a row has the bounds
// 0 and an offset that leads out of the table.
struct SseTransformationBuilder
{
    std::array<std::int32_t, outInkLanes> mUpper{};
    std::array<std::int32_t, outInkLanes> mLower{};
    std::array<std::int32_t, outInkLanes> mOffset{};
    // All lanes share it.
    std::array<std::int32_t, outInkLanes> mComonTrans{};

    // Compresses the rows of a combination, and sets to null the pointer to a row that sets
    // nothing. More than 16 values throw "capacity exceeded in mComonTrans".
    void Build(PatternCombination& combination);

    // Keeps the low byte of each entry, and adds the ink values that they make.
    SseTransformation Pack() const;
};

// The values that Build would store for a combination, whether or not there is room for them.
std::size_t CountStoredValues(PatternCombination combination);

// Compresses the rows of each combination into one small table. The rows stay unrepaired: bounds
// take the place of unset values.
class DotWeavePatternConverterSse final : public DotWeavePatternConverter
{
public:
    DotWeavePatternConverterSse();

    // Throws "capacity exceeded in mComonTrans" too.
    bool Parse(const std::string& text, int flag) override;

    // There are 1024, of which those of the pattern's combinations are built.
    virtual const SseTransformationBuilder* GetSseTables() { return mSseTables.get(); }

private:
    const std::unique_ptr<SseTransformationBuilder[]> mSseTables;
};

} // namespace zvk::Pelkraft
