#include "common/lanes_vector.h"
#include "direct/pixels_parts_vector.h"

#include "direct/pixels_blocks.h"
#include "direct/pixels_move.h"

namespace zvk::Pelkraft::VectorRoad {
namespace {

constexpr int maxPixelBytes = 16;
constexpr int maxVectors = 5;
// The fullest vectors win, then the fewest loads.
constexpr BlockShape FindShape(int sourceBytes, int outputBytes)
{
    int bestPixels = 1;
    int bestVectors = (outputBytes + 15) / 16;
    for (int pixels = 2; pixels * sourceBytes <= 16 && pixels * outputBytes <= 64; ++pixels) {
        const int vectors = (pixels * outputBytes + 15) / 16;
        if (pixels * bestVectors >= bestPixels * vectors) {
            bestPixels = pixels;
            bestVectors = vectors;
        }
    }
    bool ownLoads = false;
    for (int vectors = 3; vectors <= maxVectors; vectors += 2) {
        const int pixels = 16 * vectors / outputBytes;
        // Own loads cost more than vectors that are not quite full.
        if (pixels * outputBytes == 16 * vectors && !ownLoads &&
            bestPixels * outputBytes < 13 * bestVectors &&
            PiecesFit(sourceBytes, outputBytes, pixels, 16)) {
            bestPixels = pixels;
            bestVectors = vectors;
            ownLoads = true;
        }
    }
    return MakeShape(sourceBytes, outputBytes, bestPixels, bestVectors, ownLoads);
}

constexpr BlockShapes shapes = MakeShapes(FindShape);

BlocksMethod MethodOf(const BlockShape& shape)
{
    if (shape.ownLoads)
        return shape.vectors == 3 ? RunBlocks<3, true, true> : RunBlocks<5, true, true>;
    return SharedMethodOf(shape);
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
