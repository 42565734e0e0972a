#include "direct/kernels.h"

namespace zvk::Pelkraft {
namespace {

using GetSplitMerge = const SplitMergeKernels& (*)();
using GetSamples = const SampleKernels& (*)();
using GetPixels = const PixelKernels& (*)();
using GetFinish = const FinishKernels& (*)();

template <GetSplitMerge getSplitMerge, GetSamples getSamples, GetPixels getPixels,
          GetFinish getFinish>
const Kernels& CollectKernels()
{
    static const Kernels kernels{&getSplitMerge(), &getSamples(), &getPixels(), &getFinish()};
    return kernels;
}

} // namespace

const Kernels& KernelsOf(Road road)
{
    if constexpr (hasWideRoads) {
        if (road == Road::Avx512)
            return CollectKernels<Avx512Road::GetSplitMergeKernels, Avx512Road::GetSampleKernels,
                                  Avx512Road::GetPixelKernels, Avx512Road::GetFinishKernels>();
        if (road == Road::Avx2)
            return CollectKernels<Avx2Road::GetSplitMergeKernels, Avx2Road::GetSampleKernels,
                                  Avx2Road::GetPixelKernels, Avx2Road::GetFinishKernels>();
    }
    if constexpr (hasVectorRoad)
        if (road == Road::Vector)
            return CollectKernels<VectorRoad::GetSplitMergeKernels, VectorRoad::GetSampleKernels,
                                  VectorRoad::GetPixelKernels, VectorRoad::GetFinishKernels>();
    return CollectKernels<PortableRoad::GetSplitMergeKernels, PortableRoad::GetSampleKernels,
                          PortableRoad::GetPixelKernels, PortableRoad::GetFinishKernels>();
}

} // namespace zvk::Pelkraft
