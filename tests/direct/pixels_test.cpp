#include "direct/kernels.h"

#include "tests/support/guarded_buffer.h"
#include "tests/support/random_bytes.h"

#include "zvk/system_tools.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <ostream>
#include <random>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Testonly {
namespace {

using TestSupport::Flush;
using TestSupport::GuardedBuffer;
using TestSupport::RandomBytes;
using Bytes = std::vector<unsigned char>;
using Sizes = std::vector<std::size_t>;

constexpr std::uint32_t seed = 20;

struct Level
{
    const char* name;
    int needed;
    const PixelKernels* kernels;
};

void PrintTo(const Level& level, std::ostream* out)
{
    *out << level.name;
}

const std::vector<Level>& AllLevels()
{
    static const std::vector<Level> levels = {
        {"Portable", 0, &PortableRoad::GetPixelKernels()},
#ifdef PELKRAFT_VECTOR_ROAD
        {"Vector", 3, &VectorRoad::GetPixelKernels()},
#endif
#ifdef PELKRAFT_WIDE_ROADS
        {"Avx2", 6, &Avx2Road::GetPixelKernels()},
        {"Avx512", 7, &Avx512Road::GetPixelKernels()},
#endif
    };
    return levels;
}

struct Shape
{
    std::size_t sourceBytes;
    std::size_t destinationBytes;
    std::size_t repeat;
    bool mirrored;
};

std::size_t SourcePixels(const Shape& shape, std::size_t pixels)
{
    return (pixels + shape.repeat - 1) / shape.repeat;
}

// Pixel by pixel from the definition. Null places stand for pixels moved as they are.
Bytes NaiveRow(const Shape& shape, const unsigned char* places, const Bytes& source,
               std::size_t pixels)
{
    Bytes row;
    for (std::size_t pixel = 0; pixel < pixels; ++pixel) {
        const std::size_t run = SourcePixels(shape, pixels);
        const std::size_t number = pixel / shape.repeat;
        const std::size_t from = shape.mirrored ? run - 1 - number : number;
        for (std::size_t byte = 0; byte < shape.destinationBytes; ++byte) {
            const std::size_t place = places ? places[byte] : byte;
            const bool isEmpty = places && place == emptyByte;
            row.push_back(isEmpty ? static_cast<unsigned char>(0)
                                  : source.at(from * shape.sourceBytes + place));
        }
    }
    return row;
}

// Runs the kernel between forbidden pages: flush with the first or with the second, or at an odd
// address, over two fills, so that a byte left alone cannot agree with both.
template <typename Run>
void CheckRow(const Bytes& source, const Bytes& expected, Run run)
{
    const struct
    {
        Flush flush;
        std::size_t gap;
        unsigned char fill;
    } ways[] = {{Flush::AtEnd, 0, 0x00}, {Flush::AtStart, 0, 0xff}, {Flush::AtStart, 1, 0x5a}};
    for (const auto& way : ways) {
        const GuardedBuffer from(source, way.flush, way.gap);
        const GuardedBuffer to(Bytes(expected.size(), way.fill), way.flush, 3 * way.gap);
        run(from.data(), to.data());
        const Bytes row = to.bytes();
        const auto difference = std::mismatch(expected.begin(), expected.end(), row.begin());
        ASSERT_EQ(difference.first - expected.begin(), static_cast<std::ptrdiff_t>(expected.size()))
            << "is the first byte that differs; " << static_cast<int>(way.gap) << " bytes of gap";
        ASSERT_TRUE(source == from.bytes());
    }
}

std::string Describe(const Shape& shape, std::size_t pixels)
{
    return std::to_string(shape.sourceBytes) + " to " + std::to_string(shape.destinationBytes) +
           " bytes, repeat " + std::to_string(shape.repeat) +
           (shape.mirrored ? ", mirrored, " : ", ") + std::to_string(pixels) + " pixels";
}

PixelStep MakeStep(const Shape& shape, const Bytes& places)
{
    PixelStep step{};
    step.sourceBytes = static_cast<std::uint8_t>(shape.sourceBytes);
    step.destinationBytes = static_cast<std::uint8_t>(shape.destinationBytes);
    step.repeat = static_cast<std::uint8_t>(shape.repeat);
    step.mirrored = shape.mirrored;
    // The bytes past the pixel's places must not matter.
    step.places.fill(0x77);
    std::copy(places.begin(), places.end(), step.places.begin());
    return step;
}

void CheckStep(const Level& level, const Shape& shape, const Bytes& places, std::size_t pixels)
{
    SCOPED_TRACE(std::string(level.name) + ": " + Describe(shape, pixels));
    const PixelStep step = MakeStep(shape, places);
    const Bytes source =
        RandomBytes(SourcePixels(shape, pixels) * shape.sourceBytes, seed + std::uint32_t(pixels));
    const Bytes expected = NaiveRow(shape, step.places.data(), source, pixels);
    CheckRow(source, expected, [&](const unsigned char* from, unsigned char* to) {
        level.kernels->step(step, {&from, &to, 1}, pixels);
    });
    PreparedStep prepared;
    prepared.step = &step;
    prepared.destinationPixels = pixels;
    level.kernels->prepare(prepared);
    CheckRow(source, expected, [&](const unsigned char* from, unsigned char* to) {
        prepared.run(prepared, from, to);
    });
}

// Rows of one call, each between forbidden pages of its own.
void CheckRows(const Level& level, const Shape& shape, const Bytes& places, std::size_t pixels)
{
    SCOPED_TRACE(std::string(level.name) + ": rows of " + Describe(shape, pixels));
    constexpr std::size_t count = 3;
    const PixelStep step = MakeStep(shape, places);
    std::vector<GuardedBuffer> sources;
    std::vector<GuardedBuffer> destinations;
    std::vector<const unsigned char*> from;
    std::vector<unsigned char*> to;
    for (std::size_t row = 0; row < count; ++row) {
        const Flush flush = row == 1 ? Flush::AtStart : Flush::AtEnd;
        const std::size_t bytes = SourcePixels(shape, pixels) * shape.sourceBytes;
        sources.emplace_back(RandomBytes(bytes, seed + std::uint32_t(row)), flush);
        destinations.emplace_back(Bytes(pixels * shape.destinationBytes, 0xa5), flush);
    }
    for (std::size_t row = 0; row < count; ++row) {
        from.push_back(sources[row].data());
        to.push_back(destinations[row].data());
    }
    level.kernels->step(step, {from.data(), to.data(), count}, pixels);
    for (std::size_t row = 0; row < count; ++row)
        ASSERT_TRUE(NaiveRow(shape, step.places.data(), sources[row].bytes(), pixels) ==
                    destinations[row].bytes())
            << "in row " << row;
}

void CheckMove(const Level& level, const Shape& shape, std::size_t pixels)
{
    SCOPED_TRACE(std::string(level.name) + ": " + Describe(shape, pixels));
    const PixelMove move{shape.sourceBytes, static_cast<std::uint8_t>(shape.repeat),
                         shape.mirrored};
    const Bytes source =
        RandomBytes(SourcePixels(shape, pixels) * shape.sourceBytes, seed + std::uint32_t(pixels));
    CheckRow(source, NaiveRow(shape, nullptr, source, pixels),
             [&](const unsigned char* from, unsigned char* to) {
                 level.kernels->move(move, from, to, pixels);
             });
}

// Places from all over the source pixel, some of them more than once, and some empty ones.
Bytes RandomPlaces(const Shape& shape, std::mt19937& random)
{
    Bytes places;
    for (std::size_t byte = 0; byte < shape.destinationBytes; ++byte)
        places.push_back(random() % 5 == 0
                             ? emptyByte
                             : static_cast<unsigned char>(random() % shape.sourceBytes));
    return places;
}

constexpr std::size_t noChannel = 99;

// The bytes of whole channels.
Bytes PlacesOf(const std::vector<std::size_t>& channels, std::size_t sampleBytes)
{
    Bytes places;
    for (std::size_t channel : channels)
        for (std::size_t byte = 0; byte < sampleBytes; ++byte)
            places.push_back(channel == noChannel
                                 ? emptyByte
                                 : static_cast<unsigned char>(channel * sampleBytes + byte));
    return places;
}

Sizes PixelSizesUpTo(std::size_t most)
{
    Sizes sizes;
    for (std::size_t size : Sizes{1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14,
                                  15, 16, 17, 20, 24, 25, 31, 32, 33, 40, 47, 48, 63, 64})
        if (size <= most)
            sizes.push_back(size);
    return sizes;
}

// The others are printed as not run.
std::vector<Level> LevelsThatRun()
{
    std::vector<Level> levels;
    for (const Level& level : AllLevels()) {
        if (level.needed <= SystemTools::GetSseVersion())
            levels.push_back(level);
        else
            std::printf("%s is not run: the processor lacks it\n", level.name);
    }
    return levels;
}

class DirectPixels : public testing::TestWithParam<Level>
{
protected:
    // Calls check(shape) for each repeat, forwards and mirrored.
    template <typename Check>
    static void ForEachWay(std::size_t sourceBytes, std::size_t destinationBytes, Check check)
    {
        for (std::size_t repeat : Sizes{1, 2, 4})
            for (bool mirrored : {false, true})
                check(Shape{sourceBytes, destinationBytes, repeat, mirrored});
    }
};

TEST_P(DirectPixels, StepEveryPairOfSizes)
{
    std::mt19937 random(seed);
    const Sizes sizes = PixelSizesUpTo(GetParam().kernels->stepBytes);
    for (std::size_t sourceBytes : sizes)
        for (std::size_t destinationBytes : sizes)
            ForEachWay(sourceBytes, destinationBytes, [&](const Shape& shape) {
                for (std::size_t pixels : Sizes{0, 1, 2, 3, 5, 17, 40, 99, 150}) {
                    CheckStep(GetParam(), shape, RandomPlaces(shape, random), pixels);
                    if (HasFatalFailure())
                        return;
                }
            });
}

TEST_P(DirectPixels, StepEveryWidth)
{
    std::mt19937 random(seed);
    for (auto [sourceBytes, destinationBytes] : {std::pair{1, 1},
                                                 {2, 2},
                                                 {3, 3},
                                                 {4, 4},
                                                 {4, 6},
                                                 {8, 8},
                                                 {8, 12},
                                                 {3, 4},
                                                 {4, 3},
                                                 {5, 6},
                                                 {2, 3},
                                                 {3, 5},
                                                 {16, 16},
                                                 {12, 1},
                                                 {1, 12},
                                                 {9, 14}})
        ForEachWay(static_cast<std::size_t>(sourceBytes),
                   static_cast<std::size_t>(destinationBytes), [&](const Shape& shape) {
                       for (std::size_t pixels = 0; pixels <= 150; ++pixels)
                           CheckStep(GetParam(), shape, RandomPlaces(shape, random), pixels);
                       for (std::size_t pixels : Sizes{255, 256, 257, 511, 513, 999, 1000, 1003})
                           CheckStep(GetParam(), shape, RandomPlaces(shape, random), pixels);
                   });
}

TEST_P(DirectPixels, StepEveryOrderOfFourChannels)
{
    std::vector<std::size_t> order = {0, 1, 2, 3};
    do
        for (std::size_t sampleBytes : Sizes{1, 2})
            for (std::size_t empty = 0; empty <= order.size(); ++empty)
                for (std::size_t pixels : Sizes{1, 2, 3, 8, 33, 70}) {
                    std::vector<std::size_t> channels = order;
                    if (empty < order.size())
                        channels[empty] = noChannel;
                    const std::size_t bytes = 4 * sampleBytes;
                    CheckStep(GetParam(), {bytes, bytes, 1, empty % 2 != 0},
                              PlacesOf(channels, sampleBytes), pixels);
                }
    while (std::next_permutation(order.begin(), order.end()));
}

TEST_P(DirectPixels, StepChannelsOfSeveralBytes)
{
    std::mt19937 random(seed);
    const std::size_t most = GetParam().kernels->stepBytes / 2;
    for (std::size_t sourceChannels = 1; sourceChannels <= most; ++sourceChannels)
        for (std::size_t channelCount = 1; channelCount <= most; ++channelCount) {
            std::vector<std::size_t> channels;
            for (std::size_t channel = 0; channel < channelCount; ++channel)
                channels.push_back(random() % 5 == 0 ? noChannel : random() % sourceChannels);
            for (std::size_t pixels : Sizes{1, 40, 300})
                CheckStep(GetParam(), {2 * sourceChannels, 2 * channelCount, 1, false},
                          PlacesOf(channels, 2), pixels);
        }
}

TEST_P(DirectPixels, StepSeveralRowsInOneCall)
{
    std::mt19937 random(seed);
    for (std::size_t bytes : PixelSizesUpTo(16))
        ForEachWay(bytes, bytes, [&](const Shape& shape) {
            for (std::size_t pixels : Sizes{0, 1, 7, 33, 130, 257})
                CheckRows(GetParam(), shape, RandomPlaces(shape, random), pixels);
        });
}

TEST_P(DirectPixels, StepWhereAllBytesAreEmpty)
{
    for (std::size_t bytes : PixelSizesUpTo(GetParam().kernels->stepBytes))
        ForEachWay(bytes, bytes, [&](const Shape& shape) {
            CheckStep(GetParam(), shape, Bytes(bytes, emptyByte), 150);
        });
}

TEST_P(DirectPixels, MoveEverySize)
{
    Sizes sizes;
    for (std::size_t size = 1; size <= 130; ++size)
        sizes.push_back(size);
    sizes.insert(sizes.end(), {255, 256, 257, 300, 511, 512, 513, 5000});
    for (std::size_t bytes : sizes)
        ForEachWay(bytes, bytes, [&](const Shape& shape) {
            for (std::size_t pixels : Sizes{0, 1, 2, 3, 5, 8, 31, 66})
                CheckMove(GetParam(), shape, pixels);
        });
}

INSTANTIATE_TEST_SUITE_P(EveryLevel, DirectPixels, testing::ValuesIn(LevelsThatRun()),
                         [](const auto& level) { return std::string(level.param.name); });

} // namespace
} // namespace zvk::Pelkraft::Testonly
