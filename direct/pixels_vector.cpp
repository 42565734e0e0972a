#include "common/lanes_vector.h"
#include "direct/pixels_parts_vector.h"

#include "direct/pixels_blocks.h"
#include "direct/pixels_move.h"

namespace zvk::Pelkraft::VectorRoad {
namespace {

constexpr int maxPixelBytes = 16;

// The blocks whose vectors have loads of their own: other numbers of vectors win for no pair of
// sizes, or have so many masks that loading them anew costs what the fuller vectors gain.
struct OwnBlock
{
    int vectors;
    int loads;
};
constexpr OwnBlock ownBlocks[] = {{3, 1}, {9, 1}, {9, 2}, {11, 1}};

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
    for (const OwnBlock& own : ownBlocks) {
        const int pixels = 16 * own.vectors / outputBytes;
        if (pixels * outputBytes == 16 * own.vectors &&
            VectorsFit(sourceBytes, outputBytes, pixels, 16 * own.loads))
            consider(pixels, own.vectors, own.loads, true, own.vectors * (20 + 14 * own.loads));
    }
    return best.shape;
}

constexpr BlockShapes shapes = MakeShapes(FindShape);

const BlocksMethod& MethodOf(const BlockShape& shape)
{
    if (shape.ownLoads)
        return shape.loads == 2     ? methodOf<9, 2, true, true>
               : shape.vectors == 3 ? methodOf<3, 1, true, true>
               : shape.vectors == 9 ? methodOf<9, 1, true, true>
                                    : methodOf<11, 1, true, true>;
    if (shape.loads == 1)
        return SharedMethodOf(shape);
    return shape.loads == 2 ? methodOf<1, 2, false, false> : methodOf<1, 4, false, false>;
}

const BlockShape& ShapeOf(const PixelStep& step)
{
    return shapes.of[step.sourceBytes - 1][step.destinationBytes - 1][step.repeat >> 1];
}

void Step(const PixelStep& step, const StepRows& rows, std::size_t destinationPixels)
{
    const BlockShape& shape = ShapeOf(step);
    MethodOf(shape).run(step, shape, rows, destinationPixels);
}

void Prepare(PreparedStep& prepared)
{
    const BlockShape& shape = ShapeOf(*prepared.step);
    MethodOf(shape).prepare(shape, prepared);
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

} // namespace zvk::Pelkraft::VectorRoad
