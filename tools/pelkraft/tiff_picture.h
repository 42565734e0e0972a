#pragma once

#include "tools/pelkraft/tiff_file.h"

#include <cstdint>
#include <string>

namespace zvk::Pelkraft::Client {

// The samples of one page of a TIFF file, as it declares them.
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

    // One where the samples of a pixel follow each other.
    int CountPlanes() const { return separate ? channels : 1; }
    // Bytes of one plane of a row.
    std::int64_t PlaneBytes() const;
    // Bytes of one row as readers give it and writers take it: its planes one after the other.
    std::int64_t RowBytes() const { return PlaneBytes() * CountPlanes(); }
};

// Bytes of so many samples that follow each other, the last byte filled up.
std::int64_t BytesOfSamples(std::int64_t samples, int bits);

// The page at which the file stands, whether it can be served or not.
TiffPicture DescribePicture(const TiffFile& file);

// Reads the page at which the file stands, and refuses what can't be served and what is damaged
// before anything of its size is allocated.
TiffPicture ReadPicture(const TiffFile& file);

std::string CompressionName(std::uint16_t compression);
std::string PhotometricName(std::uint16_t photometric);

} // namespace zvk::Pelkraft::Client
