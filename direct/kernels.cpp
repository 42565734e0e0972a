#include "direct/kernels.h"

namespace zvk::Pelkraft {
namespace {

const Kernels& PortableKernels()
{
    static const Kernels kernels{&PortableRoad::GetSplitMergeKernels(),
                                 &PortableRoad::GetSampleKernels(),
                                 &PortableRoad::GetPixelKernels()};
    return kernels;
}

const Kernels& VectorKernels()
{
    static const Kernels kernels{&VectorRoad::GetSplitMergeKernels(),
                                 &VectorRoad::GetSampleKernels(), &VectorRoad::GetPixelKernels()};
    return kernels;
}

const Kernels& Avx2Kernels()
{
    static const Kernels kernels{&Avx2Road::GetSplitMergeKernels(), &Avx2Road::GetSampleKernels(),
                                 &Avx2Road::GetPixelKernels()};
    return kernels;
}

const Kernels& Avx512Kernels()
{
    static const Kernels kernels{&Avx512Road::GetSplitMergeKernels(),
                                 &Avx512Road::GetSampleKernels(), &Avx512Road::GetPixelKernels()};
    return kernels;
}

} // namespace

const Kernels& KernelsOf(Road road)
{
    if constexpr (hasVectorRoad) {
        if (road == Road::Avx512)
            return Avx512Kernels();
        if (road == Road::Avx2)
            return Avx2Kernels();
        if (road == Road::Vector)
            return VectorKernels();
    }
    return PortableKernels();
}

} // namespace zvk::Pelkraft
