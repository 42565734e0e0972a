#pragma once

#include "plan/plan.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zvk::Pelkraft {

// A plan in words, for people.
struct PlanWords
{
    // "direct", "chain", or "none" where there is no pixel to move.
    std::string road;
    // The instructions that the kernels or the steps use, with the level that they were asked for:
    // "AVX2 (level 6)".
    std::string level;
    // They stand in their order, such as "split 4 channels of 8 bits" or "widen to 16 bits".
    std::vector<std::string> steps;
    // The bytes of the pixels, without the scratch memory in between. A plane that no entry of a
    // map names is not read; an interleaved row is.
    std::uint64_t bytesRead;
    std::uint64_t bytesWritten;
};

// The words of a plan are made of this record.
struct DescribedPlan
{
    PlanRoad road;
    std::int32_t sseVersion;
    std::int32_t factor;
    FormatPair formats;
    ChannelMap map;
    ChainSteps steps;
    const DirectPlan& direct;
};

PlanWords Describe(const DescribedPlan& plan);
PlanWords Describe(const Plan& plan);

// The same as one text, a line for each statement.
std::string ToText(const PlanWords& words);

} // namespace zvk::Pelkraft
