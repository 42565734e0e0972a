#include "tools/pelkraft/bit_weave.h"

#include <cstdint>
#include <cstring>

namespace zvk::Pelkraft::Client {
namespace {

std::int64_t BytesFor(std::int64_t bitCount)
{
    return (bitCount + 7) / 8;
}

// A sample never crosses a byte, since 1 and 2 divide 8.
unsigned SampleAt(const unsigned char* bytes, std::int64_t bitPosition, int bits)
{
    const int shift = 8 - bits - static_cast<int>(bitPosition & 7);
    return (static_cast<unsigned>(bytes[bitPosition >> 3]) >> shift) & ((1U << bits) - 1);
}

void AddSample(unsigned char* bytes, std::int64_t bitPosition, int bits, unsigned sample)
{
    const int shift = 8 - bits - static_cast<int>(bitPosition & 7);
    unsigned char& byte = bytes[bitPosition >> 3];
    byte = static_cast<unsigned char>(byte | (sample << shift));
}

} // namespace

void SplitToPlanes(const unsigned char* woven, int width, int channels, int bits,
                   unsigned char* planes)
{
    const std::int64_t planeBytes = BytesFor(std::int64_t{width} * bits);
    const std::int64_t pixelBits = std::int64_t{channels} * bits;
    std::memset(planes, 0, static_cast<std::size_t>(planeBytes * channels));
    for (int channel = 0; channel < channels; ++channel) {
        unsigned char* plane = planes + planeBytes * channel;
        std::int64_t from = std::int64_t{channel} * bits;
        for (std::int64_t to = 0; to < std::int64_t{width} * bits; to += bits, from += pixelBits)
            AddSample(plane, to, bits, SampleAt(woven, from, bits));
    }
}

void WeavePlanes(const unsigned char* planes, int width, int channels, int bits,
                 unsigned char* woven)
{
    const std::int64_t planeBytes = BytesFor(std::int64_t{width} * bits);
    const std::int64_t pixelBits = std::int64_t{channels} * bits;
    std::memset(woven, 0, static_cast<std::size_t>(BytesFor(pixelBits * width)));
    for (int channel = 0; channel < channels; ++channel) {
        const unsigned char* plane = planes + planeBytes * channel;
        std::int64_t to = std::int64_t{channel} * bits;
        for (std::int64_t from = 0; from < std::int64_t{width} * bits;
             from += bits, to += pixelBits)
            AddSample(woven, to, bits, SampleAt(plane, from, bits));
    }
}

} // namespace zvk::Pelkraft::Client
