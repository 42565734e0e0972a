#pragma once

#include "tools/pelkraft/json.h"
#include "tools/pelkraft/page_coverage.h"

#include <string>

namespace zvk::Pelkraft::Client {

// The report on one page.
std::string CoverageWords(const CoveragePlan& plan, const PageCoverage& found, int page,
                          std::uint64_t limit);
Json CoverageJson(const CoveragePlan& plan, const PageCoverage& found, int page);

} // namespace zvk::Pelkraft::Client
