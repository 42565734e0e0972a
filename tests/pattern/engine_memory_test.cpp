#include "tests/pattern/engine_support.h"
#include "tests/pattern/naive_pattern.h"
#include "tests/pattern/pattern_support.h"
#include "tests/support/guarded_buffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>

namespace zvk::Pelkraft::TestSupport {
namespace {

// Each ink of this pattern is fed, and one step has two alternatives.
std::string Wide(int inColors, int outInks)
{
    std::string text = Head("2", Names(" C", inColors), Names(" X", outInks));
    for (int i = 0; i < inColors; ++i) {
        std::string own;
        for (int ink = i; ink < outInks; ink += inColors)
            own += Numbered(" X", ink);
        text += InColor(Numbered("C", i), own, i == 0 ? "1 1:1 0-10 0-20" : "1 1 0-10");
    }
    return text;
}

TEST(PatternEngines, TouchNoByteOutsideTheRows)
{
    for (const Engine engine :
         {DotWeavePattern::X86, DotWeavePattern::Sse, DotWeavePattern::Reference})
        for (int inColors = 1; inColors <= 16; ++inColors)
            for (int outInks = 1; outInks <= 16; ++outInks) {
                if (engine == DotWeavePattern::Reference && (inColors > 12 || outInks > 12))
                    continue;
                DotWeavePattern pattern = Load(Wide(inColors, outInks), engine);
                for (const std::size_t pixels : {0U, 1U, 2U, 5U, 14U, 15U, 16U, 17U, 40U})
                    for (const Flush flush : {Flush::AtStart, Flush::AtEnd}) {
                        const GuardedBuffer source(
                            RandomSteps(pixels * static_cast<std::size_t>(inColors), 1), flush);
                        const GuardedBuffer destination(pixels * static_cast<std::size_t>(outInks),
                                                        flush, 0xA5);
                        pattern.ApplyPattern(source.data(), destination.data(),
                                             static_cast<unsigned long>(pixels));
                        // All bytes are written: none of the values is the filler.
                        const Bytes inks = destination.bytes();
                        ASSERT_EQ(std::count(inks.begin(), inks.end(), 0xA5), 0)
                            << inColors << " " << outInks << " " << pixels;
                    }
            }
}

TEST(PatternEngines, TakeTheLow32BitsOfACount)
{
    for (const Engine engine :
         {DotWeavePattern::X86, DotWeavePattern::Sse, DotWeavePattern::Reference}) {
        DotWeavePattern cut = Load(Wide(2, 3), engine);
        DotWeavePattern plain = Load(Wide(2, 3), engine);
        const GuardedBuffer source(RandomSteps(10, 1));
        const GuardedBuffer destination(15, Flush::AtEnd, 0xA5);
        cut.ApplyPattern(source.data(), destination.data(),
                         static_cast<unsigned long>((std::uint64_t{1} << 32) + 5));
        EXPECT_EQ(destination.bytes(), Apply(plain, source.bytes()));
    }
}

TEST(PatternEngines, WriteNothingBehindThePixels)
{
    for (const Engine engine :
         {DotWeavePattern::X86, DotWeavePattern::Sse, DotWeavePattern::Reference})
        for (int outInks = 1; outInks <= 12; ++outInks) {
            DotWeavePattern pattern = Load(Wide(2, outInks), engine);
            for (std::size_t pixels = 0; pixels < 40; ++pixels) {
                Bytes source = RandomSteps(2 * pixels, 1);
                const std::size_t written = pixels * static_cast<std::size_t>(outInks);
                Bytes destination(written + 64, 0xA5);
                pattern.ApplyPattern(source.data(), destination.data(),
                                     static_cast<unsigned long>(pixels));
                ASSERT_TRUE(std::all_of(destination.begin() + static_cast<std::ptrdiff_t>(written),
                                        destination.end(), [](auto byte) { return byte == 0xA5; }))
                    << outInks << " " << pixels;
            }
        }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
