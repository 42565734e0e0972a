#pragma once

#include "direct/samples_lanes.h"

// The split of PackSplit for vectors of one or two lanes: each lane sorts pixels of its own.
namespace zvk::Pelkraft {
namespace {

// Channel c of pixel k at c * pixels + k, where a load of so many pixels starts `back` bytes early.
template <int channels, int pixels, bool turned>
constexpr LaneBytes MakeSortMask(int back)
{
    LaneBytes mask{};
    for (int i = 0; i < 16; ++i) {
        const int pixel = turned ? pixels - 1 - i % pixels : i % pixels;
        const int channel = i / pixels;
        const int place = pixel * channels + channel + back;
        mask.bytes[i] = channel < channels ? static_cast<unsigned char>(place) : emptyByte;
    }
    return mask;
}

template <int channelCount, bool turned>
struct LaneSplitter
{
    static constexpr int channels = channelCount;

    static void Split(const unsigned char* row, Lanes* samples)
    {
        // Four pixels to a load, the last of which must not pass the block's end.
        static constexpr int back = 16 - 4 * channels;
        static constexpr LaneBytes sort = MakeSortMask<channels, 4, turned>(0);
        static constexpr LaneBytes sortLast = MakeSortMask<channels, 4, turned>(back);
        constexpr int flip = turned ? 1 : 0;

        Lanes v[4];
        for (std::ptrdiff_t i = 0; i < 4; ++i) {
            const bool last = i == 3;
            const unsigned char* from = row + i * 4 * channels - (last ? back : 0);
            v[i ^ flip] = Shuffle(LoadSpread(from, std::ptrdiff_t{16} * channels),
                                  Broadcast(last ? sortLast.bytes : sort.bytes));
        }
        const Lanes low01 = UnpackLow<4>(v[0], v[1]);
        const Lanes low23 = UnpackLow<4>(v[2], v[3]);
        const Lanes high01 = UnpackHigh<4>(v[0], v[1]);
        const Lanes high23 = UnpackHigh<4>(v[2], v[3]);
        samples[0] = UnpackLow<8>(low01, low23);
        samples[1] = UnpackHigh<8>(low01, low23);
        samples[2] = UnpackLow<8>(high01, high23);
        if constexpr (channels == 4)
            samples[3] = UnpackHigh<8>(high01, high23);
    }
};

template <bool turned>
struct LaneSplitter<2, turned>
{
    static constexpr int channels = 2;

    static void Split(const unsigned char* row, Lanes* samples)
    {
        static constexpr LaneBytes sort = MakeSortMask<2, 8, turned>(0);
        const Lanes first = Shuffle(LoadSpread(row, 32), Broadcast(sort.bytes));
        const Lanes second = Shuffle(LoadSpread(row + 16, 32), Broadcast(sort.bytes));
        samples[0] = UnpackLow<8>(first, second);
        samples[1] = UnpackHigh<8>(first, second);
    }
};

} // namespace
} // namespace zvk::Pelkraft
