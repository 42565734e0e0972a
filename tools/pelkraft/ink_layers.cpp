#include "tools/pelkraft/ink_layers.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace zvk::Pelkraft::Client {
namespace {

constexpr int highestValue = 255;
constexpr std::size_t colours = 3;

// The curve between screen values and light, both from 0 to 1.
double LightOf(double value)
{
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

// Screen values by light, without a power for each pixel.
class ScreenCurve
{
public:
    ScreenCurve()
    {
        for (int value = 0; value < highestValue; ++value)
            ends[static_cast<std::size_t>(value)] = LightOf((value + 0.5) / highestValue);
        std::uint8_t value = 0;
        for (std::size_t part = 0; part < parts; ++part) {
            while (value < highestValue && ends[value] <= static_cast<double>(part) / parts)
                ++value;
            starts[part] = value;
        }
    }

    std::uint8_t ValueOf(double light) const
    {
        // The lightest part has an end too; what isn't above 0, a NaN among it, is black.
        const double inside = light > 0 ? std::min(light, 1.0) : 0;
        const auto part = std::min(static_cast<std::size_t>(inside * parts), parts - 1);
        std::uint8_t value = starts[part];
        while (value < highestValue && ends[value] <= inside)
            ++value;
        return value;
    }

private:
    static constexpr std::size_t parts = 4096;

    // The light at which a value ends and the next one begins.
    std::array<double, highestValue> ends;
    std::array<std::uint8_t, parts> starts;
};

// The share of a pixel that an ink covers in print.
double CoverOf(int sample, const LayerCodes& codes)
{
    const double share =
        static_cast<double>(sample - codes.none) / static_cast<double>(codes.full - codes.none);
    const double asked = std::clamp(share, 0.0, 1.0);
    return std::clamp(asked + 4 * codes.gain * asked * (1 - asked), 0.0, 1.0);
}

} // namespace

Light LightOf(const ScreenColour& colour)
{
    Light light = {};
    for (std::size_t i = 0; i < colours; ++i)
        light[i] = LightOf(static_cast<double>(colour[i]) / highestValue);
    return light;
}

std::uint8_t ScreenValueOf(double light)
{
    static const ScreenCurve curve;
    return curve.ValueOf(light);
}

InkLayers::InkLayers(const LayerCodes& newCodes, const std::vector<InkLayer>& newLayers)
    : codes(newCodes)
{
    for (const InkLayer& layer : newLayers) {
        const Light solid = LightOf(layer.look.colour);
        Layer& made = layers.emplace_back(Layer{layer.sample, {}, {}});
        for (std::size_t i = 0; i < colours; ++i) {
            made.through[i] = (1 - layer.look.opacity) * solid[i];
            made.own[i] = layer.look.opacity * solid[i];
        }
    }
    const int count = 1 << codes.bits;
    covers.reserve(static_cast<std::size_t>(count));
    for (int sample = 0; sample < count; ++sample)
        covers.push_back(CoverOf(sample, codes));
}

std::size_t InkLayers::PixelBytes() const
{
    return codes.samplesPerPixel * (codes.bits == 16 ? 2 : 1);
}

template <typename Sample>
Light InkLayers::Mix(const Sample* pixel) const
{
    Light light = {1, 1, 1};
    for (const Layer& layer : layers) {
        Sample sample = 0;
        std::memcpy(&sample, pixel + layer.sample, sizeof sample);
        const double cover = covers[sample];
        if (cover == 0)
            continue;
        for (std::size_t i = 0; i < colours; ++i)
            light[i] =
                (1 - cover) * light[i] + cover * (light[i] * layer.through[i] + layer.own[i]);
    }
    return light;
}

Light InkLayers::LightOfPixel(const unsigned char* pixel) const
{
    if (codes.bits == 16)
        return Mix(reinterpret_cast<const std::uint16_t*>(pixel));
    return Mix(pixel);
}

} // namespace zvk::Pelkraft::Client
