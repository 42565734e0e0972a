#include "common/bit_sizes.h"
#include "common/inlining.h"
#include "direct/pass_kernels.h"
#include "direct/pass_run.h"
#include "direct/tile.h"

#include <array>
#include <cstring>
#include <utility>

namespace zvk::Pelkraft {
namespace {

// To fill the records of a pass takes as long as a short row, so most kinds of pass do without.
using RowMethod = void (*)(const DirectPlan& plan, const unsigned char* source,
                           unsigned char* target);

DirectRows RowsOf(const DirectPlan& plan, const unsigned char* source, unsigned char* target)
{
    return {source, static_cast<std::ptrdiff_t>(plan.sourcePlaneBytes), target,
            static_cast<std::ptrdiff_t>(plan.planeBytes)};
}

PELKRAFT_NEVER_INLINE void RunByPass(const DirectPlan& plan, const unsigned char* source,
                                     unsigned char* target)
{
    RunOnlyPass(plan, RowsOf(plan, source, target));
}

// Four planes are filled at a time, some of them past the last one: a loop over single planes takes
// longer than a short row.
template <typename Byte>
PELKRAFT_ALWAYS_INLINE inline void FillPlanes(Byte** planes, std::size_t channels, Byte* first,
                                              std::size_t planeBytes)
{
    auto plane = reinterpret_cast<std::uintptr_t>(first);
    for (std::size_t c = 0; c < channels; c += 4)
        for (std::size_t i = 0; i != 4; ++i, plane += planeBytes)
            // NOLINTNEXTLINE(performance-no-int-to-ptr): no row goes on past its last plane.
            planes[c + i] = reinterpret_cast<Byte*>(plane);
}

// No map is left here: what splits or merges by one has a tile.
template <PassKind kind>
void SplitRow(const DirectPlan& plan, const unsigned char* source, unsigned char* target)
{
    const std::size_t channels = plan.channels;
    if (channels > maxDenseChannels)
        return RunByPass(plan, source, target);
    unsigned char* planes[maxDenseChannels];
    FillPlanes(planes, channels, target, plan.planeBytes);
    SplitKernelOf(plan, kind, plan.passes[0].bits, channels)(source, planes, plan.pixels);
}

void MergeRow(const DirectPlan& plan, const unsigned char* source, unsigned char* target)
{
    const std::size_t channels = plan.channels;
    if (channels > maxDenseChannels)
        return RunByPass(plan, source, target);
    const unsigned char* planes[maxDenseChannels];
    FillPlanes(planes, channels, source, plan.sourcePlaneBytes);
    MergeKernelOf(plan, PassKind::Merge, plan.passes[0].bits, channels)(planes, target,
                                                                        plan.pixels);
}

void CopyRow(const DirectPlan& plan, const unsigned char* source, unsigned char* target)
{
    if (plan.sourcePlanar)
        return RunByPass(plan, source, target);
    std::memcpy(target, source, plan.channels * BytesOf(plan.pixels, plan.sourceBits));
}

// Calls sweep(source, target) for each plane.
template <typename Sweep>
PELKRAFT_ALWAYS_INLINE inline void ForEachPlane(const DirectPlan& plan, const unsigned char* source,
                                                unsigned char* target, Sweep sweep)
{
    for (std::uint32_t c = plan.channels; c != 0; --c) {
        sweep(source, target);
        source += plan.sourcePlaneBytes;
        target += plan.planeBytes;
    }
}

template <PassKind kind>
void SampleRow(const DirectPlan& plan, const unsigned char* source, unsigned char* target)
{
    if (plan.sourcePlanar && plan.mapped)
        return RunByPass(plan, source, target);
    const SampleKernel kernel = SampleKernelOf(plan, kind, plan.sourceBits, plan.passes[0].bits);
    if (!plan.sourcePlanar)
        return kernel(source, target, plan.pixels * plan.channels);
    ForEachPlane(plan, source, target, [&](const unsigned char* from, unsigned char* to) {
        kernel(from, to, plan.pixels);
    });
}

void MirrorRow(const DirectPlan& plan, const unsigned char* source, unsigned char* target)
{
    if (plan.mapped)
        return RunByPass(plan, source, target);
    const BitMirrorKernel mirror = plan.kernels->samples->mirror[plan.sourceBits - 1U];
    const std::size_t end = plan.firstPixel + plan.sourcePixels;
    ForEachPlane(plan, source, target, [&](const unsigned char* from, unsigned char* to) {
        mirror(from, end, to, plan.pixels);
    });
}

void StepRow(const DirectPlan& plan, const unsigned char* source, unsigned char* target)
{
    const std::size_t bytes = plan.passes[0].bits / 8U;
    std::size_t pixels = plan.pixels;
    if (plan.sourcePlanar) {
        // Planes that touch are one row.
        const bool joined = !plan.mapped && !plan.mirrored && (pixels & (plan.repeat - 1U)) == 0 &&
                            plan.sourcePlaneBytes == plan.sourcePixels * bytes &&
                            plan.planeBytes == pixels * bytes;
        if (!joined)
            return RunByPass(plan, source, target);
        pixels *= plan.channels;
    } else {
        source += plan.firstPixel * plan.step.sourceBytes;
    }
    plan.kernels->pixels->step(plan.step, {&source, &target, 1}, pixels);
}

// A method is made for its own kinds alone.
template <PassKind kind>
constexpr RowMethod MethodOf()
{
    using enum PassKind;
    if constexpr (kind == Copy)
        return CopyRow;
    else if constexpr (kind == MirrorBits)
        return MirrorRow;
    else if constexpr (kind == Move || kind == Clear)
        return RunByPass;
    else if constexpr (kind == Step)
        return StepRow;
    else if constexpr (kind == Split || kind == PackSplit || kind == SplitWiden ||
                       kind == NarrowSplit)
        return SplitRow<kind>;
    else if constexpr (kind == Merge)
        return MergeRow;
    else
        return SampleRow<kind>;
}

template <std::size_t... kind>
constexpr auto MakeMethods(std::index_sequence<kind...>)
{
    return std::array{MethodOf<static_cast<PassKind>(kind)>()...};
}

constexpr auto methods = MakeMethods(std::make_index_sequence<passKindCount>{});

} // namespace

void RunDirect(const DirectPlan& plan, const DirectRows& rows)
{
    if (plan.tilePixels != 0)
        RunTiles(plan, rows);
    else
        RunOnlyPass(plan, rows);
}

void RunDirect(const DirectPlan& plan, const unsigned char* source, unsigned char* target)
{
    if (plan.tilePixels != 0)
        RunTiles(plan, RowsOf(plan, source, target));
    else
        methods[static_cast<std::size_t>(plan.passes[0].kind)](plan, source, target);
}

} // namespace zvk::Pelkraft
