#include "tests/direct/kernel_levels.h"
#include "tests/support/guarded_buffer.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <tuple>

namespace zvk::Pelkraft {
namespace {

using TestSupport::AvailableKernelLevels;
using TestSupport::Flush;
using TestSupport::GuardedBuffer;
using TestSupport::KernelLevel;
using TestSupport::RandomBytes;
using Bytes = std::vector<unsigned char>;

constexpr std::uint32_t seed = 20260;

struct Job
{
    std::size_t sampleBytes;
    std::size_t channels;
    std::size_t pixelBytes;
    std::size_t pixels;
    // The buffers lie so many bytes away from their flush end.
    Flush flush;
    std::size_t gap;

    std::size_t RowBytes() const
    {
        return pixels == 0 ? 0 : (pixels - 1) * pixelBytes + channels * sampleBytes;
    }
    std::size_t PlaneBytes() const { return pixels * sampleBytes; }
    bool IsWide() const { return channels > maxDenseChannels || IsSpread(); }
    bool IsSpread() const { return pixelBytes != channels * sampleBytes; }
};

// Byte by byte from the definition: to planes[channel], or from it.
template <typename Move>
void ForEachByte(const Job& job, Move move)
{
    for (std::size_t pixel = 0; pixel < job.pixels; ++pixel)
        for (std::size_t channel = 0; channel < job.channels; ++channel)
            for (std::size_t byte = 0; byte < job.sampleBytes; ++byte)
                move(channel, pixel * job.sampleBytes + byte,
                     pixel * job.pixelBytes + channel * job.sampleBytes + byte);
}

std::vector<Bytes> NaiveSplit(const Job& job, const Bytes& row)
{
    std::vector<Bytes> planes(job.channels, Bytes(job.PlaneBytes()));
    ForEachByte(job, [&](std::size_t channel, std::size_t inPlane, std::size_t inRow) {
        planes[channel][inPlane] = row[inRow];
    });
    return planes;
}

Bytes NaiveMerge(const Job& job, const std::vector<Bytes>& planes, Bytes row)
{
    ForEachByte(job, [&](std::size_t channel, std::size_t inPlane, std::size_t inRow) {
        row[inRow] = planes[channel][inPlane];
    });
    return row;
}

void RunSplit(const KernelLevel& level, const Job& job, const unsigned char* row,
              unsigned char* const* planes)
{
    const auto& kernels = *level.splitMerge;
    if (job.IsWide())
        kernels.wideSplit[job.sampleBytes - 1](row, planes, job.pixels,
                                               {job.pixelBytes, job.channels});
    else
        kernels.split[job.sampleBytes - 1][job.channels](row, planes, job.pixels);
}

void RunMerge(const KernelLevel& level, const Job& job, const unsigned char* const* planes,
              unsigned char* row)
{
    const auto& kernels = *level.splitMerge;
    if (job.IsWide())
        kernels.wideMerge[job.sampleBytes - 1](planes, row, job.pixels,
                                               {job.pixelBytes, job.channels});
    else
        kernels.merge[job.sampleBytes - 1][job.channels](planes, row, job.pixels);
}

// One row and its planes, each between forbidden pages of its own. With no gap all lie flush, and
// all planes at the same place of their pages; with one they stand apart, at any address.
class GuardedRows
{
public:
    explicit GuardedRows(const Job& newJob)
        : job(newJob), rowBytes(RandomBytes(job.RowBytes(), seed)),
          row(rowBytes, job.flush, job.gap)
    {
        for (std::size_t channel = 0; channel < job.channels; ++channel) {
            samples.push_back(RandomBytes(job.PlaneBytes(), seed + 1 + Seed(channel)));
            const std::size_t gap = job.gap == 0 ? 0 : job.gap + 71 * channel;
            planes.emplace_back(samples.back(), job.flush, gap);
        }
    }

    void CheckSplit(const KernelLevel& level, unsigned char fill) const
    {
        std::vector<unsigned char*> pointers;
        for (const GuardedBuffer& plane : planes) {
            std::fill_n(plane.data(), plane.size(), fill);
            pointers.push_back(plane.data());
        }
        std::copy(rowBytes.begin(), rowBytes.end(), row.data());
        RunSplit(level, job, row.data(), pointers.data());
        const std::vector<Bytes> expected = NaiveSplit(job, rowBytes);
        for (std::size_t channel = 0; channel < job.channels; ++channel)
            ASSERT_EQ(expected[channel], planes[channel].bytes()) << "channel " << channel;
        ASSERT_EQ(rowBytes, row.bytes()) << "the source changed";
    }

    // Channel number `repeated` takes the plane of channel 0.
    void CheckMerge(const KernelLevel& level, std::size_t repeated, unsigned char fill) const
    {
        std::vector<Bytes> shown = samples;
        shown[repeated] = samples[0];
        std::vector<const unsigned char*> pointers;
        for (std::size_t channel = 0; channel < job.channels; ++channel) {
            std::copy(samples[channel].begin(), samples[channel].end(), planes[channel].data());
            pointers.push_back(planes[channel == repeated ? 0 : channel].data());
        }
        std::fill_n(row.data(), row.size(), fill);
        RunMerge(level, job, pointers.data(), row.data());
        ASSERT_EQ(NaiveMerge(job, shown, Bytes(job.RowBytes(), fill)), row.bytes());
        for (std::size_t channel = 0; channel < job.channels; ++channel)
            ASSERT_EQ(samples[channel], planes[channel].bytes()) << "source " << channel;
    }

private:
    static std::uint32_t Seed(std::size_t channel) { return static_cast<std::uint32_t>(channel); }

    Job job;
    Bytes rowBytes;
    GuardedBuffer row;
    std::vector<Bytes> samples;
    std::vector<GuardedBuffer> planes;
};

void CheckEveryLevel(const Job& job)
{
    const GuardedRows rows(job);
    for (const KernelLevel& level : AvailableKernelLevels()) {
        SCOPED_TRACE(testing::Message() << level.name << ", " << job.pixels << " pixels of "
                                        << job.channels << " samples of " << job.sampleBytes
                                        << " in " << job.pixelBytes << " bytes, gap " << job.gap);
        for (const unsigned char fill : Bytes{0x00, 0xFF})
            ASSERT_NO_FATAL_FAILURE(rows.CheckSplit(level, fill));
        ASSERT_NO_FATAL_FAILURE(rows.CheckMerge(level, job.channels - 1, 0x00));
        ASSERT_NO_FATAL_FAILURE(rows.CheckMerge(level, 0, 0xFF));
    }
}

// Around every block, and around the pieces that wide pixels are taken in.
std::set<std::size_t> Widths()
{
    std::set<std::size_t> widths = {0, 1, 2, 3, 5, 90, 100, 150, 200, 319, 337, 1000};
    for (const std::size_t block : {4U, 8U, 16U, 32U, 64U, 96U, 128U, 256U, 288U})
        widths.insert({block - 1, block, block + 1});
    return widths;
}

void CheckWidths(const Job& pattern)
{
    for (const std::size_t pixels : Widths())
        for (const Flush flush : {Flush::AtEnd, Flush::AtStart})
            for (const std::size_t gap : {std::size_t{0}, 1 + pixels % 3}) {
                Job job = pattern;
                job.pixels = pixels;
                job.flush = flush;
                job.gap = gap;
                ASSERT_NO_FATAL_FAILURE(CheckEveryLevel(job));
            }
}

using Shape = std::tuple<std::size_t, std::size_t>;

std::string ShapeInName(const testing::TestParamInfo<Shape>& info)
{
    return std::to_string(std::get<1>(info.param)) + "ChannelsOf" +
           std::to_string(8 * std::get<0>(info.param)) + "Bits";
}

class DenseSplitMerge : public testing::TestWithParam<Shape>
{};

TEST_P(DenseSplitMerge, MovesEachSampleAndNoOtherByte)
{
    const auto [sampleBytes, channels] = GetParam();
    CheckWidths({.sampleBytes = sampleBytes,
                 .channels = channels,
                 .pixelBytes = sampleBytes * channels,
                 .pixels = 0,
                 .flush = Flush::AtEnd,
                 .gap = 0});
}

INSTANTIATE_TEST_SUITE_P(EveryChannelCount, DenseSplitMerge,
                         testing::Combine(testing::Values(1, 2),
                                          testing::Range<std::size_t>(2, maxDenseChannels + 1)),
                         ShapeInName);

class WideSplitMerge : public testing::TestWithParam<Shape>
{};

// The bytes between the named channels of two pixels are not the kernel's either.
TEST_P(WideSplitMerge, MovesEachNamedSampleAndNoOtherByte)
{
    const auto [sampleBytes, channels] = GetParam();
    for (const std::size_t further : {0U, 1U, 7U, 40U})
        CheckWidths({.sampleBytes = sampleBytes,
                     .channels = channels,
                     .pixelBytes = sampleBytes * (channels + further),
                     .pixels = 0,
                     .flush = Flush::AtEnd,
                     .gap = 0});
}

INSTANTIATE_TEST_SUITE_P(ManyChannels, WideSplitMerge,
                         testing::Combine(testing::Values(1, 2),
                                          testing::Values(17, 20, 24, 31, 32, 33, 40, 65, 130)),
                         ShapeInName);

// A split whose planes have samples of another depth than the row.
struct Conversion
{
    const char* name;
    std::size_t rowBytes;
    std::size_t planeBytes;
    FusedKernels SplitMergeKernels::*kernels;
    std::uint32_t (*convert)(std::uint32_t sample);
};

constexpr Conversion conversions[] = {
    {"Widened", 1, 2, &SplitMergeKernels::splitWiden,
     [](std::uint32_t sample) { return sample * 257; }},
    {"Narrowed", 2, 1, &SplitMergeKernels::narrowSplit,
     [](std::uint32_t sample) { return ((sample * 65281 >> 16) + 127) >> 8; }},
};

void Append(Bytes& bytes, std::uint32_t sample, std::size_t sampleBytes)
{
    const auto byte = static_cast<unsigned char>(sample);
    const auto word = static_cast<std::uint16_t>(sample);
    const auto* start = sampleBytes == 1 ? &byte : reinterpret_cast<const unsigned char*>(&word);
    bytes.insert(bytes.end(), start, start + sampleBytes);
}

// The sample of a pixel as the tests choose it.
using Samples = std::uint32_t (*)(std::size_t pixel, std::size_t channel);

void CheckFusedLevel(const KernelLevel& level, const Conversion& conversion,
                     const GuardedBuffer& row, const Bytes& rowBytes,
                     const std::vector<Bytes>& expected, const Job& job)
{
    for (const unsigned char fill : Bytes{0x00, 0xFF}) {
        std::vector<GuardedBuffer> planes;
        std::vector<unsigned char*> pointers;
        for (const Bytes& plane : expected) {
            const std::size_t gap = job.gap == 0 ? 0 : job.gap + 71 * planes.size();
            planes.emplace_back(Bytes(plane.size(), fill), job.flush, gap);
            pointers.push_back(planes.back().data());
        }
        (level.splitMerge->*conversion.kernels)[job.channels](row.data(), pointers.data(),
                                                              job.pixels);
        for (std::size_t channel = 0; channel < job.channels; ++channel)
            ASSERT_EQ(expected[channel], planes[channel].bytes()) << "channel " << channel;
        ASSERT_EQ(rowBytes, row.bytes()) << "the source changed";
    }
}

void CheckFused(const Conversion& conversion, const Job& job, Samples samples)
{
    const std::uint32_t mask = conversion.rowBytes == 1 ? 0xFF : 0xFFFF;
    Bytes rowBytes;
    std::vector<Bytes> expected(job.channels);
    for (std::size_t pixel = 0; pixel < job.pixels; ++pixel)
        for (std::size_t channel = 0; channel < job.channels; ++channel) {
            const std::uint32_t sample = samples(pixel, channel) & mask;
            Append(rowBytes, sample, conversion.rowBytes);
            Append(expected[channel], conversion.convert(sample), conversion.planeBytes);
        }
    const GuardedBuffer row(rowBytes, job.flush, job.gap);
    for (const KernelLevel& level : AvailableKernelLevels()) {
        SCOPED_TRACE(testing::Message() << level.name << ", " << job.pixels << " pixels of "
                                        << job.channels << " channels, gap " << job.gap);
        ASSERT_NO_FATAL_FAILURE(CheckFusedLevel(level, conversion, row, rowBytes, expected, job));
    }
}

using FusedShape = std::tuple<Conversion, std::size_t>;

std::string FusedShapeInName(const testing::TestParamInfo<FusedShape>& info)
{
    return std::get<0>(info.param).name + std::to_string(std::get<1>(info.param)) + "Channels";
}

class FusedSplit : public testing::TestWithParam<FusedShape>
{};

TEST_P(FusedSplit, ConvertsEachSampleAndWritesNoOtherByte)
{
    const auto& [conversion, channels] = GetParam();
    const auto scattered = [](std::size_t pixel, std::size_t channel) {
        return static_cast<std::uint32_t>((5 * pixel + channel + 1) * 2654435761U) >> 11;
    };
    for (const std::size_t pixels : Widths())
        for (const Flush flush : {Flush::AtEnd, Flush::AtStart})
            for (const std::size_t gap : {std::size_t{0}, 1 + pixels % 3}) {
                const Job job = {.sampleBytes = conversion.rowBytes,
                                 .channels = channels,
                                 .pixelBytes = conversion.rowBytes * channels,
                                 .pixels = pixels,
                                 .flush = flush,
                                 .gap = gap};
                ASSERT_NO_FATAL_FAILURE(CheckFused(conversion, job, scattered));
            }
}

TEST_P(FusedSplit, ConvertsEveryValueInEveryChannel)
{
    const auto& [conversion, channels] = GetParam();
    const Job job = {.sampleBytes = conversion.rowBytes,
                     .channels = channels,
                     .pixelBytes = conversion.rowBytes * channels,
                     .pixels = 65536,
                     .flush = Flush::AtEnd,
                     .gap = 1};
    CheckFused(conversion, job, [](std::size_t pixel, std::size_t channel) {
        return static_cast<std::uint32_t>(pixel + 77 * channel);
    });
}

INSTANTIATE_TEST_SUITE_P(EveryConversion, FusedSplit,
                         testing::Combine(testing::ValuesIn(conversions),
                                          testing::Range<std::size_t>(2, maxFusedChannels + 1)),
                         FusedShapeInName);

} // namespace
} // namespace zvk::Pelkraft
