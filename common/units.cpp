#include "common/units.h"

namespace zvk::Pelkraft {

std::int64_t BytesPerSample(std::int32_t bits)
{
    return (static_cast<std::int64_t>(bits) + 7) / 8;
}

std::uint64_t RoundUpToUnit(std::uint64_t bytes)
{
    return CountUnits(bytes) * unitBytes;
}

std::uint64_t CountUnits(std::uint64_t pixelBytes)
{
    return (pixelBytes + unitBytes - 1) / unitBytes;
}

std::uint64_t SlotAreaBytes(std::uint64_t pixelBytes)
{
    return RoundUpToUnit(pixelBytes) * slotsPerChunk;
}

std::uint64_t ChunkStride(std::uint64_t pixelBytes)
{
    return SlotAreaBytes(pixelBytes) + headerBytes;
}

} // namespace zvk::Pelkraft
