#pragma once

#include <atomic>
#include <cstdint>

namespace zvk::Pelkraft::TestSupport {

// The variables that tell a program under failing_memory.cpp what to do.

// The number of the allocation that fails, from 1 on; without it none does.
inline constexpr const char* failingAllocationVariable = "PELKRAFT_FAILING_ALLOCATION";
// Set: all later ones fail too.
inline constexpr const char* failsForEverVariable = "PELKRAFT_FAILING_FOR_EVER";
// Set: counted from the start of the process, what comes ahead of main included.
inline constexpr const char* countsFromStartVariable = "PELKRAFT_FAILING_FROM_START";
// The path of a file that holds an AllocationRecord, which is kept up to date.
inline constexpr const char* allocationRecordVariable = "PELKRAFT_ALLOCATION_RECORD";

struct AllocationRecord
{
    // The failed ones included.
    std::atomic<std::uint64_t> asked;
    std::atomic<std::uint64_t> failed;
    // 1 once main has returned.
    std::atomic<std::uint64_t> returned;
};

} // namespace zvk::Pelkraft::TestSupport
