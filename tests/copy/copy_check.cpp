#include "tests/copy/copy_check.h"

#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr std::uint32_t seed = 6101;
constexpr std::size_t spareBytes = 80;

// No byte of it is the one that a copy would put there.
Bytes Complement(const Bytes& bytes)
{
    Bytes others;
    for (const unsigned char byte : bytes)
        others.push_back(static_cast<unsigned char>(255 - byte));
    return others;
}

void ExpectCopiesWithoutSpare(const Bytes& content, Flush flush, const CopyCall& call)
{
    const GuardedBuffer source(content, flush);
    const GuardedBuffer destination(Complement(content), flush);
    call(source.data(), destination.data());
    EXPECT_EQ(content, destination.bytes());
    EXPECT_EQ(content, source.bytes());
}

void ExpectCopiesAndLeavesTheSpare(std::size_t bytes, const CopyCall& call)
{
    const Bytes content = RandomBytes(bytes + spareBytes, seed);
    const GuardedBuffer source(content, Flush::AtStart);
    const GuardedBuffer destination(Complement(content), Flush::AtStart);
    Bytes expected = Complement(content);
    for (std::size_t byte = 0; byte != bytes; ++byte)
        expected[byte] = content[byte];
    call(source.data(), destination.data());
    EXPECT_EQ(expected, destination.bytes());
    EXPECT_EQ(content, source.bytes());
}

} // namespace

void ExpectCopies(long long bytes, const CopyCall& call)
{
    const auto size = static_cast<std::size_t>(bytes);
    const Bytes content = RandomBytes(size, seed);
    ExpectCopiesWithoutSpare(content, Flush::AtEnd, call);
    ExpectCopiesWithoutSpare(content, Flush::AtStart, call);
    ExpectCopiesAndLeavesTheSpare(size, call);
}

} // namespace zvk::Pelkraft::TestSupport
