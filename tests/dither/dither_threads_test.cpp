#include "tests/dither/dither_calls.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <thread>

namespace zvk::Pelkraft::TestSupport {
namespace {

// Each thread makes a band of the page, the last one first.
TEST(DitherHandle, ServesManyThreadsAtOnce)
{
    constexpr std::uint64_t rows = 96;
    constexpr std::uint64_t pixels = 200;
    const NaiveDither naive = MixedDither(8);
    const DitherHandle dither = HandleOf(naive);
    const Bytes page = RandomBytes(rows * pixels * 4, 5);
    Bytes steps(page.size());
    std::vector<std::thread> threads;
    constexpr std::uint64_t band = rows / 16;
    for (std::uint64_t first = rows; first != 0; first -= band)
        threads.emplace_back([&, begin = first - band] {
            const auto offset = static_cast<std::int64_t>(begin * pixels * 4);
            const plk_source from = SourceOf(page.data(), page.size(), pixels * 4, offset);
            const plk_target to = TargetOf(steps.data(), steps.size(), pixels * 4, offset);
            EXPECT_EQ(plk_dither_run(dither.get(), 0, static_cast<std::int64_t>(begin), band,
                                     pixels, &from, &to, nullptr),
                      PLK_OK);
        });
    for (std::thread& thread : threads)
        thread.join();
    for (std::size_t row = 0; row != rows; ++row) {
        const auto begin = static_cast<std::ptrdiff_t>(row * pixels * 4);
        const auto end = begin + static_cast<std::ptrdiff_t>(pixels * 4);
        ASSERT_EQ(naive.RowOf(Bytes(page.begin() + begin, page.begin() + end), 0,
                              static_cast<std::int64_t>(row)),
                  Bytes(steps.begin() + begin, steps.begin() + end))
            << row;
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
