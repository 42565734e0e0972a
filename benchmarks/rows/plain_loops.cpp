#include "benchmarks/rows/plain_loops.h"

#include <cstring>

namespace zvk::Pelkraft::Benchmarks {

void InterleavedToPlanar(const unsigned char* source, unsigned char* destination,
                         std::size_t pixels)
{
    for (std::size_t i = 0; i != pixels; ++i)
        for (std::size_t c = 0; c != inks; ++c)
            destination[c * pixels + i] = source[i * inks + c];
}

void PlanarToInterleaved(const unsigned char* source, unsigned char* destination,
                         std::size_t pixels)
{
    for (std::size_t i = 0; i != pixels; ++i)
        for (std::size_t c = 0; c != inks; ++c)
            destination[i * inks + c] = source[c * pixels + i];
}

void CopyInterleaved(const unsigned char* source, unsigned char* destination, std::size_t pixels)
{
    for (std::size_t i = 0; i != pixels * inks; ++i)
        destination[i] = source[i];
}

void EightToSixteen(const unsigned char* source, unsigned char* destination, std::size_t pixels)
{
    for (std::size_t i = 0; i != pixels * inks; ++i) {
        const auto value = static_cast<std::uint16_t>(source[i] * 257U);
        std::memcpy(destination + 2 * i, &value, sizeof value);
    }
}

void SixteenToEight(const unsigned char* source, unsigned char* destination, std::size_t pixels)
{
    for (std::size_t i = 0; i != pixels * inks; ++i) {
        std::uint16_t value;
        std::memcpy(&value, source + 2 * i, sizeof value);
        destination[i] = static_cast<unsigned char>(((value * 0xFF01U >> 16) + 127) >> 8);
    }
}

void PackBits(const unsigned char* source, unsigned char* destination, std::size_t pixels)
{
    const std::size_t planeBytes = (pixels + 7) / 8;
    std::memset(destination, 0, planeBytes * inks);
    for (std::size_t i = 0; i != pixels; ++i)
        for (std::size_t c = 0; c != inks; ++c) {
            unsigned char& byte = destination[c * planeBytes + i / 8];
            byte = static_cast<unsigned char>(byte | (source[i * inks + c] & 1) << (7 - i % 8));
        }
}

void UnpackBits(const unsigned char* source, unsigned char* destination, std::size_t pixels)
{
    const std::size_t planeBytes = (pixels + 7) / 8;
    for (std::size_t i = 0; i != pixels; ++i)
        for (std::size_t c = 0; c != inks; ++c)
            destination[i * inks + c] =
                static_cast<unsigned char>(source[c * planeBytes + i / 8] >> (7 - i % 8) & 1);
}

void SwapChannels(const unsigned char* source, unsigned char* destination, std::size_t pixels)
{
    for (std::size_t i = 0; i != pixels; ++i)
        for (std::size_t c = 0; c != inks; ++c)
            destination[i * inks + c] = source[i * inks + (inks - 1 - c)];
}

void RepeatTwice(const unsigned char* source, unsigned char* destination, std::size_t pixels)
{
    for (std::size_t i = 0; i != pixels; ++i)
        for (std::size_t copy = 0; copy != 2; ++copy)
            for (std::size_t c = 0; c != inks; ++c)
                destination[(2 * i + copy) * inks + c] = source[i * inks + c];
}

void Mirror(const unsigned char* source, unsigned char* destination, std::size_t pixels)
{
    for (std::size_t i = 0; i != pixels; ++i)
        for (std::size_t c = 0; c != inks; ++c)
            destination[i * inks + c] = source[(pixels - 1 - i) * inks + c];
}

} // namespace zvk::Pelkraft::Benchmarks
