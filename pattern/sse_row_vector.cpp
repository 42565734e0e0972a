#include "common/intrinsics_vector.h"
#include "pattern/row_rest_vector.h"
#include "pattern/sse_row.h"

#include <cstddef>
#include <cstring>

namespace zvk::Pelkraft {
namespace {

constexpr std::size_t vectorBytes = 16;

constexpr unsigned char shiftPlaces[2 * vectorBytes] = {
    0,    1,    2,    3,    4,    5,    6,    7,    8,    9,    10,   11,   12,   13,   14,   15,
    0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80};

struct Lanes
{
    __m128i inColorLanes;
    __m128i stepLimits;
};

__m128i LoadAligned(const void* bytes)
{
    return _mm_load_si128(static_cast<const __m128i*>(bytes));
}

__m128i LoadBytes(const void* bytes)
{
    return _mm_loadu_si128(static_cast<const __m128i*>(bytes));
}

// All lanes of one pixel are transformed at once.
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

Lanes LoadLanes(const SseRow& row)
{
    return {LoadAligned(&row.lanes->mInColorLanes), LoadAligned(&row.lanes->mStepLimits)};
}

// Vectors are stored whole: the next pixels overwrite the surplus lanes of one.
template <bool draws>
void ApplyRun(const SseRow& row)
{
    const Lanes lanes = LoadLanes(row);
    const std::size_t sourceStride = row.sourceStride;
    const std::size_t destinationStride = row.destinationStride;
    const unsigned char* source = row.source;
    unsigned char* destination = row.destination;
    const SseTransformation* const* const field = draws ? row.field + row.position : nullptr;
    const SseTransformation* const single = row.single;
    const std::uint32_t pixels = row.pixels;
    for (std::uint32_t i = 0; i < pixels; ++i) {
        const __m128i inks = Transform(LoadBytes(source), lanes, draws ? field[i] : single);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(destination), inks);
        source += sourceStride;
        destination += destinationStride;
    }
}

// Gives the vector from a byte on, with zeros after it.
__m128i ShiftDown(__m128i vector, std::size_t bytes)
{
    return _mm_shuffle_epi8(vector, LoadBytes(shiftPlaces + bytes));
}

// Holds the last 16 bytes of the source, or all of them.
struct SourceEnd
{
    __m128i bytes;
    std::size_t place;
};

SourceEnd LoadSourceEnd(const SseRow& row)
{
    const std::size_t sourceBytes = std::size_t{row.pixels} * row.sourceStride;
    if (sourceBytes >= vectorBytes)
        return {LoadBytes(row.source + sourceBytes - vectorBytes), sourceBytes - vectorBytes};
    alignas(vectorBytes) unsigned char bytes[vectorBytes] = {};
    std::memcpy(bytes, row.source, sourceBytes);
    return {LoadAligned(bytes), 0};
}

// Stores twice, overlapping: the second store ends where the pixel does.
template <typename Part>
void StoreParts(unsigned char* destination, std::size_t bytes, __m128i inks)
{
    const std::size_t last = bytes - sizeof(Part);
    const __m128i shifted = ShiftDown(inks, last);
    std::memcpy(destination, &inks, sizeof(Part));
    std::memcpy(destination + last, &shifted, sizeof(Part));
}

void StorePixel(unsigned char* destination, std::size_t bytes, __m128i inks)
{
    if (bytes >= sizeof(std::uint64_t))
        StoreParts<std::uint64_t>(destination, bytes, inks);
    else if (bytes >= sizeof(std::uint32_t))
        StoreParts<std::uint32_t>(destination, bytes, inks);
    else if (bytes >= sizeof(std::uint16_t))
        StoreParts<std::uint16_t>(destination, bytes, inks);
    else
        *destination = static_cast<unsigned char>(_mm_cvtsi128_si32(inks));
}

// Applies the last pixels of a row, from the first one on whose vectors may leave the row.
void ApplyCarefully(const SseRow& row, std::uint32_t firstPixel)
{
    const Lanes lanes = LoadLanes(row);
    const SourceEnd end = LoadSourceEnd(row);
    SseRow rest = SkipPixels(row, firstPixel);
    for (std::size_t pixel = firstPixel; pixel < row.pixels; ++pixel) {
        const std::size_t place = pixel * row.sourceStride;
        const __m128i bytes = place < end.place ? LoadBytes(row.source + place)
                                                : ShiftDown(end.bytes, place - end.place);
        const SseTransformation* const tables =
            rest.single != nullptr ? rest.single : rest.field[rest.position];
        StorePixel(row.destination + pixel * row.destinationStride, row.destinationStride,
                   Transform(bytes, lanes, tables));
        if (++rest.position == rest.fieldSize)
            rest.position = 0;
    }
}

// Counts the pixels for which 16 bytes fit into the rest of the source and of the destination.
std::uint32_t CountWholePixels(const SseRow& row)
{
    const std::size_t behindSource = (vectorBytes - 1) / row.sourceStride;
    const std::size_t behindDestination = (vectorBytes - 1) / row.destinationStride;
    const std::size_t behind = behindSource > behindDestination ? behindSource : behindDestination;
    return row.pixels > behind ? row.pixels - static_cast<std::uint32_t>(behind) : 0;
}

void ApplyWhole(SseRow row)
{
    if (row.single != nullptr)
        return ApplyRun<false>(row);
    while (row.pixels != 0) {
        const std::uint32_t run = CountPixelsAhead(row);
        ApplyRun<true>(FirstPixels(row, run));
        row = SkipPixels(row, run);
    }
}

void ApplyRow(const SseRow& row)
{
    const std::uint32_t whole = CountWholePixels(row);
    ApplyWhole(FirstPixels(row, whole));
    if (whole != row.pixels)
        ApplyCarefully(row, whole);
}

} // namespace

SseRowMethod GetSseRowMethodVector()
{
    return ApplyRow;
}

} // namespace zvk::Pelkraft
