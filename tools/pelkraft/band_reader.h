#pragma once

#include "tools/pelkraft/row_pipeline.h"
#include "tools/pelkraft/row_readers.h"
#include "tools/pelkraft/tiff_file.h"
#include "tools/pelkraft/tiff_picture.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace zvk::Pelkraft::Client {

// Reads a page from end to end, many rows at a time. Rows that a file holds as they are come
// straight from it, all others by way of a decoder.
class BandReader
{
public:
    // The page at which the file stands; it must stay there.
    BandReader(const TiffFile& newFile, const TiffPicture& newPicture, const RowOrder& order = {});

    // The next rows, each of the picture's RowBytes() right after the one before.
    void Read(unsigned char* rows, std::uint32_t count);

private:
    // Rows from nextRow on whose bytes follow each other in the file, at most so many.
    std::uint32_t CountRun(std::uint32_t most, std::uint64_t& offset) const;
    void ReadPlain(unsigned char* rows, std::uint32_t count);

    const TiffFile& file;
    TiffPicture picture;
    std::unique_ptr<IRowReader> decoder;
    std::uint32_t nextRow = 0;
};

// So many rows of this many bytes make a band.
std::uint32_t RowsOfBand(std::int64_t rowBytes, std::uint32_t height);

// Some rows of a page, each right after the one before.
struct RowBand
{
    unsigned char* rows;
    std::uint32_t first;
    std::uint32_t count;
};

// Reads a page from end to end, and calls work for each band.
void ForEachBand(const TiffFile& file, const TiffPicture& picture,
                 const std::function<void(const RowBand& band)>& work);

} // namespace zvk::Pelkraft::Client
