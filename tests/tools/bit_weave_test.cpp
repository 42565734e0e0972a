#include "tests/support/guarded_buffer.h"
#include "tests/support/random_bytes.h"
#include "tools/pelkraft/bit_weave.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace zvk::Pelkraft::TestSupport {
namespace {

// A row as the text of its bits, highest first.
std::string BitsOf(const unsigned char* bytes, std::size_t count)
{
    std::string bits;
    for (std::size_t i = 0; i < count; ++i)
        for (int place = 7; place >= 0; --place)
            bits += (bytes[i] >> place & 1) != 0 ? '1' : '0';
    return bits;
}

std::string FilledUp(std::string bits)
{
    bits.resize((bits.size() + 7) / 8 * 8, '0');
    return bits;
}

struct Shape
{
    int width;
    int channels;
    int bits;

    std::size_t PlaneBits() const { return Count(width) * Count(bits); }
    std::size_t PlaneBytes() const { return (PlaneBits() + 7) / 8; }
    std::size_t WovenBytes() const { return (PlaneBits() * Count(channels) + 7) / 8; }

    static std::size_t Count(int number) { return static_cast<std::size_t>(number); }
};

// Samples of the channels in turn, from planes that each begin at a byte.
std::string WovenText(const Shape& shape, const std::string& planes)
{
    std::string woven;
    for (std::size_t at = 0; at < shape.PlaneBits(); at += Shape::Count(shape.bits))
        for (std::size_t channel = 0; channel < Shape::Count(shape.channels); ++channel)
            woven += planes.substr(channel * 8 * shape.PlaneBytes() + at, Shape::Count(shape.bits));
    return FilledUp(woven);
}

std::string PlanesText(const Shape& shape, const std::string& woven)
{
    std::string planes;
    for (std::size_t channel = 0; channel < Shape::Count(shape.channels); ++channel) {
        std::string plane;
        for (std::size_t pixel = 0; pixel < Shape::Count(shape.width); ++pixel) {
            const std::size_t sample = pixel * Shape::Count(shape.channels) + channel;
            plane += woven.substr(sample * Shape::Count(shape.bits), Shape::Count(shape.bits));
        }
        planes += FilledUp(plane);
    }
    return planes;
}

class BitWeave : public testing::TestWithParam<int>
{};

// The memory's old content, here all ones, leaves no trace in a row.
TEST_P(BitWeave, WritesEachBitOfARow)
{
    const int bits = GetParam();
    for (int channels = 1; channels <= 9; ++channels)
        for (int width = 0; width <= 20; ++width) {
            const Shape shape{width, channels, bits};
            const std::size_t planeBytes = shape.PlaneBytes() * Shape::Count(channels);
            const auto given = RandomBytes(planeBytes + shape.WovenBytes(), 7);
            const GuardedBuffer woven(shape.WovenBytes(), Flush::AtEnd, 0xFF);
            Client::WeavePlanes(given.data(), width, channels, bits, woven.data());
            EXPECT_EQ(BitsOf(woven.data(), shape.WovenBytes()),
                      WovenText(shape, BitsOf(given.data(), planeBytes)));
            const GuardedBuffer planes(planeBytes, Flush::AtEnd, 0xFF);
            Client::SplitToPlanes(given.data(), width, channels, bits, planes.data());
            EXPECT_EQ(BitsOf(planes.data(), planeBytes),
                      PlanesText(shape, BitsOf(given.data(), shape.WovenBytes())));
        }
}

INSTANTIATE_TEST_SUITE_P(Depths, BitWeave, testing::Values(1, 2));

} // namespace
} // namespace zvk::Pelkraft::TestSupport
