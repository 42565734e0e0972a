#include "pattern/early_check.h"

#include "tests/pattern/pattern_support.h"
#include "zvk/split.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <new>
#include <string>

// No object is as long as these if addresses have 32 bits.
#if SIZE_MAX > UINT32_MAX

namespace zvk::Pelkraft::TestSupport {
namespace {

// A text of any length that begins with a version, whose memory is two megabytes that are mapped
// again and again.
class LongText
{
public:
    explicit LongText(std::size_t length) : mappedBytes((length / blockBytes + 1) * blockBytes)
    {
        const int file = memfd_create("text", 0);
        if (file < 0 || ftruncate(file, blockBytes) != 0)
            return;
        void* memory = mmap(nullptr, mappedBytes + blockBytes, PROT_NONE,
                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (memory == MAP_FAILED)
            return;
        text = static_cast<char*>(memory);
        for (std::size_t at = 0; at < mappedBytes; at += blockBytes)
            Map(text + at, MAP_SHARED | MAP_FIXED, file);
        std::memset(text, 'x', blockBytes);
        std::memcpy(text, "VERSION 7 ", 10);
        // A page of its own for the end, since all other blocks are one and the same.
        char* lastBlock = text + mappedBytes - blockBytes;
        Map(lastBlock, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1);
        std::memset(lastBlock, 'x', blockBytes);
        text[length] = 0;
        close(file);
    }

    ~LongText() { munmap(text, mappedBytes + blockBytes); }
    LongText(const LongText&) = delete;
    LongText& operator=(const LongText&) = delete;

    const char* get() const { return text; }

private:
    static void Map(char* at, int flags, int file)
    {
        if (mmap(at, blockBytes, PROT_READ | PROT_WRITE, flags, file, 0) == MAP_FAILED)
            throw std::bad_alloc();
    }

    static constexpr std::size_t blockBytes = std::size_t{2} << 20;
    const std::size_t mappedBytes;
    char* text = nullptr;
};

std::string Refusal(const LongText& text)
{
    return WhatIsThrown([&] { CheckPatternText(text.get(), zvk::split); });
}

TEST(EarlyCheck, RefusesExactlyOneLength)
{
    const LongText text(0x7FFFFFFF);
    ASSERT_NE(text.get(), nullptr);
    EXPECT_EQ(Refusal(text), "wide: Internal Message: to long dotweave pattern");
    for (const std::size_t length : {std::size_t{0x7FFFFFFE}, std::size_t{0x80000000}}) {
        const LongText neighbour(length);
        ASSERT_NE(neighbour.get(), nullptr);
        EXPECT_EQ(CheckPatternText(neighbour.get(), zvk::split), 7) << length;
    }
}

TEST(EarlyCheck, LooksAtTheLow32BitsOfTheLength)
{
    const LongText text((std::size_t{1} << 32) + 0x7FFFFFFF);
    ASSERT_NE(text.get(), nullptr);
    EXPECT_EQ(Refusal(text), "wide: Internal Message: to long dotweave pattern");
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport

#endif
