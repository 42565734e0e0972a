#include "tests/bounds/placements.h"
#include "tests/copy/copy_reach.h"
#include "tests/sizes/numbers.h"
#include "tests/sizes/wide_memory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>

// Copies of any numbers, on memory of exactly what they reach in front of a forbidden page. A
// push leaves out those that move a gigabyte.
namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr std::size_t pushedBytes = std::size_t{1} << 24;
// Less where both can't be had at once.
constexpr std::size_t mostBytes = (std::size_t{1} << 31) >> (sizeof(void*) > 4 ? 0 : 1);

// The largest of a push too.
std::vector<int> Numbers()
{
    std::vector<int> numbers(std::begin(sizeNumbers), std::end(sizeNumbers));
    numbers.push_back(static_cast<int>(pushedBytes));
    return numbers;
}

class CopySizes : public ::testing::Test
{
protected:
    CopySizes() { source.FillWithNoise(9); }

    // The end is compared, which nothing but the end of the copy can have set.
    void Run(const CopyShape& shape)
    {
        const std::size_t reach = ReachOf(shape);
        if (reach > most)
            return;
        destination.FillWith(0x5A);
        unsigned char* const from = source.Last(reach);
        unsigned char* const to = destination.Last(reach);
        RunCopy(shape, from, to);
        const std::size_t last = std::min(reach, WideMemory::window);
        EXPECT_TRUE(std::equal(from + reach - last, from + reach, to + reach - last))
            << Describe(shape);
        ++count;
    }

    const std::size_t most = OneOf(2) == 1 ? mostBytes : pushedBytes;
    const WideMemory source{most, WideMemory::Repeated};
    const WideMemory destination{most, WideMemory::Repeated};
    std::uint64_t count = 0;
};

TEST_F(CopySizes, ReachWhatTheySayAndNoFurther)
{
    for (const auto kind : {CopyShape::Intel, CopyShape::Dwords, CopyShape::Unaligned,
                            CopyShape::AlignedFixed, CopyShape::AlignedVariable})
        for (const int size : Numbers())
            for (const int pixelBytes : Numbers()) {
                // A pixel of no bytes is a divide error, which has tests of its own; so is this.
                const bool takesPixels = kind != CopyShape::Intel && kind != CopyShape::Dwords;
                const bool isDivideError =
                    pixelBytes == 0 || (pixelBytes == -1 && size == smallest);
                if (takesPixels ? !isDivideError : pixelBytes == 1)
                    Run({kind, size, pixelBytes});
            }
    std::printf("%" PRIu64 " copies of any size\n", count);
    EXPECT_GT(count, 300U);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
