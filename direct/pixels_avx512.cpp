#include "common/lanes_avx512.h"
#include "direct/pixels_parts_avx512.h"

#include "direct/pixels_blocks.h"

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
BlockShape FindShape(const PixelStep& step, int outputBytes)
{
    const int shift = step.repeat >> 1;
    const int loaded = capacities.sourcePixels[step.sourceBytes];
    const int stored = capacities.outputPixels[step.destinationBytes] >> shift;
    int pixels = loaded < stored ? loaded : stored;
    int vectors = (pixels * outputBytes + vectorBytes - 1) / vectorBytes;
    const int fewerPixels = Quotient((vectors - 1) * vectorBytes, step.destinationBytes) >> shift;
    if (fewerPixels * vectors > pixels * (vectors - 1)) {
        pixels = fewerPixels;
        --vectors;
    }
    return {static_cast<unsigned char>(pixels), static_cast<unsigned char>(vectors), false};
}

void Step(const PixelStep& step, const unsigned char* source, unsigned char* destination,
          std::size_t destinationPixels)
{
    const int outputBytes = step.destinationBytes << (step.repeat >> 1);
    const BlockShape shape = FindShape(step, outputBytes);
    int pixels = shape.pixels;
    BlocksMethod method = SharedMethodOf<true>(shape.vectors);
    if (pixels * outputBytes != shape.vectors * vectorBytes) {
        method = SharedMethodOf<false>(shape.vectors);
        const int third = Quotient(step.destinationBytes, 3) << (step.repeat >> 1);
        if (3 * third == outputBytes && third <= 32 &&
            step.sourceBytes <= threeVectors.of[third].sourceBytes) {
            pixels = threeVectors.of[third].pixels;
            method = RunBlocks<3, true, true>;
        }
    }
    method(step, pixels, source, destination, destinationPixels);
}

void Move(const PixelMove& move, const unsigned char* source, unsigned char* destination,
          std::size_t destinationPixels)
{
    if (move.pixelBytes <= maxStepBytes)
        Step(WholePixelStep(move), source, destination, destinationPixels);
    else
        // Vectors of 64 bytes would cross a line of the cache with nearly every store.
        Avx2Road::GetPixelKernels().move(move, source, destination, destinationPixels);
}

constexpr PixelKernels kernels = {Step, maxStepBytes, Move};

} // namespace

const PixelKernels& GetPixelKernels()
{
    return kernels;
}

} // namespace zvk::Pelkraft::Avx512Road
