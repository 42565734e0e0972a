#include "direct/split_merge_table.h"

namespace zvk::Pelkraft {
namespace {

std::size_t Index(int value)
{
    return static_cast<std::size_t>(value);
}

} // namespace

SplitKernel SplitAt(const SplitMergeKernels& kernels, int sampleBytes, int channels)
{
    return kernels.split[Index(sampleBytes - 1)][Index(channels)];
}

MergeKernel MergeAt(const SplitMergeKernels& kernels, int sampleBytes, int channels)
{
    return kernels.merge[Index(sampleBytes - 1)][Index(channels)];
}

WideSplitKernel WideSplitAt(const SplitMergeKernels& kernels, int sampleBytes)
{
    return kernels.wideSplit[Index(sampleBytes - 1)];
}

WideMergeKernel WideMergeAt(const SplitMergeKernels& kernels, int sampleBytes)
{
    return kernels.wideMerge[Index(sampleBytes - 1)];
}

SplitKernel SplitWidenAt(const SplitMergeKernels& kernels, int channels)
{
    return kernels.splitWiden[Index(channels)];
}

SplitKernel NarrowSplitAt(const SplitMergeKernels& kernels, int channels)
{
    return kernels.narrowSplit[Index(channels)];
}

} // namespace zvk::Pelkraft
