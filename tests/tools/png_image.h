#pragma once

#include <gtest/gtest.h>
#include <png.h>

#include <array>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// A PNG of red, green and blue, as another reader sees it.
struct PngImage
{
    int width = 0;
    int height = 0;
    std::vector<unsigned char> pixels;

    std::array<int, 3> At(int x, int y) const
    {
        const int first = 3 * (y * width + x);
        const auto at = static_cast<std::size_t>(first);
        return {pixels[at], pixels[at + 1], pixels[at + 2]};
    }
};

inline PngImage ReadPng(const std::string& path)
{
    PngImage image;
    png_image header = {};
    header.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&header, path.c_str()) == 0)
        throw std::runtime_error(path + " is no PNG");
    EXPECT_EQ(PNG_FORMAT_RGB, header.format);
    image.width = static_cast<int>(header.width);
    image.height = static_cast<int>(header.height);
    image.pixels.resize(PNG_IMAGE_SIZE(header));
    if (png_image_finish_read(&header, nullptr, image.pixels.data(), 0, nullptr) == 0)
        throw std::runtime_error(path + " is damaged");
    return image;
}

} // namespace zvk::Pelkraft::TestSupport
