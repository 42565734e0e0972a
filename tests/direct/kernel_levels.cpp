#include "tests/direct/kernel_levels.h"

#include "zvk/system_tools.h"

#include <cstdio>

namespace zvk::Pelkraft::TestSupport {

std::vector<KernelLevel> AvailableKernelLevels()
{
    std::vector<KernelLevel> levels = {{"portable", &PortableRoad::GetSplitMergeKernels()}};
#ifdef PELKRAFT_VECTOR_ROAD
    const auto add = [&levels](int sseVersion, const KernelLevel& level) {
        if (SystemTools::GetSseVersion() >= sseVersion)
            levels.push_back(level);
        else
            std::printf("not run: the level %s, which this processor lacks\n", level.name);
    };
    add(3, {"vector", &VectorRoad::GetSplitMergeKernels()});
#endif
#ifdef PELKRAFT_WIDE_ROADS
    add(6, {"avx2", &Avx2Road::GetSplitMergeKernels()});
    add(7, {"avx512", &Avx512Road::GetSplitMergeKernels()});
#endif
    return levels;
}

} // namespace zvk::Pelkraft::TestSupport
