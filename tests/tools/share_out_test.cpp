#include "tools/pelkraft/workers.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <string>

namespace zvk::Pelkraft::TestSupport {
namespace {

// The first of the pieces that fail is reported, once all others have done their work.
TEST(ShareOut, ThrowsTheFirstFailureWhenAllHaveEnded)
{
    for (int first = 0; first < 4; ++first) {
        std::atomic<int> ended{0};
        std::string failure = "none";
        try {
            Client::ShareOut(4, 8, [&](int worker, std::int64_t, std::int64_t) {
                ++ended;
                if (worker >= first)
                    throw std::runtime_error(std::to_string(worker));
            });
        } catch (const std::runtime_error& error) {
            failure = error.what();
        }
        EXPECT_EQ(std::to_string(first), failure);
        EXPECT_EQ(4, ended);
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
