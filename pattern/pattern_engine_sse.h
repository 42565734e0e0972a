#pragma once

#include "common/road.h"
#include "pattern/dot_weave_pattern_engine.h"
#include "pattern/pattern_converter_sse.h"
#include "pattern/sse_row.h"

#include <array>
#include <cstdint>

namespace zvk::Pelkraft {

// Applies a pattern by the vectors of a road, all out-inks of a pixel at once, and on the widest
// roads several pixels. It takes up to 16 in-colours and 16 out-inks, and 16 stored values in a
// combination. On the portable road the same tables are applied lane by lane.
template <typename RandomSource>
class DotWeavePatternEngineSse final : public ConvertedPatternEngine<DotWeavePatternConverterSse>
{
public:
    explicit DotWeavePatternEngineSse(Road newRoad);

    void InitFromText(char* text) override;
    void ResetRandomizer() override;
    void ApplyPattern(unsigned char* source, unsigned char* destination,
                      unsigned long pixels) override;

    // A row that starts at this place of the field and leaves the random source alone.
    void ApplyFrom(std::uint32_t position, const unsigned char* source, unsigned char* destination,
                   std::uint32_t pixels) const;
    const RandomSource& GetWalk() const { return mRandom; }

    // The method is chosen when the text is loaded.
    SseRowMethod GetRowMethod() const { return mApplyRow; }

private:
    void PackTransformations();
    void BuildLanes();
    void SelectRowMethod();
    void BuildRandomSource();

    std::int32_t mSourceStride = 0;
    std::int32_t mDestinationStride = 0;
    SseLanes mLanes;
    std::array<SseTransformation, MAXS_TOTAL_RANDOM> mTransformations;
    RandomSource mRandom;
    const Road mRoad;
    SseRowMethod mApplyRow;
};

} // namespace zvk::Pelkraft
