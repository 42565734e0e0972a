#include "copy/division.h"
#include "pelkraft/copy_primitives.h"
#include "tests/copy/copy_check.h"

#include <gtest/gtest.h>

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
        ExpectDivideError([&] { GetParam().run(source, destination, size, 0); });
    }
}

TEST_P(DivideError, ComesBeforeAnyAccess)
{
    ExpectDivideError([] { GetParam().run(nullptr, nullptr, 48, 0); });
}

TEST(CopySimulationAlignedFixed, FaultsOnTheQuotientOutOfRange)
{
    ExpectQuotientOutOfRange([] { copySimulationAlignedFixed(nullptr, nullptr, lowest, -1); });
}

TEST(CopySimulationAlignedVariable, FaultsOnTheQuotientOutOfRange)
{
    ExpectQuotientOutOfRange([] { copySimulationAlignedVariable(nullptr, nullptr, lowest, -1); });
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
    ExpectDivideError([] { DivideOrFault(5, 0); });
    ExpectDivideError([] { DivideOrFault(0, 0); });
    ExpectQuotientOutOfRange([] { DivideOrFault(lowest, -1); });
    ExpectDivideError([] { DivideOrFault(5U, 0U); });
    EXPECT_EQ(0U, DivideOrFault(highestUnsigned / 2 + 1, highestUnsigned));
}

TEST(PortableDivision, RaisesWhereThereIsNoQuotient)
{
    ExpectRaised(SIGFPE, [] { PortableRoad::DivideOrRaise(5, 0); });
    ExpectRaised(SIGFPE, [] { PortableRoad::DivideOrRaise(lowest, 0); });
    ExpectRaised(SIGFPE, [] { PortableRoad::DivideOrRaise(lowest, -1); });
    ExpectRaised(SIGFPE, [] { PortableRoad::DivideOrRaise(5U, 0U); });
}

TEST(PortableDivision, CanBeLeftByAHandlerThatJumps)
{
    EXPECT_FALSE(IsLeftByHandler(SIGFPE, [] { PortableRoad::DivideOrRaise(lowest, 1); }));
    EXPECT_TRUE(IsLeftByHandler(SIGFPE, [] { PortableRoad::DivideOrRaise(5, 0); }));
    EXPECT_TRUE(IsLeftByHandler(SIGFPE, [] { PortableRoad::DivideOrRaise(lowest, -1); }));
    EXPECT_TRUE(IsLeftByHandler(SIGFPE, [] { PortableRoad::DivideOrRaise(5U, 0U); }));
}

TEST(PortableDivision, AbortsBehindAHandlerThatReturns)
{
    const auto oldHandler = std::signal(SIGFPE, SIG_IGN);
    EXPECT_TRUE(IsLeftByHandler(SIGABRT, [] { PortableRoad::DivideOrRaise(5, 0); }));
    std::signal(SIGFPE, oldHandler);
}

TEST(PortableDivision, EndsTheProgramBehindAHandlerThatReturns)
{
    ExpectRaised(SIGABRT, [] {
        std::signal(SIGFPE, SIG_IGN);
        PortableRoad::DivideOrRaise(5, 0);
    });
}

} // namespace
} // namespace zvk::Pelkraft
