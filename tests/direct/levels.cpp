#include "tests/direct/levels.h"

#include "zvk/system_tools.h"

#include <cstdio>
#include <cstdlib>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr int highestLevel = 7;

std::vector<int> FindLevels()
{
    std::vector<int> levels;
    const int own = SystemTools::GetSseVersion();
    const char* const only = std::getenv("PELKRAFT_TEST_LEVEL");
    for (const int level : {0, 3, 6, highestLevel}) {
        if (only != nullptr && level != std::strtol(only, nullptr, 10))
            std::printf("level %d not run: PELKRAFT_TEST_LEVEL asks for another\n", level);
        else if (level <= own)
            levels.push_back(level);
        else
            std::printf("level %d not run: the processor lacks it\n", level);
    }
    return levels;
}

} // namespace

std::vector<int> LevelsOfThisProcessor()
{
    static const std::vector<int> levels = FindLevels();
    return levels;
}

LimitedLevel::LimitedLevel(int level)
{
    SystemTools::LimitSseVersion(level);
}

LimitedLevel::~LimitedLevel()
{
    SystemTools::LimitSseVersion(highestLevel);
}

} // namespace zvk::Pelkraft::TestSupport
