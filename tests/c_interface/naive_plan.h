#pragma once

#include "tests/support/naive_rows.h"

#include <vector>

// A run of many rows, byte by byte. Nothing of the library is included.
namespace zvk::Pelkraft::TestSupport {

// The places of a buffer, which may lie outside of it, once for each row, plane and byte. Of the
// planes of a mapped source these are the ones from the first to the last that are named; of an
// interleaved source they are all.
std::vector<long long> PlacesRead(const NaiveJoin& join, const NaivePlacement& at, int rows);
std::vector<long long> PlacesWritten(const NaiveJoin& join, const NaivePlacement& at, int rows);

// The target's buffer after the run. Both buffers hold all places.
Bytes NaiveRun(const NaiveJoin& join, const Bytes& source, const NaivePlacement& from,
               const Bytes& target, const NaivePlacement& to, int rows);

} // namespace zvk::Pelkraft::TestSupport
