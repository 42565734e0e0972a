#pragma once

#include "pelkraft/plan.h"
#include "tests/c_interface/naive_plan.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

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

// The spec refers to the map of the naive one. Widths that do not meet are clipped.
plk_spec SpecOf(const NaiveJoin& spec);

// The plan that must be made of it.
PlanHandle PlanOf(const plk_spec& spec);

plk_source SourceOf(const Bytes& bytes, const NaivePlacement& view);
plk_target TargetOf(Bytes& bytes, const NaivePlacement& view);

// Status, field, given and needed of a refusal; "OK" where there was none.
std::string WordsOf(plk_status status, const plk_failure& failure);
std::string Words(plk_status status, const std::string& field, std::int64_t given,
                  std::int64_t needed);

std::string CreateWords(const plk_spec* spec);
std::string RunWords(const plk_plan* plan, const plk_source* source, const plk_target* target,
                     std::uint64_t rows);

// The saved record of a plan.
Bytes Saved(const plk_plan* plan);
// A description of a plan, without its zero byte.
std::string Described(const plk_plan* plan, std::int32_t form);

} // namespace zvk::Pelkraft::TestSupport
