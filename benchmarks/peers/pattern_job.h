#pragma once

#include "benchmarks/peers/entry.h"
#include "benchmarks/peers/reference.h"

namespace zvk::Pelkraft::Benchmarks {

// Step numbers of the pattern's in-colours run from 0 to this one.
inline constexpr unsigned patternTopStep = 3;

void AddOurPattern(Entries& entries);
void AddPlainPattern(Entries& entries);

// The values of a pixel are drawn: they must be one of its steps' alternatives, and in a row of a
// thousand pixels each alternative must occur.
bool IsPatternRow(int width, const Bytes& source, const Bytes& destination);

} // namespace zvk::Pelkraft::Benchmarks
