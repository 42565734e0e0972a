#pragma once

#include "chunks/chunk_descriptors.h"
#include "common/image_row_format.h"

#include <cstdint>

namespace zvk::Pelkraft {

// The source row of one conversion in the terms of its loader.
struct ChunkLoadFacilityInternal
{
    std::int64_t channels;
    std::int64_t bytesPerSample;
    // These are the columns of the whole row, not only of its active part, as they place the
    // planes.
    std::uint64_t columns;
    bool reversed;
    const IChunkLoaderDescriptor* descriptor;

    // Throws "ChunkLoadFacilityInternal::SelectDescriptor Unsupported format" for a planar row of
    // more than two bytes per sample, with "SelectDescriptorX86" below vector level 3.
    static ChunkLoadFacilityInternal Create(const ImageRowFormat& format, std::int32_t sseVersion);

    static const IChunkLoaderDescriptor* SelectDescriptor(const ChunkLoadFacilityInternal& facility,
                                                          std::int32_t layout);
    static const IChunkLoaderDescriptor*
    SelectDescriptorX86(const ChunkLoadFacilityInternal& facility, std::int32_t layout);
};

// The destination row of one conversion in the terms of its saver.
struct ChunkSaveFacilityInternal
{
    std::int64_t channels;
    std::int64_t bytesPerSample;
    std::uint64_t columns;
    const IChunkSaverDescriptor* descriptor;

    // The texts are those of the loader's side, with "ChunkSaveFacilityInternal".
    static ChunkSaveFacilityInternal Create(const ImageRowFormat& format, std::int32_t sseVersion);

    static const IChunkSaverDescriptor* SelectDescriptor(const ChunkSaveFacilityInternal& facility,
                                                         std::int32_t layout);
    static const IChunkSaverDescriptor*
    SelectDescriptorX86(const ChunkSaveFacilityInternal& facility, std::int32_t layout);
};

} // namespace zvk::Pelkraft
