#pragma once

#include "benchmarks/peers/jobs.h"

#include <vector>

namespace zvk::Pelkraft::Benchmarks {

using Bytes = std::vector<unsigned char>;

// Sample by sample from the definition, for every job but patterns.
Bytes CalcReference(const Job& job, int width, const Bytes& source);

// The largest difference of a sample between two rows of the job's destination. Bits after
// the last pixel of a plane belong to no sample: some peers leave them undefined.
unsigned FindLargestDifference(const Job& job, int width, const Bytes& one, const Bytes& other);

} // namespace zvk::Pelkraft::Benchmarks
