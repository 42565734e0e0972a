#pragma once

#include "direct/kernels.h"

#include <utility>

// The table of a level's kernels for splits and merges, which the file that includes this one has
// defined as SplitDense, Split, Merge, SplitWide and MergeWide.
namespace zvk::Pelkraft {
namespace {

template <typename Samples>
constexpr FusedKernels MakeFused()
{
    return {nullptr, nullptr, SplitDense<Samples, 2>, SplitDense<Samples, 3>,
            SplitDense<Samples, 4>};
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
} // namespace zvk::Pelkraft
