#pragma once

#include <array>
#include <cstdint>

namespace zvk::Pelkraft {

// One combination's tables as the vector engine reads them, a byte for each out-ink lane. Plain
// bytes, so that only the loop over a row needs vector instructions.
struct SseTransformation
{
    alignas(16) std::array<std::uint8_t, 16> mUpper;
    alignas(16) std::array<std::uint8_t, 16> mLower;
    alignas(16) std::array<std::uint8_t, 16> mOffset;
    alignas(16) std::array<std::uint8_t, 16> mComonTrans;
};

} // namespace zvk::Pelkraft
