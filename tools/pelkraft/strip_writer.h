#pragma once

#include "tools/pelkraft/tiff_file.h"
#include "tools/pelkraft/tiff_picture.h"

#include <cstdint>
#include <vector>

namespace zvk::Pelkraft::Client {

// Rows of one strip for a page of this kind: as many as it has where that makes strips of up to
// 1 MiB a plane, else as many as make about 256 KiB.
std::uint32_t ChooseRowsPerStrip(const TiffPicture& picture);

// Writes the samples of a page whose tags are set, strip after strip.
class StripWriter
{
public:
    // picture has the shape of the new page; its rowsPerStrip counts.
    StripWriter(const TiffFile& newFile, const TiffPicture& newPicture);

    // Takes rows that follow those of the last call; rowStride bytes lie between their starts.
    // Every call but the last of a page brings whole strips.
    void WriteRows(const unsigned char* rows, std::int64_t rowStride, std::uint32_t rowCount);
    // Ends the page, all rows of which are written.
    void EndPage();

private:
    void WriteStrip(const unsigned char* rows, std::int64_t rowStride, std::uint32_t rowCount);
    void PutStrip(int plane, const unsigned char* samples, std::size_t bytes);

    const TiffFile& file;
    TiffPicture picture;
    std::size_t planeBytes;
    int planes;
    bool lowestBitFirst = false;
    std::uint32_t nextRow = 0;
    std::vector<unsigned char> strip;
};

} // namespace zvk::Pelkraft::Client
