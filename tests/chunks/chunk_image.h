#pragma once

#include "chunks/chunk_descriptors.h"
#include "tests/support/guarded_buffer.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

using Bytes = std::vector<unsigned char>;

// A number that no method can take for a size without a fault.
constexpr std::uint64_t poison = 0x7A7A7A7A7A7A7A7A;

// What a chunk's header tells a method; whatever it has no business to read is poison.
struct HeaderFields
{
    std::uint64_t loadUnitCount = poison;
    std::uint64_t loadPlanePitch = poison;
    std::uint64_t saveUnitCount = poison;
    std::uint64_t savePlanePitch = poison;
    std::uint64_t pixelBytes = poison;
};

// One way to move a chunk, with the header that it needs.
struct LoadWay
{
    std::string name;
    LoadMethod method;
    HeaderFields header;
    // The portable road leaves the bytes behind a pixel alone.
    bool keepsPads;
};

struct SaveWay
{
    std::string name;
    SaveMethod method;
    HeaderFields header;
};

struct PlanarRow
{
    std::size_t planes;
    std::size_t sampleBytes;
    std::size_t pitch;
};

// Every class that can move pixels of this size: the portable one, the one that is selected on
// the vector road, and the one that takes any size at run time.
std::vector<LoadWay> InterleavedLoadWays(std::size_t pixelBytes);
std::vector<SaveWay> InterleavedSaveWays(std::size_t pixelBytes);
std::vector<LoadWay> PlanarLoadWays(const PlanarRow& row);
std::vector<SaveWay> PlanarSaveWays(const PlanarRow& row);

constexpr std::size_t firstSlot = 64;

std::size_t SlotBytes(std::size_t pixelBytes);

// A chunk between forbidden pages: its header, and slots full of one byte.
GuardedBuffer MakeChunk(std::size_t pixelBytes, const HeaderFields& header, unsigned char fill,
                        Flush flush);

// The same with pixels in the slots, 16 of them, side by side in pixels.
GuardedBuffer MakeFilledChunk(const Bytes& pixels, std::size_t pixelBytes,
                              const HeaderFields& header, unsigned char pad, Flush flush);

// The pixels of the slots side by side, and the bytes behind them.
Bytes PixelsOf(const GuardedBuffer& chunk, std::size_t pixelBytes);
Bytes PadsOf(const GuardedBuffer& chunk, std::size_t pixelBytes);
Bytes HeaderOf(const GuardedBuffer& chunk);

} // namespace zvk::Pelkraft::TestSupport
