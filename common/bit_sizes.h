#pragma once

#include <cstddef>
#include <cstdint>

namespace zvk::Pelkraft {

// Bytes that so many samples of so many bits fill or begin. The bits of a whole row need not fit a
// size of 32 bits, its bytes do.
constexpr std::size_t BytesOf(std::size_t samples, unsigned bits)
{
    return static_cast<std::size_t>((std::uint64_t{samples} * bits + 7) / 8);
}

// Bytes that they fill.
constexpr std::size_t WholeBytesOf(std::size_t samples, unsigned bits)
{
    return static_cast<std::size_t>(std::uint64_t{samples} * bits / 8);
}

} // namespace zvk::Pelkraft
