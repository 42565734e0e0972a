#include "plan/rows_plan.h"

#include "common/inlining.h"
#include "plan/patch_pattern.h"

#include <algorithm>
#include <vector>

namespace zvk::Pelkraft {

namespace {

void BuildFormat(ImageRowFormat& format, const RowForm& form, bool reversed,
                 std::int64_t activeWidth)
{
    format.bits = form.bits;
    format.layout = LayoutOf(form.bits, form.planar);
    format.channels = form.channels;
    format.reversed = reversed;
    format.width = form.width;
    format.activeWidth = activeWidth;
}

// Both rows are limited to the pixels that both have.
FormatPair FormatsOf(const RowsRequest& request)
{
    const std::int64_t sourceWidth = request.source.width;
    const std::int64_t targetWidth = request.target.width;
    const std::int64_t repeat = request.repeat;
    const std::int64_t filling = targetWidth / repeat + (targetWidth % repeat != 0 ? 1 : 0);
    // The products of large widths do not fit 64 bits.
    const bool fills = sourceWidth >= filling;
    FormatPair formats;
    BuildFormat(formats.source, request.source, request.mirrored, fills ? filling : sourceWidth);
    BuildFormat(formats.destination, request.target, false,
                fills ? targetWidth : sourceWidth * repeat);
    return formats;
}

bool MovesPixels(const RowsRequest& request)
{
    return request.source.width != 0 && request.target.width != 0 && request.target.channels != 0;
}

// A request of no pixels needs no map.
RowsRequest WithoutUselessMap(RowsRequest request)
{
    if (!MovesPixels(request)) {
        request.maps = request.inverted = false;
        request.entries = {};
    }
    return request;
}

// Constants are zeros until the row is patched.
std::vector<std::int32_t> ZeroedEntries(const RowsRequest& request)
{
    std::vector<std::int32_t> entries(request.entries.begin(), request.entries.end());
    for (std::int32_t& entry : entries)
        entry = std::max(entry, emptyEntry);
    return entries;
}

// A tile takes the pixels out of the row and puts them back.
bool AllowsRowsInPlace(const RowsRequest& request)
{
    const auto& [source, target] = std::tie(request.source, request.target);
    return source.planar == target.planar && source.width == target.width &&
           source.channels == target.channels && StorageBitsOf(source) == StorageBitsOf(target) &&
           !request.mirrored && request.repeat == 1 && request.entries.size() <= maxMapEntries;
}

} // namespace

struct RowsPlan::State
{
    explicit State(const RowsRequest& request);

    // For plans that have no pixels, may run in place or write past the cache.
    void RunSpecial(const ReadRows& source, const WrittenRows& target, std::uint64_t rows) const;

    // Those of a short map stand in the plans too.
    std::vector<std::int32_t> entries;
    std::vector<std::int32_t> firstUses;
    PatchPattern pattern;
    DirectExtras extras;
    DirectExtras stagedExtras;
    FormatPair formats;
    ConversionRequest conversion{};
    bool movesPixels;
    DirectPlan direct = {};
    RowRun run;
    bool allowsInPlace;
    // Nothing but the rows is left to look at.
    bool isPlain = false;
    // For rows in place that a map changes.
    DirectPlan staged = {};
    RowRun runInPlace;

private:
    void PatchInPlace(const WrittenRows& target, std::uint64_t rows) const;
};

RowsPlan::State::State(const RowsRequest& request)
    : entries(ZeroedEntries(request)),
      firstUses(entries.size() > maxMapEntries ? entries.size() : 0), pattern(request),
      formats(FormatsOf(request)), movesPixels(MovesPixels(request)),
      allowsInPlace(AllowsRowsInPlace(request))
{
    conversion.sseVersion = request.level;
    conversion.factor = request.mirrored ? -request.repeat : request.repeat;
    conversion.maps = request.maps;
    conversion.map = {entries.size(), entries.data()};
    if (!movesPixels)
        return;
    extras.samples = request.samples;
    extras.clears = request.maps && *std::max_element(entries.begin(), entries.end()) < 0;
    extras.staged = extras.streamed = request.streamed;
    if (!firstUses.empty()) {
        extras.entries = entries.data();
        extras.firstUses = firstUses.data();
    }
    extras.patch = pattern.GetPatch();
    MakeDirectPlan(direct, conversion, formats, extras);
    run = RowRun(direct);
    isPlain = !allowsInPlace && !request.streamed;
    if (!allowsInPlace || !request.maps)
        return;
    stagedExtras = extras;
    stagedExtras.staged = true;
    MakeDirectPlan(staged, conversion, formats, stagedExtras);
    runInPlace = RowRun(staged);
}

// A row that needs nothing of it does not carry its frame.
PELKRAFT_NEVER_INLINE void RowsPlan::State::RunSpecial(const ReadRows& source,
                                                       const WrittenRows& target,
                                                       std::uint64_t rows) const
{
    if (!movesPixels)
        return;
    if (!allowsInPlace || source.bytes != target.bytes)
        run(source, target, rows);
    else if (direct.mapped)
        runInPlace(source, target, rows);
    else
        PatchInPlace(target, rows);
    if (extras.streamed)
        direct.kernels->finish->fence();
}

// Pixels that no map moves only have bits turned over, and unused ones cleared.
void RowsPlan::State::PatchInPlace(const WrittenRows& target, std::uint64_t rows) const
{
    const RowPatch* patch = extras.patch;
    for (std::uint64_t i = 0; i != rows; ++i) {
        unsigned char* row = target.bytes + static_cast<std::ptrdiff_t>(i) * target.rowStep;
        if (patch != nullptr)
            PatchRow(*direct.kernels->finish, *patch,
                     {row, target.planeStep, 0, direct.channels, direct.pixels});
        for (std::size_t c = 0; direct.sourceBits < 8 && c != direct.channels; ++c)
            ClearUnusedBits(row + static_cast<std::ptrdiff_t>(c) * target.planeStep, direct.pixels,
                            direct.sourceBits);
    }
}

RowsPlan::RowsPlan(const RowsRequest& request)
    : state(std::make_unique<const State>(WithoutUselessMap(request)))
{}

RowsPlan::RowsPlan(RowsPlan&&) noexcept = default;
RowsPlan& RowsPlan::operator=(RowsPlan&&) noexcept = default;
RowsPlan::~RowsPlan() = default;

bool RowsPlan::AllowsInPlace() const noexcept
{
    return state->allowsInPlace;
}

void RowsPlan::Run(const ReadRows& source, const WrittenRows& target,
                   std::uint64_t rows) const noexcept
{
    if (state->isPlain)
        state->run(source, target, rows);
    else
        state->RunSpecial(source, target, rows);
}

PlanWords Describe(const RowsPlan& plan)
{
    const RowsPlan::State& state = *plan.state;
    const ConversionRequest& conversion = state.conversion;
    return Describe({state.movesPixels ? PlanRoad::Direct : PlanRoad::None,
                     conversion.sseVersion,
                     conversion.factor,
                     state.formats,
                     conversion.map,
                     {},
                     state.direct});
}

} // namespace zvk::Pelkraft
