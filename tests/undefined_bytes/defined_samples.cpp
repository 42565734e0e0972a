#include "tests/undefined_bytes/defined_samples.h"

#include "tests/undefined_bytes/memory_shadow.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace zvk::Pelkraft::TestSupport {
namespace {

std::size_t Index(int number)
{
    return static_cast<std::size_t>(number);
}

// Any value will do, so long as they are not all alike.
unsigned char NextByte()
{
    static std::uint32_t state = 12345;
    state = state * 1664525U + 1013904223U;
    return static_cast<unsigned char>(state >> 24);
}

void DefineSample(const NaiveGeometry& geometry, Bytes& row, int pixel, int channel)
{
    const int planeBytes = (geometry.width * geometry.bits + 7) / 8;
    if (IsNaivePacked(geometry)) {
        const int bit = pixel * geometry.bits;
        const int samples = ((1 << geometry.bits) - 1) << (8 - geometry.bits - bit % 8);
        unsigned char& byte = row[Index(channel * planeBytes + bit / 8)];
        byte = static_cast<unsigned char>((byte & ~samples) | (NextByte() & samples));
        return;
    }
    const int bytes = (geometry.bits + 7) / 8;
    const int place = geometry.planar ? channel * planeBytes + pixel * bytes
                                      : (pixel * geometry.channels + channel) * bytes;
    for (int i = 0; i != bytes; ++i)
        row[Index(place + i)] = NextByte();
}

bool IsRead(const ConversionCase& oneCase, int channel)
{
    const std::vector<int>& map = oneCase.operation.map;
    return !oneCase.operation.hasMap || std::find(map.begin(), map.end(), channel) != map.end();
}

} // namespace

Bytes BarelyDefinedSource(const ConversionCase& oneCase)
{
    const NaiveGeometry& from = oneCase.source;
    const int factor = oneCase.operation.factor;
    const int repeats = std::abs(factor);
    const int set = CountSetPixels(from, oneCase.destination, factor);
    const int read = (set + repeats - 1) / repeats;

    Bytes row(NaiveRowBytes(from));
    MarkUndefined(row.data(), row.size());
    for (int nth = 0; nth != read; ++nth)
        for (int channel = 0; channel != from.channels; ++channel)
            if (IsRead(oneCase, channel))
                DefineSample(from, row, factor < 0 ? from.width - 1 - nth : nth, channel);
    return row;
}

} // namespace zvk::Pelkraft::TestSupport
