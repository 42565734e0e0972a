#include "tests/c_interface/any_plan.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

namespace zvk::Pelkraft::TestSupport {
namespace {

TEST(AnyPlan, IsRefusedOrRunAsTheReferenceSays)
{
    for (std::uint32_t seed = 0; seed != 20000; ++seed) {
        const std::vector<unsigned char> bytes = RandomBytes(200, seed);
        const std::string finding = CheckAnyPlan(bytes.data(), bytes.size());
        ASSERT_EQ(finding, "") << "seed " << seed;
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
