#include "direct/whole_row.h"

#include "common/bit_sizes.h"
#include "common/inlining.h"
#include "direct/pass_kernels.h"
#include "direct/pass_run.h"

#include <array>
#include <cstring>
#include <utility>

namespace zvk::Pelkraft {
namespace {

// Short rows are done as soon as the records of a pass are filled, so that most passes go without.
using RowMethod = void (*)(const DirectPlan& plan, const DirectRows& rows);

// Goes by four planes at a time, and past the last one: a loop over single ones takes longer than
// a short row.
template <typename Byte>
PELKRAFT_ALWAYS_INLINE inline void FillPlanes(Byte** planes, std::size_t channels, Byte* first,
                                              std::ptrdiff_t step)
{
    const auto next = static_cast<std::uintptr_t>(step);
    auto plane = reinterpret_cast<std::uintptr_t>(first);
    for (std::size_t c = 0; c < channels; c += 4) {
        for (std::size_t i = 0; i != 4; ++i, plane += next)
            planes[c + i] = reinterpret_cast<Byte*>(plane);
    }
}

// No map is left here: what splits or merges by one has a tile.
template <PassKind kind>
void SplitRow(const DirectPlan& plan, const DirectRows& rows)
{
    const std::size_t channels = plan.channels;
    if (channels > maxDenseChannels)
        return RunOnlyPass(plan, rows);
    unsigned char* planes[maxDenseChannels];
    FillPlanes(planes, channels, rows.target, rows.planeStep);
    SplitKernelOf(plan, kind, plan.passes[0].bits, channels)(rows.source, planes, plan.pixels);
}

void MergeRow(const DirectPlan& plan, const DirectRows& rows)
{
    const std::size_t channels = plan.channels;
    if (channels > maxDenseChannels)
        return RunOnlyPass(plan, rows);
    const unsigned char* planes[maxDenseChannels];
    FillPlanes(planes, channels, rows.source, rows.sourcePlaneStep);
    MergeKernelOf(plan, PassKind::Merge, plan.passes[0].bits, channels)(planes, rows.target,
                                                                        plan.pixels);
}

void CopyRow(const DirectPlan& plan, const DirectRows& rows)
{
    if (plan.sourcePlanar)
        return RunOnlyPass(plan, rows);
    std::memcpy(rows.target, rows.source, plan.channels * BytesOf(plan.pixels, plan.sourceBits));
}

template <PassKind kind>
void SampleRow(const DirectPlan& plan, const DirectRows& rows)
{
    if (plan.sourcePlanar && plan.mapped)
        return RunOnlyPass(plan, rows);
    const SampleKernel kernel = SampleKernelOf(plan, kind, plan.sourceBits, plan.passes[0].bits);
    if (!plan.sourcePlanar)
        return kernel(rows.source, rows.target, plan.pixels * plan.channels);
    const unsigned char* from = rows.source;
    unsigned char* to = rows.target;
    for (std::uint32_t c = plan.channels; c != 0; --c) {
        kernel(from, to, plan.pixels);
        from += rows.sourcePlaneStep;
        to += rows.planeStep;
    }
}

void StepRow(const DirectPlan& plan, const DirectRows& rows)
{
    const std::size_t bytes = plan.passes[0].bits / 8U;
    const unsigned char* source = rows.source;
    std::size_t pixels = plan.pixels;
    if (plan.sourcePlanar) {
        // Planes that touch are one row.
        const bool joined =
            !plan.mapped && !plan.mirrored && pixels % plan.repeat == 0 &&
            rows.sourcePlaneStep == static_cast<std::ptrdiff_t>(plan.sourcePixels * bytes) &&
            rows.planeStep == static_cast<std::ptrdiff_t>(pixels * bytes);
        if (!joined)
            return RunOnlyPass(plan, rows);
        pixels *= plan.channels;
    } else {
        source += plan.firstPixel * plan.step.sourceBytes;
    }
    plan.kernels->pixels->step(plan.step, {&source, &rows.target, 1}, pixels);
}

template <PassKind kind>
constexpr RowMethod MethodOf()
{
    switch (kind) {
    case PassKind::Copy:
        return CopyRow;
    case PassKind::MirrorBits:
    case PassKind::Move:
    case PassKind::Clear:
        return RunOnlyPass;
    case PassKind::Step:
        return StepRow;
    case PassKind::Split:
    case PassKind::PackSplit:
    case PassKind::SplitWiden:
    case PassKind::NarrowSplit:
        return SplitRow<kind>;
    case PassKind::Merge:
        return MergeRow;
    default:
        return SampleRow<kind>;
    }
}

template <std::size_t... kind>
constexpr auto MakeMethods(std::index_sequence<kind...>)
{
    return std::array{MethodOf<static_cast<PassKind>(kind)>()...};
}

constexpr auto methods = MakeMethods(std::make_index_sequence<passKindCount>{});

} // namespace

void RunRow(const DirectPlan& plan, const DirectRows& rows)
{
    methods[static_cast<std::size_t>(plan.passes[0].kind)](plan, rows);
}

} // namespace zvk::Pelkraft
