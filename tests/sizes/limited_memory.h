#pragma once

#include "tests/support/counted_memory.h"

namespace zvk::Pelkraft::TestSupport {

// The tests of sizes let nobody allocate more than this at once. A machine that promises more
// memory than it has would give far more.
constexpr std::size_t memoryLimit = std::size_t{64} << 20;

// While it lives, a larger allocation of this thread fails.
class LimitedMemory
{
public:
    LimitedMemory()
    {
        memory.FailAbove(memoryLimit);
        memory.Start();
    }

private:
    CountedMemory memory;
};

} // namespace zvk::Pelkraft::TestSupport
