#include "common/lanes_vector.h"

#include "direct/kernels.h"
#include "direct/lane_splitter.h"
#include "direct/turn_lanes.h"
#include "direct/unpack_block_lanes.h"

#include "direct/sample_kernels_lanes.h"

namespace zvk::Pelkraft::VectorRoad {
namespace {

constexpr SampleKernels kernels = MakeSampleKernels<LaneSplitter>();

} // namespace

const SampleKernels& GetSampleKernels()
{
    return kernels;
}

} // namespace zvk::Pelkraft::VectorRoad
