#include "plan/patch_pattern.h"

#include "direct/kernels.h"

#include <algorithm>
#include <cstring>

namespace zvk::Pelkraft {
namespace {

bool IsConstant(std::int32_t entry)
{
    return entry <= firstConstantEntry;
}

// The bits to turn over in each sample of the channel.
std::uint32_t TurnedBits(const RowsRequest& request, std::size_t channel)
{
    const std::uint32_t fullScale = (1U << StorageBitsOf(request.target)) - 1;
    const std::int32_t entry = request.maps ? request.entries[channel] : 0;
    if (IsConstant(entry))
        return static_cast<std::uint32_t>(firstConstantEntry - entry) & fullScale;
    return request.inverted && entry != emptyEntry ? fullScale : 0;
}

// The sample as often as it fits 16 bits.
std::uint16_t Repeated(std::uint32_t sample, unsigned bits)
{
    const std::uint32_t fullScale = (1U << bits) - 1;
    return static_cast<std::uint16_t>(sample * (0xffffU / fullScale));
}

std::vector<unsigned char> PixelsOf(const std::vector<std::uint16_t>& samples,
                                    std::size_t sampleBytes)
{
    std::vector<unsigned char> pixel(samples.size() * sampleBytes);
    // Both bytes of a repeated 8-bit sample are the same.
    for (std::size_t c = 0; c != samples.size(); ++c)
        std::memcpy(&pixel[c * sampleBytes], &samples[c], sampleBytes);
    const std::size_t count = (patternBytes + pixel.size() - 1) / pixel.size();
    std::vector<unsigned char> pixels(count * pixel.size() + patternBytes);
    for (std::size_t i = 0; i != pixels.size(); ++i)
        pixels[i] = pixel[i % pixel.size()];
    return pixels;
}

} // namespace

PatchPattern::PatchPattern(const RowsRequest& request)
{
    const bool setsConstants =
        std::any_of(request.entries.begin(), request.entries.end(), IsConstant);
    if (!request.inverted && !setsConstants)
        return;
    const unsigned bits = StorageBitsOf(request.target);
    // Without a map all channels are turned over alike, however many there are.
    planes.resize(request.maps ? static_cast<std::size_t>(request.target.channels) : 1);
    for (std::size_t c = 0; c != planes.size(); ++c)
        planes[c] = Repeated(TurnedBits(request, c), bits);
    const bool planar = request.target.planar;
    if (!planar)
        pixels = PixelsOf(planes, bits / 8);
    patch = {planar ? nullptr : pixels.data(),
             planar ? 0 : pixels.size() - patternBytes,
             planar ? planes.data() : nullptr,
             !request.maps,
             static_cast<std::uint8_t>(bits),
             request.inverted,
             setsConstants};
}

} // namespace zvk::Pelkraft
