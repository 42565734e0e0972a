#include "tests/support/naive_conversion.h"

#include <algorithm>
#include <cstdlib>

namespace zvk::Pelkraft::TestSupport {
namespace {

std::size_t Index(long long number)
{
    return static_cast<std::size_t>(number);
}

int PlaneBytes(const NaiveGeometry& geometry)
{
    return (geometry.width * geometry.bits + 7) / 8;
}

int WholeBytes(const NaiveGeometry& geometry)
{
    return (geometry.bits + 7) / 8;
}

unsigned ReadSample(const NaiveGeometry& geometry, const Bytes& row, int pixel, int channel)
{
    if (IsNaivePacked(geometry)) {
        unsigned value = 0;
        for (int b = 0; b != geometry.bits; ++b) {
            const int bit = pixel * geometry.bits + b;
            const unsigned byte = row[Index(channel * PlaneBytes(geometry) + bit / 8)];
            value = value * 2 + (byte >> (7 - bit % 8)) % 2;
        }
        return value;
    }
    const int bytes = WholeBytes(geometry);
    const int place = geometry.planar ? channel * PlaneBytes(geometry) + pixel * bytes
                                      : (pixel * geometry.channels + channel) * bytes;
    unsigned value = row[Index(place)];
    if (bytes == 2)
        value += row[Index(place + 1)] * 256U;
    return value;
}

unsigned ToEightBits(unsigned value, int bits)
{
    if (bits != 16)
        return value;
    return (value * 65281U / 65536U + 127U) / 256U;
}

unsigned FromEightBits(unsigned value, int bits)
{
    if (bits == 16)
        return value * 257U;
    return bits == 8 ? value : value % (1U << bits);
}

} // namespace

std::string Describe(const NaiveGeometry& geometry)
{
    return std::to_string(geometry.width) + " pixels of " + std::to_string(geometry.channels) +
           " x " + std::to_string(geometry.bits) + " bits " +
           (geometry.planar ? "planar" : "interleaved");
}

std::string Describe(const NaiveOperation& operation)
{
    if (operation.isFill)
        return "fill";
    if (!operation.hasMap)
        return "factor " + std::to_string(operation.factor);
    std::string text = "map";
    for (const int entry : operation.map)
        text.append(" ").append(std::to_string(entry));
    return text;
}

bool IsNaivePacked(const NaiveGeometry& geometry)
{
    return geometry.planar && geometry.bits % 8 != 0;
}

std::size_t NaiveRowBytes(const NaiveGeometry& geometry)
{
    return Index(geometry.planar ? geometry.channels * PlaneBytes(geometry)
                                 : geometry.channels * geometry.width * WholeBytes(geometry));
}

std::vector<unsigned> ReadSamples(const NaiveGeometry& geometry, const Bytes& row)
{
    std::vector<unsigned> samples;
    for (int pixel = 0; pixel != geometry.width; ++pixel)
        for (int channel = 0; channel != geometry.channels; ++channel)
            samples.push_back(ReadSample(geometry, row, pixel, channel));
    return samples;
}

void WriteSample(const NaiveGeometry& geometry, Bytes& row, int pixel, int channel, unsigned value)
{
    if (IsNaivePacked(geometry)) {
        for (int b = 0; b != geometry.bits; ++b) {
            const int bit = pixel * geometry.bits + b;
            unsigned char& byte = row[Index(channel * PlaneBytes(geometry) + bit / 8)];
            const unsigned weight = 1U << (7 - bit % 8);
            const bool set = (value >> (geometry.bits - 1 - b)) % 2 != 0;
            byte = static_cast<unsigned char>(set ? byte | weight : byte & ~weight);
        }
        return;
    }
    const int bytes = WholeBytes(geometry);
    const int place = geometry.planar ? channel * PlaneBytes(geometry) + pixel * bytes
                                      : (pixel * geometry.channels + channel) * bytes;
    row[Index(place)] = static_cast<unsigned char>(value % 256);
    if (bytes == 2)
        row[Index(place + 1)] = static_cast<unsigned char>(value / 256);
}

unsigned NaiveDepthChange(unsigned value, int from, int to)
{
    return from == to ? value : FromEightBits(ToEightBits(value, from), to);
}

void ClearSamples(const NaiveGeometry& geometry, Bytes& row, int channel, int count)
{
    for (int pixel = 0; pixel != count; ++pixel)
        WriteSample(geometry, row, pixel, channel, 0);
}

int CountSetPixels(const NaiveGeometry& source, const NaiveGeometry& destination, int factor)
{
    return std::min(source.width * std::abs(factor), destination.width);
}

bool IsServed(const NaiveGeometry& source, const NaiveGeometry& destination,
              const NaiveOperation& operation)
{
    const bool packedSource = IsNaivePacked(source);
    const bool packedDestination = IsNaivePacked(destination);
    if (!operation.hasMap && source.channels != destination.channels)
        return false;
    if ((packedSource && source.bits == 10) || (packedDestination && destination.bits == 10))
        return false;
    if (source.bits == destination.bits)
        return source.bits >= 8 || packedSource == packedDestination;
    const auto isOpen = [](const NaiveGeometry& row, bool packed) {
        return row.bits == 8 || row.bits == 16 || packed;
    };
    return isOpen(source, packedSource) && isOpen(destination, packedDestination);
}

void ClearBehindLastPixel(const NaiveGeometry& destination, Bytes& row, int setPixels)
{
    const int perByte = 8 / destination.bits;
    const int end = (setPixels + perByte - 1) / perByte * perByte;
    for (int channel = 0; channel != destination.channels; ++channel)
        for (int pixel = setPixels; pixel != end; ++pixel)
            WriteSample(destination, row, pixel, channel, 0);
}

Bytes NaiveConvert(const NaiveGeometry& source, const Bytes& sourceRow,
                   const NaiveGeometry& destination, const Bytes& before,
                   const NaiveOperation& operation)
{
    Bytes row = before;
    const int setPixels = CountSetPixels(source, destination, operation.factor);
    const int repeats = std::abs(operation.factor);
    for (int pixel = 0; pixel != setPixels; ++pixel) {
        const int nth = pixel / repeats;
        const int from = operation.factor < 0 ? source.width - 1 - nth : nth;
        for (int channel = 0; channel != destination.channels; ++channel) {
            const int entry = operation.hasMap ? operation.map[Index(channel)] : channel;
            const unsigned value = entry < 0 ? 0 : ReadSample(source, sourceRow, from, entry);
            WriteSample(destination, row, pixel, channel,
                        NaiveDepthChange(value, source.bits, destination.bits));
        }
    }
    if (IsNaivePacked(destination))
        ClearBehindLastPixel(destination, row, setPixels);
    return row;
}

} // namespace zvk::Pelkraft::TestSupport
