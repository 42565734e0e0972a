#pragma once

#include "pattern/dot_weave_pattern_converter.h"
#include "pattern/sse_transformation_builder.h"

#include <memory>
#include <string>

namespace zvk::Pelkraft {

// Compresses the rows of each combination into one small table. The rows stay unrepaired: bounds
// take the place of unset values.
class DotWeavePatternConverterSse final : public DotWeavePatternConverter
{
public:
    DotWeavePatternConverterSse();

    // Throws "capacity exceeded in mComonTrans" too.
    bool Parse(const std::string& text, int flag) override;

    // The first of 1024, of which those of the pattern's combinations are built.
    virtual const SseTransformationBuilder* GetSseTables() { return mSseTables.get(); }

private:
    const std::unique_ptr<SseTransformationBuilder[]> mSseTables;
};

} // namespace zvk::Pelkraft
