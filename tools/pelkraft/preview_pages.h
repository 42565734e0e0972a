#pragma once

#include "tools/pelkraft/common_options.h"
#include "tools/pelkraft/image_options.h"
#include "tools/pelkraft/ink_file.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// A part of a page, in pixels.
struct Crop
{
    std::uint32_t x = 0;
    std::uint32_t y = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

// Reads "X,Y,W,H"; anything else is wrong usage.
Crop ReadCrop(const std::string& words);

// The options of the command line.
struct PreviewOptions
{
    InputOptions input;
    std::string output;
    InkTable inks;
    std::vector<std::string> printOrder;
    // The share by which half a tone grows in print.
    double gain = 0;
    std::optional<Crop> crop;
    CommonOptions common;
};

// Writes a picture of each chosen page; all of them, or none.
void PreviewPages(const PreviewOptions& options);

} // namespace zvk::Pelkraft::Client
