#include "tests/rows/guarded_row.h"

#include <gtest/gtest.h>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr int byteValues = 256;
constexpr int wordValues = 65536;

Bytes AllBytes()
{
    Bytes bytes;
    for (int value = 0; value != byteValues; ++value)
        bytes.push_back(static_cast<unsigned char>(value));
    return bytes;
}

Bytes AllWords()
{
    Bytes bytes;
    for (int value = 0; value != wordValues; ++value) {
        bytes.push_back(static_cast<unsigned char>(value % 256));
        bytes.push_back(static_cast<unsigned char>(value / 256));
    }
    return bytes;
}

// Told by where each result begins, not by the arithmetic that gives it: 0 for 130 inputs, 255
// for the last 128, and 257 inputs for each value between.
Bytes NarrowedWords()
{
    Bytes narrowed(130, 0);
    for (int value = 1; value != 255; ++value)
        narrowed.insert(narrowed.end(), 257, static_cast<unsigned char>(value));
    narrowed.insert(narrowed.end(), 128, 255);
    return narrowed;
}

Bytes WidenedBytes()
{
    Bytes widened;
    for (int value = 0; value != byteValues; ++value)
        widened.insert(widened.end(), 2, static_cast<unsigned char>(value));
    return widened;
}

// All values as one channel, or dealt out over several; the layouts must then be the same.
class SampleValues : public ::testing::TestWithParam<int>
{
protected:
    void ExpectFilled(int fromBits, const Bytes& content, int toBits, const Bytes& expected)
    {
        const int channels = GetParam();
        const int samples = static_cast<int>(content.size()) / ((fromBits + 7) / 8);
        const int width = samples / channels;
        for (const bool portable : {false, true})
            for (const bool planar : {false, true}) {
                SCOPED_TRACE(portable ? "portable" : "vector");
                const GuardedRow source({width, channels, fromBits, planar}, content);
                GuardedRow row({width, channels, toBits, planar}, Bytes(expected.size(), 0xA5));
                row.row.FillFrom(source.row, false, portable);
                EXPECT_TRUE(expected == row.buffer.bytes());
            }
    }
};

TEST_P(SampleValues, AreDoubledIntoSixteenBits)
{
    ExpectFilled(8, AllBytes(), 16, WidenedBytes());
}

TEST_P(SampleValues, AreNarrowedToEightBits)
{
    const Bytes narrowed = NarrowedWords();
    ASSERT_EQ(static_cast<std::size_t>(wordValues), narrowed.size());
    EXPECT_EQ(0, narrowed[129]);
    EXPECT_EQ(1, narrowed[130]);
    EXPECT_EQ(1, narrowed[386]);
    EXPECT_EQ(2, narrowed[387]);
    EXPECT_EQ(127, narrowed[32768]);
    EXPECT_EQ(128, narrowed[32769]);
    EXPECT_EQ(254, narrowed[65407]);
    EXPECT_EQ(255, narrowed[65408]);
    ExpectFilled(16, AllWords(), 8, narrowed);
}

TEST_P(SampleValues, SurviveTheWayToSixteenBitsAndBack)
{
    ExpectFilled(16, WidenedBytes(), 8, AllBytes());
}

TEST_P(SampleValues, OfEqualDepthAreCopied)
{
    ExpectFilled(16, AllWords(), 16, AllWords());
    ExpectFilled(8, AllBytes(), 8, AllBytes());
}

// Two bytes a sample, of which nothing is assumed.
TEST(InterleavedValues, OfDepthTenAreCopied)
{
    for (const bool portable : {false, true}) {
        const GuardedRow source({wordValues / 8, 8, 10, false}, AllWords());
        GuardedRow row({wordValues / 8, 8, 10, false}, Bytes(2 * std::size_t{wordValues}, 0xA5));
        row.row.FillFrom(source.row, false, portable);
        EXPECT_TRUE(source.before == row.buffer.bytes());
    }
}

INSTANTIATE_TEST_SUITE_P(ByChannels, SampleValues, ::testing::Values(1, 2, 16, 32),
                         ::testing::PrintToStringParamName());

// One plane after the other with all byte values, packed to their lowest bits.
void ExpectPacked(int depth, bool portable)
{
    const int perByte = 8 / depth;
    Bytes expected;
    for (int first = 0; first != byteValues; first += perByte) {
        int byte = 0;
        for (int value = first; value != first + perByte; ++value)
            byte = (byte << depth) + value % (1 << depth);
        expected.push_back(static_cast<unsigned char>(byte));
    }
    const GuardedRow source({byteValues, 1, 8, false}, AllBytes());
    GuardedRow row({byteValues, 1, depth, true}, Bytes(expected.size(), 0xA5));
    row.row.FillFrom(source.row, false, portable);
    EXPECT_TRUE(expected == row.buffer.bytes()) << depth << (portable ? " portable" : " vector");
}

TEST(PackedValues, AreTheLowestBitsOfEveryByte)
{
    for (const int depth : {1, 2})
        for (const bool portable : {false, true})
            ExpectPacked(depth, portable);
}

// Sixteen channels, which both roads unpack whole; each starts at another byte value.
void ExpectUnpacked(int depth, int toBits, bool portable)
{
    constexpr int channels = 16;
    const int perByte = 8 / depth;
    const int width = byteValues * perByte;
    Bytes content;
    Bytes expected;
    for (int channel = 0; channel != channels; ++channel)
        for (int i = 0; i != byteValues; ++i) {
            const int byte = (i + channel * 16) % byteValues;
            content.push_back(static_cast<unsigned char>(byte));
            for (int k = perByte - 1; k >= 0; --k) {
                const int level = (byte >> (k * depth)) % (1 << depth);
                expected.insert(expected.end(), static_cast<std::size_t>(toBits / 8),
                                static_cast<unsigned char>(level));
            }
        }
    const GuardedRow source({width, channels, depth, true}, content);
    GuardedRow row({width, channels, toBits, true}, Bytes(expected.size(), 0xA5));
    row.row.FillFrom(source.row, false, portable);
    EXPECT_TRUE(expected == row.buffer.bytes()) << depth << (portable ? " portable" : " vector");
}

TEST(UnpackedValues, AreTheLevelsOfEveryByte)
{
    for (const int depth : {1, 2})
        for (const int toBits : {8, 16})
            for (const bool portable : {false, true})
                ExpectUnpacked(depth, toBits, portable);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
