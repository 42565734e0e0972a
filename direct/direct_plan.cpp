#include "direct/direct_plan.h"

#include "common/bit_sizes.h"
#include "common/inlining.h"
#include "direct/pixel_step.h"
#include "direct/tile.h"

#include <algorithm>
#include <cstdlib>

namespace zvk::Pelkraft {
namespace {

// Pixels of more bytes than this never stand whole in the tile; their channels take turns there.
constexpr std::size_t maxTilePixelBytes = 256;

// The samples of a row in memory: in planes of 1, 2, 8 and 16 bits the numbers 0, 1, 2 and 4, in
// pixels of 8 and 16 bits the numbers 3 and 5. One number goes from function to function faster
// than a record of bytes.
using Form = std::size_t;
constexpr std::size_t formCount = 6;
constexpr std::array<std::uint8_t, formCount> bitsOf = {1, 2, 8, 8, 16, 16};
constexpr std::array<bool, formCount> isPlanar = {true, true, true, false, true, false};

// Interleaved samples take whole bytes, whatever their depth.
Form FormOf(std::int32_t bits, bool planar)
{
    const auto depth = static_cast<std::uint32_t>(bits);
    return planar ? depth >> 2 | (depth >> 1 & 1U) : depth > 8 ? 5 : 3;
}

// One side of a conversion.
struct Side
{
    std::uint32_t channels;
    Form form;
    std::size_t width;
    // So many of them take part.
    std::size_t pixels;
};

Side SideOf(const RowGeometry& row, std::int64_t activeWidth)
{
    return {static_cast<std::uint32_t>(row.channels), FormOf(row.bits, row.planar),
            static_cast<std::size_t>(row.width), static_cast<std::size_t>(activeWidth)};
}

Side SideOf(const ImageRowFormat& format)
{
    return {static_cast<std::uint32_t>(format.channels),
            FormOf(format.bits, format.layout != LayoutInterleaved),
            static_cast<std::size_t>(format.width), static_cast<std::size_t>(format.activeWidth)};
}

// Adds the passes one after the other, and keeps in mind how the pixels stand after the last.
class PassList
{
public:
    constexpr PassList(DirectPlan& newPlan, std::uint8_t newBits, bool newPlanar)
        : plan(newPlan), targetBits(newBits), targetPlanar(newPlanar),
          turns(plan.mirrored || plan.repeat != 1), maps(plan.mapped),
          samples(plan.sourceBits == newBits ? Samples::AsFill : plan.extras->samples),
          planar(plan.sourcePlanar), bits(plan.sourceBits)
    {}

    constexpr void Choose()
    {
        if (plan.extras->clears) {
            // No place is sought in a source that may be null.
            plan.sourcePlanar = false;
            plan.sourceChannels = 0;
            return Add(PassKind::Clear, targetPlanar, targetBits);
        }
        // Planes are chosen by their addresses.
        maps = maps && !planar;
        if (!turns && bits == targetBits && planar == targetPlanar && !maps)
            return Add(PassKind::Copy);
        if (bits < 8 && bits == targetBits && plan.mirrored && plan.repeat == 1)
            return Add(PassKind::MirrorBits);
        if (bits < 8)
            Unpack();
        if (bits == 16 && targetBits < 16)
            Narrow();
        if (turns || (maps && !targetPlanar))
            Turn();
        if (planar != targetPlanar)
            ChangeLayout();
        if (bits != targetBits)
            FinishDepth();
    }

private:
    constexpr void Add(PassKind kind) { Add(kind, planar, bits); }

    constexpr void Add(PassKind kind, bool newPlanar, std::uint8_t newBits)
    {
        plan.passes[plan.passCount++] = {kind, newPlanar, newBits};
        planar = newPlanar;
        bits = newBits;
    }

    // If a map is still to come, the larger one of both pixels counts.
    constexpr std::size_t PixelBytes() const
    {
        const std::size_t channels = std::max(maps ? plan.sourceChannels : 0, plan.channels);
        return WholeBytesOf(channels, bits);
    }

    constexpr bool FitsTile() const { return PixelBytes() <= maxTilePixelBytes; }
    constexpr bool FitsStep() const { return PixelBytes() <= plan.kernels->pixels->stepBytes; }

    constexpr void Unpack()
    {
        if (targetBits == 16 && targetPlanar && !turns && samples == Samples::AsFill)
            return Add(PassKind::UnpackWiden, true, 16);
        Add(PassKind::Unpack, true, 8);
        if (samples == Samples::AsTones)
            Add(PassKind::Stretch, true, 8);
    }

    constexpr void Narrow()
    {
        if (planar && targetBits < 8 && !turns && samples == Samples::AsFill)
            return Add(PassKind::NarrowPack, true, targetBits);
        if (!planar && targetPlanar && targetBits == 8 && HasFusedSplit() && !KeepsNumbers())
            return Add(PassKind::NarrowSplit, true, 8);
        // Pixels that do not fit the tile are split as they are.
        if (!planar && !FitsTile())
            Split();
        Add(KeepsNumbers() ? PassKind::Cut : PassKind::Narrow, planar, 8);
    }

    constexpr bool KeepsNumbers() const { return samples == Samples::AsLevels; }
    constexpr PassKind WidenKind() const
    {
        return KeepsNumbers() ? PassKind::Extend : PassKind::Widen;
    }

    // Few channels that are only split have kernels that change the depth as well.
    constexpr bool HasFusedSplit() const
    {
        return !maps && !turns && plan.channels > 1 && plan.channels <= maxFusedChannels;
    }

    constexpr void Split()
    {
        if (bits == 8 && targetBits < 8 && HasFusedSplit()) {
            QuantizeTones();
            Add(PassKind::PackSplit, true, targetBits);
        } else if (bits == 8 && targetBits == 16 && HasFusedSplit() && !KeepsNumbers())
            Add(PassKind::SplitWiden, true, 16);
        else
            Add(PassKind::Split, true, bits);
        plan.splitMaps = maps;
        maps = false;
    }

    // Mirrors and repeats where the pixels have the fewest bytes, and maps with it where that is
    // the same work.
    constexpr void Turn()
    {
        if (planar && !targetPlanar && FitsTile())
            Add(PassKind::Merge, false, bits);
        if (!planar && FitsStep()) {
            Add(PassKind::Step);
            maps = turns = false;
        } else if (!planar && !maps && !targetPlanar && (FitsTile() || bits == targetBits)) {
            Add(PassKind::Move);
            turns = false;
        } else {
            if (!planar)
                Split();
            if (turns)
                Add(PassKind::Step);
            turns = false;
        }
    }

    // Samples are widened last, so that few bytes travel, where the pixels fit the tile.
    constexpr void ChangeLayout()
    {
        // One channel stands the same in both.
        if (plan.channels == 1 && !maps) {
            planar = targetPlanar;
            return;
        }
        if (targetPlanar)
            return Split();
        if (bits != targetBits && !FitsTile())
            Add(WidenKind(), true, 16);
        Add(PassKind::Merge, false, bits);
    }

    constexpr void FinishDepth()
    {
        if (targetBits == 16)
            return Add(WidenKind(), planar, 16);
        QuantizeTones();
        Add(PassKind::Pack, true, targetBits);
    }

    // Packing takes the low bits.
    constexpr void QuantizeTones()
    {
        if (samples == Samples::AsTones)
            Add(PassKind::Quantize);
    }

    DirectPlan& plan;
    std::uint8_t targetBits;
    bool targetPlanar;
    // True for work that no pass has done yet.
    bool turns;
    bool maps;
    // All are alike if the depth stays.
    Samples samples;
    bool planar;
    std::uint8_t bits;
};

// Answers whether every entry names a channel of the source, or none.
bool CopyMap(DirectPlan& plan, const ChannelMap& map)
{
    if (map.entryCount > maxMapEntries)
        return plan.extras->entries != nullptr;
    const auto sourceChannels = static_cast<std::int32_t>(plan.sourceChannels);
    std::int32_t largest = -1;
    for (std::size_t i = 0; i != map.entryCount; ++i) {
        plan.entries[i] = map.entries[i];
        largest = std::max(largest, map.entries[i]);
    }
    return largest < sourceChannels;
}

// A channel that several entries name is split once, into the plane of the first of them.
void FillFirstUses(DirectPlan& plan)
{
    std::int32_t* uses =
        plan.extras->firstUses != nullptr ? plan.extras->firstUses : plan.firstUses.data();
    const auto together = static_cast<std::uint32_t>(plan.tileChannels);
    for (std::uint32_t start = 0; start < plan.channels; start += together) {
        const std::int32_t* entries = EntriesOf(plan) + start;
        const std::uint32_t count = std::min(together, plan.channels - start);
        for (std::uint32_t c = 0; c != count; ++c) {
            const std::int32_t* first = std::find(entries, entries + c, entries[c]);
            uses[start + c] = entries[c] < 0 ? -1 : static_cast<std::int32_t>(first - entries);
        }
    }
}

// Interleaved pixels of more channels than a tile takes are never staged.
bool FitsStage(const DirectPlan& plan)
{
    return plan.passes[plan.passCount - 1U].planar || plan.channels <= maxMapEntries;
}

// True if the row's first pixels are no longer near when the last ones are done, so that they had
// better be patched before.
bool LeavesCache(const DirectPlan& plan)
{
    constexpr std::size_t nearBytes = 16384;
    return plan.pixels > nearBytes * 8 / plan.passes[plan.passCount - 1U].bits / plan.channels;
}

// One pass over the whole row needs no tile, unless it needs a plane of zeros, or one to drop
// samples into.
bool NeedsTile(const DirectPlan& plan)
{
    const PassKind kind = plan.passes[0].kind;
    return plan.passCount != 1 || plan.splitMaps || (plan.mapped && kind == PassKind::Merge) ||
           plan.staged || (plan.patchesRows && LeavesCache(plan));
}

// A row of one channel is a plane as well, and is taken for what asks for less.
constexpr void ChoosePasses(DirectPlan& plan, Form target)
{
    bool planar = isPlanar[target];
    if (plan.sourceChannels == 1 && plan.sourceBits >= 8)
        plan.sourcePlanar = plan.mapped || planar;
    if (plan.channels == 1 && bitsOf[target] >= 8)
        planar = plan.sourcePlanar || (plan.mapped && plan.sourceChannels * plan.sourceBits / 8 >
                                                          plan.kernels->pixels->stepBytes);
    PassList(plan, bitsOf[target], planar).Choose();
}

// The least channels of those that have the same passes.
constexpr std::array<std::uint32_t, 3> leastChannels = {1, 2, maxFusedChannels + 1};

constexpr std::size_t IndexOf(std::uint32_t channels)
{
    return (channels >= leastChannels[1] ? 1U : 0U) + (channels >= leastChannels[2] ? 1U : 0U);
}

// A conversion does one of these beside changing layout and depth, or several, which have no table.
enum Work : std::uint8_t
{
    NoWork,
    Mirrors,
    Repeats,
    Maps,
    workCount,
};

// The passes of fills of small pixels.
using PassTable = std::array<
    std::array<std::array<std::array<ChosenPasses, formCount>, formCount>, leastChannels.size()>,
    workCount>;

constexpr PassTable MakePassTable()
{
    const PixelKernels anyStep = {nullptr, maxStepBytes, nullptr, nullptr};
    const Kernels kernels = {nullptr, nullptr, &anyStep, nullptr};
    PassTable table{};
    for (const Work work : {NoWork, Mirrors, Repeats, Maps})
        for (const std::uint32_t channels : leastChannels)
            for (Form source = 0; source != formCount; ++source)
                for (Form target = 0; target != formCount; ++target) {
                    DirectPlan plan{};
                    plan.kernels = &kernels;
                    plan.extras = &noExtras;
                    plan.sourceChannels = plan.channels = channels;
                    plan.sourceBits = bitsOf[source];
                    plan.sourcePlanar = isPlanar[source];
                    plan.mirrored = work == Mirrors;
                    plan.repeat = work == Repeats ? 2 : 1;
                    plan.mapped = work == Maps;
                    ChoosePasses(plan, target);
                    table[work][IndexOf(channels)][source][target] = plan;
                }
    return table;
}

constexpr PassTable passTable = MakePassTable();

const ChosenPasses& TabledPasses(Work work, std::uint32_t channels, Form source, Form target)
{
    return passTable[work][IndexOf(channels)][source][target];
}

// Pixels of so many channels fit the tile at any depth. They need not fit a step where they are
// neither mapped nor turned.
constexpr std::uint32_t maxIdleChannels = maxTilePixelBytes / 2;

// True if pixels of 16 bits fit a step, on both sides of a map.
bool AreSmall(const DirectPlan& plan)
{
    return 2 * std::max<std::size_t>(plan.sourceChannels, plan.channels) <=
           plan.kernels->pixels->stepBytes;
}

// Sets what passes don't depend on.
void SetSizes(DirectPlan& plan, const Side& source, const Side& target, bool mirrored)
{
    plan.sourceChannels = source.channels;
    plan.channels = target.channels;
    plan.sourcePlaneBytes = BytesOf(source.width, bitsOf[source.form]);
    plan.planeBytes = BytesOf(target.width, bitsOf[target.form]);
    plan.firstPixel = mirrored ? source.width - source.pixels : 0;
    plan.sourcePixels = source.pixels;
    plan.pixels = target.pixels;
    plan.tilePixels = 0;
}

PELKRAFT_NEVER_INLINE void ListPasses(DirectPlan& plan, bool maps, Form source, Form target)
{
    plan.mapped = maps;
    plan.passCount = 0;
    plan.splitMaps = false;
    plan.sourceBits = bitsOf[source];
    plan.sourcePlanar = isPlanar[source];
    ChoosePasses(plan, target);
    plan.staged = plan.extras->staged && FitsStage(plan);
    plan.patchesRows = plan.extras->patch != nullptr && !plan.staged;
}

// The only channel on one side of a map may be taken for a plane.
bool IsTabled(const DirectPlan& plan, Work work, bool turns)
{
    return plan.extras == &noExtras && AreSmall(plan) &&
           (work != Maps || (!turns && plan.sourceChannels > 1 && plan.channels > 1));
}

// For conversions that map, repeat or mirror, and for large pixels.
PELKRAFT_NEVER_INLINE bool ChooseAny(DirectPlan& plan, const ConversionRequest& request,
                                     Form source, Form target)
{
    if (request.maps && !CopyMap(plan, request.map))
        return false;
    const auto repeat = static_cast<std::uint32_t>(std::abs(std::int64_t{request.factor}));
    // One, two or four: below five, and a power of two.
    if (repeat - 1 >= 4 || (repeat & (repeat - 1)) != 0)
        return false;
    const Work work = request.maps         ? Maps
                      : repeat != 1        ? Repeats
                      : request.factor < 0 ? Mirrors
                                           : NoWork;
    const bool tabled = IsTabled(plan, work, request.factor != 1);
    if (tabled)
        static_cast<ChosenPasses&>(plan) = TabledPasses(work, plan.channels, source, target);
    plan.repeat = static_cast<std::uint8_t>(repeat);
    plan.mirrored = request.factor < 0;
    if (!tabled)
        ListPasses(plan, request.maps, source, target);
    FillSteps(plan);
    if (NeedsTile(plan))
        SizeTile(plan);
    if (plan.splitMaps)
        FillFirstUses(plan);
    return true;
}

} // namespace

bool MakeDirectPlan(DirectPlan& plan, const ConversionRequest& request)
{
    plan.kernels = &KernelsOf(RoadOf(request.sseVersion));
    plan.extras = &noExtras;
    const ActiveWidths active = ActiveWidthsOf(request);
    const Side source = SideOf(request.source, active.source);
    const Side target = SideOf(request.destination, active.destination);
    SetSizes(plan, source, target, request.factor < 0);
    if (request.factor != 1 || request.maps || source.channels > maxIdleChannels)
        return ChooseAny(plan, request, source.form, target.form);
    // The table is asked, since a read of the copy would wait for the write.
    const ChosenPasses& passes = TabledPasses(NoWork, target.channels, source.form, target.form);
    static_cast<ChosenPasses&>(plan) = passes;
    if (passes.passCount != 1)
        SizeTile(plan);
    return true;
}

bool MakeDirectPlan(DirectPlan& plan, const ConversionRequest& request, const FormatPair& formats,
                    const DirectExtras& extras)
{
    plan.kernels = &KernelsOf(RoadOf(request.sseVersion));
    plan.extras = &extras;
    const Side source = SideOf(formats.source);
    const Side target = SideOf(formats.destination);
    SetSizes(plan, source, target, request.factor < 0);
    return ChooseAny(plan, request, source.form, target.form);
}

} // namespace zvk::Pelkraft
