#pragma once

#include <tiffio.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// A picture as plain numbers, pixel by pixel: the sample of channel c at x, y has the index
// (y * width + x) * channels + c.
struct TiffImage
{
    int width = 0;
    int height = 0;
    int channels = 0;
    int bits = 0;
    std::vector<std::uint16_t> samples;

    std::uint16_t At(int x, int y, int channel) const;
    std::uint16_t& At(int x, int y, int channel);
};

// An image of this shape with random samples, and one with all of them 0.
TiffImage RandomImage(int width, int height, int channels, int bits, std::uint32_t seed);
TiffImage BlankImage(int width, int height, int channels, int bits);

// The form in which a file holds an image.
struct FileForm
{
    bool separate = false;
    // 0: strips of rowsPerStrip rows. Otherwise square tiles, a multiple of 16.
    int tile = 0;
    int rowsPerStrip = 3;
    int compression = COMPRESSION_NONE;
    int photometric = PHOTOMETRIC_MINISBLACK;
    const char* mode = "w";
    // Called for each page before its samples are written.
    std::function<void(TIFF*)> setTags;
};

void WriteTiff(const std::string& path, const TiffImage& image, const FileForm& form);
// One page after the other.
void WriteTiffPages(const std::string& path, const std::vector<TiffImage>& images,
                    const FileForm& form);

// Reads the page of a file in strips, and its planar configuration into the form.
TiffImage ReadTiff(const std::string& path, FileForm& form, int page = 0);

} // namespace zvk::Pelkraft::TestSupport
