#include "tools/pelkraft/strip_writer.h"

#include <algorithm>
#include <cstring>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::int64_t wantedStripBytes = std::int64_t{256} << 10;
constexpr std::int64_t largestStripBytes = std::int64_t{1} << 20;
// All planes of these rows together are held at once.
constexpr std::int64_t mostHeldBytes = std::int64_t{16} << 20;

} // namespace

std::uint32_t ChooseRowsPerStrip(const TiffPicture& picture)
{
    const std::int64_t planeBytes = picture.PlaneBytes();
    const std::int64_t mostRows = mostHeldBytes / picture.RowBytes();
    const std::int64_t present = std::min(picture.rowsPerStrip, picture.height);
    const bool keep =
        !picture.tiled && present <= mostRows && present * planeBytes <= largestStripBytes;
    const std::int64_t rows = keep ? present : std::min(wantedStripBytes / planeBytes, mostRows);
    return static_cast<std::uint32_t>(
        std::clamp<std::int64_t>(rows, 1, static_cast<std::int64_t>(picture.height)));
}

StripWriter::StripWriter(const TiffFile& newFile, const TiffPicture& newPicture)
    : file(newFile), picture(newPicture),
      planeBytes(static_cast<std::size_t>(picture.PlaneBytes())), planes(picture.CountPlanes()),
      strip(planeBytes * picture.rowsPerStrip)
{
    if (!file.IsPipe())
        return;
    std::uint16_t fillOrder = FILLORDER_MSB2LSB;
    TIFFGetField(file.Get(), TIFFTAG_FILLORDER, &fillOrder);
    lowestBitFirst = fillOrder == FILLORDER_LSB2MSB;
    file.SendDirectory(
        {planeBytes, picture.height, picture.rowsPerStrip, static_cast<std::uint32_t>(planes)});
}

void StripWriter::WriteRows(const unsigned char* rows, std::int64_t rowStride,
                            std::uint32_t rowCount)
{
    while (rowCount > 0) {
        const std::uint32_t now = std::min(rowCount, picture.rowsPerStrip);
        WriteStrip(rows, rowStride, now);
        rows += rowStride * now;
        rowCount -= now;
        nextRow += now;
    }
}

void StripWriter::WriteStrip(const unsigned char* rows, std::int64_t rowStride,
                             std::uint32_t rowCount)
{
    // Those who turn bits do so in place.
    if (planes == 1 && rowStride == static_cast<std::int64_t>(planeBytes) && picture.bits >= 8) {
        PutStrip(0, rows, planeBytes * rowCount);
        return;
    }
    for (int plane = 0; plane < planes; ++plane) {
        const unsigned char* from = rows + planeBytes * static_cast<std::size_t>(plane);
        for (std::uint32_t row = 0; row < rowCount; ++row)
            std::memcpy(strip.data() + planeBytes * row, from + rowStride * row, planeBytes);
        PutStrip(plane, strip.data(), planeBytes * rowCount);
    }
}

void StripWriter::PutStrip(int plane, const unsigned char* samples, std::size_t bytes)
{
    if (file.IsPipe()) {
        // libtiff, which is not asked here, turns the bits too.
        if (lowestBitFirst)
            TIFFReverseBits(strip.data(), static_cast<tmsize_t>(bytes));
        file.SendBytes(samples, bytes);
        return;
    }
    const std::uint32_t number =
        TIFFComputeStrip(file.Get(), nextRow, static_cast<std::uint16_t>(plane));
    const auto count = static_cast<tmsize_t>(bytes);
    // It writes nothing there but what it turns.
    auto* const data = const_cast<unsigned char*>(samples);
    if (TIFFWriteEncodedStrip(file.Get(), number, data, count) != count)
        file.Throw(ExitCode::ReadWrite, "cannot be written");
}

void StripWriter::EndPage()
{
    if (file.IsPipe()) {
        // The next directory begins at an even offset.
        if (planeBytes * picture.height * static_cast<std::size_t>(planes) % 2 != 0)
            file.SendBytes("", 1);
    } else if (TIFFWriteDirectory(file.Get()) != 1) {
        file.Throw(ExitCode::ReadWrite, "cannot be written");
    }
}

} // namespace zvk::Pelkraft::Client
