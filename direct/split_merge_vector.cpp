#include "common/lanes_vector.h"
#include "direct/split_merge_lanes.h"
#include "direct/wide_split_merge_lanes.h"

#include <utility>

namespace zvk::Pelkraft {
namespace {

const SplitMergeKernels& NarrowerKernels()
{
    return PortableRoad::GetSplitMergeKernels();
}

template <int count>
[[gnu::always_inline]] inline void StoreRuns(unsigned char* block, const Lanes* v)
{
    Unroll<count>([&](auto i) __attribute__((always_inline)) { Store(block + 16 * i, v[i]); });
}

template <int... index>
constexpr SplitMergeKernels MakeKernels(std::integer_sequence<int, index...>)
{
    return {.split = {{{nullptr, nullptr, Split<1, index + 2>...},
                       {nullptr, nullptr, Split<2, index + 2>...}}},
            .merge = {{{nullptr, nullptr, Merge<1, index + 2>...},
                       {nullptr, nullptr, Merge<2, index + 2>...}}},
            .wideSplit = {SplitWide<1>, SplitWide<2>},
            .wideMerge = {MergeWide<1>, MergeWide<2>},
            .splitWiden = MakeFused<WidenedSamples>(),
            .narrowSplit = MakeFused<NarrowedSamples>()};
}

constexpr SplitMergeKernels kernels = MakeKernels(std::make_integer_sequence<int, 15>());

} // namespace

const SplitMergeKernels& VectorRoad::GetSplitMergeKernels()
{
    return kernels;
}

} // namespace zvk::Pelkraft
