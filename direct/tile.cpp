#include "direct/tile.h"

#include "common/bit_sizes.h"
#include "common/inlining.h"
#include "direct/finished_pixels.h"
#include "direct/pass_run.h"
#include "direct/whole_row.h"

#include <algorithm>

namespace zvk::Pelkraft {
namespace {

// Half of a small first-level cache, so that source and destination have room beside it.
constexpr std::size_t soleTileBytes = 16384;
// Two tiles take turns where there are more than two passes.
constexpr std::size_t sharedTileBytes = 12288;
constexpr std::size_t tileBytes = soleTileBytes;
// Planes do not start at the same place of a page, one like the other.
constexpr std::size_t planeGap = 128;
constexpr std::size_t maxGappedPlanes = 32;
// Unpacking may start inside a byte, and so before the tile's first pixel.
constexpr std::size_t planeSpare = 8;
constexpr std::size_t maxTilePixels = 1024;
constexpr std::size_t maxTileChannels = 64;
// So many packed pixels fill whole bytes.
constexpr std::size_t tileUnit = 8;

// True if the pixels after the pass are as many as the target's.
bool MakesAllPixels(const PassOutput& pass)
{
    return pass.kind == PassKind::Step || pass.kind == PassKind::Move ||
           pass.kind == PassKind::Clear;
}

std::size_t RoundUp(std::size_t count, std::size_t unit)
{
    return (count + unit - 1) / unit * unit;
}

std::size_t GapOf(std::size_t planes)
{
    return planes <= maxGappedPlanes ? planeGap : 0;
}

// Channels of the interleaved row after a pass.
std::size_t ChannelsAfter(const DirectPlan& plan, std::size_t pass)
{
    const bool maps = plan.mapped && !plan.sourcePlanar;
    const auto mayMap = [](const PassOutput& one) {
        return one.kind == PassKind::Step || one.kind == PassKind::Split ||
               one.kind == PassKind::Clear;
    };
    const auto end = plan.passes.begin() + static_cast<std::ptrdiff_t>(pass) + 1;
    return maps && std::none_of(plan.passes.begin(), end, mayMap) ? plan.sourceChannels
                                                                  : plan.channels;
}

// A tile's share in what a pass leaves in it: bits for each source pixel, and bytes beside them.
struct TileShare
{
    std::size_t bits;
    std::size_t spareBytes;
};

TileShare ShareOf(const DirectPlan& plan, std::size_t pass, std::size_t repeat)
{
    const PassOutput& output = plan.passes[pass];
    const std::size_t channels = output.planar ? plan.tileChannels : ChannelsAfter(plan, pass);
    const std::size_t planes = output.planar ? channels : 1;
    return {channels * output.bits * repeat, planes * (planeSpare + GapOf(planes))};
}

// True if the pixels stand as planes before the last pass or after it.
bool IsOfPlanes(const DirectPlan& plan)
{
    const auto isPlanar = [](const PassOutput& pass) { return pass.planar; };
    if (plan.passCount == 1 && !plan.sourcePlanar)
        return isPlanar(plan.passes[0]);
    return std::all_of(plan.passes.begin(), plan.passes.begin() + plan.passCount - 1, isPlanar);
}

// Planes that no pass brings together take turns, one by one.
std::size_t ChooseTileChannels(const DirectPlan& plan)
{
    if (!IsOfPlanes(plan))
        return plan.channels;
    if (plan.sourcePlanar && plan.passes[plan.passCount - 1U].planar && !plan.mapped)
        return 1;
    const std::size_t turns = (plan.channels + maxTileChannels - 1) / maxTileChannels;
    return (plan.channels + turns - 1) / turns;
}

// Runs the passes tile by tile: the first from the source into one tile, the last from a tile
// into the destination.
class TileRun
{
public:
    // cppcheck-suppress uninitMemberVar // each pass fills a tile before the next one reads it
    TileRun(const DirectPlan& newPlan, const DirectRows& newRows) : plan(newPlan), rows(newRows) {}

    void Run()
    {
        for (std::size_t pixel = 0; pixel < plan.sourcePixels; pixel += plan.tilePixels) {
            const std::size_t count = std::min(plan.tilePixels, plan.sourcePixels - pixel);
            for (std::size_t c = 0; c < plan.channels; c += plan.tileChannels)
                RunTile(pixel, count, c);
            if (plan.patchesRows)
                PatchPixels(
                    plan, TargetAt(plan, rows, pixel * plan.repeat, 0, CountTargets(pixel, count)),
                    plan.channels);
        }
    }

private:
    std::size_t CountTargets(std::size_t pixel, std::size_t count) const
    {
        return std::min(count * plan.repeat, plan.pixels - pixel * plan.repeat);
    }

    void RunTile(std::size_t pixel, std::size_t count, std::size_t channel)
    {
        const std::size_t channels = std::min(plan.tileChannels, plan.channels - channel);
        const std::size_t firstTarget = pixel * plan.repeat;
        const std::size_t targets = CountTargets(pixel, count);
        const std::size_t from = plan.mirrored ? plan.sourcePixels - pixel - count : pixel;

        PassInput input = SourceAt(plan, rows, plan.firstPixel + from, channel, count);
        bool complete = false;
        for (std::size_t i = 0; i != plan.passCount; ++i) {
            const PassOutput& pass = plan.passes[i];
            complete = complete || MakesAllPixels(pass);
            const bool last = i + 1U == plan.passCount;
            const std::size_t pixels = complete ? targets : count;
            PassTarget target = last && !plan.staged
                                    ? TargetAt(plan, rows, firstTarget, channel, pixels)
                                    : TileTarget(i, channel, channels, pixels);
            target.dump = dump;
            target.last = last;
            RunPass(plan, pass, input, target, channels);
            if (last && plan.staged)
                StorePixels(plan, target, TargetAt(plan, rows, firstTarget, channel, pixels),
                            channels);
            input = InputOf(input, pass, target);
        }
    }

    PassTarget TileTarget(std::size_t pass, std::size_t channel, std::size_t channels,
                          std::size_t pixels)
    {
        const std::size_t planeBytes = WholeBytesOf(pixels, plan.passes[pass].bits) + planeSpare;
        return {tiles[pass % 2],
                static_cast<std::ptrdiff_t>(planeBytes + GapOf(channels)),
                channel,
                ChannelsAfter(plan, pass),
                pixels,
                dump,
                false};
    }

    // The pixels that a pass has left in a tile, as the next one finds them.
    PassInput InputOf(const PassInput& before, const PassOutput& pass, const PassTarget& target)
    {
        const bool splitsByMap = pass.kind == PassKind::Split && plan.splitMaps;
        const bool keepsSkip = pass.kind == PassKind::Unpack || pass.kind == PassKind::Stretch;
        return {target.bytes,
                target.planeStep,
                splitsByMap ? FirstUsesOf(plan) + target.firstChannel : nullptr,
                pass.bits,
                pass.planar,
                target.pixelChannels,
                keepsSkip ? before.skip : 0,
                target.pixels};
    }

    const DirectPlan& plan;
    const DirectRows& rows;
    alignas(64) unsigned char tiles[2][tileBytes];
    unsigned char dump[maxPlaneBytesOfTile];
};

} // namespace

void SizeTile(DirectPlan& plan)
{
    plan.tileChannels = ChooseTileChannels(plan);
    // The staged pixels of the last pass stand in a tile as well.
    const std::size_t outputs = plan.passCount - (plan.staged ? 0U : 1U);
    const std::size_t room = outputs > 1 ? sharedTileBytes : soleTileBytes;
    const std::size_t mostPixels = maxTilePixels / plan.repeat;
    std::size_t pixels = std::min(plan.sourcePixels, mostPixels);
    std::size_t repeat = 1;
    for (std::size_t i = 0; i != outputs; ++i) {
        if (MakesAllPixels(plan.passes[i]))
            repeat = plan.repeat;
        const TileShare share = ShareOf(plan, i, repeat);
        if (share.spareBytes + pixels * share.bits / 8 > room)
            pixels = (room - share.spareBytes) * 8 / share.bits / tileUnit * tileUnit;
    }
    // Short rows need no division.
    plan.tilePixels = pixels;
    if (pixels == plan.sourcePixels)
        return;
    // Tiles of one size, so that the last is not too small for whole blocks.
    const std::size_t tiles = (plan.sourcePixels + pixels - 1) / pixels;
    plan.tilePixels = RoundUp((plan.sourcePixels + tiles - 1) / tiles, tileUnit);
}

namespace {

// Neither of the two ways to a row carries the frame of the tiles.
PELKRAFT_NEVER_INLINE void RunTiles(const DirectPlan& plan, const DirectRows& rows)
{
    TileRun(plan, rows).Run();
}

} // namespace

void RunDirect(const DirectPlan& plan, const DirectRows& rows)
{
    if (plan.tilePixels != 0)
        RunTiles(plan, rows);
    else
        RunRow(plan, rows);
}

void RunDirect(const DirectPlan& plan, const unsigned char* source, unsigned char* target)
{
    RunDirect(plan, {source, static_cast<std::ptrdiff_t>(plan.sourcePlaneBytes), target,
                     static_cast<std::ptrdiff_t>(plan.planeBytes)});
}

} // namespace zvk::Pelkraft
