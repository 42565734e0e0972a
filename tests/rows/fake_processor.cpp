#include "tests/rows/fake_processor.h"

#include "zvk/system_tools.h"

#include <optional>

namespace {

std::optional<int> reportedLevel;
int questions = 0;

bool HasByteShuffle()
{
#if defined(__x86_64__) || defined(__i386__)
    return __builtin_cpu_supports("ssse3") != 0;
#else
    return false;
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
    return HasByteShuffle() ? Pelkraft::TestSupport::FakeProcessor::vectorLevel : 0;
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
    return level < vectorLevel || HasByteShuffle();
}

int FakeProcessor::CountQuestions() const
{
    return questions;
}

} // namespace zvk::Pelkraft::TestSupport
