#pragma once

#include "pelkraft/plan.h"
#include "tests/c_interface/naive_plan.h"

#include <cstdint>
#include <memory>
#include <string>

// The records of plan.h, made of what the naive reference takes. No check of a test is in here.
namespace zvk::Pelkraft::TestSupport {

struct PlanFree
{
    void operator()(plk_plan* plan) const { plk_plan_free(plan); }
};
using PlanHandle = std::unique_ptr<plk_plan, PlanFree>;

// An empty record of this header's size.
template <typename Record>
Record Sized()
{
    Record record = {};
    record.size = sizeof record;
    return record;
}

// A spec of rows that have the same width and number of channels.
plk_spec SpecOf(std::int64_t width, std::int32_t channels, std::int32_t bits,
                std::int32_t targetBits);

// The record refers to the map of the argument. Widths that do not meet are clipped.
plk_spec SpecOf(const NaiveJoin& spec);

plk_source SourceOf(const Bytes& bytes, const NaivePlacement& view);
plk_target TargetOf(Bytes& bytes, const NaivePlacement& view);

// Status, field, given and needed of a refusal; "OK" where there was none.
std::string Words(plk_status status, const std::string& field, std::int64_t given,
                  std::int64_t needed);

} // namespace zvk::Pelkraft::TestSupport
