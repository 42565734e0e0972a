#pragma once

#include "pattern/converted_pattern_engine.h"
#include "pattern/pattern_converter_sse.h"
#include "pattern/sse_row.h"
#include "pattern/sse_transformation.h"

#include <array>
#include <cstdint>

namespace zvk::Pelkraft {

// Applies a pattern by 16-byte vectors, all out-inks of a pixel at once. Up to 16 in-colours and
// 16 out-inks, and 16 stored values in a combination. Off x86 the same tables are applied lane
// by lane.
template <typename RandomSource>
class DotWeavePatternEngineSse final : public ConvertedPatternEngine<DotWeavePatternConverterSse>
{
public:
    DotWeavePatternEngineSse();
    ~DotWeavePatternEngineSse() override;

    void InitFromText(char* text) override;
    void ResetRandomizer() override;
    void ApplyPattern(unsigned char* source, unsigned char* destination,
                      unsigned long pixels) override;

private:
    void PackTransformations();
    void BuildLanes();
    void BuildRandomSource();

    std::int32_t mSourceStride = 0;
    std::int32_t mDestinationStride = 0;
    SseLanes mLanes;
    std::array<SseTransformation, MAXS_TOTAL_RANDOM> mTransformations;
    RandomSource mRandom;
    const SseRowMethod mApplyRow;
};

} // namespace zvk::Pelkraft
