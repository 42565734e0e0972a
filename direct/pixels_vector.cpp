#include "common/lanes_vector.h"
#include "direct/pixels_parts_vector.h"

#include "direct/pixels_blocks.h"
#include "direct/pixels_move.h"

namespace zvk::Pelkraft::VectorRoad {
namespace {

constexpr int maxPixelBytes = 16;
constexpr int maxOwnVectors = 13;
// More masks than these, and loading them anew costs what the fuller vectors gain.
constexpr int maxMasks = 18;
static_assert(maxMasks < 2 * 11, "OwnTwinMethodOf ends with 9 vectors");

// A candidate, and its cost in halves of a store for all the pixels: a shuffle with its load costs
// half as much as a store.
struct Candidate
{
    BlockShape shape;
    int cost;
};

constexpr bool IsCheaper(const Candidate& a, const Candidate& b)
{
    return a.cost * b.shape.pixels < b.cost * a.shape.pixels;
}

// The fewest stores and shuffles for a pixel win.
constexpr BlockShape FindShape(int sourceBytes, int outputBytes)
{
    Candidate best = {};
    const auto consider = [&](int pixels, int vectors, int loads, bool ownLoads, int cost) {
        const Candidate candidate = {
            MakeShape(sourceBytes, outputBytes, pixels, vectors, loads, ownLoads), cost};
        if (best.cost == 0 || IsCheaper(candidate, best))
            best = candidate;
    };
    for (int pixels = 1; pixels == 1 || (pixels * sourceBytes <= 16 && pixels * outputBytes <= 64);
         ++pixels) {
        const int vectors = (pixels * outputBytes + 15) / 16;
        consider(pixels, vectors, 1, false, 6 + 24 * vectors);
    }
    // Long pixels that become short ones.
    for (int loads = 2; loads <= 4; loads *= 2)
        for (int pixels = 1; pixels * sourceBytes <= 16 * loads && pixels * outputBytes <= 16;
             ++pixels)
            consider(pixels, 1, loads, false, 20 + 12 * loads);
    for (int vectors = 3; vectors <= maxOwnVectors; vectors += 2)
        for (int loads = 1; loads <= 2 && loads * vectors <= maxMasks; ++loads) {
            const int pixels = 16 * vectors / outputBytes;
            if (pixels * outputBytes == 16 * vectors &&
                VectorsFit(sourceBytes, outputBytes, pixels, 16 * loads))
                consider(pixels, vectors, loads, true, vectors * (20 + 14 * loads));
        }
    return best.shape;
}

constexpr BlockShapes shapes = MakeShapes(FindShape);

BlocksMethod OwnMethodOf(int vectors)
{
    switch (vectors) {
    case 3:
        return RunBlocks<3, 1, true, true>;
    case 5:
        return RunBlocks<5, 1, true, true>;
    case 7:
        return RunBlocks<7, 1, true, true>;
    case 9:
        return RunBlocks<9, 1, true, true>;
    case 11:
        return RunBlocks<11, 1, true, true>;
    default:
        return RunBlocks<13, 1, true, true>;
    }
}

BlocksMethod OwnTwinMethodOf(int vectors)
{
    switch (vectors) {
    case 3:
        return RunBlocks<3, 2, true, true>;
    case 5:
        return RunBlocks<5, 2, true, true>;
    case 7:
        return RunBlocks<7, 2, true, true>;
    default:
        return RunBlocks<9, 2, true, true>;
    }
}

BlocksMethod MethodOf(const BlockShape& shape)
{
    if (shape.ownLoads)
        return shape.loads == 1 ? OwnMethodOf(shape.vectors) : OwnTwinMethodOf(shape.vectors);
    if (shape.loads == 1)
        return SharedMethodOf(shape);
    return shape.loads == 2 ? RunBlocks<1, 2, false, false> : RunBlocks<1, 4, false, false>;
}

void Step(const PixelStep& step, const StepRows& rows, std::size_t destinationPixels)
{
    const BlockShape& shape =
        shapes.of[step.sourceBytes - 1][step.destinationBytes - 1][step.repeat >> 1];
    MethodOf(shape)(step, shape, rows, destinationPixels);
}

void Move(const PixelMove& move, const unsigned char* source, unsigned char* destination,
          std::size_t destinationPixels)
{
    if (move.pixelBytes <= maxPixelBytes)
        Step(WholePixelStep(move), {&source, &destination, 1}, destinationPixels);
    else
        MovePixels<WidePiece, NarrowPiece>(move, source, destination, destinationPixels);
}

constexpr PixelKernels kernels = {Step, maxPixelBytes, Move};

} // namespace

const PixelKernels& GetPixelKernels()
{
    return kernels;
}

} // namespace zvk::Pelkraft::VectorRoad
