#include "pelkraft/copy_primitives.h"
#include "tests/copy/copy_check.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

namespace zvk::Pelkraft {
namespace {

using namespace TestSupport;

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();

CopyCall CopySimulationUnaligned(int size, int pixelBytes)
{
    return [=](unsigned char* source, unsigned char* destination) {
        copySimulationUnaligned(source, destination, size, pixelBytes);
    };
}

// The end of the last pixel's last unit.
long long NaiveRange(int size, int pixelBytes)
{
    long long end = 0;
    for (long long pixel = 0; (pixel + 1) * pixelBytes <= size; ++pixel)
        for (long long unit = 0; unit * 16 < pixelBytes; ++unit)
            end = pixel * pixelBytes + unit * 16 + 16;
    return end;
}

TEST(CopySimulationUnaligned, RunsOverByTheLastPixelsLastUnit)
{
    for (int pixelBytes = 1; pixelBytes <= 50; ++pixelBytes)
        for (int size = 0; size <= 110; ++size) {
            SCOPED_TRACE(testing::Message() << size << " by " << pixelBytes);
            ExpectCopies(NaiveRange(size, pixelBytes), CopySimulationUnaligned(size, pixelBytes));
        }
    ExpectCopies(100000, CopySimulationUnaligned(100000, 100000));
    ExpectCopies(6665 * 15 + 16, CopySimulationUnaligned(99999, 15));
}

TEST(CopySimulationUnaligned, WritesTheStatedNumbersOfBytes)
{
    ExpectCopies(22, CopySimulationUnaligned(10, 3));
    ExpectCopies(0, CopySimulationUnaligned(2, 3));
    ExpectCopies(16, CopySimulationUnaligned(3, 3));
    ExpectCopies(16, CopySimulationUnaligned(17, 16));
}

TEST(CopySimulationUnaligned, TakesAnyAddress)
{
    const Bytes content = RandomBytes(60 + 16, 21);
    for (std::size_t gap = 0; gap != 16; ++gap)
        for (std::size_t otherGap = 0; otherGap != 16; ++otherGap) {
            const GuardedBuffer source(content, Flush::AtStart, gap);
            const GuardedBuffer destination(Bytes(content.size()), Flush::AtStart, otherGap);
            copySimulationUnaligned(source.data(), destination.data(), 63, 3);
            EXPECT_EQ(content, destination.bytes()) << gap << ", " << otherGap;
        }
}

TEST(CopySimulationUnaligned, ReadsAUnitWholeBeforeItWritesIt)
{
    constexpr int pixelBytes = 20;
    constexpr int start = 50;
    for (int distance = -20; distance <= 20; ++distance) {
        const Bytes before = RandomBytes(200, 22);
        Bytes expected = before;
        for (const int unit : {0, 16, 20, 36, 40, 56}) {
            const auto from = expected.begin() + start + unit;
            const Bytes moved(from, from + 16);
            std::copy(moved.begin(), moved.end(), from + distance);
        }
        Bytes actual = before;
        copySimulationUnaligned(actual.data() + start, actual.data() + start + distance,
                                3 * pixelBytes, pixelBytes);
        EXPECT_EQ(expected, actual) << distance;
    }
}

TEST(CopySimulationUnaligned, DoesNothingWithAPixelAboveSize)
{
    for (const int size : {0, 1, 5, 100})
        for (const int pixelBytes : {size + 1, size + 17, highest, -1, -16, -size - 1, lowest}) {
            SCOPED_TRACE(testing::Message() << size << " by " << pixelBytes);
            ExpectCopies(0, CopySimulationUnaligned(size, pixelBytes));
            copySimulationUnaligned(nullptr, nullptr, size, pixelBytes);
        }
}

TEST(CopySimulationUnaligned, DoesNothingWithANegativeSize)
{
    for (const int size : {-1, -16, -100, lowest})
        for (const int pixelBytes : {1, 3, 16, 17, highest, -1, -3, -200, lowest}) {
            SCOPED_TRACE(testing::Message() << size << " by " << pixelBytes);
            ExpectCopies(0, CopySimulationUnaligned(size, pixelBytes));
            copySimulationUnaligned(nullptr, nullptr, size, pixelBytes);
        }
}

} // namespace
} // namespace zvk::Pelkraft
