#pragma once

#include "direct/samples_lanes.h"

// UnpackBlock for vectors of one or two lanes.
namespace zvk::Pelkraft {
namespace {

inline int LoadFourBytes(const unsigned char* bytes)
{
    int v;
    std::memcpy(&v, bytes, sizeof v);
    return v;
}

struct alignas(32) BitPlaces
{
    unsigned char byteOf[32];
    unsigned char bitOf[16];
};

constexpr BitPlaces MakeBitPlaces()
{
    BitPlaces places{};
    for (int i = 0; i < 32; ++i)
        places.byteOf[i] = static_cast<unsigned char>(i / 8);
    for (int i = 0; i < 16; ++i)
        places.bitOf[i] = static_cast<unsigned char>(0x80 >> i % 8);
    return places;
}

constexpr BitPlaces bitPlaces = MakeBitPlaces();

// Four bytes give 32 samples.
template <int sampleBytes>
void UnpackFourBytes(const unsigned char* source, unsigned char* destination)
{
    const Lanes packed = Set32(LoadFourBytes(source));
    const Lanes bits = Broadcast(bitPlaces.bitOf);
    for (std::size_t i = 0; i < 32; i += laneSamples) {
        const Lanes spread = Shuffle(packed, Load(bitPlaces.byteOf + i));
        StoreSamples<sampleBytes>(destination + i * sampleBytes, Min8(And(spread, bits), Set8(1)));
    }
}

// Spreads halves of bytes, two samples each, to one sample in each byte.
template <int sampleBytes>
void StorePairs(unsigned char* destination, Lanes halves)
{
    const Lanes first = And(ShiftRight16<2>(halves), Set8(3));
    const Lanes second = And(halves, Set8(3));
    StoreSamples<sampleBytes>(destination, UnpackLow<1>(first, second));
    StoreSamples<sampleBytes>(destination + laneSamples * sampleBytes,
                              UnpackHigh<1>(first, second));
}

// A vector of bytes gives four of samples.
template <int sampleBytes>
void UnpackVector(const unsigned char* source, unsigned char* destination)
{
    const Lanes packed = Deal<4>(Load(source));
    const Lanes high = And(ShiftRight16<4>(packed), Set8(15));
    const Lanes low = And(packed, Set8(15));
    StorePairs<sampleBytes>(destination, UnpackLow<1>(high, low));
    StorePairs<sampleBytes>(destination + 2 * laneSamples * sampleBytes, UnpackHigh<1>(high, low));
}

template <int depth>
constexpr std::size_t unpackBlock = depth == 1 ? 32 : 4 * laneSamples;

template <int depth, int sampleBytes>
void UnpackBlock(const unsigned char* source, unsigned char* destination)
{
    if constexpr (depth == 1)
        UnpackFourBytes<sampleBytes>(source, destination);
    else
        UnpackVector<sampleBytes>(source, destination);
}

} // namespace
} // namespace zvk::Pelkraft
