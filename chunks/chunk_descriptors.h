#pragma once

#include <cstdint>

namespace zvk::Pelkraft {

struct ChunkLoadFacilityInternal;
struct ChunkSaveFacilityInternal;

// A method copies 16 pixels between a row and the slots after a chunk's header. On a planar row the
// row position is that of the pixels in the first plane.
using LoadMethod = void (*)(const void* row, void* chunkHeader);
using SaveMethod = void (*)(const void* chunkHeader, void* row);

// A place in a row: a pointer is formed from it only where there are pixels to read, since
// a walk back to front ends at a place before the row's first byte.
struct SourcePosition
{
    const unsigned char* row;
    std::int64_t offset;
};

// Answers for one kind of row. Stateless: one constant object per class, never freed.
class IChunkLoaderDescriptor
{
public:
    virtual LoadMethod GetLoadMethod(const ChunkLoadFacilityInternal& facility) const = 0;
    // Bytes from one chunk to the next along the row; negative on a reversed row.
    virtual std::int64_t GetChunkStep(const ChunkLoadFacilityInternal& facility) const = 0;
    // Writes all of strip, which is 16 pixels in the row's layout: the 1 to 16 that the walk has
    // left over, and zeros. What is left of a reversed row goes to the strip's end.
    virtual void LoadPartialChunk(const ChunkLoadFacilityInternal& facility,
                                  const SourcePosition& position, void* strip,
                                  std::uint64_t count) const = 0;
    // Bytes of a strip.
    virtual std::uint64_t GetPartialChunkSize(const ChunkLoadFacilityInternal& facility) const = 0;
    // The walk begins so many bytes after the row's first, which wraps below 0 on a short reversed
    // row.
    virtual std::uint64_t GetFirstChunkOffset(const ChunkLoadFacilityInternal& facility) const = 0;

protected:
    ~IChunkLoaderDescriptor() = default;
};

// Answers for the other end. A row is always saved forward.
class IChunkSaverDescriptor
{
public:
    // The name is that of the loader's side.
    virtual SaveMethod GetLoadMethod(const ChunkSaveFacilityInternal& facility) const = 0;
    virtual std::int64_t GetChunkStep(const ChunkSaveFacilityInternal& facility) const = 0;
    // Writes the 1 to 16 pixels that end the walk, from the front of strip.
    virtual void SavePartialChunk(const ChunkSaveFacilityInternal& facility, const void* strip,
                                  void* row, std::uint64_t count) const = 0;
    virtual std::uint64_t GetPartialChunkSize(const ChunkSaveFacilityInternal& facility) const = 0;

protected:
    ~IChunkSaverDescriptor() = default;
};

} // namespace zvk::Pelkraft
