#include "plan/plan.h"

#include "common/bit_sizes.h"
#include "plan/conversion_checks.h"
#include "portal/conversion_portal.h"

#include <cstddef>

namespace zvk::Pelkraft {
namespace {

// The portable unpacking covers whole groups of four channels from the end of a pixel's slot down.
bool CoversAllChannels(std::int32_t channels)
{
    // Counted as unsigned: the largest number of channels must not overflow.
    const auto count = static_cast<std::uint32_t>(channels);
    return (count + 3) / 4 * 4 == (count + 15) / 16 * 16;
}

// The samples that the portable unpacking leaves packed are part of its results.
bool LeavesSamplesPacked(const Plan& plan)
{
    if (RoadOf(plan.sseVersion) != Road::Portable || !HasStep(plan.steps, ChainStep::Unpack))
        return false;
    // A map runs on packed bytes: ahead of the unpacking, but after it where packing follows.
    return !CoversAllChannels(HasStep(plan.steps, ChainStep::Pack)
                                  ? plan.formats.source.channels
                                  : plan.formats.destination.channels);
}

std::size_t RowBytes(const ImageRowFormat& format)
{
    const auto channels = static_cast<std::size_t>(format.channels);
    const auto width = static_cast<std::size_t>(format.width);
    const auto bits = static_cast<unsigned>(format.bits);
    if (format.layout == LayoutInterleaved)
        return channels * width * ((bits + 7) / 8);
    return channels * BytesOf(width, bits);
}

// Rows without data are the chain's, whose first access faults.
bool StandApart(const Plan& plan, const unsigned char* sourceData,
                const unsigned char* destinationData)
{
    const auto source = reinterpret_cast<std::uintptr_t>(sourceData);
    const auto destination = reinterpret_cast<std::uintptr_t>(destinationData);
    if (source == 0 || destination == 0)
        return false;
    return source < destination ? destination - source >= RowBytes(plan.formats.source)
                                : source - destination >= RowBytes(plan.formats.destination);
}

} // namespace

void MakePlan(Plan& plan, const ConversionRequest& request)
{
    BuildFormats(plan.formats, request);
    plan.steps = ChooseChain(plan.formats, request);
    plan.road = PlanRoad::None;
    plan.sseVersion = request.sseVersion;
    plan.factor = request.factor;
    plan.map.entryCount = request.map.entryCount;
    plan.map.entries = request.map.entries;
    if (!MovesPixels(request, plan.formats))
        return;
    const bool direct =
        MakeDirectPlan(plan.direct, request, plan.formats) && !LeavesSamplesPacked(plan);
    plan.road = direct ? PlanRoad::Direct : PlanRoad::Chain;
}

ChannelMap MapOf(const Plan& plan)
{
    if (plan.map.entryCount > maxMapEntries)
        return plan.map;
    return {plan.map.entryCount, plan.direct.entries.data()};
}

void RunPlan(const Plan& plan, const unsigned char* source, unsigned char* destination)
{
    if (plan.road == PlanRoad::Direct && StandApart(plan, source, destination))
        RunDirect(plan.direct, source, destination);
    else if (plan.road != PlanRoad::None)
        RunChain(plan, source, destination);
}

void RunChain(const Plan& plan, const unsigned char* source, unsigned char* destination)
{
    const ChainFacilities chain =
        FacilitiesOf(plan.steps, plan.formats, {plan.sseVersion, plan.factor, MapOf(plan)});
    ConversionPortal(
        {plan.sseVersion, source, destination, plan.formats.source, plan.formats.destination},
        chain.length, chain.facilities.data());
}

} // namespace zvk::Pelkraft
