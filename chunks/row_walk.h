#pragma once

#include "chunks/chunk_facility.h"

namespace zvk::Pelkraft {

// Unsigned, so that a record from outside the checked ranges wraps instead of overflowing.
template <typename Facility>
std::uint64_t PixelBytesOf(const Facility& facility)
{
    return static_cast<std::uint64_t>(facility.channels) *
           static_cast<std::uint64_t>(facility.bytesPerSample);
}

// The classes of both roads share all operations but the choice of a method.
template <bool isPlanar>
class RowLoader : public IChunkLoaderDescriptor
{
public:
    using Facility = ChunkLoadFacilityInternal;

    std::int64_t GetChunkStep(const Facility& facility) const final;
    void LoadPartialChunk(const Facility& facility, const SourcePosition& position, void* strip,
                          std::uint64_t count) const final;
    std::uint64_t GetPartialChunkSize(const Facility& facility) const final;
    std::uint64_t GetFirstChunkOffset(const Facility& facility) const final;

protected:
    ~RowLoader() = default;
};

template <bool isPlanar>
class RowSaver : public IChunkSaverDescriptor
{
public:
    using Facility = ChunkSaveFacilityInternal;

    std::int64_t GetChunkStep(const Facility& facility) const final;
    void SavePartialChunk(const Facility& facility, const void* strip, void* row,
                          std::uint64_t count) const final;
    std::uint64_t GetPartialChunkSize(const Facility& facility) const final;

protected:
    ~RowSaver() = default;
};

using InterleavedLoader = RowLoader<false>;
using PlanarLoader = RowLoader<true>;
using InterleavedSaver = RowSaver<false>;
using PlanarSaver = RowSaver<true>;

} // namespace zvk::Pelkraft
