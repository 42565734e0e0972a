#include "tools/pelkraft/band_reader.h"

#include "tools/pelkraft/file_calls.h"
#include "tools/pelkraft/input_file.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/workers.h"

#include <algorithm>
#include <string>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::int64_t wantedBandBytes = std::int64_t{4} << 20;
constexpr std::int64_t fewBytes = std::int64_t{256} << 10;

// True where the bytes of a file are the rows as they are.
bool IsPlain(const TiffFile& file, const TiffPicture& picture)
{
    if (picture.compression != COMPRESSION_NONE || picture.tiled ||
        (picture.separate && picture.channels > 1))
        return false;
    // libtiff turns the bits of whole bytes too.
    return picture.fillOrder == FILLORDER_MSB2LSB &&
           (picture.bits != 16 || TIFFIsByteSwapped(file.Get()) == 0);
}

} // namespace

BandReader::BandReader(const TiffFile& newFile, const TiffPicture& newPicture,
                       std::uint32_t mostRows, const RowOrder& order)
    : file(newFile), picture(newPicture),
      bytes(static_cast<std::size_t>(picture.RowBytes()) * mostRows)
{
    if (order.flip || !IsPlain(file, picture))
        decoder = OpenRows(file, picture, order);
}

void BandReader::Next(std::uint32_t count)
{
    if (decoder)
        decoder->ReadRows(bytes.Data(), count, picture.RowBytes());
    else
        FindRuns(count);
}

void BandReader::FindRuns(std::uint32_t count)
{
    runs.clear();
    const auto rowBytes = static_cast<std::uint64_t>(picture.RowBytes());
    std::uint64_t end = 0;
    for (std::uint32_t found = 0, rows = 0; found < count; found += rows) {
        const std::uint32_t strip = nextRow / picture.rowsPerStrip;
        const std::uint32_t rowInStrip = nextRow % picture.rowsPerStrip;
        const std::uint64_t start = TIFFGetStrileOffset(file.Get(), strip) + rowInStrip * rowBytes;
        rows = std::min(count - found, picture.rowsPerStrip - rowInStrip);
        if (TIFFGetStrileByteCount(file.Get(), strip) < (rowInStrip + rows) * rowBytes)
            file.Throw(ExitCode::BadInput, "has too few bytes in the strip of row " +
                                               std::to_string(std::uint64_t{nextRow} + 1) +
                                               "; it may be truncated or damaged");
        if (found == 0 || start != end)
            runs.push_back({found, found, start});
        runs.back().end += rows;
        end = start + rows * rowBytes;
        nextRow += rows;
    }
}

void BandReader::Fetch(std::int64_t begin, std::int64_t end) const
{
    for (const Run& run : runs) {
        const std::int64_t first = std::max(begin, run.first);
        const std::int64_t last = std::min(end, run.end);
        if (first < last)
            ReadRun(run, first, last);
    }
}

void BandReader::ReadRun(const Run& run, std::int64_t begin, std::int64_t end) const
{
    const std::int64_t rowBytes = picture.RowBytes();
    const std::uint64_t offset =
        run.offset + static_cast<std::uint64_t>(rowBytes * (begin - run.first));
    const auto wanted = static_cast<std::size_t>(rowBytes * (end - begin));
    std::size_t got = 0;
    if (const int error =
            ReadUpTo(file.Descriptor(), bytes.Data() + rowBytes * begin, wanted, offset, got);
        error != 0)
        ThrowReadFailure(file.Path(), ErrorText(error));
    if (got < wanted)
        ThrowReadFailure(file.Path(), "it has become shorter meanwhile");
}

std::uint32_t RowsOfBand(std::int64_t rowBytes, std::uint32_t height)
{
    return static_cast<std::uint32_t>(
        std::clamp<std::int64_t>(wantedBandBytes / rowBytes, 1, height));
}

std::uint32_t RowsOfFew(std::int64_t rowBytes)
{
    return static_cast<std::uint32_t>(std::max<std::int64_t>(fewBytes / rowBytes, 1));
}

void ShareOutRows(int threads, std::int64_t rows, std::int64_t rowBytes,
                  const std::function<void(int worker, std::int64_t begin, std::int64_t end)>& work)
{
    const std::int64_t few = RowsOfFew(rowBytes);
    ShareOut(threads, rows, [&](int worker, std::int64_t begin, std::int64_t end) {
        for (std::int64_t row = begin; row < end; row += few)
            work(worker, row, std::min(row + few, end));
    });
}

void ForEachBand(const TiffFile& file, const TiffPicture& picture, int threads,
                 const PageWork& work)
{
    const std::int64_t rowBytes = picture.RowBytes();
    const std::uint32_t most = std::min(RowsOfBand(rowBytes, picture.height), work.mostRows);
    BandReader reader(file, picture, most, work.order);
    for (std::uint32_t first = 0, rows = 0; first < picture.height; first += rows) {
        rows = std::min(most, picture.height - first);
        StopIfInterrupted(file.Path());
        reader.Next(rows);
        ShareOutRows(threads, rows, rowBytes,
                     [&](int worker, std::int64_t begin, std::int64_t end) {
                         reader.Fetch(begin, end);
                         for (std::int64_t row = begin; row < end; ++row)
                             work.takeRow(worker, first + row, reader.Row(row));
                     });
        work.endBand(first, rows);
    }
    file.RequireSound();
}

} // namespace zvk::Pelkraft::Client
