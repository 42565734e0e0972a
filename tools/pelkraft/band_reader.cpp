#include "tools/pelkraft/band_reader.h"

#include "tools/pelkraft/file_calls.h"
#include "tools/pelkraft/input_file.h"
#include "tools/pelkraft/interrupt.h"

#include <algorithm>
#include <string>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::int64_t wantedBandBytes = std::int64_t{4} << 20;

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
                       const RowOrder& order)
    : file(newFile), picture(newPicture)
{
    if (order.flip || !IsPlain(file, picture))
        decoder = OpenRows(file, picture, order);
}

void BandReader::Read(unsigned char* rows, std::uint32_t count)
{
    if (!decoder) {
        ReadPlain(rows, count);
        return;
    }
    decoder->ReadRows(rows, count, picture.RowBytes());
}

std::uint32_t BandReader::CountRun(std::uint32_t most, std::uint64_t& offset) const
{
    const auto rowBytes = static_cast<std::uint64_t>(picture.RowBytes());
    std::uint32_t counted = 0;
    for (std::uint64_t end = 0; counted < most;) {
        const std::uint32_t row = nextRow + counted;
        const std::uint32_t strip = row / picture.rowsPerStrip;
        const std::uint32_t rowInStrip = row % picture.rowsPerStrip;
        const std::uint64_t start = TIFFGetStrileOffset(file.Get(), strip) + rowInStrip * rowBytes;
        if (counted > 0 && start != end)
            break;
        const std::uint32_t rows = std::min(most - counted, picture.rowsPerStrip - rowInStrip);
        if (TIFFGetStrileByteCount(file.Get(), strip) < (rowInStrip + rows) * rowBytes)
            file.Throw(ExitCode::BadInput, "has too few bytes in the strip of row " +
                                               std::to_string(std::uint64_t{row} + 1) +
                                               "; it may be truncated or damaged");
        if (counted == 0)
            offset = start;
        end = start + rows * rowBytes;
        counted += rows;
    }
    return counted;
}

void BandReader::ReadPlain(unsigned char* rows, std::uint32_t count)
{
    while (count > 0) {
        std::uint64_t offset = 0;
        const std::uint32_t run = CountRun(count, offset);
        const auto wanted = static_cast<std::size_t>(picture.RowBytes()) * run;
        std::size_t got = 0;
        if (const int error = ReadUpTo(file.Descriptor(), rows, wanted, offset, got); error != 0)
            ThrowReadFailure(file.Path(), ErrorText(error));
        if (got < wanted)
            ThrowReadFailure(file.Path(), "it has become shorter meanwhile");
        rows += wanted;
        nextRow += run;
        count -= run;
    }
}

std::uint32_t RowsOfBand(std::int64_t rowBytes, std::uint32_t height)
{
    return static_cast<std::uint32_t>(
        std::clamp<std::int64_t>(wantedBandBytes / rowBytes, 1, height));
}

void ForEachBand(const TiffFile& file, const TiffPicture& picture,
                 const std::function<void(const RowBand& band)>& work)
{
    const std::uint32_t most = RowsOfBand(picture.RowBytes(), picture.height);
    const RowBuffer bytes(static_cast<std::size_t>(picture.RowBytes()) * most);
    BandReader reader(file, picture);
    for (std::uint32_t first = 0, rows = 0; first < picture.height; first += rows) {
        rows = std::min(most, picture.height - first);
        StopIfInterrupted(file.Path());
        reader.Read(bytes.Data(), rows);
        work({bytes.Data(), first, rows});
    }
    file.RequireSound();
}

} // namespace zvk::Pelkraft::Client
