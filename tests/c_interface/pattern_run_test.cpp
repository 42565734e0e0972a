#include "tests/c_interface/pattern_calls.h"
#include "tests/direct/levels.h"
#include "tests/pattern/drawing_patterns.h"
#include "tests/pattern/engine_support.h"
#include "tests/pattern/pattern_support.h"
#include "tests/support/guarded_buffer.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr std::int32_t engines[] = {PLK_ENGINE_AUTOMATIC, PLK_ENGINE_X86, PLK_ENGINE_SSE};

// Two in-colours and three out-inks.
const std::string example = exampleText;

// The rows of a band as the memory of a caller has them.
struct Layout
{
    std::size_t bytes;
    std::ptrdiff_t offset;
    std::ptrdiff_t stride;

    std::size_t PlaceOf(std::size_t row) const
    {
        return static_cast<std::size_t>(offset + static_cast<std::ptrdiff_t>(row) * stride);
    }
};

Layout LayoutOf(std::size_t rows, std::size_t rowBytes, std::ptrdiff_t stride)
{
    const std::size_t span = (rows - 1) * static_cast<std::size_t>(stride < 0 ? -stride : stride);
    return {span + rowBytes, stride < 0 ? static_cast<std::ptrdiff_t>(span) : 0, stride};
}

TEST(PatternRun, GivesTheRowsOfABandInAnyLayout)
{
    constexpr std::size_t rows = 5;
    constexpr std::size_t pixels = 21;
    constexpr std::uint64_t firstRow = 65533;
    for (const NaivePattern& pattern : DrawingPatterns(6, 77))
        for (const std::int32_t engine : engines)
            for (const std::ptrdiff_t extra : {0, 1, 7, -1})
                for (const bool repeats : {false, true}) {
                    const PatternHandle handle = MakeHandle(pattern.Text(), engine);
                    const std::size_t from = pixels * pattern.inColors.size();
                    const std::size_t to = pixels * static_cast<std::size_t>(pattern.outInks);
                    const auto strideOf = [extra](std::size_t bytes) {
                        const auto stride = static_cast<std::ptrdiff_t>(bytes);
                        return extra < 0 ? -stride - 3 : stride + extra;
                    };
                    const Layout in = LayoutOf(rows, from, repeats ? 0 : strideOf(from));
                    const Layout out = LayoutOf(rows, to, strideOf(to));
                    const GuardedBuffer source(RandomSteps(in.bytes, 3));
                    const GuardedBuffer target(out.bytes, Flush::AtEnd, 0xA5);

                    NaiveSimulation naive(pattern);
                    naive.SkipTo(firstRow);
                    Bytes expected(out.bytes, 0xA5);
                    const Bytes steps = source.bytes();
                    for (std::size_t row = 0; row < rows; ++row) {
                        const auto begin =
                            steps.begin() + static_cast<std::ptrdiff_t>(in.PlaceOf(row));
                        const Bytes inks =
                            naive.Row(Bytes(begin, begin + static_cast<std::ptrdiff_t>(from)));
                        std::copy(inks.begin(), inks.end(),
                                  expected.begin() + static_cast<std::ptrdiff_t>(out.PlaceOf(row)));
                    }

                    const plk_source sourceView =
                        SourceOf(source.data(), in.bytes, in.stride, in.offset);
                    const plk_target targetView =
                        TargetOf(target.data(), out.bytes, out.stride, out.offset);
                    plk_failure failure = JunkFailure();
                    ASSERT_EQ(plk_pattern_run(handle.get(), firstRow, rows, pixels, &sourceView,
                                              &targetView, &failure),
                              PLK_OK)
                        << failure.text;
                    ASSERT_TRUE(target.bytes() == expected) << "stride " << out.stride << "\n"
                                                            << pattern.Text();
                }
}

TEST(PatternRun, GivesSingleRowsInAnyOrder)
{
    for (const NaivePattern& pattern : DrawingPatterns(4, 77))
        for (const std::int32_t engine : engines) {
            const PatternHandle handle = MakeHandle(pattern.Text(), engine);
            NaiveSimulation naive(pattern);
            for (const std::uint64_t row :
                 {std::uint64_t{70000}, std::uint64_t{3}, std::uint64_t{1} << 40, std::uint64_t{0},
                  UINT64_MAX, std::uint64_t{65536}, std::uint64_t{4}}) {
                const Bytes steps = RandomSteps(33 * pattern.inColors.size(), 9);
                naive.SkipTo(row);
                ASSERT_TRUE(RunRow(handle.get(), row, steps) == naive.Row(steps)) << row;
            }
        }
}

TEST(PatternRun, GivesTheSameBytesAtEveryLevel)
{
    for (const NaivePattern& pattern : DrawingPatterns(3, 77)) {
        const Bytes steps = RandomSteps(100 * pattern.inColors.size(), 9);
        const Bytes expected = NaiveSimulation(pattern).Row(steps);
        for (const int level : LevelsOfThisProcessor()) {
            const LimitedLevel limited(level);
            for (const std::int32_t engine : engines)
                EXPECT_TRUE(RunRow(MakeHandle(pattern.Text(), engine).get(), 0, steps) == expected);
        }
    }
}

plk_failure RunFailure(const plk_pattern* pattern, const plk_source* source,
                       const plk_target* target, std::uint64_t rows = 2, std::uint64_t pixels = 4)
{
    plk_failure failure = JunkFailure();
    EXPECT_EQ(plk_pattern_run(pattern, 0, rows, pixels, source, target, &failure), failure.status);
    EXPECT_NE(failure.status, PLK_OK);
    return failure;
}

// Two rows of four pixels: 8 bytes and 12 bytes each.
class RefusedRun : public testing::Test
{
protected:
    ~RefusedRun() override
    {
        EXPECT_EQ(target.bytes(), Bytes(24, 0xA5)) << "something was written";
    }

    const PatternHandle handle = MakeHandle(example);
    const GuardedBuffer source{16};
    const GuardedBuffer target{24, Flush::AtEnd, 0xA5};
    plk_source from = SourceOf(source.data(), 16, 8);
    plk_target to = TargetOf(target.data(), 24, 12);
};

TEST_F(RefusedRun, NamesWhatIsNull)
{
    EXPECT_EQ(Brief(RunFailure(nullptr, &from, &to)), "1 pattern");
    EXPECT_EQ(Brief(RunFailure(handle.get(), nullptr, &to)), "1 source");
    EXPECT_EQ(Brief(RunFailure(handle.get(), &from, nullptr)), "1 target");
    plk_source noSource = from;
    noSource.base = nullptr;
    EXPECT_EQ(Brief(RunFailure(handle.get(), &noSource, &to)), "1 source.base");
    plk_target noTarget = to;
    noTarget.base = nullptr;
    EXPECT_EQ(Brief(RunFailure(handle.get(), &from, &noTarget)), "1 target.base");
}

TEST_F(RefusedRun, NamesTheSideThatIsTooSmall)
{
    from.bytes = 15;
    plk_failure failure = RunFailure(handle.get(), &from, &to);
    EXPECT_EQ(Brief(failure), "4 source.bytes");
    EXPECT_EQ(failure.given, 15);
    EXPECT_EQ(failure.needed, 16);
    from.bytes = 16;
    to.bytes = 23;
    failure = RunFailure(handle.get(), &from, &to);
    EXPECT_EQ(Brief(failure), "4 target.bytes");
    EXPECT_EQ(failure.needed, 24);
    to.bytes = 24;
    from.offset = -1;
    EXPECT_EQ(Brief(RunFailure(handle.get(), &from, &to)), "4 source.offset");
    from.offset = 0;
    EXPECT_EQ(Brief(RunFailure(handle.get(), &from, &to, 3)), "4 source.bytes");
    EXPECT_EQ(Brief(RunFailure(handle.get(), &from, &to, UINT64_MAX)), "4 source.bytes");
    EXPECT_EQ(Brief(RunFailure(handle.get(), &from, &to, 2, 5)), "4 source.bytes");
}

TEST_F(RefusedRun, NamesPixelsBeyondAllMemory)
{
    // These counts of bytes would wrap to few.
    for (const std::uint64_t pixels : {UINT64_MAX, std::uint64_t{1} << 63, std::uint64_t{1} << 60})
        EXPECT_EQ(Brief(RunFailure(handle.get(), &from, &to, 1, pixels)), "1 pixels");
    EXPECT_EQ(Brief(RunFailure(handle.get(), &from, &to, 1, std::uint64_t{1} << 59)),
              "4 source.bytes");
}

TEST_F(RefusedRun, NamesRowsThatOverlap)
{
    to.row_stride = 11;
    plk_failure failure = RunFailure(handle.get(), &from, &to);
    EXPECT_EQ(Brief(failure), "5 target.row_stride");
    to.row_stride = 0;
    EXPECT_EQ(Brief(RunFailure(handle.get(), &from, &to)), "5 target.row_stride");
    to.row_stride = 12;
    const plk_source same = SourceOf(target.data(), 24, 12);
    EXPECT_EQ(Brief(RunFailure(handle.get(), &same, &to)), "5 target.base");
    const plk_source last = SourceOf(target.data(), 24, 0, 16);
    EXPECT_EQ(Brief(RunFailure(handle.get(), &last, &to)), "5 target.base");
}

TEST_F(RefusedRun, NamesRecordsThatAreNone)
{
    plk_source small = from;
    small.size = 3;
    EXPECT_EQ(Brief(RunFailure(handle.get(), &small, &to)), "1 source.size");
    plk_target reserved = to;
    reserved.reserved = 1;
    EXPECT_EQ(Brief(RunFailure(handle.get(), &from, &reserved)), "3 target.reserved");
    // Nothing else is checked where there are no rows.
    EXPECT_EQ(Brief(RunFailure(handle.get(), &from, &reserved, 0)), "3 target.reserved");
}

TEST(PatternRun, TakesNoRowsAndNoPixels)
{
    const PatternHandle handle = MakeHandle(example);
    const plk_source from = SourceOf(nullptr, 0, 0);
    const plk_target to = TargetOf(nullptr, 0, 0);
    EXPECT_EQ(plk_pattern_run(handle.get(), 0, 0, UINT64_MAX, &from, &to, nullptr), PLK_OK);
    EXPECT_EQ(plk_pattern_run(handle.get(), 5, UINT64_MAX, 0, &from, &to, nullptr), PLK_OK);
}

TEST(PatternRun, LooksAtNoPlaneStride)
{
    const PatternHandle handle = MakeHandle(example);
    const Bytes steps = RandomSteps(8, 1);
    Bytes inks(12);
    plk_source from = SourceOf(steps.data(), 8, 0);
    plk_target to = TargetOf(inks.data(), 12, 0);
    from.plane_stride = INT64_MIN;
    to.plane_stride = INT64_MAX;
    ASSERT_EQ(plk_pattern_run(handle.get(), 2, 1, 4, &from, &to, nullptr), PLK_OK);
    EXPECT_EQ(inks, RunRow(handle.get(), 2, steps));
}

// A row of the whole of a read-only picture, at addresses of every kind.
TEST(PatternRun, KeepsToItsRowsAtEveryAddress)
{
    const PatternHandle handle = MakeHandle(example);
    for (std::size_t pixels = 0; pixels < 70; ++pixels)
        for (std::size_t gap = 0; gap < 3; ++gap)
            for (const Flush flush : {Flush::AtStart, Flush::AtEnd}) {
                const GuardedBuffer source(RandomSteps(2 * pixels, 5), flush, gap);
                const GuardedBuffer target(Bytes(3 * pixels, 0xA5), flush, gap);
                const plk_source from = SourceOf(source.data(), source.size(), 0);
                const plk_target to = TargetOf(target.data(), target.size(), 0);
                ASSERT_EQ(plk_pattern_run(handle.get(), 9, 1, pixels, &from, &to, nullptr), PLK_OK);
                ASSERT_EQ(target.bytes(), RunRow(handle.get(), 9, source.bytes()));
            }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
