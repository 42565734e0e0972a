#include "common/inlining.h"
#include "common/lanes_avx512.h"
#include "direct/pixels_parts_avx512.h"

#include "direct/pixels_blocks.h"

namespace zvk::Pelkraft::Avx512Road {
namespace {

constexpr int maxShared = 4;

// The fullest vectors win, then the fewest loads.
PELKRAFT_ALWAYS_INLINE constexpr BlockShape FindShape(int sourceBytes, int outputBytes)
{
    const int loaded = vectorBytes / sourceBytes;
    const int stored = maxShared * vectorBytes / outputBytes;
    int pixels = loaded < stored ? loaded : stored;
    int vectors = (pixels * outputBytes + vectorBytes - 1) / vectorBytes;
    const int fewerPixels = (vectors - 1) * vectorBytes / outputBytes;
    if (fewerPixels * vectors > pixels * (vectors - 1)) {
        pixels = fewerPixels;
        --vectors;
    }
    // Three vectors that whole pixels fill where one load would not.
    const int thirds = 3 * vectorBytes / outputBytes;
    const bool ownLoads = pixels * outputBytes != vectors * vectorBytes &&
                          thirds * outputBytes == 3 * vectorBytes && sourceBytes < outputBytes &&
                          VectorsFit(sourceBytes, outputBytes, thirds, vectorBytes);
    return ownLoads ? MakeShape(sourceBytes, outputBytes, thirds, 3, 1, true)
                    : MakeShape(sourceBytes, outputBytes, pixels, vectors, 1, false);
}

constexpr BlockShapes shapes = MakeShapes(FindShape);

const BlocksMethod& MethodOf(const BlockShape& shape)
{
    return shape.ownLoads ? methodOf<3, 1, true, true> : SharedMethodOf(shape);
}

void Run(const PixelStep& step, const BlockShape& shape, const StepRows& rows,
         std::size_t destinationPixels)
{
    MethodOf(shape).run(step, shape, rows, destinationPixels);
}

void Step(const PixelStep& step, const StepRows& rows, std::size_t destinationPixels)
{
    const int shift = step.repeat >> 1;
    if (step.sourceBytes <= tabledShapeBytes && step.destinationBytes <= tabledShapeBytes)
        Run(step, shapes.of[step.sourceBytes - 1][step.destinationBytes - 1][shift], rows,
            destinationPixels);
    else
        Run(step, FindShape(step.sourceBytes, step.destinationBytes << shift), rows,
            destinationPixels);
}

void Prepare(PreparedStep& prepared)
{
    const PixelStep& step = *prepared.step;
    const int shift = step.repeat >> 1;
    const BlockShape shape = FindShape(step.sourceBytes, step.destinationBytes << shift);
    MethodOf(shape).prepare(shape, prepared);
}

void Move(const PixelMove& move, const unsigned char* source, unsigned char* destination,
          std::size_t destinationPixels)
{
    if (move.pixelBytes <= maxStepBytes)
        Step(WholePixelStep(move), {&source, &destination, 1}, destinationPixels);
    else
        // Vectors of 64 bytes would cross a line of the cache with nearly every store.
        Avx2Road::GetPixelKernels().move(move, source, destination, destinationPixels);
}

constexpr PixelKernels kernels = {Step, maxStepBytes, Move, Prepare};

} // namespace

const PixelKernels& GetPixelKernels()
{
    return kernels;
}

} // namespace zvk::Pelkraft::Avx512Road
