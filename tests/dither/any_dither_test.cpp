#include "tests/dither/any_dither.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

namespace zvk::Pelkraft::TestSupport {
namespace {

TEST(AnyDither, IsRefusedOrRunAsTheReferenceSays)
{
    for (std::uint32_t seed = 0; seed != 5000; ++seed) {
        const std::vector<unsigned char> bytes = RandomBytes(400, seed);
        const std::string finding = CheckAnyDither(bytes.data(), bytes.size());
        ASSERT_EQ(finding, "") << "seed " << seed;
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
