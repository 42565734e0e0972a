#include "common/inlining.h"
#include "common/lanes_avx2.h"
#include "direct/split_merge_lanes.h"
#include "direct/wide_split_merge_lanes.h"

#include "direct/split_merge_kernels_lanes.h"

namespace zvk::Pelkraft {
namespace {

const SplitMergeKernels& NarrowerKernels()
{
    return VectorRoad::GetSplitMergeKernels();
}

// In whole vectors: the runs are parts first to last of lane 0, then those of lane 1.
template <int count>
PELKRAFT_ALWAYS_INLINE inline void StoreRuns(unsigned char* block, const Lanes* v)
{
    Unroll<count>([&](auto i) PELKRAFT_ALWAYS_INLINE {
        constexpr int first = 2 * i, second = first + 1;
        constexpr int firstLane = first / count, secondLane = second / count;
        const Lanes joined = JoinLanes<firstLane, secondLane>(v[first % count], v[second % count]);
        Store(block + 32 * i, joined);
    });
}

} // namespace

const SplitMergeKernels& Avx2Road::GetSplitMergeKernels()
{
    return kernels;
}

} // namespace zvk::Pelkraft
