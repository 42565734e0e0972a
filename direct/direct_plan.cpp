#include "direct/direct_plan.h"

#include "common/bit_sizes.h"
#include "common/inlining.h"
#include "direct/tile.h"

#include <algorithm>
#include <cstdlib>

namespace zvk::Pelkraft {
namespace {

// Pixels of more bytes than this never stand whole in the tile; their channels take turns there.
constexpr std::size_t maxTilePixelBytes = 256;

// The samples of a row in memory.
struct Form
{
    std::uint8_t bits;
    bool planar;
};

// Interleaved samples take whole bytes, whatever their depth.
Form FormOf(std::int32_t bits, bool planar)
{
    if (planar)
        return {static_cast<std::uint8_t>(bits), true};
    return {static_cast<std::uint8_t>(bits > 8 ? 16 : 8), false};
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

constexpr std::size_t wordBytes = sizeof(std::uint64_t);

// The places of one channel's sample, in the low bytes.
std::uint64_t PlacesOf(std::int32_t entry, std::size_t sampleBytes)
{
    if (sampleBytes == 1)
        return entry < 0 ? emptyByte : static_cast<std::uint64_t>(entry);
    return entry < 0 ? std::uint64_t{emptyByte} * 0x101
                     : static_cast<std::uint64_t>(entry) * 0x202 + 0x100;
}

// Writes the places of small pixels a word at a time: a kernel reads them at once, and would wait
// for bytes that were stored one by one.
void FillPlaces(DirectPlan& plan, std::uint32_t channels, std::size_t sampleBytes)
{
    const auto channelsOfWord = static_cast<std::uint32_t>(wordBytes / sampleBytes);
    for (std::uint32_t first = 0; first < channels; first += channelsOfWord) {
        std::uint64_t word = 0;
        const std::uint32_t end = std::min(channels, first + channelsOfWord);
        for (std::uint32_t c = first; c != end; ++c)
            word |= PlacesOf(plan.entries[c], sampleBytes) << (8 * sampleBytes * (c - first));
        // Compilers make one store of these.
        unsigned char* places = &plan.step.places[first * sampleBytes];
        for (std::size_t i = 0; i != wordBytes; ++i)
            places[i] = static_cast<unsigned char>(word >> (8 * i));
    }
}

constexpr std::array<unsigned char, maxStepBytes> CountPlaces()
{
    std::array<unsigned char, maxStepBytes> places{};
    for (std::size_t i = 0; i != places.size(); ++i)
        places[i] = static_cast<unsigned char>(i);
    return places;
}

constexpr std::array<unsigned char, maxStepBytes> unmappedPlaces = CountPlaces();

// Makes ready the step of a pass of that kind. A step over planes takes samples for pixels.
void FillStep(DirectPlan& plan, const PassOutput& pass)
{
    const std::uint32_t channels = pass.planar ? 1 : plan.channels;
    const bool maps = plan.mapped && !plan.sourcePlanar && !plan.splitMaps;
    const std::size_t sampleBytes = pass.bits / 8U;
    PixelStep& step = plan.step;
    step.sourceBytes =
        static_cast<std::uint8_t>(sampleBytes * (maps ? plan.sourceChannels : channels));
    step.destinationBytes = static_cast<std::uint8_t>(sampleBytes * channels);
    step.repeat = plan.repeat;
    step.mirrored = plan.mirrored;
    if (!maps)
        step.places = unmappedPlaces;
    else
        FillPlaces(plan, channels, sampleBytes);
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
    bool inside = true;
    for (std::size_t i = 0; i != map.entryCount; ++i) {
        plan.entries[i] = map.entries[i];
        inside = inside && map.entries[i] < sourceChannels;
    }
    return inside;
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
    bool planar = target.planar;
    if (plan.sourceChannels == 1 && plan.sourceBits >= 8)
        plan.sourcePlanar = plan.mapped || planar;
    if (plan.channels == 1 && target.bits >= 8)
        planar = plan.sourcePlanar || (plan.mapped && plan.sourceChannels * plan.sourceBits / 8 >
                                                          plan.kernels->pixels->stepBytes);
    PassList(plan, target.bits, planar).Choose();
}

// The passes of conversions that neither map nor turn have a table, for up to so many channels:
// pixels of them fit the tile at any depth.
constexpr std::uint32_t maxTabledChannels = maxTilePixelBytes / 2;
// The least channels of those that have the same passes.
constexpr std::array<std::uint32_t, 3> leastChannels = {1, 2, maxFusedChannels + 1};

constexpr std::size_t IndexOf(std::uint32_t channels)
{
    return (channels >= leastChannels[1] ? 1U : 0U) + (channels >= leastChannels[2] ? 1U : 0U);
}

// Each has the place that IndexOf gives it, which is found by arithmetic.
constexpr std::array<Form, 6> forms = {
    {{1, true}, {2, true}, {8, true}, {8, false}, {16, true}, {16, false}}};

constexpr std::size_t IndexOf(Form form)
{
    return (form.bits >> 2 | (form.bits >> 1 & 1U)) + (form.planar ? 0U : 1U);
}

using PassTable = std::array<std::array<std::array<ChosenPasses, forms.size()>, forms.size()>,
                             leastChannels.size()>;

constexpr PassTable MakePassTable()
{
    PassTable table{};
    for (const std::uint32_t channels : leastChannels)
        for (const Form source : forms)
            for (const Form target : forms) {
                DirectPlan plan{};
                plan.extras = &noExtras;
                plan.sourceChannels = plan.channels = channels;
                plan.sourceBits = source.bits;
                plan.sourcePlanar = source.planar;
                plan.repeat = 1;
                ChoosePasses(plan, target);
                table[IndexOf(channels)][IndexOf(source)][IndexOf(target)] = plan;
            }
    return table;
}

constexpr PassTable passTable = MakePassTable();

// Sets what passes don't depend on.
void SetSizes(DirectPlan& plan, const Side& source, const Side& target, bool mirrored)
{
    plan.sourceChannels = source.channels;
    plan.channels = target.channels;
    plan.sourcePlaneBytes = BytesOf(source.width, source.form.bits);
    plan.planeBytes = BytesOf(target.width, target.form.bits);
    plan.firstPixel = mirrored ? source.width - source.pixels : 0;
    plan.sourcePixels = source.pixels;
    plan.pixels = target.pixels;
    plan.tilePixels = 0;
}

PELKRAFT_NEVER_INLINE bool ChooseOneByOne(DirectPlan& plan, const ConversionRequest& request,
                                          Form source, Form target)
{
    plan.mapped = request.maps;
    if (plan.mapped && !CopyMap(plan, request.map))
        return false;
    const auto repeat = static_cast<std::uint32_t>(std::abs(std::int64_t{request.factor}));
    // One, two or four: below five, and a power of two.
    if (repeat - 1 >= 4 || (repeat & (repeat - 1)) != 0)
        return false;
    plan.repeat = static_cast<std::uint8_t>(repeat);
    plan.mirrored = request.factor < 0;
    plan.passCount = 0;
    plan.splitMaps = false;
    plan.sourceBits = source.bits;
    plan.sourcePlanar = source.planar;
    ChoosePasses(plan, target);
    for (std::size_t i = 0; i != plan.passCount; ++i)
        if (plan.passes[i].kind == PassKind::Step)
            FillStep(plan, plan.passes[i]);
    const DirectExtras& extras = *plan.extras;
    plan.staged = extras.staged && FitsStage(plan);
    plan.patchesRows = extras.patch != nullptr && !plan.staged;
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
    if (request.factor != 1 || request.maps || source.channels > maxTabledChannels)
        return ChooseOneByOne(plan, request, source.form, target.form);
    static_cast<ChosenPasses&>(plan) =
        passTable[IndexOf(source.channels)][IndexOf(source.form)][IndexOf(target.form)];
    if (plan.passCount != 1)
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
    return ChooseOneByOne(plan, request, source.form, target.form);
}

} // namespace zvk::Pelkraft
