#include "pelkraft/copy_primitives.h"
#include "tests/support/guarded_buffer.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <thread>
#include <vector>

namespace zvk::Pelkraft {
namespace {

using namespace TestSupport;

constexpr int pixelBytes = 11;
constexpr int size = 64 * pixelBytes;

// Each copy goes on from where the one before it left the bytes.
void CopyByAllFive(const GuardedBuffer& source, std::array<GuardedBuffer, 5>& stages)
{
    intelMemcopy(source.data(), stages[0].data(), size);
    copyByDwords(stages[0].data(), stages[1].data(), size);
    copySimulationAlignedFixed(stages[1].data(), stages[2].data(), size, pixelBytes);
    copySimulationAlignedVariable(stages[2].data(), stages[3].data(), size, pixelBytes);
    copySimulationUnaligned(stages[3].data(), stages[4].data(), size - pixelBytes, pixelBytes);
}

TEST(CopyPrimitives, RunAtOnceOnBuffersOfTheirOwn)
{
    std::vector<std::thread> threads;
    for (std::uint32_t seed = 0; seed != 4; ++seed)
        threads.emplace_back([seed] {
            for (std::uint32_t round = 0; round != 50; ++round) {
                const auto content = RandomBytes(size, 100 * seed + round);
                const GuardedBuffer source(content, Flush::AtStart);
                std::array<GuardedBuffer, 5> stages{GuardedBuffer(size), GuardedBuffer(size),
                                                    GuardedBuffer(size), GuardedBuffer(size),
                                                    GuardedBuffer(size)};
                CopyByAllFive(source, stages);
                EXPECT_EQ(content, stages[3].bytes());
                auto last = content;
                // The last pixel's unit runs over by 5 of the pixel after it.
                std::fill(last.end() - (pixelBytes - 5), last.end(), 0);
                EXPECT_EQ(last, stages[4].bytes());
            }
        });
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace
} // namespace zvk::Pelkraft
