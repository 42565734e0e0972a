#include "common/lanes_vector.h"

#include "dither/dither_lanes.h"

namespace zvk::Pelkraft::VectorRoad {

const DitherKernels& GetDitherKernels()
{
    return ditherKernels;
}

} // namespace zvk::Pelkraft::VectorRoad
