#include "common/lanes_vector.h"

#include "direct/finish_lanes.h"

namespace zvk::Pelkraft::VectorRoad {

const FinishKernels& GetFinishKernels()
{
    return kernels;
}

} // namespace zvk::Pelkraft::VectorRoad
