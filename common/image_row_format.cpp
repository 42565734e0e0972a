#include "common/image_row_format.h"

#include "common/units.h"

namespace zvk::Pelkraft {

std::uint64_t PixelBytes(const ImageRowFormat& format)
{
    return static_cast<std::uint64_t>(BytesPerSample(format.bits)) *
           static_cast<std::uint64_t>(static_cast<std::int64_t>(format.channels));
}

std::uint64_t CountColumns(const ImageRowFormat& format, std::int64_t pixels)
{
    const auto count = static_cast<std::uint64_t>(pixels);
    if (!IsPacked(format) || format.bits >= 8)
        return count;
    const auto samplesPerByte = static_cast<std::uint64_t>(8 / format.bits);
    return (count + samplesPerByte - 1) / samplesPerByte;
}

std::uint64_t CountWholeChunks(const ImageRowFormat& format)
{
    constexpr std::uint64_t chunkBits = 8 * slotsPerChunk;
    const auto pixels = static_cast<std::uint64_t>(format.activeWidth);
    if (IsPacked(format))
        return static_cast<std::uint64_t>(format.bits) * pixels / chunkBits;
    return pixels / slotsPerChunk;
}

} // namespace zvk::Pelkraft
