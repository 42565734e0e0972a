#include "pattern/sse_transformation.h"

namespace zvk::Pelkraft {

void SseTransformation::FillInkValues()
{
    for (std::size_t place = 0; place < mInkValues.size(); ++place)
        mInkValues[place] = GetInkValue(*this, place / stepsOfInkValues,
                                        static_cast<std::uint8_t>(place % stepsOfInkValues));
}

} // namespace zvk::Pelkraft
