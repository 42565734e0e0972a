#include "plan/plan.h"

#include "common/inlining.h"
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
    if (RoadOf(plan.request.sseVersion) != Road::Portable)
        return false;
    const ChainSteps steps = StepsOf(plan);
    // A map runs on packed bytes: ahead of the unpacking, but after it where packing follows.
    return HasStep(steps, ChainStep::Unpack) &&
           !CoversAllChannels(HasStep(steps, ChainStep::Pack) ? plan.request.source.channels
                                                              : plan.request.destination.channels);
}

// Rows without data are the chain's, whose first access faults.
bool StandApart(const DirectPlan& plan, const unsigned char* sourceData,
                const unsigned char* destinationData)
{
    const auto source = reinterpret_cast<std::uintptr_t>(sourceData);
    const auto destination = reinterpret_cast<std::uintptr_t>(destinationData);
    if (source == 0 || destination == 0)
        return false;
    return source < destination
               ? destination - source >= plan.sourceChannels * plan.sourcePlaneBytes
               : source - destination >= plan.channels * plan.planeBytes;
}

// Refuses what no road serves, and answers whether there is a pixel to move.
PELKRAFT_NEVER_INLINE bool PassesChecks(const ConversionRequest& request)
{
    FormatPair formats;
    BuildFormats(formats, request);
    (void)ChooseChain(formats, request);
    return MovesPixels(request, formats);
}

} // namespace

void MakePlan(Plan& plan)
{
    plan.road = PlanRoad::None;
    if (!IsFaultless(plan.request) && !PassesChecks(plan.request))
        return;
    const bool direct = MakeDirectPlan(plan.direct, plan.request) && !LeavesSamplesPacked(plan);
    plan.road = direct ? PlanRoad::Direct : PlanRoad::Chain;
}

FormatPair FormatsOf(const Plan& plan)
{
    FormatPair formats;
    BuildFormats(formats, plan.request);
    return formats;
}

ChainSteps StepsOf(const Plan& plan)
{
    return ChooseChain(FormatsOf(plan), plan.request);
}

ChannelMap MapOf(const Plan& plan)
{
    const ChannelMap& map = plan.request.map;
    return map.entryCount > maxMapEntries ? map
                                          : ChannelMap{map.entryCount, plan.direct.entries.data()};
}

void RunPlan(const Plan& plan, const unsigned char* source, unsigned char* destination)
{
    if (plan.road == PlanRoad::Direct && StandApart(plan.direct, source, destination))
        RunDirect(plan.direct, source, destination);
    else if (plan.road != PlanRoad::None)
        RunChain(plan, source, destination);
}

void RunChain(const Plan& plan, const unsigned char* source, unsigned char* destination)
{
    const std::int32_t level = plan.request.sseVersion;
    const FormatPair formats = FormatsOf(plan);
    const ChainFacilities chain =
        FacilitiesOf(StepsOf(plan), formats, {level, plan.request.factor, MapOf(plan)});
    ConversionPortal({level, source, destination, formats.source, formats.destination},
                     chain.length, chain.facilities.data());
}

} // namespace zvk::Pelkraft
