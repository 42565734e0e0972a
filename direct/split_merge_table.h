#pragma once

#include "direct/kernels.h"

namespace zvk::Pelkraft {

// Reading a table means calling std::array, which no vector file may do: they ask here for the
// kernel of the next narrower level.
SplitKernel SplitAt(const SplitMergeKernels& kernels, int sampleBytes, int channels);
MergeKernel MergeAt(const SplitMergeKernels& kernels, int sampleBytes, int channels);
WideSplitKernel WideSplitAt(const SplitMergeKernels& kernels, int sampleBytes);
WideMergeKernel WideMergeAt(const SplitMergeKernels& kernels, int sampleBytes);
SplitKernel SplitWidenAt(const SplitMergeKernels& kernels, int channels);
SplitKernel NarrowSplitAt(const SplitMergeKernels& kernels, int channels);

} // namespace zvk::Pelkraft
