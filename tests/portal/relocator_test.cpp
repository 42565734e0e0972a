#include "portal/relocator.h"

#include "tests/support/guarded_buffer.h"
#include "tests/support/random_bytes.h"
#include "tests/support/thrown_text.h"

#include <gtest/gtest.h>

#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

using Bytes = std::vector<unsigned char>;

constexpr const char* unsupportedRelocation =
    "zvk::Pelkraft::ConversionPortal::Relocator unsupported bit depth for relocation";

Bytes Relocate(const Bytes& source, std::uint64_t lastByteBits, std::int32_t bits, Flush flush)
{
    const GuardedBuffer from(source, flush);
    const GuardedBuffer to(source.size(), flush, 0xA5);
    Relocator(to.data(),
              {from.data(), static_cast<std::int64_t>(source.size()), lastByteBits, bits});
    EXPECT_EQ(source, from.bytes());
    return to.bytes();
}

// Bit by bit: the stream moves to the right until its last bit in use is the last bit of a byte,
// then the samples of each byte change places.
Bytes NaiveRelocate(const Bytes& source, std::size_t lastByteBits, std::size_t bits)
{
    std::vector<int> stream(lastByteBits == 0 ? 0 : 8 - lastByteBits, 0);
    for (const unsigned char byte : source)
        for (int bit = 7; bit >= 0; --bit)
            stream.push_back(byte >> bit & 1);

    Bytes target;
    for (std::size_t i = 0; i != source.size(); ++i) {
        int byte = 0;
        for (std::size_t sample = 8 / bits; sample-- != 0;)
            for (std::size_t bit = 0; bit != bits; ++bit)
                byte = byte * 2 + stream[8 * i + sample * bits + bit];
        target.push_back(static_cast<unsigned char>(byte));
    }
    return target;
}

TEST(Relocator, TurnsTheBitsOfAByteRound)
{
    EXPECT_EQ((Bytes{0x80}), Relocate({0x01}, 0, 1, Flush::AtEnd));
    EXPECT_EQ((Bytes{0x01, 0x2C, 0xFF, 0x00}),
              Relocate({0x80, 0x34, 0xFF, 0x00}, 0, 1, Flush::AtEnd));
}

TEST(Relocator, TurnsThePairsOfAByteRound)
{
    EXPECT_EQ((Bytes{0xE4}), Relocate({0x1B}, 0, 2, Flush::AtEnd));
    EXPECT_EQ((Bytes{0x40, 0x1C}), Relocate({0x01, 0x34}, 0, 2, Flush::AtEnd));
}

TEST(Relocator, ShiftsARowThatEndsInsideAByte)
{
    EXPECT_EQ((Bytes{0xE0, 0x1F}), Relocate({0xFF, 0x00}, 3, 1, Flush::AtEnd));
    // Three pixels in one byte: 101, of which the last comes first.
    EXPECT_EQ((Bytes{0xA0}), Relocate({0xA0}, 3, 1, Flush::AtEnd));
    EXPECT_EQ((Bytes{0x60}), Relocate({0xC0}, 3, 1, Flush::AtEnd));
    // Samples 3 and 1.
    EXPECT_EQ((Bytes{0x70}), Relocate({0xD0}, 4, 2, Flush::AtEnd));
}

TEST(Relocator, MovesBitsBehindTheRowsEndBehindTheTurnedOnes)
{
    EXPECT_EQ((Bytes{0x00, 0x1F}), Relocate({0x1F, 0x00}, 3, 1, Flush::AtEnd));
}

TEST(Relocator, TurnsEachByte)
{
    Bytes all;
    for (int byte = 0; byte != 256; ++byte)
        all.push_back(static_cast<unsigned char>(byte));
    EXPECT_EQ(NaiveRelocate(all, 0, 1), Relocate(all, 0, 1, Flush::AtEnd));
    EXPECT_EQ(NaiveRelocate(all, 0, 2), Relocate(all, 0, 2, Flush::AtEnd));
}

TEST(Relocator, AgreesWithTheModelForEachSizeAndEnd)
{
    for (const std::int32_t bits : {1, 2}) {
        for (std::uint64_t lastByteBits = 0; lastByteBits != 8; ++lastByteBits) {
            for (std::size_t size = 0; size != 71; ++size) {
                SCOPED_TRACE(testing::Message() << bits << " bits, " << lastByteBits
                                                << " in the last byte, " << size << " bytes");
                const Bytes source =
                    RandomBytes(size, static_cast<std::uint32_t>(size * 8 + lastByteBits));
                const Bytes expected = NaiveRelocate(source, static_cast<std::size_t>(lastByteBits),
                                                     static_cast<std::size_t>(bits));
                ASSERT_EQ(expected, Relocate(source, lastByteBits, bits, Flush::AtEnd));
                ASSERT_EQ(expected, Relocate(source, lastByteBits, bits, Flush::AtStart));
            }
        }
    }
}

TEST(Relocator, PassesOverMoreThanSevenBits)
{
    const Bytes untouched(3, 0xA5);
    for (const std::uint64_t lastByteBits : {std::uint64_t{8}, std::uint64_t{9}, ~std::uint64_t{0}})
        for (const std::int32_t bits : {1, 2})
            EXPECT_EQ(untouched, Relocate({1, 2, 3}, lastByteBits, bits, Flush::AtEnd));
}

TEST(Relocator, DoesNothingBelowOneByte)
{
    unsigned char target = 0xA5;
    for (const std::uint64_t lastByteBits : {std::uint64_t{0}, std::uint64_t{3}}) {
        for (const std::int64_t bytes : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{-64}}) {
            Relocator(&target, {nullptr, bytes, lastByteBits, 1});
            Relocator(&target, {nullptr, bytes, lastByteBits, 2});
        }
    }
    EXPECT_EQ(0xA5, target);
}

TEST(Relocator, RefusesOtherDepths)
{
    unsigned char target = 0xA5;
    const unsigned char source = 0x0F;
    for (const std::int32_t bits : {-1, 0, 3, 4, 8, 10, 16}) {
        for (const std::uint64_t lastByteBits : {std::uint64_t{0}, std::uint64_t{8}}) {
            EXPECT_EQ(unsupportedRelocation, TextOf([&] {
                          Relocator(&target, {&source, 1, lastByteBits, bits});
                      }));
        }
    }
    EXPECT_EQ(0xA5, target);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
