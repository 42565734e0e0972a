#include "tools/pelkraft/level_check.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace zvk::Pelkraft::Client {
namespace {

unsigned HighestByte(const unsigned char* first, std::int64_t count, std::int64_t step)
{
    unsigned highest = 0;
    for (std::int64_t i = 0; i < count; ++i)
        highest = std::max<unsigned>(highest, first[i * step]);
    return highest;
}

unsigned HighestWord(const unsigned char* first, std::int64_t count, std::int64_t step)
{
    unsigned highest = 0;
    for (std::int64_t i = 0; i < count; ++i) {
        std::uint16_t sample = 0;
        std::memcpy(&sample, first + 2 * i * step, sizeof sample);
        highest = std::max<unsigned>(highest, sample);
    }
    return highest;
}

// A plane of 2 bits a sample, on the way to 1: the upper bit of any.
bool HasUpperBit(const unsigned char* plane, std::int64_t width)
{
    const auto at = [&](std::int64_t pixel) { return plane[pixel / 4] >> (7 - pixel % 4 * 2) & 1; };
    for (std::int64_t pixel = 0; pixel < width; ++pixel) {
        if (at(pixel) != 0)
            return true;
    }
    return false;
}

bool ChannelExceeds(const unsigned char* row, const RowShape& shape, int channel, int level)
{
    const std::int64_t planeBytes = (shape.width * shape.bits + 7) / 8;
    const std::int64_t sampleBytes = (shape.bits + 7) / 8;
    const unsigned char* first = row + channel * (shape.planar ? planeBytes : sampleBytes);
    const std::int64_t step = shape.planar ? 1 : shape.channels;
    if (shape.bits == 16)
        return HighestWord(first, shape.width, step) > static_cast<unsigned>(level);
    if (shape.bits == 8)
        return HighestByte(first, shape.width, step) > static_cast<unsigned>(level);
    return shape.bits == 2 && level < 3 && HasUpperBit(first, shape.width);
}

} // namespace

bool ExceedsLevels(const unsigned char* row, const RowShape& shape, int levelBits,
                   const std::vector<int>& map)
{
    const int level = (1 << levelBits) - 1;
    if (map.empty()) {
        for (int channel = 0; channel < shape.channels; ++channel) {
            if (ChannelExceeds(row, shape, channel, level))
                return true;
        }
        return false;
    }
    return std::any_of(map.begin(), map.end(), [&](int channel) {
        return channel >= 0 && ChannelExceeds(row, shape, channel, level);
    });
}

} // namespace zvk::Pelkraft::Client
