#include "direct/pass_run.h"

#include "common/bit_sizes.h"
#include "direct/pass_kernels.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace zvk::Pelkraft {
namespace {

constexpr std::size_t maxPlanes = 64;

alignas(64) constexpr unsigned char zeros[maxPlaneBytesOfTile] = {};

// Null for a plane of zeros.
const unsigned char* PlaneOf(const PassInput& input, std::size_t channel)
{
    if (input.planes == nullptr)
        return input.bytes + static_cast<std::ptrdiff_t>(channel) * input.planeStep;
    const std::int32_t plane = input.planes[channel];
    return plane < 0 ? nullptr : input.bytes + plane * input.planeStep;
}

unsigned char* PlaneOf(const PassTarget& target, std::size_t channel)
{
    return target.bytes + static_cast<std::ptrdiff_t>(channel) * target.planeStep;
}

// Calls sweep(source, destination) for each plane; every pass makes zeros of zeros, in so many
// bytes of the destination.
template <typename Sweep>
void ForEachPlane(const PassInput& input, const PassTarget& target, std::size_t channels,
                  std::size_t zeroBytes, Sweep sweep)
{
    for (std::size_t c = 0; c != channels; ++c) {
        const unsigned char* plane = PlaneOf(input, c);
        if (plane != nullptr)
            sweep(plane, PlaneOf(target, c));
        else
            std::memset(PlaneOf(target, c), 0, zeroBytes);
    }
}

template <PassKind kind>
void RunSamples(const DirectPlan& plan, const PassOutput& pass, const PassInput& input,
                const PassTarget& target, std::size_t channels)
{
    const SampleKernel kernel = SampleKernelOf(plan, kind, input.bits, pass.bits);
    if (!input.planar)
        return kernel(input.bytes, target.bytes, input.pixels * input.pixelChannels);
    const std::size_t samples = input.pixels + input.skip;
    ForEachPlane(input, target, channels, BytesOf(samples, pass.bits),
                 [&](const unsigned char* from, unsigned char* to) { kernel(from, to, samples); });
}

void RunCopy(const DirectPlan&, const PassOutput& pass, const PassInput& input,
             const PassTarget& target, std::size_t channels)
{
    if (!input.planar) {
        std::memcpy(target.bytes, input.bytes,
                    BytesOf(input.pixels * input.pixelChannels, pass.bits));
        return;
    }
    const std::size_t bytes = BytesOf(input.pixels, pass.bits);
    const auto step = static_cast<std::ptrdiff_t>(bytes);
    const bool whole = input.planes == nullptr && step == input.planeStep &&
                       step == target.planeStep && input.pixels % 8 * pass.bits % 8 == 0;
    if (whole) {
        std::memcpy(target.bytes, input.bytes, channels * bytes);
        return;
    }
    ForEachPlane(input, target, channels, BytesOf(target.pixels, pass.bits),
                 [&](const unsigned char* from, unsigned char* to) {
                     std::memcpy(to, from, bytes);
                     ClearUnusedBits(to, input.pixels, pass.bits);
                 });
}

// True if each plane starts where the one before it ends, on both sides, so that a step may take
// them for one row.
bool AreOneRow(const PixelStep& step, const StepRows& rows, std::size_t pixels)
{
    if (step.mirrored || pixels % step.repeat != 0)
        return false;
    const std::size_t sourceBytes = pixels / step.repeat * step.sourceBytes;
    const std::size_t bytes = pixels * step.destinationBytes;
    for (std::size_t row = 1; row < rows.count; ++row)
        if (rows.sources[row] != rows.sources[row - 1] + sourceBytes ||
            rows.destinations[row] != rows.destinations[row - 1] + bytes)
            return false;
    return true;
}

void RunStep(const DirectPlan& plan, const PassOutput& pass, const PassInput& input,
             const PassTarget& target, std::size_t channels)
{
    const StepKernel kernel = plan.kernels->pixels->step;
    if (!input.planar)
        return kernel(plan.step, {&input.bytes, &target.bytes, 1}, target.pixels);
    const unsigned char* sources[maxPlanes];
    unsigned char* destinations[maxPlanes];
    std::size_t count = 0;
    const auto run = [&] {
        const StepRows rows = {sources, destinations, count};
        if (AreOneRow(plan.step, rows, target.pixels))
            kernel(plan.step, {sources, destinations, 1}, count * target.pixels);
        else
            kernel(plan.step, rows, target.pixels);
        count = 0;
    };
    ForEachPlane(input, target, channels, BytesOf(target.pixels, pass.bits),
                 [&](const unsigned char* from, unsigned char* to) {
                     sources[count] = from + input.skip * (pass.bits / 8U);
                     destinations[count++] = to;
                     if (count == maxPlanes)
                         run();
                 });
    if (count != 0)
        run();
}

// Neighbouring channels, of which each batch has 17 or more where there are so many.
struct ChannelBatch
{
    std::size_t first;
    std::size_t count;
};

std::size_t CountBatches(std::size_t channels)
{
    return (channels + maxPlanes - 1) / maxPlanes;
}

ChannelBatch BatchAt(std::size_t channels, std::size_t batch)
{
    // The products of a row of millions of channels do not fit 32 bits.
    const auto firstOf = [=](std::size_t number) {
        return static_cast<std::size_t>(std::uint64_t{channels} * number / CountBatches(channels));
    };
    return {firstOf(batch), firstOf(batch + 1) - firstOf(batch)};
}

template <typename Body>
void ForEachBatch(std::size_t channels, Body body)
{
    for (std::size_t i = 0; i != CountBatches(channels); ++i)
        body(BatchAt(channels, i));
}

// Each channel of the batch goes to its plane, or to the dump. Answers whether there is one that
// is wanted.
bool FillTargets(const DirectPlan& plan, const PassTarget& target, std::size_t channels,
                 const ChannelBatch& batch, unsigned char** planes)
{
    if (!plan.splitMaps) {
        for (std::size_t i = 0; i != batch.count; ++i)
            planes[i] = PlaneOf(target, batch.first + i);
        return true;
    }
    const std::int32_t* entries = EntriesOf(plan) + target.firstChannel;
    const std::int32_t* firstUses = FirstUsesOf(plan) + target.firstChannel;
    std::fill_n(planes, batch.count, target.dump);
    bool wanted = false;
    for (std::size_t c = 0; c != channels; ++c) {
        const auto from = static_cast<std::size_t>(entries[c]) - batch.first;
        if (firstUses[c] == static_cast<std::int32_t>(c) && from < batch.count) {
            planes[from] = PlaneOf(target, c);
            wanted = true;
        }
    }
    return wanted;
}

// The planes that no channel was split into: repeated ones and those of zeros.
void FillOtherPlanes(const DirectPlan& plan, const PassTarget& target, std::size_t channels,
                     std::uint8_t bits)
{
    const std::int32_t* firstUses = FirstUsesOf(plan) + target.firstChannel;
    const std::size_t bytes = BytesOf(target.pixels, bits);
    for (std::size_t c = 0; c != channels; ++c) {
        const std::int32_t first = firstUses[c];
        if (first < 0)
            std::memset(PlaneOf(target, c), 0, bytes);
        else if (first != static_cast<std::int32_t>(c))
            std::memcpy(PlaneOf(target, c), PlaneOf(target, static_cast<std::size_t>(first)),
                        bytes);
    }
}

// The batches of a source of very many channels that a tile's entries name, each once.
template <typename Body>
void ForEachNamedBatch(const DirectPlan& plan, const PassInput& input, const PassTarget& target,
                       std::size_t channels, Body body)
{
    const std::int32_t* entries = EntriesOf(plan) + target.firstChannel;
    const std::uint64_t batches = CountBatches(input.pixelChannels);
    // Split pixels of so many channels stand in the tile by as many at most.
    std::size_t named[maxPlanes];
    std::size_t count = 0;
    for (std::size_t c = 0; c != channels; ++c)
        if (entries[c] >= 0)
            named[count++] = static_cast<std::size_t>(
                ((static_cast<std::uint64_t>(entries[c]) + 1) * batches - 1) / input.pixelChannels);
    std::sort(named, named + count);
    std::for_each(named, std::unique(named, named + count),
                  [&](std::size_t batch) { body(BatchAt(input.pixelChannels, batch)); });
}

void SplitWide(const DirectPlan& plan, const PassInput& input, const PassTarget& target,
               std::size_t channels)
{
    const std::size_t sampleBytes = input.bits / 8;
    const auto split = [&](const ChannelBatch& batch) {
        unsigned char* planes[maxPlanes];
        if (FillTargets(plan, target, channels, batch, planes))
            plan.kernels->splitMerge->wideSplit[sampleBytes - 1](
                input.bytes + batch.first * sampleBytes, planes, input.pixels,
                {input.pixelChannels * sampleBytes, batch.count});
    };
    // Entries may name any channel of the source. To ask each of very many batches takes long.
    if (plan.splitMaps && CountBatches(input.pixelChannels) > maxPlanes)
        ForEachNamedBatch(plan, input, target, channels, split);
    else
        ForEachBatch(plan.splitMaps ? input.pixelChannels : channels, split);
}

void RunSplit(const DirectPlan& plan, const PassOutput& pass, const PassInput& input,
              const PassTarget& target, std::size_t channels)
{
    const SplitMergeKernels& kernels = *plan.kernels->splitMerge;
    const std::size_t sampleBytes = input.bits / 8;
    if (input.pixelChannels <= maxDenseChannels) {
        unsigned char* planes[maxDenseChannels];
        if (FillTargets(plan, target, channels, {0, input.pixelChannels}, planes))
            kernels.split[sampleBytes - 1][input.pixelChannels](input.bytes, planes, input.pixels);
    } else {
        SplitWide(plan, input, target, channels);
    }
    if (plan.splitMaps && target.last)
        FillOtherPlanes(plan, target, channels, pass.bits);
}

// A split that changes the depth as well, of a few channels.
void RunFused(const DirectPlan& plan, const PassOutput& pass, const PassInput& input,
              const PassTarget& target, std::size_t)
{
    unsigned char* planes[maxFusedChannels];
    for (std::size_t c = 0; c != input.pixelChannels; ++c)
        planes[c] = PlaneOf(target, c);
    SplitKernelOf(plan, pass.kind, pass.bits, input.pixelChannels)(input.bytes, planes,
                                                                   input.pixels);
}

void FillSources(const PassInput& input, const ChannelBatch& batch, const unsigned char** planes)
{
    const std::size_t skippedBytes = input.skip * (input.bits / 8U);
    for (std::size_t i = 0; i != batch.count; ++i) {
        const unsigned char* plane = PlaneOf(input, batch.first + i);
        planes[i] = plane != nullptr ? plane + skippedBytes : zeros;
    }
}

void MergeWide(const DirectPlan& plan, const PassInput& input, const PassTarget& target,
               std::size_t channels)
{
    const std::size_t sampleBytes = input.bits / 8;
    ForEachBatch(channels, [&](const ChannelBatch& batch) {
        const unsigned char* planes[maxPlanes];
        FillSources(input, batch, planes);
        plan.kernels->splitMerge->wideMerge[sampleBytes - 1](
            planes, target.bytes + batch.first * sampleBytes, input.pixels,
            {target.pixelChannels * sampleBytes, batch.count});
    });
}

void RunMerge(const DirectPlan& plan, const PassOutput&, const PassInput& input,
              const PassTarget& target, std::size_t channels)
{
    if (target.pixelChannels > maxDenseChannels)
        return MergeWide(plan, input, target, channels);
    const unsigned char* planes[maxDenseChannels];
    FillSources(input, {0, target.pixelChannels}, planes);
    plan.kernels->splitMerge->merge[input.bits / 8U - 1][target.pixelChannels](planes, target.bytes,
                                                                               input.pixels);
}

void RunClear(const DirectPlan&, const PassOutput& pass, const PassInput&, const PassTarget& target,
              std::size_t channels)
{
    if (!pass.planar) {
        std::memset(target.bytes, 0, BytesOf(target.pixels * target.pixelChannels, pass.bits));
        return;
    }
    for (std::size_t c = 0; c != channels; ++c)
        std::memset(PlaneOf(target, c), 0, BytesOf(target.pixels, pass.bits));
}

void RunMirrorBits(const DirectPlan& plan, const PassOutput& pass, const PassInput& input,
                   const PassTarget& target, std::size_t channels)
{
    const BitMirrorKernel mirror = plan.kernels->samples->mirror[pass.bits - 1U];
    ForEachPlane(input, target, channels, BytesOf(target.pixels, pass.bits),
                 [&](const unsigned char* from, unsigned char* to) {
                     mirror(from, input.skip + input.pixels, to, input.pixels);
                 });
}

void RunMove(const DirectPlan& plan, const PassOutput& pass, const PassInput& input,
             const PassTarget& target, std::size_t)
{
    plan.kernels->pixels->move(
        {target.pixelChannels * (pass.bits / 8U), plan.repeat, plan.mirrored}, input.bytes,
        target.bytes, target.pixels);
}

using PassMethod = void (*)(const DirectPlan& plan, const PassOutput& pass, const PassInput& input,
                            const PassTarget& target, std::size_t channels);

template <PassKind kind>
constexpr PassMethod MethodOf()
{
    switch (kind) {
    case PassKind::Copy:
        return RunCopy;
    case PassKind::MirrorBits:
        return RunMirrorBits;
    case PassKind::Step:
        return RunStep;
    case PassKind::Move:
        return RunMove;
    case PassKind::Split:
        return RunSplit;
    case PassKind::PackSplit:
    case PassKind::SplitWiden:
    case PassKind::NarrowSplit:
        return RunFused;
    case PassKind::Merge:
        return RunMerge;
    case PassKind::Clear:
        return RunClear;
    default:
        return RunSamples<kind>;
    }
}

template <std::size_t... kind>
constexpr std::array<PassMethod, passKindCount> MakeMethods(std::index_sequence<kind...>)
{
    return {MethodOf<static_cast<PassKind>(kind)>()...};
}

constexpr auto methods = MakeMethods(std::make_index_sequence<passKindCount>{});

} // namespace

PassInput SourceAt(const DirectPlan& plan, const DirectRows& rows, std::size_t pixel,
                   std::size_t channel, std::size_t pixels)
{
    const std::uint8_t bits = plan.sourceBits;
    // Entries name the channels of the whole source.
    const std::size_t first = plan.mapped ? 0 : channel;
    if (!plan.sourcePlanar) {
        const std::size_t sample = pixel * plan.sourceChannels + first;
        return {rows.source + sample * (bits / 8U),
                0,
                nullptr,
                bits,
                false,
                plan.sourceChannels,
                0,
                pixels};
    }
    const std::size_t skip = bits < 8 ? pixel % (8U / bits) : 0;
    const auto firstPlane = static_cast<std::ptrdiff_t>(first);
    return {rows.source + firstPlane * rows.sourcePlaneStep + WholeBytesOf(pixel, bits),
            rows.sourcePlaneStep,
            plan.mapped ? EntriesOf(plan) + channel : nullptr,
            bits,
            true,
            plan.sourceChannels,
            skip,
            pixels};
}

PassTarget TargetAt(const DirectPlan& plan, const DirectRows& rows, std::size_t pixel,
                    std::size_t channel, std::size_t pixels)
{
    const PassOutput& pass = plan.passes[plan.passCount - 1U];
    const std::size_t offset = pass.planar ? WholeBytesOf(pixel, pass.bits)
                                           : (pixel * plan.channels + channel) * (pass.bits / 8U);
    const std::ptrdiff_t planes =
        pass.planar ? static_cast<std::ptrdiff_t>(channel) * rows.planeStep : 0;
    return {rows.target + planes + offset,
            rows.planeStep,
            channel,
            plan.channels,
            pixels,
            nullptr,
            true};
}

void RunPass(const DirectPlan& plan, const PassOutput& pass, const PassInput& input,
             const PassTarget& target, std::size_t channels)
{
    methods[static_cast<std::size_t>(pass.kind)](plan, pass, input, target, channels);
}

void RunOnlyPass(const DirectPlan& plan, const DirectRows& rows)
{
    RunPass(plan, plan.passes[0], SourceAt(plan, rows, plan.firstPixel, 0, plan.sourcePixels),
            TargetAt(plan, rows, 0, 0, plan.pixels), plan.channels);
}

} // namespace zvk::Pelkraft
