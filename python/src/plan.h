// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "array_rows.h"

#include "pelkraft/plan.h"

#include <memory>
#include <string>

namespace zvk::Pelkraft::Python {

// A plan of the library, and what it asks of arrays. Never changes.
class Plan
{
public:
    explicit Plan(const plk_spec& spec);
    explicit Plan(const std::string& newRecord);

    pybind11::object Run(pybind11::handle rows, pybind11::handle out) const;
    std::string Explain(bool json) const;

    const plk_needs& Needs() const { return needs; }
    // In the form that equal plans share. The map is this plan's.
    const plk_spec& Spec() const { return spec; }
    // Equal plans have equal records.
    const std::string& Record() const { return record; }

private:
    struct Deleter
    {
        void operator()(plk_plan* plan) const { plk_plan_free(plan); }
    };

    void Learn();

    std::unique_ptr<plk_plan, Deleter> handle;
    plk_needs needs = {};
    plk_spec spec = {};
    std::string record;
    ArrayRows source;
    ArrayRows target;
};

void AddPlan(pybind11::module_& module);

} // namespace zvk::Pelkraft::Python
