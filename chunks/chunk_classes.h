#pragma once

#include "chunks/chunk_descriptors.h"

#include <cstdint>

// The doors of the files that hold the loader and saver classes.
namespace zvk::Pelkraft::PortableRoad {

const IChunkLoaderDescriptor* GetInterleavedLoader();
const IChunkSaverDescriptor* GetInterleavedSaver();
// bytesPerSample is 1 or 2.
const IChunkLoaderDescriptor* GetPlanarLoader(std::int64_t bytesPerSample);
const IChunkSaverDescriptor* GetPlanarSaver(std::int64_t bytesPerSample);

} // namespace zvk::Pelkraft::PortableRoad

namespace zvk::Pelkraft::VectorRoad {

// Above 5 units a class that takes the count at run time serves all.
const IChunkLoaderDescriptor* GetInterleavedLoader(std::uint64_t unitCount);
const IChunkSaverDescriptor* GetInterleavedSaver(std::uint64_t unitCount);
// bytesPerSample is 1 or 2. Above 1 unit a class that takes the count at run time serves all.
const IChunkLoaderDescriptor* GetPlanarLoader(std::int64_t bytesPerSample, std::uint64_t unitCount);
const IChunkSaverDescriptor* GetPlanarSaver(std::int64_t bytesPerSample, std::uint64_t unitCount);

} // namespace zvk::Pelkraft::VectorRoad
