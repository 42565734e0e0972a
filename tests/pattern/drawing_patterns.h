#pragma once

#include "tests/pattern/naive_pattern.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// These draw and can be loaded by both engines; the two generations come by turns.
std::vector<NaivePattern> DrawingPatterns(std::size_t count, std::uint32_t seed);

} // namespace zvk::Pelkraft::TestSupport
