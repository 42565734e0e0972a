#include "copy/division.h"
#include "pelkraft/copy_primitives.h"
#include "tests/copy/copy_check.h"

#include <gtest/gtest.h>

#include <setjmp.h>

#include <csignal>
#include <limits>

namespace zvk::Pelkraft {
namespace {

using namespace TestSupport;

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();
constexpr unsigned highestUnsigned = std::numeric_limits<unsigned>::max();

struct Simulation
{
    const char* name;
    void (*run)(unsigned char* source, unsigned char* destination, int size, int pixelBytes);
};

class DivideError : public testing::TestWithParam<Simulation>
{};

INSTANTIATE_TEST_SUITE_P(EverySimulation, DivideError,
                         testing::Values(Simulation{"Unaligned", copySimulationUnaligned},
                                         Simulation{"AlignedFixed", copySimulationAlignedFixed},
                                         Simulation{"AlignedVariable",
                                                    copySimulationAlignedVariable}),
                         [](const auto& simulation) { return simulation.param.name; });

TEST_P(DivideError, ComesOfAPixelOfNoBytesWhateverTheSize)
{
    unsigned char source[64] = {};
    unsigned char destination[64] = {};
    for (const int size : {0, 1, 16, 48, highest, -1, -48, lowest}) {
        SCOPED_TRACE(size);
        ExpectKilledBy(SIGFPE, [&] { GetParam().run(source, destination, size, 0); });
    }
}

TEST_P(DivideError, ComesBeforeAnyAccess)
{
    ExpectKilledBy(SIGFPE, [] { GetParam().run(nullptr, nullptr, 48, 0); });
}

TEST(CopySimulationAlignedFixed, FaultsOnTheQuotientOutOfRange)
{
    ExpectKilledBy(SIGFPE, [] { copySimulationAlignedFixed(nullptr, nullptr, lowest, -1); });
}

TEST(CopySimulationAlignedVariable, FaultsOnTheQuotientOutOfRange)
{
    ExpectKilledBy(SIGFPE, [] { copySimulationAlignedVariable(nullptr, nullptr, lowest, -1); });
}

TEST(CopySimulationUnaligned, DoesNothingOnTheQuotientOutOfRange)
{
    copySimulationUnaligned(nullptr, nullptr, lowest, -1);
}

TEST(Division, GivesTheQuotientTruncated)
{
    for (const int dividend : {0, 1, 2, 7, 15, 16, 47, 48, highest, -1, -7, -48, lowest})
        for (const int divisor : {1, 2, 3, 16, 33, highest, -1, -2, -3, -33, lowest}) {
            if (dividend == lowest && divisor == -1)
                continue;
            EXPECT_EQ(dividend / divisor, DivideOrFault(dividend, divisor));
            EXPECT_EQ(dividend / divisor, PortableRoad::DivideOrRaise(dividend, divisor));
            const auto number = static_cast<unsigned>(dividend);
            const auto part = static_cast<unsigned>(divisor);
            EXPECT_EQ(number / part, DivideOrFault(number, part));
            EXPECT_EQ(number / part, PortableRoad::DivideOrRaise(number, part));
        }
}

TEST(Division, FaultsWhereThereIsNoQuotient)
{
    ExpectKilledBy(SIGFPE, [] { DivideOrFault(5, 0); });
    ExpectKilledBy(SIGFPE, [] { DivideOrFault(0, 0); });
    ExpectKilledBy(SIGFPE, [] { DivideOrFault(lowest, -1); });
    ExpectKilledBy(SIGFPE, [] { DivideOrFault(5U, 0U); });
    EXPECT_EQ(0U, DivideOrFault(highestUnsigned / 2 + 1, highestUnsigned));
}

TEST(PortableDivision, RaisesWhereThereIsNoQuotient)
{
    ExpectKilledBy(SIGFPE, [] { PortableRoad::DivideOrRaise(5, 0); });
    ExpectKilledBy(SIGFPE, [] { PortableRoad::DivideOrRaise(lowest, 0); });
    ExpectKilledBy(SIGFPE, [] { PortableRoad::DivideOrRaise(lowest, -1); });
    ExpectKilledBy(SIGFPE, [] { PortableRoad::DivideOrRaise(5U, 0U); });
}

// A handler goes on from here, and notes the signal that it was called for.
sigjmp_buf recovery;
volatile std::sig_atomic_t caught = 0;

void Recover(int signal)
{
    caught = signal;
    siglongjmp(recovery, 1);
}

// The signal by which the call is left; 0 if it comes back.
template <typename Call>
int SignalThatLeaves(Call call)
{
    caught = 0;
    if (sigsetjmp(recovery, 1) == 0)
        call();
    return caught;
}

TEST(PortableDivision, CanBeLeftByAHandlerThatJumps)
{
    const auto oldHandler = std::signal(SIGFPE, Recover);
    EXPECT_EQ(0, SignalThatLeaves([] { PortableRoad::DivideOrRaise(lowest, 1); }));
    EXPECT_EQ(SIGFPE, SignalThatLeaves([] { PortableRoad::DivideOrRaise(5, 0); }));
    EXPECT_EQ(SIGFPE, SignalThatLeaves([] { PortableRoad::DivideOrRaise(lowest, -1); }));
    EXPECT_EQ(SIGFPE, SignalThatLeaves([] { PortableRoad::DivideOrRaise(5U, 0U); }));
    std::signal(SIGFPE, oldHandler);
}

TEST(PortableDivision, AbortsBehindAHandlerThatReturns)
{
    const auto oldHandler = std::signal(SIGFPE, SIG_IGN);
    const auto oldAbort = std::signal(SIGABRT, Recover);
    EXPECT_EQ(SIGABRT, SignalThatLeaves([] { PortableRoad::DivideOrRaise(5, 0); }));
    std::signal(SIGABRT, oldAbort);
    std::signal(SIGFPE, oldHandler);
}

TEST(PortableDivision, EndsTheProgramBehindAHandlerThatReturns)
{
    ExpectKilledBy(SIGABRT, [] {
        std::signal(SIGFPE, SIG_IGN);
        PortableRoad::DivideOrRaise(5, 0);
    });
}

} // namespace
} // namespace zvk::Pelkraft
