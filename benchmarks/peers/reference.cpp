#include "benchmarks/peers/reference.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace zvk::Pelkraft::Benchmarks {
namespace {

// One sample's place in a row, counted in samples of its plane or of the whole row.
std::size_t FindPlace(const Geometry& geometry, int pixel, int channel)
{
    if (geometry.planar)
        return static_cast<std::size_t>(pixel);
    return static_cast<std::size_t>(pixel) * static_cast<std::size_t>(geometry.channels) +
           static_cast<std::size_t>(channel);
}

std::size_t FindPlane(const Geometry& geometry, int width, int channel)
{
    return geometry.planar ? static_cast<std::size_t>(channel) * CalcPlaneBytes(geometry, width)
                           : 0;
}

unsigned ReadSample(const Geometry& geometry, const unsigned char* plane, std::size_t place)
{
    if (geometry.bits == 16) {
        std::uint16_t sample = 0;
        std::memcpy(&sample, plane + 2 * place, sizeof sample);
        return sample;
    }
    const auto bits = static_cast<std::size_t>(geometry.bits);
    const std::size_t firstBit = place * bits;
    const auto shift = 8 - bits - firstBit % 8;
    return (static_cast<unsigned>(plane[firstBit / 8]) >> shift) & ((1U << bits) - 1U);
}

// The row is zero before.
void WriteSample(const Geometry& geometry, unsigned char* plane, std::size_t place, unsigned value)
{
    if (geometry.bits == 16) {
        const auto sample = static_cast<std::uint16_t>(value);
        std::memcpy(plane + 2 * place, &sample, sizeof sample);
        return;
    }
    const auto bits = static_cast<std::size_t>(geometry.bits);
    const std::size_t firstBit = place * bits;
    const auto shift = 8 - bits - firstBit % 8;
    plane[firstBit / 8] = static_cast<unsigned char>(plane[firstBit / 8] | (value << shift));
}

unsigned ChangeDepth(unsigned value, int from, int to)
{
    if (from == to)
        return value;
    if (to == 16)
        return value * 257U;
    if (from == 16)
        return (value * 65281U / 65536U + 127U) / 256U;
    return value % (1U << to);
}

} // namespace

Bytes CalcReference(const Job& job, int width, const Bytes& source)
{
    const Geometry& from = job.source;
    const Geometry& to = job.destination;
    const int destinationWidth = CalcDestinationWidth(job, width);
    Bytes destination(CalcDestinationBytes(job, width));
    for (int x = 0; x != destinationWidth; ++x) {
        const int forward = x / std::abs(job.factor);
        const int pixel = job.factor < 0 ? width - 1 - forward : forward;
        for (int c = 0; c != to.channels; ++c) {
            const int channel = job.map != nullptr ? job.map[c] : c;
            if (channel < 0)
                continue;
            const unsigned value = ReadSample(from, source.data() + FindPlane(from, width, channel),
                                              FindPlace(from, pixel, channel));
            WriteSample(to, destination.data() + FindPlane(to, destinationWidth, c),
                        FindPlace(to, x, c), ChangeDepth(value, from.bits, to.bits));
        }
    }
    return destination;
}

unsigned FindLargestDifference(const Job& job, int width, const Bytes& one, const Bytes& other)
{
    const Geometry& geometry = job.destination;
    const int destinationWidth = CalcDestinationWidth(job, width);
    unsigned largest = 0;
    for (int c = 0; c != geometry.channels; ++c) {
        const std::size_t plane = FindPlane(geometry, destinationWidth, c);
        for (int x = 0; x != destinationWidth; ++x) {
            const std::size_t place = FindPlace(geometry, x, c);
            const unsigned a = ReadSample(geometry, one.data() + plane, place);
            const unsigned b = ReadSample(geometry, other.data() + plane, place);
            largest = std::max(largest, a > b ? a - b : b - a);
        }
    }
    return largest;
}

} // namespace zvk::Pelkraft::Benchmarks
