#include "pattern/sse_row.h"

#include <tmmintrin.h>

#include <cstddef>
#include <cstring>

namespace zvk::Pelkraft {
namespace {

constexpr std::uint32_t vectorBytes = 16;

struct Lanes
{
    __m128i inColorLanes;
    __m128i stepLimits;
};

__m128i LoadAligned(const void* bytes)
{
    return _mm_load_si128(static_cast<const __m128i*>(bytes));
}

// All lanes of one pixel at once.
inline __m128i Transform(__m128i pixel, const Lanes& lanes, const SseTransformation* tables)
{
    const __m128i limited = _mm_min_epu8(pixel, lanes.stepLimits);
    const __m128i steps = _mm_shuffle_epi8(limited, lanes.inColorLanes);
    const __m128i outside = _mm_or_si128(_mm_cmpgt_epi8(steps, LoadAligned(&tables->mUpper)),
                                         _mm_cmpgt_epi8(LoadAligned(&tables->mLower), steps));
    const __m128i index = _mm_add_epi8(steps, LoadAligned(&tables->mOffset));
    // An index with its top bit set picks 0.
    return _mm_shuffle_epi8(LoadAligned(&tables->mComonTrans), _mm_or_si128(index, outside));
}

// The pixels from which on a whole vector fits neither into the rest of the source nor into that
// of the destination.
std::uint32_t CountCarefulPixels(const SseRow& row)
{
    const std::uint32_t behindSource = (vectorBytes - 1) / row.sourceStride;
    const std::uint32_t behindDestination = (vectorBytes - 1) / row.destinationStride;
    return behindSource > behindDestination ? behindSource : behindDestination;
}

// Whole vectors: the surplus lanes of a pixel are overwritten by the pixels behind it.
template <bool draws>
void ApplyRun(const SseRow& row, std::uint32_t firstPixel, std::uint32_t pixels,
              const SseTransformation* const* field)
{
    const Lanes lanes = {LoadAligned(&row.lanes->mInColorLanes),
                         LoadAligned(&row.lanes->mStepLimits)};
    const std::size_t sourceStride = row.sourceStride;
    const std::size_t destinationStride = row.destinationStride;
    const unsigned char* source = row.source + firstPixel * sourceStride;
    unsigned char* destination = row.destination + firstPixel * destinationStride;
    const SseTransformation* const single = row.single;
    for (std::uint32_t i = 0; i < pixels; ++i) {
        const __m128i pixel = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source));
        const __m128i inks = Transform(pixel, lanes, draws ? field[i] : single);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(destination), inks);
        source += sourceStride;
        destination += destinationStride;
    }
}

// One of the last pixels: reads what is left of the source and writes the bytes of the mask.
void ApplyCarefully(const SseRow& row, std::uint32_t pixel, const SseTransformation* tables)
{
    const Lanes lanes = {LoadAligned(&row.lanes->mInColorLanes),
                         LoadAligned(&row.lanes->mStepLimits)};
    alignas(vectorBytes) unsigned char bytes[vectorBytes] = {};
    std::memcpy(bytes, row.source + std::size_t{pixel} * row.sourceStride, row.sourceStride);
    const __m128i inks = Transform(LoadAligned(bytes), lanes, tables);
    _mm_store_si128(reinterpret_cast<__m128i*>(bytes),
                    _mm_and_si128(inks, LoadAligned(&row.lanes->mStoreMask)));
    std::memcpy(row.destination + std::size_t{pixel} * row.destinationStride, bytes,
                row.destinationStride);
}

void ApplyDrawn(const SseRow& row)
{
    const std::uint32_t careful = CountCarefulPixels(row);
    const std::uint32_t whole = row.pixels > careful ? row.pixels - careful : 0;
    std::uint32_t position = row.position;
    for (std::uint32_t pixel = 0; pixel < row.pixels;) {
        std::uint32_t run = row.fieldSize - position;
        if (pixel < whole) {
            run = run < whole - pixel ? run : whole - pixel;
            ApplyRun<true>(row, pixel, run, row.field + position);
        } else {
            run = 1;
            ApplyCarefully(row, pixel, row.field[position]);
        }
        pixel += run;
        position += run;
        if (position == row.fieldSize)
            position = 0;
    }
}

void ApplySingle(const SseRow& row)
{
    const std::uint32_t careful = CountCarefulPixels(row);
    const std::uint32_t whole = row.pixels > careful ? row.pixels - careful : 0;
    ApplyRun<false>(row, 0, whole, nullptr);
    for (std::uint32_t pixel = whole; pixel < row.pixels; ++pixel)
        ApplyCarefully(row, pixel, row.single);
}

void ApplyRow(const SseRow& row)
{
    if (row.single != nullptr)
        ApplySingle(row);
    else
        ApplyDrawn(row);
}

} // namespace

SseRowMethod GetSseRowMethodVector()
{
    return ApplyRow;
}

} // namespace zvk::Pelkraft
