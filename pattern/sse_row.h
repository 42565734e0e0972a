#pragma once

#include "pattern/ink_lookup.h"
#include "pattern/sse_transformation.h"

#include <array>
#include <cstdint>

namespace zvk::Pelkraft {

// What the loop needs of a pattern besides its transformations.
struct SseLanes
{
    // By out-ink: its in-colour. The top bit stands for none.
    alignas(16) std::array<std::uint8_t, 16> mInColorLanes{};
    // By in-colour: its top step. 0 for the bytes behind a pixel.
    alignas(16) std::array<std::uint8_t, 16> mStepLimits{};
    // For the methods that look up ink values.
    InkLookup mLookup{};
};

// One row, which is not to be written to where it is read.
struct SseRow
{
    const unsigned char* source;
    unsigned char* destination;
    std::uint32_t pixels;
    std::uint32_t sourceStride;
    std::uint32_t destinationStride;
    const SseLanes* lanes;
    // The walk: one transformation for each pixel from position on, again from the front at
    // fieldSize.
    const SseTransformation* const* field;
    std::uint32_t position;
    std::uint32_t fieldSize;
    // Takes the place of the walk if it isn't null.
    const SseTransformation* single;
};

// Reads the bytes of the source pixels and writes those of the destination pixels, and no other.
using SseRowMethod = void (*)(const SseRow& row);

// By 16-byte vectors. Like the next two only where hasVectorRoad is true.
SseRowMethod GetSseRowMethodVector();
// 8 pixels at once by 32-byte vectors, for patterns that can look up ink values and suit it.
SseRowMethod GetShortWordMethodAvx2();
// 8 pixels at once by 64-byte vectors, for patterns that can look up ink values.
SseRowMethod GetWideWordMethodAvx512();
// The same lane by lane, for any processor.
SseRowMethod GetSseRowMethodPortable();

} // namespace zvk::Pelkraft
