#include "common/lanes_avx512.h"

#include "dither/dither_lanes.h"

namespace zvk::Pelkraft::Avx512Road {

const DitherKernels& GetDitherKernels()
{
    return ditherKernels;
}

} // namespace zvk::Pelkraft::Avx512Road
