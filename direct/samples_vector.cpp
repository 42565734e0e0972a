#include "common/lanes_vector.h"

#include "direct/kernels.h"
#include "direct/lane_splitter.h"
#include "direct/turn_lanes.h"
#include "direct/unpack_block_lanes.h"

#include "direct/mirror_lanes.h"
#include "direct/pack_split_lanes.h"
#include "direct/unpack_lanes.h"

namespace zvk::Pelkraft::VectorRoad {
namespace {

constexpr SampleKernels kernels{
    Widen,
    Narrow,
    {Pack<1, 1>, Pack<2, 1>},
    {Unpack<1, 1>, Unpack<2, 1>},
    {Mirror<1>, Mirror<2>},
    {Pack<1, 2>, Pack<2, 2>},
    {Unpack<1, 2>, Unpack<2, 2>},
    {{nullptr, nullptr, PackSplit<1, LaneSplitter<2, true>>, PackSplit<1, LaneSplitter<3, true>>,
      PackSplit<1, LaneSplitter<4, true>>},
     {nullptr, nullptr, PackSplit<2, LaneSplitter<2, false>>, PackSplit<2, LaneSplitter<3, false>>,
      PackSplit<2, LaneSplitter<4, false>>}},
};

} // namespace

const SampleKernels& GetSampleKernels()
{
    return kernels;
}

} // namespace zvk::Pelkraft::VectorRoad
