#pragma once

#include "tools/pelkraft/pattern_report.h"

#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// The findings in some texts as a log of SARIF 2.1.0, for programs.
std::string PatternSarif(const std::vector<const PatternReport*>& reports, ExitCode code);

} // namespace zvk::Pelkraft::Client
