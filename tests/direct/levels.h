#pragma once

#include <vector>

namespace zvk::Pelkraft::TestSupport {

// One processor level for each set of kernels, as far as this processor goes, or the one that
// PELKRAFT_TEST_LEVEL names; each other is printed as not run, once.
std::vector<int> LevelsOfThisProcessor();

// Lowers the level while it lives.
class LimitedLevel
{
public:
    explicit LimitedLevel(int level);
    ~LimitedLevel();
    LimitedLevel(const LimitedLevel&) = delete;
    LimitedLevel& operator=(const LimitedLevel&) = delete;
};

} // namespace zvk::Pelkraft::TestSupport
