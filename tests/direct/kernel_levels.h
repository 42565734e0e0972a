#pragma once

#include "direct/kernels.h"

#include <vector>

namespace zvk::Pelkraft::TestSupport {

// One level's kernels, by the accessors alone.
struct KernelLevel
{
    const char* name;
    const SplitMergeKernels* splitMerge;
};

// Those that this processor can run; the others are printed as not run.
std::vector<KernelLevel> AvailableKernelLevels();

} // namespace zvk::Pelkraft::TestSupport
