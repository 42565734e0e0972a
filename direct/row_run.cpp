#include "direct/row_run.h"

#include "common/bit_sizes.h"
#include "direct/pass_kernels.h"

#include <array>
#include <cstring>
#include <utility>

namespace zvk::Pelkraft {
namespace {

template <typename Byte>
Byte* PlaneOf(Byte* row, std::ptrdiff_t step, std::size_t plane)
{
    return row + static_cast<std::ptrdiff_t>(plane) * step;
}

// Calls body(source, target) with the first bytes of each pair of rows.
template <typename Body>
void ForEachRow(const ReadRows& source, const WrittenRows& target, std::uint64_t rows, Body body)
{
    // A single row is the end of the method, and goes on without a frame of it.
    if (rows == 1)
        return body(source.bytes, target.bytes);
    for (std::uint64_t i = 0; i != rows; ++i) {
        const auto row = static_cast<std::ptrdiff_t>(i);
        body(source.bytes + row * source.rowStep, target.bytes + row * target.rowStep);
    }
}

} // namespace

// One for each kind of kernel. The planes of a pixel are a straight line, since a loop over a few
// of them takes longer than a short row.
struct RowMethods
{
    using Run = const RowRun&;
    using Source = const ReadRows&;
    using Target = const WrittenRows&;

    static void ByPasses(Run run, Source source, Target target, std::uint64_t rows)
    {
        ForEachRow(source, target, rows, [&](const unsigned char* from, unsigned char* to) {
            RunDirect(*run.plan, {from, source.planeStep, to, target.planeStep});
        });
    }

    template <std::size_t... channel>
    static void Split(Run run, Source source, Target target, std::uint64_t rows)
    {
        ForEachRow(source, target, rows, [&](const unsigned char* from, unsigned char* to) {
            unsigned char* const planes[] = {PlaneOf(to, target.planeStep, channel)...};
            run.split(from, planes, run.count);
        });
    }

    template <std::size_t... channel>
    static void Merge(Run run, Source source, Target target, std::uint64_t rows)
    {
        ForEachRow(source, target, rows, [&](const unsigned char* from, unsigned char* to) {
            const unsigned char* const planes[] = {PlaneOf(from, source.planeStep, channel)...};
            run.merge(planes, to, run.count);
        });
    }

    static bool AreJoined(Run run, Source source, Target target)
    {
        return run.joins && source.planeStep == run.joinedSourceStep &&
               target.planeStep == run.joinedStep;
    }

    // Calls body(source, target, count) for each row of samples: a plane, or all planes of a row
    // where they touch.
    template <typename Body>
    static void ForEachPlane(Run run, Source source, Target target, std::uint64_t rows, Body body)
    {
        const bool joined = AreJoined(run, source, target);
        const std::size_t planes = joined ? 1 : run.planes;
        const std::size_t count = joined ? run.planes * run.count : run.count;
        if (planes == 1)
            return ForEachRow(
                source, target, rows,
                [&](const unsigned char* from, unsigned char* to) { body(from, to, count); });
        ForEachRow(source, target, rows, [&](const unsigned char* from, unsigned char* to) {
            for (std::size_t c = 0; c != planes; ++c)
                body(PlaneOf(from, source.planeStep, c), PlaneOf(to, target.planeStep, c), count);
        });
    }

    static void Samples(Run run, Source source, Target target, std::uint64_t rows)
    {
        ForEachPlane(run, source, target, rows,
                     [&](const unsigned char* from, unsigned char* to, std::size_t count) {
                         run.samples(from, to, count);
                     });
    }

    static void StepPlanes(Run run, Source source, Target target, std::uint64_t rows)
    {
        const PreparedStep& joined = run.joinedPlanes;
        if (AreJoined(run, source, target))
            return ForEachRow(source, target, rows,
                              [&](const unsigned char* from, unsigned char* to) {
                                  joined.run(joined, from, to);
                              });
        ForEachPlane(run, source, target, rows,
                     [&](const unsigned char* from, unsigned char* to, std::size_t) {
                         run.step.run(run.step, from, to);
                     });
    }

    static void StepPixels(Run run, Source source, Target target, std::uint64_t rows)
    {
        ForEachRow(source, target, rows, [&](const unsigned char* from, unsigned char* to) {
            run.step.run(run.step, from, to);
        });
    }

    static void Move(Run run, Source source, Target target, std::uint64_t rows)
    {
        const DirectPlan& plan = *run.plan;
        const PixelMove move = {std::size_t{plan.channels} * (plan.passes[0].bits / 8U),
                                plan.repeat, plan.mirrored};
        ForEachRow(source, target, rows, [&](const unsigned char* from, unsigned char* to) {
            plan.kernels->pixels->move(move, from, to, run.count);
        });
    }

    static void MirrorBits(Run run, Source source, Target target, std::uint64_t rows)
    {
        ForEachPlane(run, source, target, rows,
                     [&](const unsigned char* from, unsigned char* to, std::size_t count) {
                         run.mirror(from, count, to, count);
                     });
    }

    static void Copy(Run run, Source source, Target target, std::uint64_t rows)
    {
        const std::uint8_t bits = run.plan->sourceBits;
        ForEachPlane(run, source, target, rows,
                     [&](const unsigned char* from, unsigned char* to, std::size_t count) {
                         std::memcpy(to, from, BytesOf(count, bits));
                         ClearUnusedBits(to, count, bits);
                     });
    }

    static void Stream(Run run, Source source, Target target, std::uint64_t rows)
    {
        const StoreKernel stream = run.plan->kernels->finish->stream;
        const std::uint8_t bits = run.plan->sourceBits;
        ForEachPlane(run, source, target, rows,
                     [&](const unsigned char* from, unsigned char* to, std::size_t count) {
                         stream(from, to, BytesOf(count, bits));
                     });
    }

    static void Patched(Run run, Source source, Target target, std::uint64_t rows)
    {
        const DirectPlan& plan = *run.plan;
        ForEachRow(source, target, rows, [&](const unsigned char* from, unsigned char* to) {
            run.unpatched(run, {from, 0, source.planeStep}, {to, 0, target.planeStep}, 1);
            PatchRow(*plan.kernels->finish, *plan.extras->patch,
                     {to, target.planeStep, 0, plan.channels, plan.pixels});
        });
    }
};

namespace {

using DenseMethods =
    std::array<void (*)(const RowRun&, const ReadRows&, const WrittenRows&, std::uint64_t),
               maxDenseChannels>;

template <std::size_t... channel>
constexpr auto SplitOf(std::index_sequence<channel...>)
{
    return RowMethods::Split<channel...>;
}

template <std::size_t... channel>
constexpr auto MergeOf(std::index_sequence<channel...>)
{
    return RowMethods::Merge<channel...>;
}

template <std::size_t... channel>
constexpr DenseMethods MakeSplits(std::index_sequence<channel...>)
{
    return {SplitOf(std::make_index_sequence<channel + 1>{})...};
}

template <std::size_t... channel>
constexpr DenseMethods MakeMerges(std::index_sequence<channel...>)
{
    return {MergeOf(std::make_index_sequence<channel + 1>{})...};
}

// Indexed by the channels less 1.
constexpr DenseMethods splits = MakeSplits(std::make_index_sequence<maxDenseChannels>{});
constexpr DenseMethods merges = MakeMerges(std::make_index_sequence<maxDenseChannels>{});

// True if one kernel takes the rows as they stand.
bool HasOneKernel(const DirectPlan& plan)
{
    return plan.passCount == 1 && plan.tilePixels == 0 && plan.firstPixel == 0 &&
           !(plan.sourcePlanar && plan.mapped);
}

// True for a copy of whole bytes, which needs no tile on its way past the cache.
bool IsStreamed(const DirectPlan& plan)
{
    return plan.passCount == 1 && plan.passes[0].kind == PassKind::Copy && plan.sourceBits >= 8 &&
           !plan.mapped && plan.extras->streamed && plan.extras->patch == nullptr;
}

bool FillsBytes(std::size_t pixels, std::uint8_t bits)
{
    return pixels % 8 * bits % 8 == 0;
}

} // namespace

RowRun::RowRun(const DirectPlan& newPlan)
    : plan(&newPlan), planes(newPlan.sourcePlanar ? newPlan.channels : 1), count(newPlan.pixels)
{
    method = ChooseMethod();
    if (plan->patchesRows && plan->tilePixels == 0) {
        unpatched = method;
        method = RowMethods::Patched;
    }
}

RowRun::Method RowRun::ChooseMethod()
{
    const bool streams = IsStreamed(*plan);
    if (!streams && !HasOneKernel(*plan))
        return RowMethods::ByPasses;
    const std::uint8_t bits = plan->passes[0].bits;
    joins = plan->sourcePlanar && !plan->mirrored && plan->pixels % plan->repeat == 0 &&
            FillsBytes(plan->sourcePixels, plan->sourceBits) && FillsBytes(plan->pixels, bits);
    joinedSourceStep = static_cast<std::ptrdiff_t>(BytesOf(plan->sourcePixels, plan->sourceBits));
    joinedStep = static_cast<std::ptrdiff_t>(BytesOf(plan->pixels, bits));
    const Method kernelMethod = ChooseKernel();
    return streams ? RowMethods::Stream : kernelMethod;
}

RowRun::Method RowRun::ChooseKernel()
{
    const PassOutput& pass = plan->passes[0];
    const bool dense = plan->channels <= maxDenseChannels;
    samples = SampleKernelOf(*plan, pass.kind, plan->sourceBits, pass.bits);
    split = dense ? SplitKernelOf(*plan, pass.kind, pass.bits, plan->sourceChannels) : nullptr;
    merge = dense ? MergeKernelOf(*plan, pass.kind, pass.bits, plan->channels) : nullptr;
    if (split != nullptr)
        return splits[plan->channels - 1];
    if (merge != nullptr)
        return merges[plan->channels - 1];
    if ((samples != nullptr || pass.kind == PassKind::Copy) && !plan->sourcePlanar)
        count *= plan->channels;
    if (samples != nullptr)
        return RowMethods::Samples;
    switch (pass.kind) {
    case PassKind::Copy:
        return RowMethods::Copy;
    case PassKind::MirrorBits:
        mirror = plan->kernels->samples->mirror[plan->sourceBits - 1U];
        return RowMethods::MirrorBits;
    case PassKind::Step:
        return ChooseStep();
    case PassKind::Move:
        return RowMethods::Move;
    default:
        return RowMethods::ByPasses;
    }
}

void RowRun::Prepare(PreparedStep& prepared, std::size_t pixels) const
{
    prepared.step = &plan->step;
    prepared.destinationPixels = pixels;
    plan->kernels->pixels->prepare(prepared);
}

RowRun::Method RowRun::ChooseStep()
{
    Prepare(step, count);
    Prepare(joinedPlanes, planes * count);
    return plan->sourcePlanar ? RowMethods::StepPlanes : RowMethods::StepPixels;
}

} // namespace zvk::Pelkraft
