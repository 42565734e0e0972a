#include "dither/dither_kernels.h"

namespace zvk::Pelkraft {

const DitherKernels& DitherKernelsOf(Road road)
{
    if constexpr (hasWideRoads) {
        if (road == Road::Avx512)
            return Avx512Road::GetDitherKernels();
        if (road == Road::Avx2)
            return Avx2Road::GetDitherKernels();
    }
    if constexpr (hasVectorRoad)
        if (road == Road::Vector)
            return VectorRoad::GetDitherKernels();
    return PortableRoad::GetDitherKernels();
}

} // namespace zvk::Pelkraft
