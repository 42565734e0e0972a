#pragma once

#include "chunks/chunk_descriptors.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

// Each file of methods is entered here, and nowhere else.
namespace zvk::Pelkraft {

enum class End : std::uint8_t
{
    Load,
    Save,
};

// A load goes from a row into a chunk, a save the other way: both from their first argument to the
// second.
using ChunkMethod = LoadMethod;
static_assert(std::is_same_v<LoadMethod, SaveMethod>);

namespace PortableRoad {

ChunkMethod GetInterleaved(End end);
// sampleBytes is 1 or 2.
ChunkMethod GetPlanar(End end, std::size_t sampleBytes);

} // namespace PortableRoad

namespace VectorRoad {

// Each answers with the methods of a class, of which entry k serves a trail of k + 1 bytes, or of
// k + 1 samples of a planar row. Where leadingUnits is 5, or a slot has more than one unit, the
// count of units stands in the header.
const ChunkMethod* GetInterleavedLoads(int leadingUnits);
const ChunkMethod* GetInterleavedSaves(int leadingUnits);
const ChunkMethod* GetPlanar(End end, std::size_t sampleBytes, bool isOneUnit);

} // namespace VectorRoad
} // namespace zvk::Pelkraft
