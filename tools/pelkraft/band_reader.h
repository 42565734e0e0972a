#pragma once

#include "tools/pelkraft/row_pipeline.h"
#include "tools/pelkraft/row_readers.h"
#include "tools/pelkraft/tiff_file.h"
#include "tools/pelkraft/tiff_picture.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <vector>

namespace zvk::Pelkraft::Client {

// Reads a page from end to end, a band of rows at a time. Rows that a file holds as they are come
// straight from it, all others by way of a decoder.
class BandReader
{
public:
    // The page at which the file stands; it must stay there. A band has up to mostRows.
    BandReader(const TiffFile& newFile, const TiffPicture& newPicture, std::uint32_t mostRows,
               const RowOrder& order = {});

    // Goes on to a band of the next rows.
    void Next(std::uint32_t count);

    // Makes sure of the band's rows from begin to end - 1, of which each thread has its own.
    void Fetch(std::int64_t begin, std::int64_t end) const;
    // A row that was fetched, of the picture's RowBytes().
    const unsigned char* Row(std::int64_t row) const
    {
        return bytes.Data() + picture.RowBytes() * row;
    }

private:
    // Rows of the band whose bytes follow each other in the file.
    struct Run
    {
        std::int64_t first;
        std::int64_t end;
        std::uint64_t offset;
    };
    void FindRuns(std::uint32_t count);
    void ReadRun(const Run& run, std::int64_t begin, std::int64_t end) const;

    const TiffFile& file;
    TiffPicture picture;
    std::unique_ptr<IRowReader> decoder;
    RowBuffer bytes;
    std::vector<Run> runs;
    std::uint32_t nextRow = 0;
};

// So many rows of this many bytes make a band.
std::uint32_t RowsOfBand(std::int64_t rowBytes, std::uint32_t height);

// So many rows of this many bytes stay in a processor's own cache.
std::uint32_t RowsOfFew(std::int64_t rowBytes);

// Shares out the rows of a band, which each thread takes a few at a time: what was read is still at
// hand when it is worked on.
void ShareOutRows(
    int threads, std::int64_t rows, std::int64_t rowBytes,
    const std::function<void(int worker, std::int64_t begin, std::int64_t end)>& work);

// A page that is read goes through these: each row, by the thread that read it, and each band.
struct PageWork
{
    std::function<void(int worker, std::int64_t row, const unsigned char* bytes)> takeRow;
    std::function<void(std::uint32_t first, std::uint32_t count)> endBand;
    // No band has more.
    std::uint32_t mostRows = std::numeric_limits<std::uint32_t>::max();
    RowOrder order = {};
};

// Reads a page from end to end, with all threads.
void ForEachBand(const TiffFile& file, const TiffPicture& picture, int threads,
                 const PageWork& work);

} // namespace zvk::Pelkraft::Client
