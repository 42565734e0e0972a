#pragma once

#include "tools/pelkraft/json.h"
#include "tools/pelkraft/simulation.h"

#include <string>

namespace zvk::Pelkraft::Client {

// Which channel of a page gives which in-colour, and how its samples become steps. It follows the
// label of the page on the same line.
std::string ExplainSimulation(const SimulationPlan& plan, const LoadedPattern& pattern);
// The same on one line.
std::string ChoicesOf(const SimulationPlan& plan, const LoadedPattern& pattern);
// The same for programs.
Json ExplainSimulationJson(const SimulationPlan& plan, const LoadedPattern& pattern, int page);

} // namespace zvk::Pelkraft::Client
