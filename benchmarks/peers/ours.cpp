#include "benchmarks/peers/entry.h"
#include "benchmarks/peers/pattern_job.h"
#include "pelkraft/image_row.h"
#include "pelkraft/plan.hpp"

#include <cstdlib>
#include <memory>

namespace zvk::Pelkraft::Benchmarks {
namespace {

// Works as a caller does who walks over a picture: two row objects stand on the stack for each row
// and take the caller's memory.
void Convert(const Job& job, int width, const unsigned char* source, unsigned char* destination)
{
    // The row only reads its source.
    const ImageRow from(width, job.source.channels, job.source.bits, job.source.planar,
                        const_cast<unsigned char*>(source));
    ImageRow to(CalcDestinationWidth(job, width), job.destination.channels, job.destination.bits,
                job.destination.planar, destination);
    if (job.operation == Operation::Remap)
        to.FillFromWithRemap(from, job.map, nullptr);
    else if (job.operation == Operation::Repeat)
        to.FillFromWithPixelRepeat(from, job.factor, nullptr);
    else
        to.FillFrom(from, nullptr);
}

// One row of a side, as a plan takes it.
struct PlannedSide
{
    std::uint64_t bytes;
    std::int64_t planeStride;
};

PlannedSide SideOf(const Geometry& geometry, int width)
{
    return {CalcRowBytes(geometry, width),
            geometry.planar ? static_cast<std::int64_t>(CalcPlaneBytes(geometry, width)) : 0};
}

ConversionPlan PlanOf(const Job& job, int width)
{
    ConversionSpec spec;
    const auto formatOf = [](const Geometry& geometry, int pixels) {
        return RowFormat{pixels, geometry.channels, geometry.bits, geometry.planar};
    };
    spec.source = formatOf(job.source, width);
    spec.target = formatOf(job.destination, CalcDestinationWidth(job, width));
    if (job.operation == Operation::Remap)
        spec.map.emplace(job.map, job.map + job.destination.channels);
    spec.repeat = std::abs(job.factor);
    spec.mirror = job.factor < 0;
    return ConversionPlan(spec);
}

// Works as a caller does who has made a plan and runs it row by row.
RowCall RunOf(const Job& job, int width)
{
    const auto plan = std::make_shared<const ConversionPlan>(PlanOf(job, width));
    const PlannedSide from = SideOf(job.source, width);
    const PlannedSide to = SideOf(job.destination, CalcDestinationWidth(job, width));
    return [=](const unsigned char* source, unsigned char* destination) {
        const SourceRows read(source, from.bytes, 0, from.planeStride);
        const TargetRows written(destination, to.bytes, 0, to.planeStride);
        plk_plan_run(plan->Get(), &read, &written, 1, nullptr);
    };
}

} // namespace

void AddOurs(Entries& entries, const Job& job)
{
    if (job.operation == Operation::Pattern) {
        AddOurPattern(entries);
        return;
    }
    entries.push_back({"pelkraft", [&job](int width) -> RowCall {
                           return [&job, width](const unsigned char* source,
                                                unsigned char* destination) {
                               Convert(job, width, source, destination);
                           };
                       }});
    entries.push_back({"pelkraft_plan", [&job](int width) { return RunOf(job, width); }});
}

} // namespace zvk::Pelkraft::Benchmarks
