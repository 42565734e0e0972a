#pragma once

#include "chunks/chunk_descriptors.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

// Each file of methods is entered here, and nowhere else.
namespace zvk::Pelkraft {

enum class End : std::uint8_t
{
    // From a row into a chunk.
    Load,
    // From a chunk into a row.
    Save,
};

// The methods of both ends are of one type, from the first address to the second.
using ChunkMethod = LoadMethod;
static_assert(std::is_same_v<LoadMethod, SaveMethod>);

namespace PortableRoad {

ChunkMethod GetInterleaved(End end);
// sampleBytes is 1 or 2.
ChunkMethod GetPlanar(End end, std::size_t sampleBytes);

} // namespace PortableRoad

namespace VectorRoad {

// The methods of a class, by trail: entry k serves a trail of k + 1 bytes, or of k + 1 samples of
// a planar row. Where leadingUnits is 5, or a slot has more than one unit, the header has the
// count.
const ChunkMethod* GetInterleavedLoads(int leadingUnits);
const ChunkMethod* GetInterleavedSaves(int leadingUnits);
const ChunkMethod* GetPlanar(End end, std::size_t sampleBytes, bool isOneUnit);

} // namespace VectorRoad
} // namespace zvk::Pelkraft
