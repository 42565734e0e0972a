#include "zvk/system_tools.h"

#include "system_tools/processor_level.h"

#include <algorithm>
#include <atomic>

namespace zvk::SystemTools {
namespace {

constexpr int unknownLevel = -1;

// The processor's level and the limit in one number, so that asking costs a single load.
constinit std::atomic<int> reportedLevel{unknownLevel};

// Asked once: the questions leave a virtual machine each time, which takes microseconds.
int GetOwnLevel()
{
    static const int level = GetProcessorLevel();
    return level;
}

} // namespace

int GetSseVersion()
{
    int level = reportedLevel.load(std::memory_order_relaxed);
    if (level != unknownLevel)
        return level;

    // Only over the unknown: a limit set meanwhile by another thread must stand.
    reportedLevel.compare_exchange_strong(level, GetOwnLevel(), std::memory_order_relaxed);
    return reportedLevel.load(std::memory_order_relaxed);
}

void LimitSseVersion(int level)
{
    reportedLevel.store(std::clamp(level, 0, GetOwnLevel()), std::memory_order_relaxed);
}

} // namespace zvk::SystemTools
