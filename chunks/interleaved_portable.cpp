#include "chunks/chunk_classes.h"
#include "chunks/row_walk.h"
#include "common/chunk_header.h"

#include <cstring>

namespace zvk::Pelkraft {
namespace {

// Forward and by way of a local: from may lie a few bytes behind to in the same buffer.
void CopyForward(const unsigned char* from, unsigned char* to, std::uint64_t bytes)
{
    std::uint32_t word;
    for (; bytes > sizeof(word); bytes -= sizeof(word)) {
        std::memcpy(&word, from, sizeof(word));
        std::memcpy(to, &word, sizeof(word));
        from += sizeof(word);
        to += sizeof(word);
    }
    for (; bytes != 0; --bytes)
        *to++ = *from++;
}

void LoadChunk(const void* row, void* chunkHeader)
{
    const std::uint64_t pixelBytes = static_cast<const ChunkHeader*>(chunkHeader)->pixelBytes;
    const auto* from = static_cast<const unsigned char*>(row);
    unsigned char* slot = static_cast<unsigned char*>(chunkHeader) + headerBytes;

    // Ascending: a reversed row may lie inside these same slots.
    for (int pixel = 0; pixel < slotsPerChunk; ++pixel) {
        CopyForward(from, slot, pixelBytes);
        from += pixelBytes;
        slot += RoundUpToUnit(pixelBytes);
    }
}

void SaveChunk(const void* chunkHeader, void* row)
{
    const std::uint64_t pixelBytes = static_cast<const ChunkHeader*>(chunkHeader)->pixelBytes;
    const unsigned char* slot = static_cast<const unsigned char*>(chunkHeader) + headerBytes;
    auto* to = static_cast<unsigned char*>(row);

    for (int pixel = 0; pixel < slotsPerChunk; ++pixel) {
        CopyForward(slot, to, pixelBytes);
        to += pixelBytes;
        slot += RoundUpToUnit(pixelBytes);
    }
}

class ChunkMultiLoaderX86I final : public InterleavedLoader
{
public:
    LoadMethod GetLoadMethod(const ChunkLoadFacilityInternal&) const override { return LoadChunk; }
};

class ChunkMultiSaverX86I final : public InterleavedSaver
{
public:
    SaveMethod GetLoadMethod(const ChunkSaveFacilityInternal&) const override { return SaveChunk; }
};

constexpr ChunkMultiLoaderX86I loader;
constexpr ChunkMultiSaverX86I saver;

} // namespace

const IChunkLoaderDescriptor* PortableRoad::GetInterleavedLoader()
{
    return &loader;
}

const IChunkSaverDescriptor* PortableRoad::GetInterleavedSaver()
{
    return &saver;
}

} // namespace zvk::Pelkraft
