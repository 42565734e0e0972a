#include "copy/copy_unit.h"
#include "pelkraft/copy_primitives.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zvk::Pelkraft {
namespace {

constexpr std::size_t wordBytes = sizeof(std::uint32_t);
// From here on the call of the fast copy pays for itself.
constexpr std::size_t fastBlockBytes = 13 * wordBytes;
constexpr std::size_t fastRestBytes = 13;

// A loop goes on from here to there, always at the same distance.
struct Place
{
    const unsigned char* source;
    unsigned char* destination;
};

// Numbers, since the distance of pointers into two buffers is undefined. It wraps to a large one
// in one of the two directions.
bool LieApart(const Place& place, std::size_t bytes)
{
    const auto source = reinterpret_cast<std::uintptr_t>(place.source);
    const auto destination = reinterpret_cast<std::uintptr_t>(place.destination);
    return destination - source >= bytes && source - destination >= bytes;
}

void CopyWord(const unsigned char* source, unsigned char* destination)
{
    std::uint32_t word;
    std::memcpy(&word, source, wordBytes);
    std::memcpy(destination, &word, wordBytes);
}

void CopyUnits(const Place& place, std::size_t bytes)
{
    for (std::size_t offset = 0; offset != bytes; offset += copyUnitBytes)
        CopyUnit(place.source + offset, place.destination + offset);
}

void CopyWords(const Place& place, std::size_t bytes)
{
    for (std::size_t offset = 0; offset != bytes; offset += wordBytes)
        CopyWord(place.source + offset, place.destination + offset);
}

void CopyBytes(const Place& place, std::size_t bytes)
{
    for (std::size_t offset = 0; offset != bytes; ++offset)
        place.destination[offset] = place.source[offset];
}

void CopyBlocks(const Place& place, std::size_t bytes)
{
    if (!LieApart(place, bytes))
        CopyWords(place, bytes);
    else if (bytes >= fastBlockBytes)
        std::memcpy(place.destination, place.source, bytes);
    else
        CopyUnits(place, bytes);
}

void CopyRest(const Place& place, std::size_t bytes)
{
    if (!LieApart(place, bytes)) {
        CopyBytes(place, bytes);
    } else if (bytes >= fastRestBytes) {
        std::memcpy(place.destination, place.source, bytes);
    } else {
        const std::size_t wholeWords = bytes / wordBytes * wordBytes;
        CopyWords(place, wholeWords);
        CopyBytes({place.source + wholeWords, place.destination + wholeWords}, bytes - wholeWords);
    }
}

} // namespace

void copyByDwords(unsigned char* source, unsigned char* destination, int size)
{
    if (size <= 0)
        return;
    const auto bytes = static_cast<std::size_t>(size);
    const std::size_t blockBytes = bytes / copyUnitBytes * copyUnitBytes;
    if (blockBytes != 0)
        CopyBlocks({source, destination}, blockBytes);
    if (blockBytes != bytes)
        CopyRest({source + blockBytes, destination + blockBytes}, bytes - blockBytes);
}

} // namespace zvk::Pelkraft
