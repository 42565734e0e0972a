#include "tests/rows/fake_processor.h"

#include "common/road.h"
#include "zvk/system_tools.h"

#include <optional>

namespace {

std::optional<int> reportedLevel;
int questions = 0;

// Asked through the compiler: the companion's own answer is what this program replaces.
bool RunsLevel(int level)
{
#if defined(__x86_64__) || defined(__i386__)
    if (level >= 7)
        return __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512bw") != 0 &&
               __builtin_cpu_supports("avx512vl") != 0 && __builtin_cpu_supports("avx512vbmi") != 0;
    if (level >= 6)
        return __builtin_cpu_supports("avx2") != 0;
    return level < zvk::Pelkraft::TestSupport::FakeProcessor::vectorLevel ||
           __builtin_cpu_supports("ssse3") != 0;
#else
    return level < zvk::Pelkraft::TestSupport::FakeProcessor::vectorLevel ||
           zvk::Pelkraft::hasVectorRoad;
#endif
}

} // namespace

// Both, so that a static companion's own are not linked in beside them.
namespace zvk::SystemTools {

int GetSseVersion()
{
    ++questions;
    if (reportedLevel)
        return *reportedLevel;
    constexpr int vectorLevel = Pelkraft::TestSupport::FakeProcessor::vectorLevel;
    return RunsLevel(vectorLevel) ? vectorLevel : 0;
}

void LimitSseVersion(int) {}

} // namespace zvk::SystemTools

namespace zvk::Pelkraft::TestSupport {

FakeProcessor::FakeProcessor(int newLevel)
{
    reportedLevel = newLevel;
    questions = 0;
}

FakeProcessor::~FakeProcessor()
{
    reportedLevel.reset();
}

bool FakeProcessor::CanReport(int level)
{
    return RunsLevel(level);
}

int FakeProcessor::CountQuestions() const
{
    return questions;
}

} // namespace zvk::Pelkraft::TestSupport
