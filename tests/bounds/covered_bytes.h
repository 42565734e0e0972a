#pragma once

#include "tests/support/naive_conversion.h"

#include <vector>

namespace zvk::Pelkraft::TestSupport {

// The bytes that an operation is to set, of a destination and counted from its first.
using CoveredBytes = std::vector<bool>;

// Each of the conversion's pixels in whole bytes; the last byte of a packed plane counts whole.
CoveredBytes BytesOfPixels(const NaiveGeometry& destination, int pixels);

} // namespace zvk::Pelkraft::TestSupport
