#include "common/lanes_avx2.h"

#include "dither/dither_lanes.h"

namespace zvk::Pelkraft::Avx2Road {

const DitherKernels& GetDitherKernels()
{
    return ditherKernels;
}

} // namespace zvk::Pelkraft::Avx2Road
