#include "common/lanes_vector.h"
#include "direct/pixels_parts_vector.h"

#include "direct/pixels_blocks.h"
#include "direct/pixels_move.h"

namespace zvk::Pelkraft::VectorRoad {
namespace {

constexpr int maxPixelBytes = 16;
constexpr int maxVectors = 5;
struct BlockShapes
{
    // Indexed by the bytes of the source pixel less 1, of the destination pixel less 1, and by the
    // shift.
    BlockShape of[maxPixelBytes][maxPixelBytes][3];
};

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
    return {static_cast<unsigned char>(bestPixels), static_cast<unsigned char>(bestVectors),
            ownLoads};
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

BlocksMethod MethodOf(const BlockShape& shape, int outputBytes)
{
    if (shape.ownLoads)
        return shape.vectors == 3 ? RunBlocks<3, true, true> : RunBlocks<5, true, true>;
    return shape.pixels * outputBytes == shape.vectors * vectorBytes
               ? SharedMethodOf<true>(shape.vectors)
               : SharedMethodOf<false>(shape.vectors);
}

void Step(const PixelStep& step, const unsigned char* source, unsigned char* destination,
          std::size_t destinationPixels)
{
    const int shift = step.repeat >> 1;
    const BlockShape& shape = shapes.of[step.sourceBytes - 1][step.destinationBytes - 1][shift];
    MethodOf(shape, step.destinationBytes << shift)(step, shape.pixels, source, destination,
                                                    destinationPixels);
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

} // namespace zvk::Pelkraft::VectorRoad
