#pragma once

#include "plan/plan.h"
#include "tests/support/conversion_run.h"

namespace zvk::Pelkraft::TestSupport {

inline RowGeometry GeometryOf(const NaiveGeometry& geometry)
{
    return {geometry.width, geometry.channels, geometry.bits, geometry.planar};
}

// Refers to the case's map, for as long as the case lives.
inline ConversionRequest RequestOf(const ConversionCase& tested, int level)
{
    ConversionRequest request{GeometryOf(tested.source), GeometryOf(tested.destination), level,
                              tested.operation.factor};
    request.maps = tested.operation.hasMap;
    request.repeats = !tested.operation.isFill && !request.maps;
    request.map = {tested.operation.map.size(), tested.operation.map.data()};
    return request;
}

// At level 0 the case is a portable one, which ForgetLeftPacked wants to know.
inline ConversionCase CaseOf(const NaiveGeometry& from, const NaiveGeometry& to, int level,
                             const NaiveOperation& operation = {})
{
    return {from, to, operation, level < 3};
}

inline Plan PlanOf(const ConversionCase& tested, int level)
{
    Plan plan;
    plan.request = RequestOf(tested, level);
    MakePlan(plan);
    return plan;
}

} // namespace zvk::Pelkraft::TestSupport
