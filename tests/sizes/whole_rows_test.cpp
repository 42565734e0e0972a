#include "pelkraft/plan.h"
#include "tests/bounds/placements.h"
#include "tests/pattern/pattern_grid.h"
#include "tests/sizes/naive_end.h"
#include "tests/sizes/sample_at.h"
#include "tests/sizes/wide_memory.h"
#include "tests/support/chain_row.h"
#include "tests/support/conversion_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <limits>

// Whole rows as large as rows can be, or as there are addresses for, in memory that repeats one
// megabyte but for the last one, which is compared. A push takes smaller ones.
namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr int mostBytes = std::numeric_limits<int>::max() >> (sizeof(void*) > 4 ? 0 : 1);
constexpr int pushedBytes = (1 << 22) - 1;

int LargestRow()
{
    return OneOf(2) == 1 ? mostBytes : pushedBytes;
}

class WholeRows : public ::testing::Test
{
protected:
    explicit WholeRows(int newBytes = LargestRow()) : bytes(newBytes) { source.FillWithNoise(11); }

    // From single channel to single channel, or interleaved: planes would write over each other.
    template <typename Row = ImageRow>
    void Run(const NaiveGeometry& from, const NaiveGeometry& to, int factor)
    {
        for (const bool forcePortable : {false, true}) {
            const ConversionCase oneCase{
                from, to, factor == 1 ? NaiveOperation{} : RepeatBy(factor), forcePortable};
            unsigned char* const read = source.Last(BytesOf(from));
            unsigned char* const written = destination.Last(BytesOf(to));
            destination.FillWith(0x5A);
            const ImageRow sourceRow(from.width, from.channels, from.bits, from.planar, read);
            Row row(to.width, to.channels, to.bits, to.planar, written);
            RunConversion(oneCase, sourceRow, row);
            EXPECT_EQ(0, CountWrongAtEnd(oneCase, read, written)) << Describe(oneCase);
            ++count;
        }
    }

    static std::uint64_t BytesOf(const NaiveGeometry& geometry)
    {
        return static_cast<std::uint64_t>(ExactRowBytes(geometry));
    }

    static int CountWrongAtEnd(const ConversionCase& oneCase, const unsigned char* read,
                               const unsigned char* written)
    {
        const auto& [from, to, operation, forcePortable] = oneCase;
        const std::int64_t set = CountSet(oneCase);
        int wrong = 0;
        for (int channel = 0; channel != to.channels; ++channel) {
            if (IsLeftPacked(oneCase, channel))
                continue;
            for (std::int64_t pixel = std::max<std::int64_t>(0, set - 5000); pixel != set;
                 ++pixel) {
                const std::int64_t nth = pixel / std::abs(operation.factor);
                const std::int64_t at = operation.factor < 0 ? from.width - 1 - nth : nth;
                const unsigned expected =
                    NaiveDepthChange(SampleAt(from, read, at, channel), from.bits, to.bits);
                wrong += SampleAt(to, written, pixel, channel) != expected ? 1 : 0;
            }
        }
        return wrong;
    }

    static std::int64_t CountSet(const ConversionCase& oneCase)
    {
        return std::min<std::int64_t>(std::int64_t{oneCase.source.width} *
                                          std::abs(oneCase.operation.factor),
                                      oneCase.destination.width);
    }

    const int bytes;
    const WideMemory source{static_cast<std::uint64_t>(bytes), WideMemory::Repeated};
    const WideMemory destination{static_cast<std::uint64_t>(bytes), WideMemory::Repeated};
    std::uint64_t count = 0;
};

TEST_F(WholeRows, AreConvertedUpToTheLargestSize)
{
    const int words = bytes / 2;
    // A width can count so many bits.
    const int packedBytes = std::min(bytes, std::numeric_limits<int>::max() / 8);
    Run({bytes, 1, 8, false}, {bytes, 1, 8, false}, 1);
    Run({bytes, 1, 8, false}, {bytes, 1, 8, false}, -1);
    Run({bytes / 3, 3, 8, false}, {bytes / 3, 3, 8, false}, 1);
    Run({bytes / 4, 1, 8, false}, {bytes, 1, 8, false}, 4);
    Run({words, 1, 16, false}, {words, 1, 16, false}, 1);
    Run({words, 1, 8, false}, {words, 1, 16, false}, 1);
    Run({words, 1, 16, false}, {words, 1, 8, false}, -1);
    Run({bytes, 1, 8, true}, {bytes, 1, 8, false}, 1);
    Run({bytes, 1, 8, true}, {bytes, 1, 1, true}, 1);
    Run({packedBytes * 8, 1, 1, true}, {packedBytes * 8, 1, 1, true}, 1);
    Run({packedBytes * 8 - 3, 1, 1, true}, {bytes, 1, 8, false}, 1);
    std::printf("%" PRIu64 " whole rows of %d bytes\n", count, bytes);
}

// 2^31 bits, so that the row's own 32-bit size is negative.
class LongPlane : public WholeRows
{
protected:
    LongPlane() : WholeRows(1 << 29) {}
};

TEST_F(LongPlane, IsConvertedThoughItsBitsPass32Bits)
{
    const NaiveGeometry plane{1 << 28, 1, 8, true};
    ASSERT_LT(ImageRow::CalcBufferSize(plane.width, 1, 8, true), 0);
    Run(plane, plane, 1);
    Run(plane, plane, -1);
    Run(plane, {1 << 28, 1, 1, true}, 1);
    Run({std::numeric_limits<int>::max(), 1, 1, true}, {1 << 20, 1, 8, false}, -1);
    Run<ChainRow>({std::numeric_limits<int>::max(), 1, 1, true}, {1 << 20, 1, 8, false}, 1);
    Run<ChainRow>({1 << 28, 2, 8, true}, {1 << 20, 2, 8, false}, -1);
    std::printf("%" PRIu64 " whole planes of 2^31 bits\n", count);
}

TEST_F(WholeRows, ArePatternedUpToTheLargestSize)
{
    for (const int version : {2, 3}) {
        Bytes ends[2];
        for (const bool vector : {false, true}) {
            const PatternShape shape{version, 1, 1, true,
                                     vector ? DotWeavePattern::Sse : DotWeavePattern::X86};
            std::string text = TextOf(shape);
            DotWeavePattern pattern(text.data(), shape.engine);
            const auto pixels = static_cast<std::uint64_t>(bytes);
            destination.FillWith(0x5A);
            pattern.ApplyPattern(source.Last(pixels), destination.Last(pixels),
                                 static_cast<unsigned long>(pixels));
            const unsigned char* const end = destination.Last(WideMemory::window);
            ends[vector ? 1 : 0].assign(end, end + WideMemory::window);
        }
        EXPECT_TRUE(ends[0] == ends[1]);
        EXPECT_NE(Bytes(WideMemory::window, ends[0][0]), ends[0]);
    }
    std::printf("4 whole pattern rows of %d bytes\n", bytes);
}

// The last megabyte of a row with so many pixels.
template <typename Apply>
Bytes EndOfRow(const WideMemory& source, const WideMemory& destination, std::uint64_t pixels,
               const Apply& apply)
{
    destination.FillWith(0x5A);
    apply(source.Last(pixels), destination.Last(pixels));
    const unsigned char* const end = destination.Last(WideMemory::window);
    return Bytes(end, end + WideMemory::window);
}

// A shorter row of the class ends at the same place of the field.
TEST(PatternHandle, AppliesARowOfMorePixelsThan32BitsCount)
{
    constexpr std::uint64_t row = 5;
    const bool isWhole = sizeof(void*) > 4 && OneOf(2) == 1;
    const std::uint64_t pixels = isWhole ? (std::uint64_t{1} << 32) + 3000017 : pushedBytes;
    const WideMemory source(pixels, WideMemory::Repeated);
    const WideMemory destination(pixels, WideMemory::Repeated);
    source.FillWithNoise(12);
    for (const int version : {2, 3}) {
        std::string text = TextOf({version, 1, 1, true, DotWeavePattern::Sse});
        plk_pattern* handle = nullptr;
        ASSERT_EQ(plk_pattern_create(text.data(), text.size(), nullptr, &handle, nullptr), PLK_OK);
        plk_pattern_facts facts = {};
        facts.size = sizeof facts;
        ASSERT_EQ(plk_pattern_needs(handle, &facts, nullptr), PLK_OK);
        const Bytes longEnd = EndOfRow(source, destination, pixels, [&](auto* steps, auto* inks) {
            const plk_source from = {sizeof from, 0, steps, pixels, 0, 0, 0};
            const plk_target to = {sizeof to, 0, inks, pixels, 0, 0, 0};
            EXPECT_EQ(plk_pattern_run(handle, row, 1, pixels, &from, &to, nullptr), PLK_OK);
        });
        plk_pattern_free(handle);

        DotWeavePattern pattern(text.data(), DotWeavePattern::Sse);
        for (std::uint64_t before = 0; before != row; ++before)
            pattern.ApplyPattern(nullptr, nullptr, 0);
        const std::uint64_t fewer =
            (pixels - WideMemory::window) % static_cast<std::uint64_t>(facts.field_size) +
            WideMemory::window;
        const Bytes shortEnd = EndOfRow(source, destination, fewer, [&](auto* steps, auto* inks) {
            pattern.ApplyPattern(steps, inks, static_cast<unsigned long>(fewer));
        });
        EXPECT_TRUE(longEnd == shortEnd) << version;
    }
    std::printf("2 whole rows of %" PRIu64 " pixels of a pattern handle\n", pixels);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
