#include "c_interface/plan_handle.h"

#include "zvk/system_tools.h"

#include <algorithm>
#include <utility>

namespace zvk::Pelkraft {
namespace {

std::int32_t LevelOf(const PlanSpec& spec)
{
    return spec.road == PLK_ROAD_PORTABLE ? 0 : SystemTools::GetSseVersion();
}

// The pixels of the source that have a counterpart in the target.
std::uint64_t CountRead(const PlanSpec& spec)
{
    const auto width = static_cast<std::uint64_t>(spec.target.width);
    const auto repeat = static_cast<std::uint64_t>(spec.repeat);
    return std::min(static_cast<std::uint64_t>(spec.source.width),
                    width / repeat + (width % repeat != 0 ? 1 : 0));
}

// Planes that the map names, and those between them, or none. Interleaved rows are read whole.
void LimitPlanes(CoveredBytes& covered, const PlanSpec& spec)
{
    std::int32_t first = spec.source.channels;
    std::int32_t last = -1;
    for (const std::int32_t entry : spec.map) {
        if (entry < 0)
            continue;
        first = std::min(first, entry);
        last = std::max(last, entry);
    }
    covered.firstPlane = last < 0 ? 0 : static_cast<std::uint64_t>(first);
    covered.planes = last < 0 ? 0 : static_cast<std::uint64_t>(last - first + 1);
}

CoveredBytes BytesRead(const PlanSpec& spec)
{
    const std::uint64_t pixels = CountRead(spec);
    const auto width = static_cast<std::uint64_t>(spec.source.width);
    CoveredBytes covered;
    if (pixels == 0)
        return covered;
    if (spec.source.planar != 0)
        covered.planes = static_cast<std::uint64_t>(spec.source.channels);
    if (spec.source.planar != 0 && spec.maps)
        LimitPlanes(covered, spec);
    const std::uint64_t begin = spec.mirror != 0 ? width - pixels : 0;
    // The byte that holds the first pixel, whole.
    covered.first = BytesUpTo(spec.source, begin + 1) - BytesUpTo(spec.source, 1);
    covered.count = BytesUpTo(spec.source, begin + pixels) - covered.first;
    return covered;
}

CoveredBytes BytesWritten(const PlanSpec& spec)
{
    const auto width = static_cast<std::uint64_t>(spec.target.width);
    const std::uint64_t pixels = CountRead(spec);
    const auto repeat = static_cast<std::uint64_t>(spec.repeat);
    CoveredBytes covered;
    covered.count = BytesUpTo(spec.target, pixels > width / repeat ? width : pixels * repeat);
    if (spec.target.planar != 0)
        covered.planes = static_cast<std::uint64_t>(spec.target.channels);
    return covered;
}

} // namespace
} // namespace zvk::Pelkraft

plk_plan::plk_plan(zvk::Pelkraft::PlanSpec newSpec)
    : spec(std::move(newSpec)), rows(RequestOf(spec, zvk::Pelkraft::LevelOf(spec))),
      read(zvk::Pelkraft::BytesRead(spec)), written(zvk::Pelkraft::BytesWritten(spec)),
      allowsInPlace(rows.AllowsInPlace()), plainRead(read), plainWritten(written)
{}
