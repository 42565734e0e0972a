#include "common/inlining.h"
#include "common/lanes_avx2.h"
#include "common/unroll_vector.h"
#include "direct/pixels_lanes.h"
#include "direct/pixels_move.h"

namespace zvk::Pelkraft::Avx2Road {
namespace {

constexpr int maxPixelBytes = 16;
constexpr int maxVectors = 2;

// The loads that the two lanes of a vector come from.
enum class Loads : unsigned char
{
    // The sizes do not fill vectors by such loads. Lanes with loads of their own would, and be
    // slower than vectors of 16 bytes.
    None,
    // One 16-byte load serves all lanes of the block.
    Shared,
    // 32 bytes side by side, a lane of output from the lane of the same number, or of the other
    // where the step mirrors.
    Straight,
};

struct BlockShape
{
    unsigned char pixels;
    // cppcheck-suppress unusedStructMember // the choice of a method reads it
    unsigned char vectors;
    Loads loads;
};

struct BlockShapes
{
    // Indexed by the bytes of the source pixel less 1, of the destination pixel less 1, and by the
    // shift.
    BlockShape of[maxPixelBytes][maxPixelBytes][3];
};

// The fewest vectors that whole pixels fill.
constexpr BlockShape FindShape(int sourceBytes, int outputBytes)
{
    for (int vectors = 1; vectors <= maxVectors; ++vectors) {
        const int pixels = vectors * vectorBytes / outputBytes;
        const int blockBytes = pixels * sourceBytes;
        const auto make = [&](Loads loads) {
            return BlockShape{static_cast<unsigned char>(pixels),
                              static_cast<unsigned char>(vectors), loads};
        };
        if (pixels * outputBytes != vectors * vectorBytes)
            continue;
        if (blockBytes == 16)
            return make(Loads::Shared);
        if (vectors == 1 && sourceBytes == outputBytes && 16 % sourceBytes == 0)
            return make(Loads::Straight);
    }
    return {1, 0, Loads::None};
}

constexpr BlockShapes MakeShapes()
{
    BlockShapes found{};
    for (int source = 0; source < maxPixelBytes; ++source)
        for (int destination = 0; destination < maxPixelBytes; ++destination)
            for (int shift = 0; shift < 3; ++shift)
                found.of[source][destination][shift] =
                    FindShape(source + 1, (destination + 1) << shift);
    return found;
}

constexpr BlockShapes shapes = MakeShapes();

template <int vectors>
struct Block
{
    Lanes masks[vectors];
};

inline Lanes SwapLanes(Lanes v)
{
    return _mm256_permute4x64_epi64(v, 0x4e);
}

template <int vectors, Loads loads, bool mirrored>
PELKRAFT_ALWAYS_INLINE inline void DoBlock(const Block<vectors>& block, const unsigned char* source,
                                           unsigned char* destination)
{
    Lanes pixels = loads == Loads::Shared ? Broadcast(source) : Zero();
    Unroll<vectors>([&](auto vector) {
        if constexpr (loads == Loads::Straight)
            pixels = mirrored ? SwapLanes(Load(source)) : Load(source);
        Store(destination + vectorBytes * vector, Shuffle(pixels, block.masks[vector]));
    });
}

template <int vectors, Loads loads>
Block<vectors> MakeBlock(const StepNumbers& numbers)
{
    Block<vectors> block;
    const Lanes places = _mm256_broadcastsi128_si256(LoadFirstPlaces(numbers.places));
    // A lane of a straight load counts from its own first byte.
    const int second = loads == Loads::Straight ? 16 : 0;
    const int low = numbers.mirrored ? second : 0;
    const Lanes starts =
        _mm256_inserti128_si256(Set8(low), _mm_set1_epi8(static_cast<char>(second - low)), 1);
    Unroll<vectors>([&](auto vector) {
        const ByteOrigin origin = OriginOf(numbers.destinationBytes, vector * vectorBytes);
        block.masks[vector] = Add8(Shuffle(places, origin.index),
                                   Subtract8(PixelStarts(numbers, origin.pixel, 0), starts));
    });
    return block;
}

// All rows of a call share these sizes. They are unsigned, so that a step backwards wraps around.
struct Extent
{
    std::size_t rowBytes;
    std::size_t blockBytes;
    // Output of the source pixels that have all their copies.
    std::size_t wholeBytes;
    bool endsWhole;
};

template <int vectors, Loads loads, bool mirrored>
PELKRAFT_ALWAYS_INLINE inline void RunRow(const Block<vectors>& block, const Extent& extent,
                                          const unsigned char* source, unsigned char* destination)
{
    constexpr std::size_t outputBytes = std::size_t{vectors} * vectorBytes;
    const std::size_t fromStep = mirrored ? std::size_t{0} - extent.blockBytes : extent.blockBytes;
    const std::size_t lastBlock = extent.rowBytes - extent.blockBytes;
    std::size_t from = mirrored ? lastBlock : 0;
    std::size_t to = 0;
    const auto one = [&](auto) {
        DoBlock<vectors, loads, mirrored>(block, source + from, destination + to);
        from += fromStep;
        to += outputBytes;
    };
    constexpr int together = vectors == 1 ? 4 : 2;
    while (to + together * outputBytes <= extent.wholeBytes)
        Unroll<together>(one);
    while (to + outputBytes <= extent.wholeBytes)
        one(0);
    // The last whole block once more, so that the row ends with it.
    if (to != extent.wholeBytes && extent.endsWhole)
        DoBlock<vectors, loads, mirrored>(block, source + (mirrored ? 0 : lastBlock),
                                          destination + (extent.wholeBytes - outputBytes));
}

// Source pixels that are left where the last one is cut short: those of no whole block.
void RunRest(const PixelStep& step, const StepNumbers& numbers, const Extent& extent,
             std::size_t outputBytes, const StepRows& rows, std::size_t destinationPixels)
{
    const std::size_t doneBytes = extent.wholeBytes - extent.wholeBytes % outputBytes;
    const std::size_t doneCopies = doneBytes / step.destinationBytes;
    const std::size_t doneSource = (doneCopies >> numbers.repeatShift) * step.sourceBytes;
    for (std::size_t row = 0; row < rows.count; ++row) {
        const unsigned char* source = rows.sources[row] + (step.mirrored ? 0 : doneSource);
        unsigned char* destination = rows.destinations[row] + doneBytes;
        VectorRoad::GetPixelKernels().step(step, {&source, &destination, 1},
                                           destinationPixels - doneCopies);
    }
}

PELKRAFT_ALWAYS_INLINE inline Extent ExtentOf(const StepNumbers& numbers,
                                              std::size_t destinationPixels)
{
    const std::size_t lastCopy = (std::size_t{1} << numbers.repeatShift) - 1;
    const std::size_t sourcePixels = (destinationPixels + lastCopy) >> numbers.repeatShift;
    return {sourcePixels * static_cast<std::size_t>(numbers.sourceBytes),
            static_cast<std::size_t>(numbers.pixels * numbers.sourceBytes),
            (destinationPixels & ~lastCopy) * static_cast<std::size_t>(numbers.destinationBytes),
            (destinationPixels & lastCopy) == 0};
}

template <int vectors, Loads loads, bool mirrored>
void RunBlocks(const PixelStep& step, int pixels, const StepRows& rows,
               std::size_t destinationPixels)
{
    const StepNumbers numbers = NumbersOf(step, pixels);
    const Extent extent = ExtentOf(numbers, destinationPixels);
    const Block<vectors> block = MakeBlock<vectors, loads>(numbers);
    for (std::size_t row = 0; row < rows.count; ++row)
        RunRow<vectors, loads, mirrored>(block, extent, rows.sources[row], rows.destinations[row]);
    if (!extent.endsWhole)
        RunRest(step, numbers, extent, std::size_t{vectors} * vectorBytes, rows, destinationPixels);
}

template <int vectors>
struct ReadyRow
{
    Block<vectors> block;
    // cppcheck-suppress unusedStructMember // templates alone use it
    StepNumbers numbers;
    // cppcheck-suppress unusedStructMember // templates alone use it
    Extent extent;
};

template <int vectors, Loads loads, bool mirrored>
void RunPrepared(const PreparedStep& prepared, const unsigned char* source,
                 unsigned char* destination)
{
    const void* state = prepared.state;
    const auto& ready = *static_cast<const ReadyRow<vectors>*>(state);
    // A copy, which the stores cannot change.
    const Block<vectors> block = ready.block;
    RunRow<vectors, loads, mirrored>(block, ready.extent, source, destination);
    if (!ready.extent.endsWhole)
        RunRest(*prepared.step, ready.numbers, ready.extent, std::size_t{vectors} * vectorBytes,
                {&source, &destination, 1}, prepared.destinationPixels);
}

template <int vectors, Loads loads, bool mirrored>
void PrepareBlocks(int pixels, PreparedStep& prepared)
{
    const StepNumbers numbers = NumbersOf(*prepared.step, pixels);
    const ReadyRow<vectors> ready = {MakeBlock<vectors, loads>(numbers), numbers,
                                     ExtentOf(numbers, prepared.destinationPixels)};
    static_assert(sizeof ready <= sizeof prepared.state);
    prepared.run = RunPrepared<vectors, loads, mirrored>;
    std::memcpy(prepared.state, &ready, sizeof ready);
}

struct BlocksMethod
{
    // cppcheck-suppress unusedStructMember // the choice of a method reads it
    void (*run)(const PixelStep& step, int pixels, const StepRows& rows,
                std::size_t destinationPixels);
    // cppcheck-suppress unusedStructMember // the choice of a method reads it
    void (*prepare)(int pixels, PreparedStep& prepared);
};

template <int vectors, Loads loads, bool mirrored>
constexpr BlocksMethod methodOf = {RunBlocks<vectors, loads, mirrored>,
                                   PrepareBlocks<vectors, loads, mirrored>};

template <bool mirrored>
const BlocksMethod& MethodOf(const BlockShape& shape)
{
    if (shape.loads == Loads::Shared)
        return shape.vectors == 1 ? methodOf<1, Loads::Shared, mirrored>
                                  : methodOf<2, Loads::Shared, mirrored>;
    return methodOf<1, Loads::Straight, mirrored>;
}

const BlocksMethod& MethodOf(const PixelStep& step, const BlockShape& shape)
{
    return step.mirrored ? MethodOf<true>(shape) : MethodOf<false>(shape);
}

const BlockShape& ShapeOf(const PixelStep& step)
{
    return shapes.of[step.sourceBytes - 1][step.destinationBytes - 1][step.repeat >> 1];
}

bool IsServed(const PixelStep& step, const BlockShape& shape, std::size_t destinationPixels)
{
    return shape.loads != Loads::None && (destinationPixels >> (step.repeat >> 1)) >= shape.pixels;
}

void Step(const PixelStep& step, const StepRows& rows, std::size_t destinationPixels)
{
    const BlockShape& shape = ShapeOf(step);
    if (!IsServed(step, shape, destinationPixels))
        return VectorRoad::GetPixelKernels().step(step, rows, destinationPixels);
    MethodOf(step, shape).run(step, shape.pixels, rows, destinationPixels);
}

void Prepare(PreparedStep& prepared)
{
    const PixelStep& step = *prepared.step;
    const BlockShape& shape = ShapeOf(step);
    if (IsServed(step, shape, prepared.destinationPixels))
        MethodOf(step, shape).prepare(shape.pixels, prepared);
    else
        VectorRoad::GetPixelKernels().prepare(prepared);
}

void Move(const PixelMove& move, const unsigned char* source, unsigned char* destination,
          std::size_t destinationPixels)
{
    if (move.pixelBytes <= maxPixelBytes)
        Step(WholePixelStep(move), {&source, &destination, 1}, destinationPixels);
    else
        MovePixels<WidePiece, NarrowPiece, maxPixelBytes + 1>(move, source, destination,
                                                              destinationPixels);
}

constexpr PixelKernels kernels = {Step, maxPixelBytes, Move, Prepare};

} // namespace

const PixelKernels& GetPixelKernels()
{
    return kernels;
}

} // namespace zvk::Pelkraft::Avx2Road
