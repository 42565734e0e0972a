#include "common/lanes_avx512.h"

#include "direct/finish_lanes.h"

namespace zvk::Pelkraft::Avx512Road {

const FinishKernels& GetFinishKernels()
{
    return kernels;
}

} // namespace zvk::Pelkraft::Avx512Road
