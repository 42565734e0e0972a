#include "tests/direct/levels.h"
#include "tests/dither/dither_calls.h"
#include "tests/support/guarded_buffer.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <thread>

namespace zvk::Pelkraft::TestSupport {
namespace {

// One of each channel count: all of one kind, or all kinds in turn.
NaiveDither DitherOfChannels(std::size_t count, int bits)
{
    NaiveDither naive = MixedDither(bits);
    const std::vector<NaiveTones> kinds = naive.channels;
    naive.channels.clear();
    for (std::size_t i = 0; i != count; ++i)
        naive.channels.push_back(kinds[i % kinds.size()]);
    return naive;
}

Bytes RandomRow(const NaiveDither& naive, std::size_t pixels, unsigned seed)
{
    return RandomBytes(pixels * naive.channels.size() * (naive.bits == 16 ? 2 : 1), seed);
}

// A row on buffers of exactly its size between forbidden pages.
Bytes GuardedRun(const plk_dither* dither, std::int64_t x, std::int64_t y, const Bytes& row,
                 std::size_t targetBytes, std::size_t channels, Flush flush)
{
    const GuardedBuffer from(row, flush);
    const GuardedBuffer to(targetBytes, flush, 0xA5);
    const plk_source source = SourceOf(from.data(), from.size(), 0);
    const plk_target target = TargetOf(to.data(), to.size(), 0);
    EXPECT_EQ(plk_dither_run(dither, x, y, 1, targetBytes / channels, &source, &target, nullptr),
              PLK_OK);
    return to.bytes();
}

TEST(DitheredRow, FollowsTheFormulasAtEveryLevel)
{
    for (const int level : LevelsOfThisProcessor()) {
        const LimitedLevel limit(level);
        for (const int bits : {8, 16})
            for (const std::size_t channels : {1U, 2U, 3U, 4U, 5U, 7U, 16U}) {
                const NaiveDither naive = DitherOfChannels(channels, bits);
                const DitherHandle dither = HandleOf(naive);
                for (const std::size_t pixels :
                     {1U, 2U, 15U, 16U, 17U, 31U, 33U, 63U, 64U, 65U, 127U, 257U, 600U})
                    for (const Flush flush : {Flush::AtEnd, Flush::AtStart}) {
                        const auto seed = static_cast<unsigned>(pixels);
                        const std::int64_t x = static_cast<std::int64_t>(pixels * 37) - 900;
                        const std::int64_t y = static_cast<std::int64_t>(pixels * 5) - 70;
                        const Bytes row = RandomRow(naive, pixels, seed);
                        ASSERT_EQ(
                            naive.RowOf(row, x, y),
                            GuardedRun(dither.get(), x, y, row, pixels * channels, channels, flush))
                            << "level " << level << ", " << bits << " bits, " << channels
                            << " channels, " << pixels << " pixels";
                    }
            }
    }
}

TEST(DitheredRow, ServesAnyNumberOfSteps)
{
    for (const int bits : {8, 16})
        for (const std::size_t steps : {1U, 2U, 16U, 17U, 18U, 19U, 100U, 256U})
            for (const bool reversed : {false, true}) {
                const int largest = (1 << bits) - 1;
                NaiveDither naive;
                naive.bits = bits;
                naive.mask = RandomMask(9);
                NaiveTones tones{{}, reversed ? largest : 0, reversed ? 5 : largest};
                for (std::uint64_t step = 0; step != steps; ++step)
                    tones.inks.push_back(step * step * 4111);
                naive.channels = {tones, {{0, 10, 11}, 3, largest - 1}};
                for (const std::int32_t road : {PLK_ROAD_AUTOMATIC, PLK_ROAD_PORTABLE}) {
                    const DitherHandle dither = HandleOf(naive, road);
                    const Bytes row = RandomRow(naive, 700, 3);
                    ASSERT_EQ(naive.RowOf(row, 11, 12), RunRows(dither.get(), 11, 12, 1, row))
                        << bits << " bits, " << steps << " steps";
                }
            }
}

// All samples, at the largest numbers that the products meet.
TEST(DitheredRow, KeepsTheLargestInksExact)
{
    NaiveDither naive;
    naive.bits = 16;
    naive.mask = OwnMask();
    naive.channels = {{{0, 1, PLK_MOST_INK - 1, PLK_MOST_INK}, 0, 65535},
                      {{0, PLK_MOST_INK / 3, PLK_MOST_INK}, 65535, 0}};
    Bytes row;
    for (int sample = 0; sample != 65536; ++sample)
        for (int channel = 0; channel != 2; ++channel) {
            row.push_back(static_cast<unsigned char>(sample % 256));
            row.push_back(static_cast<unsigned char>(sample / 256));
        }
    const DitherHandle dither = HandleOf(naive);
    for (const int y : {0, 1, 200})
        ASSERT_EQ(naive.RowOf(row, 0, y), RunRows(dither.get(), 0, y, 1, row));
}

// Each sample over the whole mask, where one place more or less shows. Between the first two of
// these inks sample 102 lies at 26214.5 of 65536.
TEST(DitheredRow, TakesEachPlaceOfTheMaskAsTheFormulasDo)
{
    NaiveDither naive;
    naive.mask = OwnMask();
    naive.channels = {{{0, 262144, 262145}}};
    for (const bool manySteps : {false, true}) {
        for (std::uint64_t step = 3; manySteps && step != 30; ++step)
            naive.channels[0].inks.push_back(262143 + step * step);
        const DitherHandle dither = HandleOf(naive);
        for (int sample = 0; sample != 256; ++sample) {
            const Bytes area(65536, static_cast<unsigned char>(sample));
            const Bytes steps = RunRows(dither.get(), 0, 0, 256, area);
            std::uint64_t sum = 0;
            std::uint64_t expected = 0;
            for (std::size_t i = 0; i != steps.size(); ++i) {
                sum += steps[i];
                expected += static_cast<std::uint64_t>(
                    naive.StepOf(sample, 0, static_cast<std::int64_t>(i % 256),
                                 static_cast<std::int64_t>(i / 256)));
            }
            ASSERT_EQ(expected, sum) << sample;
        }
    }
}

TEST(DitheredRow, TakesTheLibrarysMaskForNone)
{
    NaiveDither naive = MixedDither(8);
    naive.mask = OwnMask();
    DitherRecord record(naive);
    record.spec.mask = nullptr;
    plk_dither* made = nullptr;
    ASSERT_EQ(plk_dither_create(&record.spec, &made, nullptr), PLK_OK);
    const DitherHandle dither(made);
    const Bytes row = RandomRow(naive, 1000, 8);
    EXPECT_EQ(naive.RowOf(row, 1, 2), RunRows(dither.get(), 1, 2, 1, row));
}

class DitheredPage : public testing::TestWithParam<int>
{
protected:
    static constexpr std::size_t width = 333;
    static constexpr std::size_t height = 300;

    NaiveDither naive = MixedDither(GetParam());
    DitherHandle dither = HandleOf(naive);
    std::size_t channels = naive.channels.size();
    std::size_t pixelBytes = channels * static_cast<std::size_t>(GetParam() / 8);
    Bytes page = RandomBytes(width * height * pixelBytes, 21);
    Bytes whole = RunRows(dither.get(), -5, 1000, height, page);
};

TEST_P(DitheredPage, IsTheSameInBandsAndColumns)
{
    for (const std::size_t cut : {1U, 100U, 332U}) {
        Bytes steps(whole.size(), 0xA5);
        for (const std::size_t x : {std::size_t{0}, cut})
            for (const std::size_t y : {std::size_t{0}, cut % height}) {
                const std::size_t pixels = x == 0 ? cut : width - cut;
                const std::size_t rows = y == 0 ? cut % height : height - cut % height;
                const plk_source from = SourceOf(
                    page.data(), page.size(), static_cast<std::int64_t>(width * pixelBytes),
                    static_cast<std::int64_t>((y * width + x) * pixelBytes));
                const plk_target to = TargetOf(
                    steps.data(), steps.size(), static_cast<std::int64_t>(width * channels),
                    static_cast<std::int64_t>((y * width + x) * channels));
                ASSERT_EQ(plk_dither_run(dither.get(), static_cast<std::int64_t>(x) - 5,
                                         static_cast<std::int64_t>(y) + 1000, rows, pixels, &from,
                                         &to, nullptr),
                          PLK_OK);
            }
        EXPECT_TRUE(steps == whole) << cut;
    }
}

TEST_P(DitheredPage, RepeatsAfter256PixelsInBothDirections)
{
    EXPECT_TRUE(RunRows(dither.get(), -5 + 256, 1000 - 512, height, page) == whole);
    EXPECT_TRUE(RunRows(dither.get(), -5 - 256 * 3, 1000 + 256 * 9, height, page) == whole);
    EXPECT_FALSE(RunRows(dither.get(), -4, 1000, height, page) == whole);
    EXPECT_FALSE(RunRows(dither.get(), -5, 1001, height, page) == whole);
}

TEST_P(DitheredPage, IsServedInPlace)
{
    Bytes steps = page;
    const auto stride = static_cast<std::int64_t>(width * pixelBytes);
    const plk_source from = SourceOf(steps.data(), steps.size(), stride);
    const plk_target to = TargetOf(steps.data(), steps.size(), stride);
    ASSERT_EQ(plk_dither_run(dither.get(), -5, 1000, height, width, &from, &to, nullptr), PLK_OK);
    for (std::size_t row = 0; row != height; ++row)
        ASSERT_TRUE(
            std::equal(whole.begin() + static_cast<std::ptrdiff_t>(row * width * channels),
                       whole.begin() + static_cast<std::ptrdiff_t>((row + 1) * width * channels),
                       steps.begin() + static_cast<std::ptrdiff_t>(row * width * pixelBytes)))
            << row;
}

TEST_P(DitheredPage, IsTurnedOverByANegativeStride)
{
    Bytes steps(whole.size(), 0xA5);
    const auto stride = static_cast<std::int64_t>(width * pixelBytes);
    const auto targetStride = static_cast<std::int64_t>(width * channels);
    const plk_source from = SourceOf(page.data(), page.size(), stride);
    const plk_target to = TargetOf(steps.data(), steps.size(), -targetStride,
                                   static_cast<std::int64_t>(height - 1) * targetStride);
    ASSERT_EQ(plk_dither_run(dither.get(), -5, 1000, height, width, &from, &to, nullptr), PLK_OK);
    for (std::size_t row = 0; row != height; ++row)
        ASSERT_TRUE(std::equal(whole.begin() + static_cast<std::ptrdiff_t>(row) * targetStride,
                               whole.begin() + static_cast<std::ptrdiff_t>(row + 1) * targetStride,
                               steps.begin() +
                                   static_cast<std::ptrdiff_t>(height - 1 - row) * targetStride))
            << row;
}

TEST_P(DitheredPage, ReadsNoStrideOfPlanes)
{
    Bytes steps(whole.size(), 0xA5);
    plk_source from =
        SourceOf(page.data(), page.size(), static_cast<std::int64_t>(width * pixelBytes));
    plk_target to =
        TargetOf(steps.data(), steps.size(), static_cast<std::int64_t>(width * channels));
    from.plane_stride = to.plane_stride = INT64_MIN;
    ASSERT_EQ(plk_dither_run(dither.get(), -5, 1000, height, width, &from, &to, nullptr), PLK_OK);
    EXPECT_TRUE(steps == whole);
}

INSTANTIATE_TEST_SUITE_P(Bits, DitheredPage, testing::Values(8, 16),
                         [](const auto& bits) { return "Of" + std::to_string(bits.param); });

} // namespace
} // namespace zvk::Pelkraft::TestSupport
