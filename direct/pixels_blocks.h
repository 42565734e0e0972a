#pragma once

#include "common/inlining.h"
#include "common/unroll_vector.h"
#include "direct/pixels_lanes.h"

#include <cstddef>
#include <cstdint>
#include <utility>

// Pixel steps whose blocks are moved by whole vectors that overlap. Included after the lanes of a
// level and its own PlacesAt, Permute, LoadPart and StorePart: shuffles across the whole vector,
// and loads and stores of fewer bytes than a vector has. Only for files built with vector flags:
// all of it has internal linkage on purpose.
namespace zvk::Pelkraft {
namespace {

// The pixels of one pair of sizes are moved in blocks: all vectors of a block come from the same
// loads, which stand side by side, or each from loads of its own, where that fills the vectors
// better.
struct BlockShape
{
    unsigned char pixels;
    unsigned char vectors;
    unsigned char loads;
    bool ownLoads;
    // The output fills the vectors.
    bool isFull;
    // Output that must be left for a block to be done in whole vectors.
    std::uint16_t neededBytes;
};

// For source pixels that have so many bytes, and as many of output with all their repeats.
constexpr BlockShape MakeShape(int sourceBytes, int outputBytes, int pixels, int vectors, int loads,
                               bool ownLoads)
{
    // Pixels of the blocks to come that a load reads, though it does not use them.
    const int blockBytes = pixels * sourceBytes;
    const int loadedBytes = loads * vectorBytes;
    const int pastBytes = blockBytes < loadedBytes ? loadedBytes - blockBytes : 0;
    const int pastPixels = (pastBytes + sourceBytes - 1) / sourceBytes;
    const int forLoads = (pixels + pastPixels) * outputBytes;
    const int forStores = vectors * vectorBytes;
    return {static_cast<unsigned char>(pixels),
            static_cast<unsigned char>(vectors),
            static_cast<unsigned char>(loads),
            ownLoads,
            pixels * outputBytes == forStores,
            static_cast<std::uint16_t>(forLoads > forStores ? forLoads : forStores)};
}

constexpr int tabledShapeBytes = 16;

struct BlockShapes
{
    // By the bytes of the source pixel less 1, of the destination pixel less 1, and the shift.
    BlockShape of[tabledShapeBytes][tabledShapeBytes][3];
};

template <typename Find>
constexpr BlockShapes MakeShapes(Find find)
{
    BlockShapes shapes{};
    for (int source = 0; source < tabledShapeBytes; ++source)
        for (int destination = 0; destination < tabledShapeBytes; ++destination)
            for (int shift = 0; shift < 3; ++shift)
                shapes.of[source][destination][shift] =
                    find(source + 1, (destination + 1) << shift);
    return shapes;
}

// All rows of a call share these sizes.
struct Extent
{
    std::ptrdiff_t sourceBytes;
    std::ptrdiff_t destinationBytes;
    // The last source pixel has all its copies.
    bool endsWhole;
};

inline Extent ExtentOf(const StepNumbers& numbers, std::size_t destinationPixels)
{
    const std::size_t lastCopy = (std::size_t{1} << numbers.repeatShift) - 1;
    const std::size_t sourcePixels = (destinationPixels + lastCopy) >> numbers.repeatShift;
    return {static_cast<std::ptrdiff_t>(sourcePixels) * numbers.sourceBytes,
            static_cast<std::ptrdiff_t>(destinationPixels) * numbers.destinationBytes,
            (destinationPixels & lastCopy) == 0};
}

// One row of the call, from its block at these offsets on.
struct Row
{
    const unsigned char* source;
    unsigned char* destination;
    std::ptrdiff_t from;
    std::ptrdiff_t to;
};

// The masks of a block, where each vector loads from in it, and the way from block to block.
template <int vectors, int loads>
struct BlockMoves
{
    // Each vector has a mask for each of its loads.
    Lanes masks[vectors * loads];
    std::ptrdiff_t loadAt[vectors];
    // Negative where the step mirrors.
    std::ptrdiff_t fromStep;
};

template <int vectors, int loads>
struct Block
{
    BlockMoves<vectors, loads> moves;
    // The places of each vector count from its first load.
    Lanes places[vectors];
    std::ptrdiff_t toStep;
};

inline Lanes PlacesOf(const StepNumbers& numbers, Lanes places, int vector, int loadAt)
{
    const ByteOrigin origin = OriginOf(numbers.destinationBytes, vector * vectorBytes);
    return Add8(PlacesAt(places, origin.index), PixelStarts(numbers, origin.pixel, loadAt));
}

// The mask for one of several loads, from the places counted from its first byte: those of the
// other loads give 0. Only for vectors of 16 bytes, as the shuffle there ignores the bits between
// the top one and the low four.
inline Lanes MaskOfLoad(Lanes places)
{
    return AddSaturated8(places, Set8(emptyByte - 16));
}

template <int vectors, int loads, bool ownLoads>
PELKRAFT_ALWAYS_INLINE inline Block<vectors, loads> MakeBlock(const StepNumbers& numbers)
{
    Block<vectors, loads> block;
    const Lanes places = LoadPlaces(numbers);
    const int blockBytes = numbers.pixels * numbers.sourceBytes;
    constexpr int loadedBytes = loads * vectorBytes;
    // A mirrored block's loads end with the block, so that what they read too much of lies in the
    // blocks to come, as it does forwards.
    const int sameLoads = numbers.mirrored ? blockBytes - loadedBytes : 0;
    Unroll<vectors>([&](auto vector) {
        const int at = ownLoads ? LoadStart(numbers, vectorBytes * vector, loadedBytes) : sameLoads;
        const Lanes placed = PlacesOf(numbers, places, vector, at);
        Unroll<loads>([&](auto load) {
            block.moves.masks[vector * loads + load] =
                loads == 1 ? placed : MaskOfLoad(Subtract8(placed, Set8(load * vectorBytes)));
        });
        block.places[vector] = placed;
        block.moves.loadAt[vector] = at;
    });
    block.moves.fromStep = numbers.mirrored ? -blockBytes : blockBytes;
    block.toStep = numbers.pixels * (numbers.destinationBytes << numbers.repeatShift);
    return block;
}

template <int vectors, int loads, bool ownLoads>
PELKRAFT_ALWAYS_INLINE inline void DoBlock(const BlockMoves<vectors, loads>& moves,
                                           const unsigned char* source, unsigned char* destination)
{
    Lanes pixels[loads];
    Unroll<vectors>([&](auto vector) {
        Lanes moved = Zero();
        Unroll<loads>([&](auto load) {
            if constexpr (ownLoads || vector == 0)
                pixels[load] = Load(source + moves.loadAt[vector] + load * vectorBytes);
            const Lanes part = Permute(pixels[load], moves.masks[vector * loads + load]);
            moved = load == 0 ? part : Or(moved, part);
        });
        Store(destination + vectorBytes * vector, moved);
    });
}

// The last bytes, where whole vectors would read or write too much: loads move back into the
// source, and the last store is a part of a vector. The offsets of the next block may lie outside
// the source where nothing is read.
template <int vectors, int loads>
PELKRAFT_NEVER_INLINE void DoRest(const Block<vectors, loads>& block, const Extent& extent,
                                  const Row& row)
{
    const bool isShort = extent.sourceBytes < vectorBytes;
    const std::ptrdiff_t latest = isShort ? 0 : extent.sourceBytes - vectorBytes;
    Lanes pixels = isShort ? LoadPart(row.source, extent.sourceBytes) : Zero();
    std::ptrdiff_t from = row.from;
    for (std::ptrdiff_t to = row.to; to < extent.destinationBytes; to += block.toStep) {
        const std::ptrdiff_t left = extent.destinationBytes - to;
        // NOLINTNEXTLINE(bugprone-implicit-widening-of-multiplication-result): it is a few vectors.
        for (int vector = 0; vector < vectors && vectorBytes * vector < left; ++vector) {
            const std::ptrdiff_t first = from + block.moves.loadAt[vector];
            Lanes moved = Zero();
            for (int load = 0; load < loads; ++load) {
                const std::ptrdiff_t wanted =
                    first + static_cast<std::ptrdiff_t>(load * vectorBytes);
                const std::ptrdiff_t near = wanted < latest ? wanted : latest;
                const std::ptrdiff_t at = near < 0 ? 0 : near;
                if (!isShort)
                    pixels = Load(row.source + at);
                const Lanes places = Add8(block.places[vector], Set8(static_cast<int>(first - at)));
                moved = Or(moved, Permute(pixels, loads == 1 ? places : MaskOfLoad(places)));
            }
            const int start = vectorBytes * vector;
            StorePart(row.destination + to + start, moved, left - start);
        }
        from += block.moves.fromStep;
    }
}

// Full vectors of output need no more than the block's own bytes, if its loads need no more. The
// last block that may be done in whole vectors starts at the output byte `last`.
template <int vectors, int loads, bool ownLoads, bool isFull>
PELKRAFT_ALWAYS_INLINE inline void RunRow(const Block<vectors, loads>& block, const Extent& extent,
                                          std::ptrdiff_t last, Row row)
{
    const std::ptrdiff_t toStep = isFull ? vectors * vectorBytes : block.toStep;
    // Stores might change a block that stands in memory, as far as a compiler knows.
    const BlockMoves<vectors, loads> moves = block.moves;
    const std::ptrdiff_t fromStep = moves.fromStep;
    // Loops of fewer full 16-byte vectors take twice as long at some addresses of their code.
    constexpr int most = laneCount == 1 && isFull ? 8 : 4;
    constexpr int together = vectors <= 2 ? most / vectors : vectors <= 4 ? 2 : 1;
    for (; row.to + (together - 1) * toStep <= last; row.to += together * toStep) {
        Unroll<together>([&](auto number) {
            DoBlock<vectors, loads, ownLoads>(moves, row.source + (row.from + number * fromStep),
                                              row.destination + (row.to + number * toStep));
        });
        row.from += together * fromStep;
    }
    for (; together != 1 && row.to <= last; row.to += toStep, row.from += fromStep)
        DoBlock<vectors, loads, ownLoads>(moves, row.source + row.from, row.destination + row.to);
    if (row.to >= extent.destinationBytes)
        return;
    // The last whole block once more, so that the row ends with it.
    constexpr int loadedBytes = loads * vectorBytes;
    const bool mirrored = fromStep < 0;
    if (isFull && row.to != 0 && extent.endsWhole &&
        (mirrored ? -fromStep : fromStep) >= loadedBytes)
        DoBlock<vectors, loads, ownLoads>(
            moves, row.source + (mirrored ? 0 : extent.sourceBytes - fromStep),
            row.destination + (extent.destinationBytes - toStep));
    else
        DoRest(block, extent, row);
}

template <int vectors, int loads, bool ownLoads, bool isFull>
void RunBlocks(const PixelStep& step, const BlockShape& shape, const StepRows& rows,
               std::size_t destinationPixels)
{
    const StepNumbers numbers = NumbersOf(step, shape.pixels);
    const Extent extent = ExtentOf(numbers, destinationPixels);
    const Block<vectors, loads> block = MakeBlock<vectors, loads, ownLoads>(numbers);
    const std::ptrdiff_t last = extent.destinationBytes - shape.neededBytes;
    const std::ptrdiff_t first = numbers.mirrored ? extent.sourceBytes + block.moves.fromStep : 0;
    for (std::size_t row = 0; row < rows.count; ++row)
        RunRow<vectors, loads, ownLoads, isFull>(
            block, extent, last, {rows.sources[row], rows.destinations[row], first, 0});
}

// RunBlocks makes as much for its rows.
template <int vectors, int loads>
struct ReadyRow
{
    Block<vectors, loads> block;
    Extent extent;
    std::ptrdiff_t last;
    std::ptrdiff_t first;
};

template <int vectors, int loads, bool ownLoads, bool isFull>
void RunPrepared(const PreparedStep& prepared, const unsigned char* source,
                 unsigned char* destination)
{
    const void* state = prepared.state;
    const auto& ready = *static_cast<const ReadyRow<vectors, loads>*>(state);
    RunRow<vectors, loads, ownLoads, isFull>(ready.block, ready.extent, ready.last,
                                             {source, destination, ready.first, 0});
}

template <int vectors, int loads, bool ownLoads, bool isFull>
void PrepareBlocks(const BlockShape& shape, PreparedStep& prepared)
{
    const StepNumbers numbers = NumbersOf(*prepared.step, shape.pixels);
    const Extent extent = ExtentOf(numbers, prepared.destinationPixels);
    const Block<vectors, loads> block = MakeBlock<vectors, loads, ownLoads>(numbers);
    const ReadyRow<vectors, loads> ready = {
        block, extent, extent.destinationBytes - shape.neededBytes,
        numbers.mirrored ? extent.sourceBytes + block.moves.fromStep : 0};
    static_assert(sizeof ready <= sizeof prepared.state);
    prepared.run = RunPrepared<vectors, loads, ownLoads, isFull>;
    std::memcpy(prepared.state, &ready, sizeof ready);
}

struct BlocksMethod
{
    void (*run)(const PixelStep& step, const BlockShape& shape, const StepRows& rows,
                std::size_t destinationPixels);
    void (*prepare)(const BlockShape& shape, PreparedStep& prepared);
};

template <int vectors, int loads, bool ownLoads, bool isFull>
constexpr BlocksMethod methodOf = {RunBlocks<vectors, loads, ownLoads, isFull>,
                                   PrepareBlocks<vectors, loads, ownLoads, isFull>};

template <int... index>
struct BlocksMethods
{
    BlocksMethod of[sizeof...(index)];
};

template <bool isFull, int... index>
constexpr BlocksMethods<index...> MakeMethods(std::integer_sequence<int, index...>)
{
    return {{methodOf<index + 1, 1, false, isFull>...}};
}

// The methods with one load, by the number of vectors less 1.
constexpr auto fullMethods = MakeMethods<true>(std::make_integer_sequence<int, 4>{});
constexpr auto looseMethods = MakeMethods<false>(std::make_integer_sequence<int, 4>{});

inline const BlocksMethod& SharedMethodOf(const BlockShape& shape)
{
    return (shape.isFull ? fullMethods.of : looseMethods.of)[shape.vectors - 1];
}

} // namespace
} // namespace zvk::Pelkraft
