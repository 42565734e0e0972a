#include "common/lanes_avx2.h"

#include "direct/finish_lanes.h"

namespace zvk::Pelkraft::Avx2Road {

const FinishKernels& GetFinishKernels()
{
    return kernels;
}

} // namespace zvk::Pelkraft::Avx2Road
