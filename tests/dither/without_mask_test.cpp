#include "tests/dither/dither_calls.h"

#include <gtest/gtest.h>

namespace zvk::Pelkraft::TestSupport {
namespace {

TEST(LibraryWithoutItsMask, HandsOutNone)
{
    EXPECT_EQ(plk_dither_mask(), nullptr);
}

TEST(LibraryWithoutItsMask, AsksForTheCallers)
{
    DitherRecord record(MixedDither(8));
    EXPECT_EQ("OK", CreateWords(&record.spec));
    record.spec.mask = nullptr;
    EXPECT_EQ(std::to_string(PLK_UNSUPPORTED) + " mask 0 0", CreateWords(&record.spec));
    plk_dither* dither = nullptr;
    plk_failure failure = {};
    failure.size = sizeof failure;
    EXPECT_EQ(plk_dither_create(&record.spec, &dither, &failure), PLK_UNSUPPORTED);
    EXPECT_STREQ(failure.text, "mask is null, and this library was built without its own; "
                               "give 65536 ranks");
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
