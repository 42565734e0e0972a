#include "tests/c_interface/pattern_calls.h"
#include "tests/pattern/engine_support.h"
#include "tests/pattern/pattern_support.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr std::uint64_t rows = 96;
constexpr std::uint64_t pixels = 200;

// Each thread makes a band of the page, the last one first.
TEST(PatternHandle, ServesManyThreadsAtOnce)
{
    for (const char* const version : {"2", "3"})
        for (const std::int32_t engine : {PLK_ENGINE_AUTOMATIC, PLK_ENGINE_X86}) {
            const std::string text =
                Head(version, "C", "X Y") + InColor("C", "X Y", "1 1 0-1\n2 1:3 0-2 1-3");
            const PatternHandle handle = MakeHandle(text, engine);
            const Bytes steps = RandomSteps(rows * pixels, 2);
            Bytes page(rows * pixels * 2);
            std::vector<std::thread> threads;
            constexpr std::uint64_t band = rows / 16;
            for (std::uint64_t first = rows; first != 0; first -= band)
                threads.emplace_back([&, begin = first - band] {
                    const plk_source from = SourceOf(steps.data(), steps.size(), pixels,
                                                     static_cast<std::int64_t>(begin * pixels));
                    const plk_target to = TargetOf(page.data(), page.size(), 2 * pixels,
                                                   static_cast<std::int64_t>(begin * pixels * 2));
                    EXPECT_EQ(
                        plk_pattern_run(handle.get(), begin, band, pixels, &from, &to, nullptr),
                        PLK_OK);
                });
            for (std::thread& thread : threads)
                thread.join();

            DotWeavePattern inOrder =
                Load(text, engine == PLK_ENGINE_X86 ? DotWeavePattern::X86 : DotWeavePattern::Sse);
            for (std::size_t row = 0; row < rows; ++row) {
                const auto begin = steps.begin() + static_cast<std::ptrdiff_t>(row * pixels);
                const auto inks = page.begin() + static_cast<std::ptrdiff_t>(row * pixels * 2);
                ASSERT_TRUE(Apply(inOrder, Bytes(begin, begin + pixels)) ==
                            Bytes(inks, inks + 2 * pixels))
                    << row;
            }
        }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
