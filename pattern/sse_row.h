#pragma once

#include "pattern/ink_lookup.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace zvk::Pelkraft {

constexpr std::size_t stepsOfInkValues = 8;

// One combination's tables as the vector engine reads them, a byte for each out-ink lane. They are
// plain bytes, so that only the loop over a row needs vector instructions.
struct SseTransformation
{
    alignas(64) std::array<std::uint8_t, 16> mUpper;
    alignas(16) std::array<std::uint8_t, 16> mLower;
    alignas(16) std::array<std::uint8_t, 16> mOffset;
    alignas(16) std::array<std::uint8_t, 16> mComonTrans;
    // The four tables together give each out-ink lane a value for each of the lowest steps. Eight
    // lanes fill a cache line.
    alignas(64) std::array<std::uint8_t, 16 * stepsOfInkValues> mInkValues;

    // The four other tables must be filled before.
    void FillInkValues();
};

// A shuffle by vectors does the same: an index with its top bit set gives 0, and any other picks by
// its low four bits.
inline std::uint8_t PickByte(const std::array<std::uint8_t, 16>& table, std::uint8_t index)
{
    return (index & 0x80U) != 0 ? 0 : table[index & 0x0FU];
}

inline std::uint8_t GetInkValue(const SseTransformation& tables, std::size_t lane,
                                std::uint8_t step)
{
    // Signed: a byte from 128 upward lies below every bound.
    const auto signedStep = static_cast<std::int8_t>(step);
    const bool outside = signedStep > static_cast<std::int8_t>(tables.mUpper[lane]) ||
                         static_cast<std::int8_t>(tables.mLower[lane]) > signedStep;
    const auto index = static_cast<std::uint8_t>(step + tables.mOffset[lane]);
    return outside ? 0 : PickByte(tables.mComonTrans, index);
}

// The loop needs these tables of a pattern besides its transformations.
struct SseLanes
{
    // Each out-ink has its in-colour here. The top bit stands for none.
    alignas(16) std::array<std::uint8_t, 16> mInColorLanes{};
    // Each in-colour has its top step here. The bytes after a pixel have 0.
    alignas(16) std::array<std::uint8_t, 16> mStepLimits{};
    InkLookup mLookup{};
};

// One row. Source and destination must not overlap.
struct SseRow
{
    const unsigned char* source;
    unsigned char* destination;
    std::uint32_t pixels;
    std::uint32_t sourceStride;
    std::uint32_t destinationStride;
    const SseLanes* lanes;
    // The pixels take one transformation each from position on, and go on at the front after
    // fieldSize of them.
    const SseTransformation* const* field;
    std::uint32_t position;
    std::uint32_t fieldSize;
    // All pixels take this one where it isn't null.
    const SseTransformation* single;
};

// A method reads the bytes of the source pixels and writes those of the destination pixels, and no
// other.
using SseRowMethod = void (*)(const SseRow& row);

// The first exists only where hasVectorRoad is true, the next two only where hasWideRoads is.
SseRowMethod GetSseRowMethodVector();
// It takes 8 pixels at once, of patterns that can look up ink values and suit it.
SseRowMethod GetShortWordMethodAvx2();
// It takes 8 pixels at once, of patterns that can look up ink values.
SseRowMethod GetWideWordMethodAvx512();
SseRowMethod GetSseRowMethodPortable();

} // namespace zvk::Pelkraft
