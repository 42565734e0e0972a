#pragma once

#include "chunks/chunk_descriptors.h"

namespace zvk::Pelkraft {

// How a walk along a row goes, for the classes of both roads: all but the method itself.
class InterleavedLoader : public IChunkLoaderDescriptor
{
public:
    std::int64_t GetChunkStep(const ChunkLoadFacilityInternal& facility) const final;
    void LoadPartialChunk(const ChunkLoadFacilityInternal& facility, const SourcePosition& position,
                          void* strip, std::uint64_t count) const final;
    std::uint64_t GetPartialChunkSize(const ChunkLoadFacilityInternal& facility) const final;
    std::uint64_t GetFirstChunkOffset(const ChunkLoadFacilityInternal& facility) const final;

protected:
    ~InterleavedLoader() = default;
};

class PlanarLoader : public IChunkLoaderDescriptor
{
public:
    std::int64_t GetChunkStep(const ChunkLoadFacilityInternal& facility) const final;
    void LoadPartialChunk(const ChunkLoadFacilityInternal& facility, const SourcePosition& position,
                          void* strip, std::uint64_t count) const final;
    std::uint64_t GetPartialChunkSize(const ChunkLoadFacilityInternal& facility) const final;
    std::uint64_t GetFirstChunkOffset(const ChunkLoadFacilityInternal& facility) const final;

protected:
    ~PlanarLoader() = default;
};

class InterleavedSaver : public IChunkSaverDescriptor
{
public:
    std::int64_t GetChunkStep(const ChunkSaveFacilityInternal& facility) const final;
    void SavePartialChunk(const ChunkSaveFacilityInternal& facility, const void* strip, void* row,
                          std::uint64_t count) const final;
    std::uint64_t GetPartialChunkSize(const ChunkSaveFacilityInternal& facility) const final;

protected:
    ~InterleavedSaver() = default;
};

class PlanarSaver : public IChunkSaverDescriptor
{
public:
    std::int64_t GetChunkStep(const ChunkSaveFacilityInternal& facility) const final;
    void SavePartialChunk(const ChunkSaveFacilityInternal& facility, const void* strip, void* row,
                          std::uint64_t count) const final;
    std::uint64_t GetPartialChunkSize(const ChunkSaveFacilityInternal& facility) const final;

protected:
    ~PlanarSaver() = default;
};

} // namespace zvk::Pelkraft
