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
    BlockShapes shapes{};
    for (int source = 0; source < maxPixelBytes; ++source)
        for (int destination = 0; destination < maxPixelBytes; ++destination)
            for (int shift = 0; shift < 3; ++shift)
                shapes.of[source][destination][shift] =
                    FindShape(source + 1, (destination + 1) << shift);
    return shapes;
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
[[gnu::always_inline]] inline void DoBlock(const Block<vectors>& block, const unsigned char* source,
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
    const Lanes places = Broadcast(numbers.places);
    // A lane of a straight load counts from its own first byte.
    const int second = loads == Loads::Straight ? 16 : 0;
    const int low = numbers.mirrored ? second : 0;
    const Lanes starts =
        _mm256_inserti128_si256(Set8(low), _mm_set1_epi8(static_cast<char>(second - low)), 1);
    Unroll<vectors>([&](auto vector) {
        const ByteOrigin origin = OriginOf(numbers, vector);
        block.masks[vector] =
            Add8(Shuffle(places, origin.index), Subtract8(origin.pixelStart, starts));
    });
    return block;
}

// Answers how many bytes of the destination it has served.
template <int vectors, Loads loads, bool mirrored>
std::size_t DoBlocks(const StepNumbers& numbers, const unsigned char* source,
                     unsigned char* destination, std::size_t sourcePixels, bool endsWhole)
{
    const Block<vectors> block = MakeBlock<vectors, loads>(numbers);
    const auto pixelOutput =
        static_cast<std::size_t>(numbers.destinationBytes << numbers.repeatShift);
    const auto blockBytes = static_cast<std::size_t>(numbers.pixels * numbers.sourceBytes);
    constexpr std::size_t outputBytes = std::size_t{vectors} * vectorBytes;
    const std::size_t wholeBytes = (endsWhole ? sourcePixels : sourcePixels - 1) * pixelOutput;

    // Unsigned, so that a step backwards wraps around.
    const std::size_t fromStep = mirrored ? std::size_t{0} - blockBytes : blockBytes;
    const std::size_t rowBytes = sourcePixels * static_cast<std::size_t>(numbers.sourceBytes);
    std::size_t from = mirrored ? rowBytes - blockBytes : 0;
    std::size_t to = 0;
    const auto one = [&](auto) {
        DoBlock<vectors, loads, mirrored>(block, source + from, destination + to);
        from += fromStep;
        to += outputBytes;
    };
    constexpr int together = vectors == 1 ? 4 : 2;
    while (to + together * outputBytes <= wholeBytes)
        Unroll<together>(one);
    while (to + outputBytes <= wholeBytes)
        one(0);
    if (to == wholeBytes || !endsWhole)
        return to;
    // The last whole block once more, so that the row ends with it.
    DoBlock<vectors, loads, mirrored>(block, source + (mirrored ? 0 : rowBytes - blockBytes),
                                      destination + (wholeBytes - outputBytes));
    return wholeBytes;
}

using BlocksMethod = std::size_t (*)(const StepNumbers& numbers, const unsigned char* source,
                                     unsigned char* destination, std::size_t sourcePixels,
                                     bool endsWhole);

template <bool mirrored>
BlocksMethod MethodOf(const BlockShape& shape)
{
    if (shape.loads == Loads::Shared)
        return shape.vectors == 1 ? DoBlocks<1, Loads::Shared, mirrored>
                                  : DoBlocks<2, Loads::Shared, mirrored>;
    return DoBlocks<1, Loads::Straight, mirrored>;
}

void Step(const PixelStep& step, const unsigned char* source, unsigned char* destination,
          std::size_t destinationPixels)
{
    const BlockShape& shape =
        shapes.of[step.sourceBytes - 1][step.destinationBytes - 1][step.repeat >> 1];
    const StepNumbers numbers = NumbersOf(step, shape.pixels);
    const std::size_t lastCopy = (std::size_t{1} << numbers.repeatShift) - 1;
    const std::size_t sourcePixels = (destinationPixels + lastCopy) >> numbers.repeatShift;
    const StepKernel narrower = VectorRoad::GetPixelKernels().step;
    // A pixel more, as the last one may be cut short.
    if (shape.loads == Loads::None || sourcePixels <= shape.pixels)
        return narrower(step, source, destination, destinationPixels);

    const BlocksMethod method = step.mirrored ? MethodOf<true>(shape) : MethodOf<false>(shape);
    const std::size_t doneBytes =
        method(numbers, source, destination, sourcePixels, (destinationPixels & lastCopy) == 0);
    if (doneBytes == destinationPixels * step.destinationBytes)
        return;
    const std::size_t doneCopies = doneBytes / step.destinationBytes;
    const std::size_t donePixels = doneCopies >> numbers.repeatShift;
    narrower(step, step.mirrored ? source : source + donePixels * step.sourceBytes,
             destination + doneBytes, destinationPixels - doneCopies);
}

void Move(const PixelMove& move, const unsigned char* source, unsigned char* destination,
          std::size_t destinationPixels)
{
    if (move.pixelBytes <= maxPixelBytes)
        Step(WholePixelStep(move), source, destination, destinationPixels);
    else
        MovePixels<WidePiece, NarrowPiece>(move, source, destination, destinationPixels);
}

constexpr PixelKernels kernels = {Step, maxPixelBytes, Move};

} // namespace

const PixelKernels& GetPixelKernels()
{
    return kernels;
}

} // namespace zvk::Pelkraft::Avx2Road
