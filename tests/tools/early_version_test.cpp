#include "tools/pelkraft/early_version.h"

#include <gtest/gtest.h>

#include <string>

namespace zvk::Pelkraft::TestSupport {
namespace {

// The word and the 20 bytes from it on are looked at, and as many more as stand ahead of it.
TEST(EarlyVersion, IsSeenTheFartherTheLaterItsWordStands)
{
    for (const std::size_t ahead : {0U, 1U, 30U, 60U})
        for (const std::size_t between : {1U, 12U, 13U, 40U, 42U, 43U, 72U, 73U}) {
            const std::string text =
                std::string(ahead, ' ') + "VERSION" + std::string(between, ' ') + "3";
            TextSpan place;
            const auto version = Client::ReadEarlyVersion(text, place);
            const bool isSeen = 7 + between < ahead + 20;
            EXPECT_EQ(isSeen, version.has_value()) << ahead << ", " << between;
            EXPECT_EQ(isSeen ? 3 : 0, version.value_or(0));
            EXPECT_EQ(ahead, place.offset);
        }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
