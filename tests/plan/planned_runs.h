#pragma once

#include "tests/plan/planned_case.h"

#include <cstdint>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// Runs a plan on rows of its own and gives the destination's bytes.
Bytes RunOn(const Plan& plan, const ConversionCase& tested, const Bytes& source,
            const Bytes& before, void (*run)(const Plan&, const unsigned char*, unsigned char*));

Bytes ExpectedOf(const ConversionCase& tested, const Bytes& source, const Bytes& before);

// There is one for each way that a pixel can take.
std::vector<ConversionCase> PlannedCases(int level);

// Runs the plan on two pairs of rows, and expects the same of both.
Bytes RunTwice(const Plan& plan, const ConversionCase& tested, std::uint32_t seed);

} // namespace zvk::Pelkraft::TestSupport
