#include "tests/rows/guarded_row.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

// The tests say what an entry gives that names no channel of the source, on each road.
namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr int largest = std::numeric_limits<int>::max();
constexpr int smallest = std::numeric_limits<int>::min();
constexpr int width = 53;

#ifdef PELKRAFT_VECTOR_ROAD
constexpr bool roads[] = {true, false};
#else
constexpr bool roads[] = {true};
#endif

// Samples of the destination, pixel by pixel.
std::vector<unsigned> Remapped(const NaiveGeometry& from, const Bytes& content,
                               const std::vector<int>& map, bool portable)
{
    const NaiveGeometry to{from.width, static_cast<int>(map.size()), from.bits, false};
    const GuardedRow source(from, content);
    GuardedRow row(to, 21);
    row.row.FillFromWithRemap(source.row, map.data(), false, portable);
    EXPECT_TRUE(source.IsUntouched());
    return ReadSamples(to, row.buffer.bytes());
}

std::size_t At(int pixel, int channels, int channel)
{
    const int sample = pixel * channels + channel;
    return static_cast<std::size_t>(sample);
}

TEST(RemapEntry, TakesRepeatsDropsAndEmptiesChannels)
{
    const NaiveGeometry from{width, 4, 8, false};
    const Bytes content = RandomBytes(NaiveRowBytes(from), 1);
    for (const bool portable : roads) {
        const auto samples = Remapped(from, content, {2, 0, -1, 1, 0, 0}, portable);
        for (int pixel = 0; pixel != width; ++pixel) {
            EXPECT_EQ(content[At(pixel, 4, 2)], samples[At(pixel, 6, 0)]);
            EXPECT_EQ(content[At(pixel, 4, 0)], samples[At(pixel, 6, 1)]);
            EXPECT_EQ(0U, samples[At(pixel, 6, 2)]);
            EXPECT_EQ(content[At(pixel, 4, 1)], samples[At(pixel, 6, 3)]);
            EXPECT_EQ(content[At(pixel, 4, 0)], samples[At(pixel, 6, 4)]);
            EXPECT_EQ(content[At(pixel, 4, 0)], samples[At(pixel, 6, 5)]);
        }
    }
}

TEST(RemapEntry, GivesZeroForAnyNegativeNumber)
{
    for (const int bits : {1, 2, 8, 10, 16})
        for (const int channels : {1, 8, 16, 20, 33})
            for (const bool portable : roads) {
                const NaiveGeometry from{width, channels, bits, false};
                const Bytes content(NaiveRowBytes(from), 0xFF);
                const auto samples =
                    Remapped(from, content, {-1, -16, smallest, -2, smallest + 1}, portable);
                EXPECT_EQ(std::vector<unsigned>(samples.size(), 0), samples);
            }
}

int LanesOf(int channels, int bits)
{
    const int sampleBytes = (bits + 7) / 8;
    return (channels * sampleBytes + 15) / 16 * 16 / sampleBytes;
}

#ifdef PELKRAFT_VECTOR_ROAD
TEST(RemapEntry, GivesZeroBeyondTheSlotOnTheVectorRoad)
{
    for (const int bits : {8, 10, 16})
        for (const int channels : {1, 4, 7, 8, 9, 16, 17, 20, 32, 33}) {
            const NaiveGeometry from{width, channels, bits, false};
            const Bytes content(NaiveRowBytes(from), 0xFF);
            const int lanes = LanesOf(channels, bits);
            const auto samples =
                Remapped(from, content, {lanes, lanes + 1, 2 * lanes, largest}, false);
            EXPECT_EQ(std::vector<unsigned>(samples.size(), 0), samples) << bits << channels;
        }
}
#endif

// The lane after the last channel. Nothing writes there on the portable road, and operation
// buffers are zeroed.
TEST(RemapEntry, GivesTheFirstPadLaneOnThePortableRoad)
{
    for (const int bits : {8, 16})
        for (const int channels : {1, 3, 4, 7, 9, 17, 20}) {
            const NaiveGeometry from{width, channels, bits, false};
            ASSERT_LT(channels, LanesOf(channels, bits));
            const Bytes content(NaiveRowBytes(from), 0xFF);
            const int lanes = LanesOf(channels, bits);
            const auto samples =
                Remapped(from, content, {channels, channels + 1, lanes, lanes + 1, largest}, true);
            EXPECT_EQ(std::vector<unsigned>(samples.size(), 0), samples) << bits << channels;
        }
}

TEST(RemapEntry, GivesTheSameAheadOfEntriesWithin)
{
    for (const int bits : {8, 16})
        for (const int channels : {3, 4, 20})
            for (const bool portable : roads) {
                const NaiveGeometry from{width, channels, bits, false};
                const Bytes content = RandomBytes(NaiveRowBytes(from), 6);
                const auto samplesBefore = ReadSamples(from, content);
                const auto samples =
                    Remapped(from, content, {LanesOf(channels, bits), largest, 1, 0}, portable);
                for (int pixel = 0; pixel != width; ++pixel) {
                    EXPECT_EQ(0U, samples[At(pixel, 4, 0)]);
                    EXPECT_EQ(0U, samples[At(pixel, 4, 1)]);
                    EXPECT_EQ(samplesBefore[At(pixel, channels, 1)], samples[At(pixel, 4, 2)]);
                    EXPECT_EQ(samplesBefore[At(pixel, channels, 0)], samples[At(pixel, 4, 3)]);
                }
            }
}

// A lane after channels that fill the slot is the next pixel's first one; after the last slot of
// a chunk stands no pixel.
TEST(RemapEntry, GivesTheNextPixelsFirstSampleWhereTheSlotIsFull)
{
    for (const auto& [bits, channels] :
         {std::pair{8, 16}, std::pair{8, 32}, std::pair{16, 8}, std::pair{10, 16}}) {
        const NaiveGeometry from{width, channels, bits, false};
        const Bytes content = RandomBytes(NaiveRowBytes(from), 5);
        const auto samplesBefore = ReadSamples(from, content);
        for (const int entry : {channels, channels + 1, largest}) {
            const auto samples = Remapped(from, content, {0, entry}, true);
            for (int pixel = 0; pixel != width; ++pixel) {
                EXPECT_EQ(samplesBefore[At(pixel, channels, 0)], samples[At(pixel, 2, 0)]);
                if (pixel % 16 == 15 || pixel + 1 == width)
                    continue;
                EXPECT_EQ(samplesBefore[At(pixel + 1, channels, 0)], samples[At(pixel, 2, 1)])
                    << pixel;
            }
            // After the last pixel the chunk is filled up with zeros.
            EXPECT_EQ(0U, samples[At(width - 1, 2, 1)]);
        }
    }
}

// Whatever an entry gives, it is the same each time and leaves the other channels alone.
TEST(RemapEntry, OutOfRangeGivesTheSameEachTime)
{
    for (const int bits : {1, 8, 16})
        for (const int channels : {1, 5, 8, 16, 17})
            for (const bool portable : roads)
                for (const int entry : {channels, channels + 1, 15, 16, 17, 40, largest}) {
                    const NaiveGeometry from{width, channels, bits, false};
                    const Bytes content = RandomBytes(NaiveRowBytes(from), 6);
                    const auto before = ReadSamples(from, content);
                    const std::vector<int> map{entry, 0, entry};
                    const auto samples = Remapped(from, content, map, portable);
                    // Other rows in between, which would leave other bytes behind.
                    Remapped(from, Bytes(content.size(), 0xFF), map, portable);
                    EXPECT_EQ(samples, Remapped(from, content, map, portable));
                    for (int pixel = 0; pixel != width; ++pixel)
                        EXPECT_EQ(before[At(pixel, channels, 0)], samples[At(pixel, 3, 1)]);
                }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
