#include <gtest/gtest.h>

#include <cfloat>

// Bytes that come from floats, such as the colours of a preview, must not depend on whether a
// processor can multiply and add at once. One that works with more digits than a double has rounds
// at other places anyway.
#if FLT_EVAL_METHOD == 0
namespace zvk::Pelkraft {
namespace {

TEST(FloatOperations, AreRoundedOneByOne)
{
    // The square has more digits than a double. Volatile: both are worked out, at run time.
    volatile const double factor = 1 + 0x1p-30;
    const double square = factor * factor;
    EXPECT_EQ(0.0, factor * factor - square);
}

} // namespace
} // namespace zvk::Pelkraft
#endif
