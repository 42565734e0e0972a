#pragma once

#include <cstddef>
#include <cstdint>

// The library is measured against these loops, which a caller would write by hand for CMYK.
namespace zvk::Pelkraft::Benchmarks {

constexpr std::size_t inks = 4;

using PlainLoop = void (*)(const unsigned char* source, unsigned char* destination,
                           std::size_t pixels);

void InterleavedToPlanar(const unsigned char* source, unsigned char* destination,
                         std::size_t pixels);
void PlanarToInterleaved(const unsigned char* source, unsigned char* destination,
                         std::size_t pixels);
void CopyInterleaved(const unsigned char* source, unsigned char* destination, std::size_t pixels);
void EightToSixteen(const unsigned char* source, unsigned char* destination, std::size_t pixels);
void SixteenToEight(const unsigned char* source, unsigned char* destination, std::size_t pixels);
void PackBits(const unsigned char* source, unsigned char* destination, std::size_t pixels);
void UnpackBits(const unsigned char* source, unsigned char* destination, std::size_t pixels);
void SwapChannels(const unsigned char* source, unsigned char* destination, std::size_t pixels);
void RepeatTwice(const unsigned char* source, unsigned char* destination, std::size_t pixels);
void Mirror(const unsigned char* source, unsigned char* destination, std::size_t pixels);

} // namespace zvk::Pelkraft::Benchmarks
