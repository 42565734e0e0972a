#include "pattern/pattern_converter_sse.h"

namespace zvk::Pelkraft {

DotWeavePatternConverterSse::DotWeavePatternConverterSse()
    : mSseTables(std::make_unique<SseTransformationBuilder[]>(MAXS_TOTAL_RANDOM))
{}

bool DotWeavePatternConverterSse::Parse(const std::string& text, int flag)
{
    if (!DotWeavePatternConverter::Parse(text, flag))
        return false;
    for (std::uint32_t c = 0; c < mNumCombinations; ++c)
        mSseTables[c].Build(mCombinations[c]);
    return true;
}

} // namespace zvk::Pelkraft
