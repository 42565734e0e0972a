#pragma once

#include "dither/mask.h"

#include <cstddef>
#include <cstdint>

namespace zvk::Pelkraft {

// Each channel has the mask at another place, so that the dots of two inks do not fall together.
struct MaskShift
{
    explicit MaskShift(std::size_t channel)
        : x(TopByte(channel, 0xC13FA9A9U)), y(TopByte(channel, 0x91E10DA6U))
    {}

    // The index of the rank at a place of the page.
    std::size_t IndexOf(std::uint64_t pageX, std::uint64_t pageY) const
    {
        const auto column = static_cast<std::size_t>((pageX + x) % maskSide);
        return static_cast<std::size_t>((pageY + y) % maskSide) * maskSide + column;
    }

    std::uint64_t x;
    std::uint64_t y;

private:
    static std::uint64_t TopByte(std::size_t channel, std::uint32_t factor)
    {
        return static_cast<std::uint32_t>(channel) * factor >> 24;
    }
};

} // namespace zvk::Pelkraft
