#include "chunks/chunk_methods.h"
#include "common/chunk_header.h"

#include <cstring>

namespace zvk::Pelkraft {
namespace {

// Forward and by way of a local: from may lie a few bytes after to in the same buffer.
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

template <End end>
void MoveChunk(const void* from, void* to)
{
    constexpr bool isLoad = end == End::Load;
    const std::uint64_t pixelBytes =
        static_cast<const ChunkHeader*>(isLoad ? to : from)->pixelBytes;
    const std::uint64_t slotBytes = RoundUpToUnit(pixelBytes);
    const auto* source = static_cast<const unsigned char*>(from) + (isLoad ? 0 : headerBytes);
    auto* target = static_cast<unsigned char*>(to) + (isLoad ? headerBytes : 0);

    // Ascending: a reversed row may lie inside these same slots.
    for (int pixel = 0; pixel < slotsPerChunk; ++pixel) {
        CopyForward(source, target, pixelBytes);
        source += isLoad ? pixelBytes : slotBytes;
        target += isLoad ? slotBytes : pixelBytes;
    }
}

} // namespace

ChunkMethod PortableRoad::GetInterleaved(End end)
{
    return end == End::Load ? MoveChunk<End::Load> : MoveChunk<End::Save>;
}

} // namespace zvk::Pelkraft
