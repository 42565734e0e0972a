#pragma once

#include "direct/direct_plan.h"

// The kernel of a pass of so many bits before and after it, or null where it is of another type.
namespace zvk::Pelkraft {

inline SampleKernel SampleKernelOf(const DirectPlan& plan, PassKind kind, std::uint8_t bits,
                                   std::uint8_t newBits)
{
    const SampleKernels& kernels = *plan.kernels->samples;
    switch (kind) {
    case PassKind::Widen:
        return kernels.widen;
    case PassKind::Narrow:
        return kernels.narrow;
    case PassKind::Pack:
        return kernels.pack[newBits - 1U];
    case PassKind::NarrowPack:
        return kernels.narrowPack[newBits - 1U];
    case PassKind::Unpack:
        return kernels.unpack[bits - 1U];
    case PassKind::UnpackWiden:
        return kernels.unpackWiden[bits - 1U];
    case PassKind::Quantize:
        return kernels.quantize[plan.passes[plan.passCount - 1U].bits - 1U];
    case PassKind::Stretch:
        return kernels.stretch[plan.sourceBits - 1U];
    case PassKind::Cut:
        return kernels.cut;
    case PassKind::Extend:
        return kernels.extend;
    default:
        return nullptr;
    }
}

// Pixels have at most maxDenseChannels.
inline SplitKernel SplitKernelOf(const DirectPlan& plan, PassKind kind, std::uint8_t newBits,
                                 std::size_t channels)
{
    const SplitMergeKernels& kernels = *plan.kernels->splitMerge;
    switch (kind) {
    case PassKind::Split:
        return kernels.split[newBits / 8U - 1][channels];
    case PassKind::PackSplit:
        return plan.kernels->samples->packSplit[newBits - 1U][channels];
    case PassKind::SplitWiden:
        return kernels.splitWiden[channels];
    case PassKind::NarrowSplit:
        return kernels.narrowSplit[channels];
    default:
        return nullptr;
    }
}

inline MergeKernel MergeKernelOf(const DirectPlan& plan, PassKind kind, std::uint8_t bits,
                                 std::size_t channels)
{
    return kind == PassKind::Merge ? plan.kernels->splitMerge->merge[bits / 8U - 1][channels]
                                   : nullptr;
}

} // namespace zvk::Pelkraft
