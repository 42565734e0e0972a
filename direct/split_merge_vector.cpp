#include "common/inlining.h"
#include "common/lanes_vector.h"
#include "direct/split_merge_lanes.h"
#include "direct/wide_split_merge_lanes.h"

#include "direct/split_merge_kernels_lanes.h"

namespace zvk::Pelkraft {
namespace {

const SplitMergeKernels& NarrowerKernels()
{
    return PortableRoad::GetSplitMergeKernels();
}

template <int count>
PELKRAFT_ALWAYS_INLINE inline void StoreRuns(unsigned char* block, const Lanes* v)
{
    Unroll<count>([&](auto i) PELKRAFT_ALWAYS_INLINE { Store(block + 16 * i, v[i]); });
}

} // namespace

const SplitMergeKernels& VectorRoad::GetSplitMergeKernels()
{
    return kernels;
}

} // namespace zvk::Pelkraft
