#pragma once

#include "c_interface/plain_rows.h"
#include "c_interface/plan_request.h"
#include "c_interface/row_views.h"

#include <memory>
#include <string>

// The handle of a plan, which never changes.
struct plk_plan
{
    explicit plk_plan(zvk::Pelkraft::PlanSpec newSpec);

    const zvk::Pelkraft::PlanSpec spec;
    const zvk::Pelkraft::RowsPlan rows;
    // The bytes of each row that a run may read and writes.
    const zvk::Pelkraft::CoveredBytes read;
    const zvk::Pelkraft::CoveredBytes written;
    const bool allowsInPlace;
    const zvk::Pelkraft::PlainBytes plainRead;
    const zvk::Pelkraft::PlainBytes plainWritten;
};

namespace zvk::Pelkraft {

// The plan in words, and in JSON.
std::string TextOf(const plk_plan& plan);
std::string JsonOf(const plk_plan& plan);

// The canonical record of a spec, and the plan that one stands for.
std::string SaveSpec(const PlanSpec& spec);
std::unique_ptr<plk_plan> LoadPlan(const void* record, std::uint64_t bytes);

} // namespace zvk::Pelkraft
