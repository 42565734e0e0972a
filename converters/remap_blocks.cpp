#include "converters/remap_blocks.h"

#include "common/units.h"

#include <algorithm>

namespace zvk::Pelkraft {
namespace {

constexpr unsigned char emptyLane = 0x80;

// Depths of 9 to 16 bits have lanes of two bytes, all others of one.
std::uint64_t LaneBytes(std::int32_t bits)
{
    return static_cast<std::uint32_t>(bits) - 9U <= 7U ? 2 : 1;
}

// The byte of the input slot where the output channel's sample starts, or -1 if it has none.
std::int64_t FindSource(const ChunkConvertFacility& facility, std::uint64_t channel,
                        std::uint64_t laneBytes)
{
    if (channel >= facility.remapChannels || facility.remap[channel] < 0)
        return -1;
    return facility.remap[channel] * static_cast<std::int64_t>(laneBytes);
}

void FillLane(unsigned char* lane, std::uint64_t laneBytes, std::int64_t start)
{
    for (std::uint64_t byte = 0; byte < laneBytes; ++byte)
        lane[byte] = start < 0
                         ? emptyLane
                         : static_cast<unsigned char>(start + static_cast<std::int64_t>(byte));
}

} // namespace

RemapUnits CountRemapUnits(const ChunkConvertFacility& facility, const ImageRowFormat& input)
{
    const auto sampleBytes = static_cast<std::uint64_t>(BytesPerSample(input.bits));
    return {CountUnits(PixelBytes(input)), CountUnits(sampleBytes * facility.remapChannels)};
}

void BuildRemapMasks(const ChunkConvertFacility& facility, const ImageRowFormat& input,
                     const RemapUnits& units, unsigned char* masks)
{
    const std::uint64_t laneBytes = LaneBytes(input.bits);
    const std::uint64_t lanesPerUnit = unitBytes / laneBytes;

    for (std::uint64_t lane = 0; lane < units.output * lanesPerUnit; ++lane) {
        const std::int64_t source = FindSource(facility, lane, laneBytes);
        unsigned char* row = masks + lane / lanesPerUnit * units.input * unitBytes;
        for (std::uint64_t unit = 0; unit < units.input; ++unit) {
            const bool fromHere =
                source >= 0 && static_cast<std::uint64_t>(source / unitBytes) == unit;
            FillLane(row + unit * unitBytes + lane % lanesPerUnit * laneBytes, laneBytes,
                     fromHere ? source % unitBytes : -1);
        }
    }
}

void BuildRemapEntries(const ChunkConvertFacility& facility, const ImageRowFormat& input,
                       RemapEntry* entries)
{
    for (std::uint64_t channel = 0; channel < facility.remapChannels; ++channel) {
        const std::int32_t lane = std::min(facility.remap[channel], input.channels);
        entries[channel] = lane < 0 ? emptyRemapEntry : lane;
    }
}

} // namespace zvk::Pelkraft
