#pragma once

#include "tools/pelkraft/ink_colours.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zvk::Pelkraft::Client {

// Shares of red, green and blue light, 1 for white paper.
using Light = std::array<double, 3>;

// The light of a screen's colour, and the screen's value for a share of light, to the nearest.
Light LightOf(const ScreenColour& colour);
std::uint8_t ScreenValueOf(double light);

// One ink of a print.
struct InkLayer
{
    // The sample of a pixel that holds it.
    std::size_t sample = 0;
    InkLook look;
};

// The samples of a page, and what they mean.
struct LayerCodes
{
    // 8 or 16, the latter in the order of the machine.
    int bits = 8;
    std::size_t samplesPerPixel = 0;
    // The samples of no ink and of full ink; what lies outside counts as the nearer one.
    int none = 0;
    int full = 255;
    // The share by which half a tone grows in print.
    double gain = 0;
};

// Inks on white paper, one over the other. An ink that covers a share of a pixel takes away light
// by its colour, and as far as it is opaque it hides what lies below and shows its own colour.
class InkLayers
{
public:
    // The first layer is printed first.
    InkLayers(const LayerCodes& newCodes, const std::vector<InkLayer>& newLayers);

    const LayerCodes& Codes() const { return codes; }
    // The bytes of one pixel of a row.
    std::size_t PixelBytes() const;
    // The light that a pixel leaves.
    Light LightOfPixel(const unsigned char* pixel) const;

private:
    struct Layer
    {
        std::size_t sample;
        // Covered paper leaves the first of the light below, and adds the second.
        Light through;
        Light own;
    };

    template <typename Sample>
    Light Mix(const Sample* pixel) const;

    LayerCodes codes;
    std::vector<Layer> layers;
    // By sample the share of a pixel that the ink covers.
    std::vector<double> covers;
};

} // namespace zvk::Pelkraft::Client
