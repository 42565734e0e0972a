#pragma once

#include "tests/support/naive_rows.h"

#include <string>
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

// A run on buffers of one size.
struct NaiveTrial
{
    NaiveJoin spec;
    NaivePlacement from;
    NaivePlacement to;
    int rows;
    // One buffer for both sides, or one for each.
    bool shared;
};

std::string Describe(const NaiveTrial& trial);

// "OK", or the status that the run must end with and the side that is named.
std::string NaiveEnd(const NaiveTrial& trial, bool inPlace, std::size_t size);

} // namespace zvk::Pelkraft::TestSupport
