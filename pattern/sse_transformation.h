#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace zvk::Pelkraft {

constexpr std::size_t stepsOfInkValues = 8;

// One combination's tables as the vector engine reads them, a byte for each out-ink lane. Plain
// bytes, so that only the loop over a row needs vector instructions.
struct SseTransformation
{
    alignas(64) std::array<std::uint8_t, 16> mUpper;
    alignas(16) std::array<std::uint8_t, 16> mLower;
    alignas(16) std::array<std::uint8_t, 16> mOffset;
    alignas(16) std::array<std::uint8_t, 16> mComonTrans;
    // The four tables together give each out-ink lane a value for each of the lowest steps. Eight
    // lanes fill a cache line.
    alignas(64) std::array<std::uint8_t, 16 * stepsOfInkValues> mInkValues;

    // Needs the four other tables.
    void FillInkValues();
};

// Does as a shuffle by vectors: an index with its top bit set gives 0, and the low four bits of any
// other count.
inline std::uint8_t PickByte(const std::array<std::uint8_t, 16>& table, std::uint8_t index)
{
    return (index & 0x80U) != 0 ? 0 : table[index & 0x0FU];
}

// The value of an out-ink lane at a step.
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

} // namespace zvk::Pelkraft
