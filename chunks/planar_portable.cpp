#include "chunks/chunk_classes.h"
#include "chunks/row_walk.h"
#include "common/chunk_header.h"

#include <cstring>

namespace zvk::Pelkraft {
namespace {

// A fixed-size copy, since a plane may begin at any address.
template <typename Sample>
void CopySample(const unsigned char* from, unsigned char* to)
{
    Sample sample;
    std::memcpy(&sample, from, sizeof(sample));
    std::memcpy(to, &sample, sizeof(sample));
}

template <typename Sample>
void LoadChunk(const void* row, void* chunkHeader)
{
    const auto& header = *static_cast<const ChunkHeader*>(chunkHeader);
    const std::uint64_t slotBytes = RoundUpToUnit(header.pixelBytes);
    const std::uint64_t planes = header.pixelBytes / sizeof(Sample);
    const auto pitch = static_cast<std::int64_t>(header.loadPlanePitch);
    const auto* rowBytes = static_cast<const unsigned char*>(row);
    unsigned char* slots = static_cast<unsigned char*>(chunkHeader) + headerBytes;

    for (std::uint64_t plane = 0; plane < planes; ++plane) {
        const unsigned char* from = rowBytes + static_cast<std::int64_t>(plane) * pitch;
        unsigned char* to = slots + plane * sizeof(Sample);
        for (std::uint64_t pixel = 0; pixel < slotsPerChunk; ++pixel)
            CopySample<Sample>(from + pixel * sizeof(Sample), to + pixel * slotBytes);
    }
}

template <typename Sample>
void SaveChunk(const void* chunkHeader, void* row)
{
    const auto& header = *static_cast<const ChunkHeader*>(chunkHeader);
    const std::uint64_t slotBytes = RoundUpToUnit(header.pixelBytes);
    const std::uint64_t planes = header.pixelBytes / sizeof(Sample);
    const auto pitch = static_cast<std::int64_t>(header.savePlanePitch);
    const unsigned char* slots = static_cast<const unsigned char*>(chunkHeader) + headerBytes;
    auto* rowBytes = static_cast<unsigned char*>(row);

    for (std::uint64_t plane = 0; plane < planes; ++plane) {
        const unsigned char* from = slots + plane * sizeof(Sample);
        unsigned char* to = rowBytes + static_cast<std::int64_t>(plane) * pitch;
        for (std::uint64_t pixel = 0; pixel < slotsPerChunk; ++pixel)
            CopySample<Sample>(from + pixel * slotBytes, to + pixel * sizeof(Sample));
    }
}

template <typename Sample>
class ChunkMultiLoaderX86 final : public PlanarLoader
{
public:
    LoadMethod GetLoadMethod(const ChunkLoadFacilityInternal&) const override
    {
        return LoadChunk<Sample>;
    }
};

template <typename Sample>
class ChunkMultiSaverX86 final : public PlanarSaver
{
public:
    SaveMethod GetLoadMethod(const ChunkSaveFacilityInternal&) const override
    {
        return SaveChunk<Sample>;
    }
};

constexpr ChunkMultiLoaderX86<unsigned char> byteLoader;
constexpr ChunkMultiLoaderX86<unsigned short> wordLoader;
constexpr ChunkMultiSaverX86<unsigned char> byteSaver;
constexpr ChunkMultiSaverX86<unsigned short> wordSaver;

} // namespace

const IChunkLoaderDescriptor* PortableRoad::GetPlanarLoader(std::int64_t bytesPerSample)
{
    if (bytesPerSample == 1)
        return &byteLoader;
    return &wordLoader;
}

const IChunkSaverDescriptor* PortableRoad::GetPlanarSaver(std::int64_t bytesPerSample)
{
    if (bytesPerSample == 1)
        return &byteSaver;
    return &wordSaver;
}

} // namespace zvk::Pelkraft
