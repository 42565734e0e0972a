#pragma once

#include "tools/pelkraft/pattern_outline.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zvk::Pelkraft::Client {

// Ink values by step.
using InkRow = std::array<std::int32_t, stepLimit>;

// Places that the vector engine's table takes for one combination: rows lie in it from their
// first value to their last, and a row that occurs inside another takes none. Rows are given by
// out-ink; one without a value is all unset.
std::size_t CountPlaces(const std::vector<InkRow>& rows);

} // namespace zvk::Pelkraft::Client
