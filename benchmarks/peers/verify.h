#pragma once

#include "benchmarks/peers/entry.h"

namespace zvk::Pelkraft::Benchmarks {

// True if the entry does the job at a width, within what its own rule allows, and writes nothing
// outside its row.
bool IsRight(const Job& job, const Entry& entry, int width);

} // namespace zvk::Pelkraft::Benchmarks
