#pragma once

#include "tools/pelkraft/tiff_file.h"

#include <cstdint>
#include <string>

namespace zvk::Pelkraft::Client {

// What one page of a TIFF file declares about its samples.
struct TiffPicture
{
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    int channels = 0;
    int bits = 0;
    // One plane per channel; else the samples of a pixel follow each other.
    bool separate = false;
    bool tiled = false;
    std::uint32_t tileWidth = 0;
    std::uint32_t tileLength = 0;
    std::uint32_t rowsPerStrip = 0;
    std::uint16_t compression = 0;
    std::uint16_t photometric = 0;
    std::uint16_t fillOrder = 0;
};

// Bytes that the samples of one plane of a row take in the file, or of the row if it has no planes.
std::int64_t PlaneBytes(std::int64_t width, int channels, int bits, bool separate);

// Bytes of one row as readers give it and writers take it: the row, or its planes one behind the
// other.
std::int64_t FileRowBytes(std::int64_t width, int channels, int bits, bool separate);

// Reads the page at which the file stands, and refuses what can't be served and what is damaged
// before anything of its size is allocated.
TiffPicture ReadPicture(const TiffFile& file);

std::string CompressionName(std::uint16_t compression);
std::string PhotometricName(std::uint16_t photometric);

} // namespace zvk::Pelkraft::Client
