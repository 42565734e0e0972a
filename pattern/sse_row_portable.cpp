#include "pattern/sse_row.h"

#include <algorithm>
#include <cstddef>

namespace zvk::Pelkraft {
namespace {

// What a shuffle by vectors gives: an index with its top bit set gives 0, of any other the low
// four bits count.
std::uint8_t Pick(const std::array<std::uint8_t, 16>& table, std::uint8_t index)
{
    return (index & 0x80U) != 0 ? 0 : table[index & 0x0FU];
}

std::uint8_t ApplyLane(std::uint8_t step, const SseTransformation& tables, std::size_t lane)
{
    // Signed: a byte from 128 upward lies below every bound.
    const auto signedStep = static_cast<std::int8_t>(step);
    const bool outside = signedStep > static_cast<std::int8_t>(tables.mUpper[lane]) ||
                         static_cast<std::int8_t>(tables.mLower[lane]) > signedStep;
    const auto index = static_cast<std::uint8_t>(step + tables.mOffset[lane]);
    return outside ? 0 : Pick(tables.mComonTrans, index);
}

void ApplyPixel(const SseRow& row, const unsigned char* source, const SseTransformation& tables,
                unsigned char* destination)
{
    std::array<std::uint8_t, 16> steps{};
    for (std::size_t i = 0; i < row.sourceStride; ++i)
        steps[i] = std::min(source[i], row.lanes->mStepLimits[i]);
    for (std::size_t lane = 0; lane < row.destinationStride; ++lane)
        destination[lane] = ApplyLane(Pick(steps, row.lanes->mInColorLanes[lane]), tables, lane);
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
