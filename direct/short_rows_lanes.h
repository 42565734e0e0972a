#pragma once

#include "common/inlining.h"
#include "direct/split_merge_table.h"

// The way of rows that are shorter than a block to the next narrower level, which the file that
// includes this one names by NarrowerKernels().
// Only for files built with vector flags: all of it has internal linkage on purpose.
namespace zvk::Pelkraft {
namespace {

const SplitMergeKernels& NarrowerKernels();

// Rows shorter than a block go on from functions of their own, so that the longer ones do not pay
// for their frames.
template <typename Samples, int channels>
PELKRAFT_NEVER_INLINE void SplitShort(const unsigned char* row, unsigned char* const* planes,
                                      std::size_t pixels)
{
    Samples::KernelOf(NarrowerKernels(), channels)(row, planes, pixels);
}

template <int sampleBytes, int channels>
PELKRAFT_NEVER_INLINE void MergeShort(const unsigned char* const* planes, unsigned char* row,
                                      std::size_t pixels)
{
    MergeAt(NarrowerKernels(), sampleBytes, channels)(planes, row, pixels);
}

} // namespace
} // namespace zvk::Pelkraft
