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

namespace zvk::Pelkraft {
namespace {

using TestSupport::WhatIsThrown;

const std::string noVersion = "wide: Internal Message: no version in dotweave pattern";

std::int32_t Check(const char* text)
{
    return CheckPatternText(text, zvk::split);
}

std::string Refusal(const char* text)
{
    return WhatIsThrown([text] { Check(text); });
}

// No object is as long as these if addresses have 32 bits.
#if SIZE_MAX > UINT32_MAX

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

TEST(EarlyCheck, RefusesExactlyOneLength)
{
    const LongText text(0x7FFFFFFF);
    ASSERT_NE(text.get(), nullptr);
    EXPECT_EQ(Refusal(text.get()), "wide: Internal Message: to long dotweave pattern");
    for (const std::size_t length : {std::size_t{0x7FFFFFFE}, std::size_t{0x80000000}}) {
        const LongText neighbour(length);
        ASSERT_NE(neighbour.get(), nullptr);
        EXPECT_EQ(Check(neighbour.get()), 7) << length;
    }
}

TEST(EarlyCheck, LooksAtTheLow32BitsOfTheLength)
{
    const LongText text((std::size_t{1} << 32) + 0x7FFFFFFF);
    ASSERT_NE(text.get(), nullptr);
    EXPECT_EQ(Refusal(text.get()), "wide: Internal Message: to long dotweave pattern");
}

#endif

TEST(EarlyCheck, RefusesANullPointer)
{
    EXPECT_EQ(Refusal(nullptr), "wide: Internal Message: no input dotweave pattern");
}

TEST(EarlyCheck, RefusesATextThatIsTooShortForAVersion)
{
    for (const char* text : {"", "V", "VERSIO", "      "})
        EXPECT_EQ(Refusal(text), noVersion) << text;
}

TEST(EarlyCheck, RefusesATextWithoutTheWord)
{
    EXPECT_EQ(Refusal("DotWeavePattern version 2"), noVersion);
    EXPECT_EQ(Refusal("DotWeavePattern VERSIO N2"), noVersion);
}

TEST(EarlyCheck, RefusesAWordWithoutAPieceBehindIt)
{
    for (const char* text :
         {"VERSION", "DotWeavePattern VERSION", "VERSION \t\n ", "VERSION2", "VERSION\r3"})
        EXPECT_EQ(Refusal(text), noVersion) << text;
}

TEST(EarlyCheck, ReadsTheSecondPieceAsANumber)
{
    EXPECT_EQ(Check("VERSION 3"), 3);
    EXPECT_EQ(Check("DotWeavePattern\nVERSION\t2\nRANDOM_SEED 7"), 2);
    EXPECT_EQ(Check("VERSION    \n\t 12x"), 12);
    EXPECT_EQ(Check("VERSION\r\n3\r\n"), 3);
    EXPECT_EQ(Check("VERSIONS 5 6"), 5);
    EXPECT_EQ(Check("VERSION two"), 0);
    EXPECT_EQ(Check("VERSION -1"), -1);
    EXPECT_EQ(Check("VERSION 99999999999"), INT32_MAX);
}

TEST(EarlyCheck, TakesTheFirstWordEvenInACommentOrInQuotes)
{
    EXPECT_EQ(Check("#VERSION 2\nVERSION 3"), 2);
    EXPECT_EQ(Check("\"x VERSION 4\" VERSION 3"), 4);
    EXPECT_EQ(Check("MYVERSION 5 VERSION 3"), 5);
}

TEST(EarlyCheck, SeesTwentyBytesAndAsManyAsStandInFront)
{
    // At position 0 the piece is 20 bytes: the word, 12 blanks and one byte of the number.
    EXPECT_EQ(Check("VERSION            34"), 3);
    EXPECT_EQ(Refusal("VERSION             34"), noVersion);
    // Each byte in front lets one more be seen.
    EXPECT_EQ(Check("xVERSION            34"), 34);
    EXPECT_EQ(Check("xVERSION             34"), 3);
    EXPECT_EQ(Check("xxVERSION             34"), 34);
    for (const std::size_t ahead : {0U, 1U, 30U, 60U})
        for (const std::size_t between : {1U, 12U, 13U, 40U, 42U, 43U, 72U, 73U}) {
            const std::string text =
                std::string(ahead, ' ') + "VERSION" + std::string(between, ' ') + "3";
            TextSpan place;
            const auto version = FindEarlyVersion(text, zvk::split, place);
            EXPECT_EQ(version.has_value(), 7 + between < ahead + 20) << ahead << ", " << between;
            EXPECT_EQ(version.value_or(3), 3);
            EXPECT_EQ(place.offset, ahead);
        }
}

} // namespace
} // namespace zvk::Pelkraft
