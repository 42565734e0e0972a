#pragma once

#include <cstddef>

// Only for files built with vector flags: all of it has internal linkage on purpose.
namespace zvk::Pelkraft {
namespace {

// A cache puts lines of addresses so far apart into one set, which holds a few of them.
constexpr std::size_t setBytes = 4096;
constexpr std::size_t setWays = 12;
// Planes that start this near to each other in their sets meet in most lines of a piece.
constexpr std::size_t nearBytes = 256;

// In rows this short each line is done with soon, however the planes lie.
constexpr std::size_t shortPlaneBytes = 256;

// True where so many planes share a set that walking along all of them at once would throw each
// line out of the cache before its next bytes are due.
inline bool PlanesCollide(const unsigned char* const* planes, std::size_t channels,
                          std::size_t planeBytes)
{
    if (channels <= setWays || planeBytes <= shortPlaneBytes)
        return false;
    const auto first = reinterpret_cast<std::size_t>(planes[0]);
    std::size_t sameSet = 0;
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const auto distance = reinterpret_cast<std::size_t>(planes[channel]) - first + nearBytes;
        sameSet += distance % setBytes < 2 * nearBytes ? 1 : 0;
    }
    return sameSet > setWays;
}

} // namespace
} // namespace zvk::Pelkraft
