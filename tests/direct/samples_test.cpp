#include "direct/kernels.h"

#include "tests/support/guarded_buffer.h"
#include "tests/support/random_bytes.h"

#include "zvk/system_tools.h"

#include <gtest/gtest.h>

#include <iostream>
#include <iterator>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

using Bytes = std::vector<unsigned char>;

struct Level
{
    const char* name;
    const SampleKernels& kernels;
};

// Those that the processor has; the others are named on the console once.
const std::vector<Level>& Levels()
{
    static const std::vector<Level> levels = [] {
        std::vector<Level> found{{"portable", PortableRoad::GetSampleKernels()}};
        const auto add = [&](int needed, const Level& level) {
            if (SystemTools::GetSseVersion() >= needed)
                found.push_back(level);
            else
                std::cout << "not run, the processor lacks it: " << level.name << '\n';
        };
        if constexpr (hasVectorRoad)
            add(3, {"vector", VectorRoad::GetSampleKernels()});
        if constexpr (hasWideRoads) {
            add(6, {"avx2", Avx2Road::GetSampleKernels()});
            add(7, {"avx512", Avx512Road::GetSampleKernels()});
        }
        return found;
    }();
    return levels;
}

std::size_t BytesOf(std::size_t samples, std::size_t bits)
{
    return (samples * bits + 7) / 8;
}

// Packed samples stand from the top bit of a byte down, those of 16 bits have the low byte first.
unsigned GetSample(const Bytes& bytes, std::size_t bits, std::size_t index)
{
    if (bits == 16)
        return bytes[2 * index] + 256u * bytes[2 * index + 1];
    const std::size_t first = index * bits;
    return bytes[first / 8] >> (8 - bits - first % 8) & ((1u << bits) - 1);
}

void PutSample(Bytes& bytes, std::size_t bits, std::size_t index, unsigned value)
{
    if (bits == 16) {
        bytes[2 * index] = static_cast<unsigned char>(value % 256);
        bytes[2 * index + 1] = static_cast<unsigned char>(value / 256);
        return;
    }
    const std::size_t first = index * bits;
    bytes[first / 8] |= static_cast<unsigned char>(value << (8 - bits - first % 8));
}

// Both buffers of a call stand so, and the destination holds this before it.
struct Place
{
    std::size_t gap;
    Flush flush;
    unsigned char fill;
};

constexpr Place places[] = {{0, Flush::AtEnd, 0x00},
                            {0, Flush::AtStart, 0xff},
                            {1, Flush::AtEnd, 0xff},
                            {3, Flush::AtStart, 0x00}};

constexpr unsigned char fills[] = {0x00, 0xff};

// Around the blocks of every level and the strips of the portable one.
constexpr std::size_t longCounts[] = {511,  512,  513,  515,  519,  767,
                                      1000, 1023, 1024, 1025, 1040, 4099};

std::vector<std::size_t> Counts()
{
    std::vector<std::size_t> counts;
    for (std::size_t count = 0; count <= 300; ++count)
        counts.push_back(count);
    for (const std::size_t count : longCounts)
        counts.push_back(count);
    return counts;
}

unsigned Same(unsigned value)
{
    return value;
}

unsigned Widened(unsigned value)
{
    return value * 257;
}

unsigned Narrowed(unsigned value)
{
    return ((value * 65281u / 65536) + 127) / 256;
}

template <unsigned mask>
unsigned LowBits(unsigned value)
{
    return value & mask;
}

template <unsigned mask>
unsigned NarrowedLowBits(unsigned value)
{
    return Narrowed(value) & mask;
}

unsigned ToTwoLevels(unsigned value)
{
    return (value + 127) / 255;
}

unsigned ToFourLevels(unsigned value)
{
    return (3 * value + 127) / 255;
}

template <unsigned factor>
unsigned Times(unsigned value)
{
    return value * factor;
}

struct Job
{
    const char* name;
    std::size_t sourceBits;
    std::size_t destinationBits;
    unsigned (*value)(unsigned);
    SampleKernel (*kernelOf)(const SampleKernels&);
    // The bits that a byte of the source may have.
    unsigned char sourceMask = 0xff;
};

const Job jobs[] = {
    {"Widen", 8, 16, Widened, [](const SampleKernels& k) { return k.widen; }},
    {"Narrow", 16, 8, Narrowed, [](const SampleKernels& k) { return k.narrow; }},
    {"Pack1", 8, 1, LowBits<1>, [](const SampleKernels& k) { return k.pack[0]; }},
    {"Pack2", 8, 2, LowBits<3>, [](const SampleKernels& k) { return k.pack[1]; }},
    {"Unpack1", 1, 8, Same, [](const SampleKernels& k) { return k.unpack[0]; }},
    {"Unpack2", 2, 8, Same, [](const SampleKernels& k) { return k.unpack[1]; }},
    {"NarrowPack1", 16, 1, NarrowedLowBits<1>,
     [](const SampleKernels& k) { return k.narrowPack[0]; }},
    {"NarrowPack2", 16, 2, NarrowedLowBits<3>,
     [](const SampleKernels& k) { return k.narrowPack[1]; }},
    {"UnpackWiden1", 1, 16, Widened, [](const SampleKernels& k) { return k.unpackWiden[0]; }},
    {"UnpackWiden2", 2, 16, Widened, [](const SampleKernels& k) { return k.unpackWiden[1]; }},
    {"Quantize1", 8, 8, ToTwoLevels, [](const SampleKernels& k) { return k.quantize[0]; }},
    {"Quantize2", 8, 8, ToFourLevels, [](const SampleKernels& k) { return k.quantize[1]; }},
    {"Stretch1", 8, 8, Times<255>, [](const SampleKernels& k) { return k.stretch[0]; }, 1},
    {"Stretch2", 8, 8, Times<85>, [](const SampleKernels& k) { return k.stretch[1]; }, 3},
    {"Cut", 16, 8, LowBits<255>, [](const SampleKernels& k) { return k.cut; }},
    {"Extend", 8, 16, Same, [](const SampleKernels& k) { return k.extend; }},
};

class SampleKernelOf : public testing::TestWithParam<Job>
{
protected:
    static void KeepPossible(Bytes& source)
    {
        for (unsigned char& byte : source)
            byte &= GetParam().sourceMask;
    }

    static Bytes Naive(const Bytes& source, std::size_t samples)
    {
        const Job& job = GetParam();
        Bytes destination(BytesOf(samples, job.destinationBits));
        for (std::size_t i = 0; i < samples; ++i)
            PutSample(destination, job.destinationBits, i,
                      job.value(GetSample(source, job.sourceBits, i)));
        return destination;
    }

    static void Check(Bytes content, std::size_t samples, const Place& place)
    {
        KeepPossible(content);
        const Bytes expected = Naive(content, samples);
        const GuardedBuffer source(content, place.flush, place.gap);
        for (const Level& level : Levels()) {
            const GuardedBuffer destination(Bytes(expected.size(), place.fill), place.flush,
                                            place.gap);
            GetParam().kernelOf(level.kernels)(source.data(), destination.data(), samples);
            ASSERT_EQ(expected, destination.bytes())
                << level.name << ", " << samples << " samples, gap " << place.gap;
            ASSERT_EQ(content, source.bytes()) << level.name << ", " << samples << " samples";
        }
    }
};

TEST_P(SampleKernelOf, GivesEverySampleAtEveryCountAndPlace)
{
    for (const std::size_t samples : Counts())
        for (const Place& place : places)
            ASSERT_NO_FATAL_FAILURE(
                Check(RandomBytes(BytesOf(samples, GetParam().sourceBits), 11), samples, place));
}

TEST_P(SampleKernelOf, GivesEveryPossibleInput)
{
    Bytes every(std::size_t{2} * 65536);
    for (std::size_t i = 0; i < 65536; ++i)
        PutSample(every, 16, i, static_cast<unsigned>(i));
    ASSERT_NO_FATAL_FAILURE(Check(every, every.size() * 8 / GetParam().sourceBits, places[0]));
}

TEST_P(SampleKernelOf, WritesNothingPastTheLastSample)
{
    constexpr std::size_t margin = 64;
    for (std::size_t samples = 0; samples <= 300; ++samples) {
        Bytes source = RandomBytes(BytesOf(samples, GetParam().sourceBits), 12);
        KeepPossible(source);
        for (const unsigned char fill : fills) {
            Bytes expected(margin, fill);
            const Bytes middle = Naive(source, samples);
            expected.insert(expected.end(), middle.begin(), middle.end());
            expected.insert(expected.end(), margin, fill);
            for (const Level& level : Levels()) {
                Bytes destination(expected.size(), fill);
                GetParam().kernelOf(level.kernels)(source.data(), destination.data() + margin,
                                                   samples);
                ASSERT_EQ(expected, destination) << level.name << ", " << samples << " samples";
            }
        }
    }
}

std::string NameOfJob(const testing::TestParamInfo<Job>& info)
{
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(OfAll, SampleKernelOf, testing::ValuesIn(jobs), NameOfJob);

class BitMirror : public testing::TestWithParam<std::size_t>
{
protected:
    // With few samples skipped the plane starts with the byte of the first named sample, so that
    // a read before it faults.
    static void Check(std::size_t samples, std::size_t skipped, const Place& place)
    {
        const std::size_t depth = GetParam();
        const std::size_t end = samples + skipped;
        const Bytes content = RandomBytes(BytesOf(end, depth), 13);
        Bytes expected(BytesOf(samples, depth));
        for (std::size_t i = 0; i < samples; ++i)
            PutSample(expected, depth, i, GetSample(content, depth, end - 1 - i));
        const GuardedBuffer plane(content, place.flush, place.gap);
        for (const Level& level : Levels()) {
            const GuardedBuffer destination(Bytes(expected.size(), place.fill), place.flush,
                                            place.gap);
            level.kernels.mirror[depth - 1](plane.data(), end, destination.data(), samples);
            ASSERT_EQ(expected, destination.bytes())
                << level.name << ", " << samples << " samples before " << end;
        }
    }
};

TEST_P(BitMirror, TurnsAnySamplesBeforeAnyEnd)
{
    for (std::size_t samples = 0; samples <= 300; ++samples)
        for (std::size_t skipped = 0; skipped < 8; ++skipped)
            for (const Place& place : places)
                ASSERT_NO_FATAL_FAILURE(Check(samples, skipped, place));
}

TEST_P(BitMirror, TurnsLongRows)
{
    for (const std::size_t samples : longCounts)
        for (std::size_t skipped = 0; skipped < 8; ++skipped)
            for (const Place& place : places)
                ASSERT_NO_FATAL_FAILURE(Check(samples, skipped, place));
}

TEST_P(BitMirror, TurnsSamplesFarFromThePlanesStart)
{
    for (std::size_t skipped = 8; skipped < 700; skipped += 31)
        ASSERT_NO_FATAL_FAILURE(Check(1500, skipped, places[0]));
}

TEST_P(BitMirror, TurnsEveryByte)
{
    // The bytes of RandomBytes have every value many times over at this size.
    ASSERT_NO_FATAL_FAILURE(Check(65536, 0, places[0]));
    ASSERT_NO_FATAL_FAILURE(Check(65536, 3, places[0]));
}

INSTANTIATE_TEST_SUITE_P(OfDepth, BitMirror, testing::Values(std::size_t{1}, std::size_t{2}));

struct SplitCase
{
    std::size_t depth;
    std::size_t channels;
};

class PackSplit : public testing::TestWithParam<SplitCase>
{
protected:
    static Bytes Naive(const Bytes& row, std::size_t channel, std::size_t pixels)
    {
        const auto [depth, channels] = GetParam();
        Bytes plane(BytesOf(pixels, depth));
        for (std::size_t x = 0; x < pixels; ++x)
            PutSample(plane, depth, x, row[x * channels + channel] & ((1u << depth) - 1));
        return plane;
    }

    static void Check(std::size_t pixels, const Place& place)
    {
        const auto [depth, channels] = GetParam();
        const Bytes content = RandomBytes(pixels * channels, 14);
        const GuardedBuffer row(content, place.flush, place.gap);
        for (const Level& level : Levels()) {
            std::vector<GuardedBuffer> planes;
            std::vector<unsigned char*> pointers;
            for (std::size_t c = 0; c < channels; ++c) {
                planes.emplace_back(Bytes(BytesOf(pixels, depth), place.fill), place.flush,
                                    place.gap);
                pointers.push_back(planes[c].data());
            }
            level.kernels.packSplit[depth - 1][channels](row.data(), pointers.data(), pixels);
            for (std::size_t c = 0; c < channels; ++c)
                ASSERT_EQ(Naive(content, c, pixels), planes[c].bytes())
                    << level.name << ", channel " << c << " of " << pixels << " pixels";
        }
    }
};

TEST_P(PackSplit, GivesEveryChannelAtEveryCountAndPlace)
{
    for (const std::size_t pixels : Counts())
        for (const Place& place : places)
            ASSERT_NO_FATAL_FAILURE(Check(pixels, place));
}

std::string NameOf(const testing::TestParamInfo<SplitCase>& info)
{
    return std::to_string(info.param.channels) + "ChannelsTo" + std::to_string(info.param.depth);
}

constexpr SplitCase splitCases[] = {{1, 2}, {1, 3}, {1, 4}, {2, 2}, {2, 3}, {2, 4}};

INSTANTIATE_TEST_SUITE_P(Of, PackSplit, testing::ValuesIn(splitCases), NameOf);

TEST(PackSplitTable, HasNoKernelBelowTwoChannels)
{
    for (const Level& level : Levels())
        for (const auto& ofDepth : level.kernels.packSplit) {
            EXPECT_EQ(nullptr, ofDepth[0]) << level.name;
            EXPECT_EQ(nullptr, ofDepth[1]) << level.name;
        }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
