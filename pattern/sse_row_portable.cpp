#include "pattern/sse_row.h"

#include <algorithm>
#include <cstddef>

namespace zvk::Pelkraft {
namespace {

void ApplyPixel(const SseRow& row, const unsigned char* source, const SseTransformation& tables,
                unsigned char* destination)
{
    std::array<std::uint8_t, 16> steps{};
    for (std::size_t i = 0; i < row.sourceStride; ++i)
        steps[i] = std::min(source[i], row.lanes->mStepLimits[i]);
    for (std::size_t lane = 0; lane < row.destinationStride; ++lane)
        destination[lane] =
            GetInkValue(tables, lane, PickByte(steps, row.lanes->mInColorLanes[lane]));
}

void ApplyRow(const SseRow& row)
{
    std::uint32_t position = row.position;
    for (std::size_t pixel = 0; pixel < row.pixels; ++pixel) {
        const SseTransformation* tables = row.single;
        if (tables == nullptr) {
            tables = row.field[position++];
            if (position == row.fieldSize)
                position = 0;
        }
        ApplyPixel(row, row.source + pixel * row.sourceStride, *tables,
                   row.destination + pixel * row.destinationStride);
    }
}

} // namespace

SseRowMethod GetSseRowMethodPortable()
{
    return ApplyRow;
}

} // namespace zvk::Pelkraft
