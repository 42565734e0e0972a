#include "common/lanes_avx512.h"
#include "direct/pixels_parts_avx512.h"

#include "direct/pixels_blocks.h"
#include "direct/pixels_move.h"

namespace zvk::Pelkraft::Avx512Road {
namespace {

constexpr int maxShared = 4;

// Pixels of a source vector, and of four vectors of output.
struct Capacities
{
    unsigned char sourcePixels[maxStepBytes + 1];
    std::uint16_t outputPixels[maxStepBytes + 1];
};

constexpr Capacities MakeCapacities()
{
    Capacities capacities{};
    for (int bytes = 1; bytes <= int{maxStepBytes}; ++bytes) {
        capacities.sourcePixels[bytes] = static_cast<unsigned char>(vectorBytes / bytes);
        capacities.outputPixels[bytes] =
            static_cast<std::uint16_t>(maxShared * vectorBytes / bytes);
    }
    return capacities;
}

constexpr Capacities capacities = MakeCapacities();

// Three vectors of output that whole pixels fill where one load would not, by the output bytes of
// a source pixel divided by 3: the pixels of the block, and the longest source pixels it serves.
struct ThreeVectors
{
    unsigned char pixels;
    unsigned char sourceBytes;
};

struct ThreeVectorsBySize
{
    ThreeVectors of[33];
};

constexpr ThreeVectorsBySize FindThreeVectors()
{
    ThreeVectorsBySize found{};
    for (int size = 1; size <= 32; size *= 2) {
        const int pixels = vectorBytes / size;
        int sourceBytes = 0;
        while (sourceBytes < 3 * size - 1 &&
               PiecesFit(sourceBytes + 1, 3 * size, pixels, vectorBytes))
            ++sourceBytes;
        found.of[size] = {static_cast<unsigned char>(pixels),
                          static_cast<unsigned char>(sourceBytes)};
    }
    return found;
}

constexpr ThreeVectorsBySize threeVectors = FindThreeVectors();

// The fullest vectors win, then the fewest loads.
BlockShape FindShape(const StepNumbers& numbers)
{
    const int shift = numbers.repeatShift;
    const int outputBytes = numbers.destinationBytes << shift;
    const int loaded = capacities.sourcePixels[numbers.sourceBytes];
    const int stored = capacities.outputPixels[numbers.destinationBytes] >> shift;
    int pixels = loaded < stored ? loaded : stored;
    int vectors = (pixels * outputBytes + vectorBytes - 1) / vectorBytes;
    const int fewerBytes = (vectors - 1) * vectorBytes;
    const int fewerPixels = Quotient(fewerBytes, numbers.destinationBytes) >> shift;
    if (fewerPixels * vectors > pixels * (vectors - 1)) {
        pixels = fewerPixels;
        --vectors;
    }
    return {static_cast<unsigned char>(pixels), static_cast<unsigned char>(vectors), false};
}

void Step(const PixelStep& step, const unsigned char* source, unsigned char* destination,
          std::size_t destinationPixels)
{
    StepNumbers numbers = NumbersOf(step);
    const BlockShape shape = FindShape(numbers);
    const int outputBytes = numbers.destinationBytes << numbers.repeatShift;
    numbers.pixels = shape.pixels;
    BlocksMethod method = SharedMethodOf<true>(shape.vectors);
    if (shape.pixels * outputBytes != shape.vectors * vectorBytes) {
        method = SharedMethodOf<false>(shape.vectors);
        const int third = Quotient(numbers.destinationBytes, 3) << numbers.repeatShift;
        if (3 * third == outputBytes && third <= 32 &&
            numbers.sourceBytes <= threeVectors.of[third].sourceBytes) {
            numbers.pixels = threeVectors.of[third].pixels;
            method = RunBlocks<3, true, true>;
        }
    }
    RunStep(numbers, method, source, destination, destinationPixels);
}

void Move(const PixelMove& move, const unsigned char* source, unsigned char* destination,
          std::size_t destinationPixels)
{
    if (move.pixelBytes <= maxStepBytes)
        Step(WholePixelStep(move), source, destination, destinationPixels);
    else
        MovePixels<WidePiece, NarrowPiece>(move, source, destination, destinationPixels);
}

constexpr PixelKernels kernels = {Step, maxStepBytes, Move};

} // namespace

const PixelKernels& GetPixelKernels()
{
    return kernels;
}

} // namespace zvk::Pelkraft::Avx512Road
