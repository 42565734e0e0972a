#pragma once

#include "common/unroll_vector.h"
#include "direct/pixels_lanes.h"

#include <cstddef>

// Pixel steps whose blocks are moved by whole vectors that overlap. Included after the lanes of a
// level and its own PlacesAt, Permute, LoadPart and StorePart: shuffles across the whole vector,
// and loads and stores of fewer bytes than a vector has. Only for files built with vector flags:
// all of it has internal linkage on purpose.
namespace zvk::Pelkraft {
namespace {

// The pixels of one pair of sizes are moved in blocks: all vectors of a block come from one load,
// or each from a load of its own, where that fills the vectors better.
struct BlockShape
{
    unsigned char pixels;
    unsigned char vectors;
    bool ownLoads;
};

// The rows of one call.
struct Rows
{
    const unsigned char* source;
    std::ptrdiff_t sourceBytes;
    unsigned char* destination;
    std::ptrdiff_t destinationBytes;
    // The last source pixel has all its copies.
    bool endsWhole;
};

inline Rows RowsOf(const StepNumbers& numbers, const unsigned char* source,
                   unsigned char* destination, std::size_t destinationPixels)
{
    const std::size_t lastCopy = (std::size_t{1} << numbers.repeatShift) - 1;
    const std::size_t sourcePixels = (destinationPixels + lastCopy) >> numbers.repeatShift;
    return {source, static_cast<std::ptrdiff_t>(sourcePixels) * numbers.sourceBytes, destination,
            static_cast<std::ptrdiff_t>(destinationPixels) * numbers.destinationBytes,
            (destinationPixels & lastCopy) == 0};
}

// The masks of a block, where each loads from in it, and the way from block to block. Where one
// load serves the block, `loadAt` is the same for all vectors.
template <int vectors>
struct Block
{
    Lanes masks[vectors];
    std::ptrdiff_t loadAt[vectors];
    // Negative where the step mirrors.
    std::ptrdiff_t fromStep;
    std::ptrdiff_t toStep;
};

template <int vectors, bool ownLoads>
[[gnu::always_inline]] inline Block<vectors> MakeBlock(const StepNumbers& numbers)
{
    Block<vectors> block;
    const Lanes places = LoadPlaces(numbers.places);
    const int blockBytes = numbers.pixels * numbers.sourceBytes;
    // A mirrored block's load ends with the block, so that what it reads too much of lies in the
    // blocks to come, as it does forwards.
    const int oneLoad = numbers.mirrored ? blockBytes - vectorBytes : 0;
    Unroll<vectors>([&](auto vector) {
        const int at = ownLoads ? LoadStart(numbers, vectorBytes * vector, vectorBytes) : oneLoad;
        const ByteOrigin origin = OriginOf(numbers, vector);
        block.masks[vector] =
            Add8(PlacesAt(places, origin.index), Subtract8(origin.pixelStart, Set8(at)));
        block.loadAt[vector] = at;
    });
    block.fromStep = numbers.mirrored ? -blockBytes : blockBytes;
    block.toStep = numbers.pixels * (numbers.destinationBytes << numbers.repeatShift);
    return block;
}

template <int vectors, bool ownLoads>
[[gnu::always_inline]] inline void DoBlock(const Block<vectors>& block, const unsigned char* source,
                                           unsigned char* destination)
{
    Lanes pixels = Load(source + block.loadAt[0]);
    Unroll<vectors>([&](auto vector) {
        if constexpr (ownLoads && vector != 0)
            pixels = Load(source + block.loadAt[vector]);
        Store(destination + vectorBytes * vector, Permute(pixels, block.masks[vector]));
    });
}

// The last bytes, where whole vectors would read or write too much: loads move back into the
// source, and the last store is a part of a vector. The offsets `from` and `to` of the next block
// may lie outside the source where nothing is read.
template <int vectors>
[[gnu::noinline]] void DoRest(const Block<vectors>& block, const Rows& rows, std::ptrdiff_t from,
                              std::ptrdiff_t to)
{
    const bool isShort = rows.sourceBytes < vectorBytes;
    const std::ptrdiff_t latest = isShort ? 0 : rows.sourceBytes - vectorBytes;
    Lanes pixels = isShort ? LoadPart(rows.source, rows.sourceBytes) : Zero();
    for (; to < rows.destinationBytes; to += block.toStep, from += block.fromStep) {
        const std::ptrdiff_t left = rows.destinationBytes - to;
        for (int vector = 0; vector < vectors && vectorBytes * vector < left; ++vector) {
            const std::ptrdiff_t wanted = from + block.loadAt[vector];
            const std::ptrdiff_t near = wanted < latest ? wanted : latest;
            const std::ptrdiff_t at = near < 0 ? 0 : near;
            if (!isShort)
                pixels = Load(rows.source + at);
            const Lanes moved = Set8(static_cast<int>(wanted - at));
            StorePart(rows.destination + to + vectorBytes * vector,
                      Permute(pixels, Add8(block.masks[vector], moved)),
                      left - vectorBytes * vector);
        }
    }
}

// Output that must be left for a block to be done in whole vectors.
template <int vectors>
std::ptrdiff_t WholeBytes(const StepNumbers& numbers)
{
    const int blockBytes = numbers.pixels * numbers.sourceBytes;
    const int outputBytes = numbers.destinationBytes << numbers.repeatShift;
    // Pixels of the blocks to come that a load reads, though it does not use them.
    const int pastBytes = blockBytes < vectorBytes ? vectorBytes - blockBytes : 0;
    const int pastPixels = Quotient(pastBytes + numbers.sourceBytes - 1, numbers.sourceBytes);
    const int forLoads = (numbers.pixels + pastPixels) * outputBytes;
    const int forStores = vectors * vectorBytes;
    return forLoads > forStores ? forLoads : forStores;
}

// Full vectors of output need no more than the block's own bytes, if its loads need no more.
template <int vectors, bool ownLoads, bool isFull>
void RunBlocks(const PixelStep& step, int pixels, const unsigned char* source,
               unsigned char* destination, std::size_t destinationPixels)
{
    const StepNumbers numbers = NumbersOf(step, pixels);
    const Rows rows = RowsOf(numbers, source, destination, destinationPixels);
    const Block<vectors> block = MakeBlock<vectors, ownLoads>(numbers);
    const std::ptrdiff_t toStep = isFull ? vectors * vectorBytes : block.toStep;
    const std::ptrdiff_t fromStep = block.fromStep;
    const std::ptrdiff_t last = rows.destinationBytes - WholeBytes<vectors>(numbers);
    std::ptrdiff_t from = numbers.mirrored ? rows.sourceBytes + fromStep : 0;
    std::ptrdiff_t to = 0;
    constexpr int together = vectors == 1 ? 4 : 2;
    for (; to + (together - 1) * toStep <= last; to += together * toStep) {
        Unroll<together>([&](auto number) {
            DoBlock<vectors, ownLoads>(block, source + (from + number * fromStep),
                                       destination + (to + number * toStep));
        });
        from += together * fromStep;
    }
    for (; to <= last; to += toStep, from += fromStep)
        DoBlock<vectors, ownLoads>(block, source + from, destination + to);
    if (to >= rows.destinationBytes)
        return;
    // The last whole block once more, so that the row ends with it.
    if (isFull && to != 0 && rows.endsWhole && numbers.pixels * numbers.sourceBytes >= vectorBytes)
        DoBlock<vectors, ownLoads>(block,
                                   source + (numbers.mirrored ? 0 : rows.sourceBytes - fromStep),
                                   destination + (rows.destinationBytes - toStep));
    else
        DoRest(block, rows, from, to);
}

using BlocksMethod = void (*)(const PixelStep& step, int pixels, const unsigned char* source,
                              unsigned char* destination, std::size_t destinationPixels);

template <bool isFull>
BlocksMethod SharedMethodOf(int vectors)
{
    switch (vectors) {
    case 1:
        return RunBlocks<1, false, isFull>;
    case 2:
        return RunBlocks<2, false, isFull>;
    case 3:
        return RunBlocks<3, false, isFull>;
    default:
        return RunBlocks<4, false, isFull>;
    }
}

} // namespace
} // namespace zvk::Pelkraft
