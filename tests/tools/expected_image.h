#pragma once

#include "tests/tools/tiff_image.h"

#include <vector>

namespace zvk::Pelkraft::TestSupport {

// The options of a conversion.
struct Wish
{
    int bits = 8;
    // Empty for all channels as they are; -1 for an empty one.
    std::vector<int> channels;
    int repeat = 1;
    bool mirror = false;
    bool scaleTones = true;
    // The new sample of empty channels.
    int empty = 0;
};

// The picture that must come out, worked out sample by sample.
TiffImage Expected(const TiffImage& image, const Wish& wish);

} // namespace zvk::Pelkraft::TestSupport
