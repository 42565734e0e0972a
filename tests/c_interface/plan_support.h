#pragma once

#include "tests/c_interface/plan_records.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace zvk::Pelkraft::TestSupport {

// The plan that must be made of it.
PlanHandle PlanOf(const plk_spec& spec);

// The words of a status and its record, which must be whole.
std::string WordsOf(plk_status status, const plk_failure& failure);

std::string CreateWords(const plk_spec* spec);
std::string RunWords(const plk_plan* plan, const plk_source* source, const plk_target* target,
                     std::uint64_t rows);

// The saved record of a plan.
Bytes Saved(const plk_plan* plan);
// A description of a plan, without its zero byte.
std::string Described(const plk_plan* plan, std::int32_t form);

} // namespace zvk::Pelkraft::TestSupport
