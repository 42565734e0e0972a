#include "plan/rows_plan.h"

#include "plan/conversion_checks.h"

namespace zvk::Pelkraft {

struct RowsPlan::State
{
    Plan plan;
};

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

FormatPair FormatsOf(const RowsRequest& request)
{
    const std::int64_t sourceWidth = request.source.width;
    const std::int64_t targetWidth = request.target.width;
    const std::int64_t repeat = request.repeat;
    const std::int64_t most = targetWidth / repeat + (targetWidth % repeat != 0 ? 1 : 0);
    const std::int64_t sourceActive = std::min(sourceWidth, most);
    FormatPair formats;
    BuildFormat(formats.source, request.source, request.mirrored, sourceActive);
    BuildFormat(formats.destination, request.target, false,
                sourceActive < most ? sourceActive * repeat : targetWidth);
    return formats;
}

} // namespace

RowsPlan::RowsPlan(const RowsRequest& request)
{
    auto made = std::make_unique<State>();
    Plan& plan = made->plan;
    plan.formats = FormatsOf(request);
    plan.road = PlanRoad::None;
    plan.sseVersion = request.level;
    plan.factor = request.mirrored ? -request.repeat : request.repeat;
    ConversionRequest direct;
    direct.sseVersion = request.level;
    direct.factor = plan.factor;
    direct.maps = request.maps;
    direct.map = {request.entries.size(), request.entries.data()};
    plan.map = direct.map;
    if (plan.formats.destination.activeWidth != 0 && request.target.channels != 0 &&
        MakeDirectPlan(plan.direct, direct, plan.formats))
        plan.road = PlanRoad::Direct;
    state = std::move(made);
}

RowsPlan::RowsPlan(RowsPlan&&) noexcept = default;
RowsPlan& RowsPlan::operator=(RowsPlan&&) noexcept = default;
RowsPlan::~RowsPlan() = default;

bool RowsPlan::AllowsInPlace() const noexcept
{
    return false;
}

void RowsPlan::Run(const StridedRows<const unsigned char>& source,
                   const StridedRows<unsigned char>& target, std::uint64_t rows) const noexcept
{
    if (state->plan.road == PlanRoad::None)
        return;
    for (std::uint64_t i = 0; i != rows; ++i) {
        const auto row = static_cast<std::ptrdiff_t>(i);
        RunDirect(state->plan.direct, {source.bytes + row * source.rowStep, source.planeStep,
                                       target.bytes + row * target.rowStep, target.planeStep});
    }
}

PlanWords Describe(const RowsPlan& plan)
{
    return Describe(plan.state->plan);
}

} // namespace zvk::Pelkraft
