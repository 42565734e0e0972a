#include "pelkraft/copy_primitives.h"
#include "tests/copy/copy_check.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <limits>

namespace zvk::Pelkraft {
namespace {

using namespace TestSupport;

CopyCall IntelMemcopy(int size)
{
    return [size](unsigned char* source, unsigned char* destination) {
        intelMemcopy(source, destination, size);
    };
}

TEST(IntelMemcopy, CopiesSizeBytesAndNoMore)
{
    for (int size = 0; size <= 300; ++size) {
        SCOPED_TRACE(size);
        ExpectCopies(size, IntelMemcopy(size));
    }
    ExpectCopies(1 << 20, IntelMemcopy(1 << 20));
}

TEST(IntelMemcopy, DoesNothingWithANegativeSize)
{
    for (const int size : {-1, -16, -4096, std::numeric_limits<int>::min()}) {
        SCOPED_TRACE(size);
        ExpectCopies(0, IntelMemcopy(size));
    }
}

TEST(IntelMemcopy, UsesNoPointerWhereThereIsNothingToCopy)
{
    intelMemcopy(nullptr, nullptr, 0);
    intelMemcopy(nullptr, nullptr, -1);
}

TEST(IntelMemcopy, TakesBuffersThatOverlap)
{
    constexpr std::size_t size = 100;
    constexpr std::size_t start = 100;
    const Bytes content = RandomBytes(300, 7);
    for (std::size_t target = 0; target <= start + size; ++target) {
        SCOPED_TRACE(target);
        Bytes moved = content;
        intelMemcopy(moved.data() + start, moved.data() + target, size);
        Bytes expected = content;
        for (std::size_t byte = 0; byte != size; ++byte)
            expected[target + byte] = content[start + byte];
        EXPECT_EQ(expected, moved);
    }
}

} // namespace
} // namespace zvk::Pelkraft
