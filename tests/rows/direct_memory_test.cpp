#include "tests/rows/fake_processor.h"
#include "tests/support/conversion_grid.h"
#include "tests/support/counted_memory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

// No conversion on the direct road takes memory, whatever its rows are. Only memory is watched
// here: that the samples are right is checked elsewhere.
namespace zvk::Pelkraft::TestSupport {
namespace {

// One case of so many has the widest rows, or the test would move terabytes.
constexpr std::uint64_t wideEvery = 211;
constexpr int widest = 100000;

std::vector<int> AllChannelCounts()
{
    std::vector<int> counts;
    for (int count = 1; count <= 40; ++count)
        counts.push_back(count);
    counts.insert(counts.end(), {64, 65, 130});
    return counts;
}

class DirectMemory : public ::testing::Test
{
protected:
    void Check(const ConversionCase& tested)
    {
        const std::size_t sourceBytes = NaiveRowBytes(tested.source);
        const std::size_t rowBytes = NaiveRowBytes(tested.destination);
        source.resize(std::max(source.size(), sourceBytes));
        destination.resize(std::max(destination.size(), rowBytes));

        CountedMemory memory;
        memory.FailAt(0, CountedMemory::Fails::ForEver);
        memory.Start();
        bool refused = false;
        try {
            RunConversion(tested, source.data(), destination.data());
        } catch (...) {
            refused = true;
        }
        memory.Stop();
        EXPECT_FALSE(refused) << Describe(tested);
        EXPECT_EQ(0U, memory.CountAsked()) << Describe(tested);
        ++count;
    }

    void CheckAllOf(int channels, int width, std::uint64_t every)
    {
        for (const NaiveOperation& operation : Operations(channels))
            for (const auto& pair : ServedForms(operation)) {
                // A repeat is as long as the widest row, not four times so.
                const int sourceWidth =
                    width == widest ? width / std::abs(operation.factor) : width;
                const ConversionCase tested =
                    CaseOf({pair, channels, sourceWidth,
                            DestinationWidth(sourceWidth, operation.factor, 0), isPortable},
                           operation);
                if (asked++ % every == 0 && IsServedDirectly(tested))
                    Check(tested);
            }
    }

    bool isPortable = false;
    std::uint64_t asked = 0;
    std::uint64_t count = 0;

private:
    Bytes source;
    Bytes destination;
};

TEST_F(DirectMemory, IsNoneAtEachLevel)
{
    for (const int level : {0, 3, 6, 7}) {
        if (!FakeProcessor::CanReport(level)) {
            std::printf("level %d not run: the processor lacks it\n", level);
            continue;
        }
        SCOPED_TRACE(level);
        const FakeProcessor processor(level);
        isPortable = level < FakeProcessor::vectorLevel;
        for (const int channels : AllChannelCounts()) {
            for (const int width : {1, 37, 1000})
                CheckAllOf(channels, width, 1);
            CheckAllOf(channels, widest, wideEvery);
            if (HasFailure())
                return;
        }
    }
    std::printf("%llu conversions on the direct road without memory\n",
                static_cast<unsigned long long>(count));
    EXPECT_GT(count, 10000U);
}

// Or the test above would prove nothing.
TEST_F(DirectMemory, IsLackedByTheChain)
{
    CountedMemory memory;
    Bytes bytes(1000);
    const ConversionCase tested{{50, 3, 8, false}, {50, 3, 8, false}, {}, false};
    memory.Start();
    RunConversion(tested, bytes.data(), bytes.data() + 1);
    memory.Stop();
    EXPECT_NE(0U, memory.CountAsked());
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
