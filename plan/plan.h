#pragma once

#include "common/conversion.h"
#include "direct/direct_plan.h"
#include "plan/chain_choice.h"

#include <cstdint>

namespace zvk::Pelkraft {

enum class PlanRoad : std::uint8_t
{
    // There is no pixel to move.
    None,
    // From row to row, but for rows that overlap, which take the chain.
    Direct,
    // Through chunks of 16 pixels.
    Chain,
};

// One conversion, decided: a record without addresses of rows and without memory of its own. Any
// number of threads may run it. Each field is written where it stays: a record that is copied as
// soon as it is filled costs more than all the checks.
struct Plan
{
    // Set by the caller. MapOf replaces its map by the plan's copy.
    ConversionRequest request;
    PlanRoad road;
    // It has passes only where the road is Direct.
    DirectPlan direct;
};

// Refuses a request that no road serves, in an order that is always the same, then chooses the
// road. Throws what BuildFormats, ChooseChain and MovesPixels throw, in this order.
void MakePlan(Plan& plan);

// The formats and the steps of a plan that has been made. The direct road gives the same bytes as
// the steps.
FormatPair FormatsOf(const Plan& plan);
ChainSteps StepsOf(const Plan& plan);

// The plan's own copy of the map, or the caller's where it has more than maxMapEntries entries.
ChannelMap MapOf(const Plan& plan);

// Runs a plan on the bytes of two rows. The chain throws what ConversionPortal throws; the
// direct road throws nothing and allocates nothing.
void RunPlan(const Plan& plan, const unsigned char* source, unsigned char* destination);

// Runs a plan through the chain, whatever its road is.
void RunChain(const Plan& plan, const unsigned char* source, unsigned char* destination);

} // namespace zvk::Pelkraft
