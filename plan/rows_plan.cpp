#include "plan/rows_plan.h"

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

// One sweep over a row in place that no map changes.
void PatchInPlace(const DirectPlan& plan, unsigned char* bytes, std::ptrdiff_t planeStep)
{
    if (plan.extras.patch != nullptr)
        PatchRow(*plan.kernels->finish, *plan.extras.patch,
                 {bytes, planeStep, 0, plan.channels, plan.pixels});
    if (plan.sourceBits < 8)
        for (std::size_t c = 0; c != plan.channels; ++c)
            ClearUnusedBits(bytes + static_cast<std::ptrdiff_t>(c) * planeStep, plan.pixels,
                            plan.sourceBits);
}

} // namespace

struct RowsPlan::State
{
    explicit State(const RowsRequest& request);

    // Those of a short map stand in the plans too.
    std::vector<std::int32_t> entries;
    std::vector<std::int32_t> firstUses;
    PatchPattern pattern;
    Plan plan = {};
    bool allowsInPlace;
    // For rows in place that a map changes.
    DirectPlan staged = {};
};

RowsPlan::State::State(const RowsRequest& request)
    : entries(ZeroedEntries(request)),
      firstUses(entries.size() > maxMapEntries ? entries.size() : 0), pattern(request),
      allowsInPlace(AllowsRowsInPlace(request))
{
    plan.formats = FormatsOf(request);
    plan.road = PlanRoad::None;
    plan.sseVersion = request.level;
    plan.factor = request.mirrored ? -request.repeat : request.repeat;
    plan.map = {entries.size(), entries.data()};
    if (!MovesPixels(request))
        return;
    plan.road = PlanRoad::Direct;
    ConversionRequest conversion{};
    conversion.sseVersion = plan.sseVersion;
    conversion.factor = plan.factor;
    conversion.maps = request.maps;
    conversion.map = plan.map;
    DirectExtras extras;
    extras.samples = request.samples;
    extras.clears = request.maps && *std::max_element(entries.begin(), entries.end()) < 0;
    extras.staged = extras.streamed = request.streamed;
    if (!firstUses.empty()) {
        extras.entries = entries.data();
        extras.firstUses = firstUses.data();
    }
    extras.patch = pattern.GetPatch();
    MakeDirectPlan(plan.direct, conversion, plan.formats, extras);
    extras.staged = true;
    if (allowsInPlace && request.maps)
        MakeDirectPlan(staged, conversion, plan.formats, extras);
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

void RowsPlan::Run(const StridedRows<const unsigned char>& source,
                   const StridedRows<unsigned char>& target, std::uint64_t rows) const noexcept
{
    const DirectPlan& direct = state->plan.direct;
    if (state->plan.road == PlanRoad::None)
        return;
    const bool inPlace = state->allowsInPlace && source.bytes == target.bytes;
    for (std::uint64_t i = 0; i != rows; ++i) {
        const auto row = static_cast<std::ptrdiff_t>(i);
        const DirectRows at = {source.bytes + row * source.rowStep, source.planeStep,
                               target.bytes + row * target.rowStep, target.planeStep};
        if (!inPlace)
            RunDirect(direct, at);
        else if (direct.mapped)
            RunDirect(state->staged, at);
        else
            PatchInPlace(direct, at.target, at.planeStep);
    }
    if (direct.extras.streamed)
        direct.kernels->finish->fence();
}

PlanWords Describe(const RowsPlan& plan)
{
    return Describe(plan.state->plan);
}

} // namespace zvk::Pelkraft
