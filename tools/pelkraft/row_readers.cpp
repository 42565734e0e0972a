#include "tools/pelkraft/row_readers.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/spooled_rows.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {
namespace {

// Strips up to this size, all planes together, are decoded whole. Readers side by side share it.
constexpr std::int64_t largestHeldBytes = std::int64_t{8} << 20;
// This decoder knows no single rows.
constexpr std::int64_t largestHeldJbigBytes = std::int64_t{64} << 20;
// Each compressed plane takes a decoder.
constexpr int mostPlaneFiles = 256;
// After so many bytes of rows the pages of the files are given back.
constexpr std::size_t releasedBytes = std::size_t{4} << 20;

std::string RowName(std::uint32_t row)
{
    return "cannot be read at row " + std::to_string(std::uint64_t{row} + 1) +
           "; it may be truncated or damaged";
}

// The blocks of a picture, tiled or in strips: a strip is a tile as wide as the picture.
struct BlockGrid
{
    std::int64_t blockWidth;
    std::uint32_t blockLength;
    std::uint32_t columns;
    std::uint32_t planes;
    // Bytes of one row of a block, and of one plane of the picture's row.
    std::int64_t blockRowBytes;
    std::int64_t planeBytes;
};

BlockGrid MakeGrid(const TiffPicture& picture)
{
    BlockGrid grid = {};
    const int channelsTogether = picture.separate ? 1 : picture.channels;
    grid.blockWidth = picture.tiled ? picture.tileWidth : picture.width;
    grid.blockLength = picture.tiled ? picture.tileLength : picture.rowsPerStrip;
    grid.columns =
        static_cast<std::uint32_t>((picture.width + grid.blockWidth - 1) / grid.blockWidth);
    grid.planes = static_cast<std::uint32_t>(picture.CountPlanes());
    grid.blockRowBytes = BytesOfSamples(grid.blockWidth * channelsTogether, picture.bits);
    grid.planeBytes = picture.PlaneBytes();
    return grid;
}

// Decodes one row of blocks at a time and hands out its rows.
class BlockReader final : public IRowReader
{
public:
    BlockReader(const TiffFile& newFile, const TiffPicture& newPicture, bool newFlip)
        : file(newFile), picture(newPicture), flip(newFlip), grid(MakeGrid(newPicture)),
          rowBytes(static_cast<std::size_t>(grid.planeBytes * grid.planes))
    {
        const std::uint32_t rows = std::min(grid.blockLength, picture.height);
        held.resize(rowBytes * rows);
        if (!IsPlaced())
            return;
        block.resize(static_cast<std::size_t>(grid.blockRowBytes *
                                              (picture.tiled ? grid.blockLength : rows)));
    }

    void ReadRow(unsigned char* row) override
    {
        const std::uint32_t number = flip ? picture.height - 1 - nextRow : nextRow;
        const std::uint32_t rowInBlock = number % grid.blockLength;
        if (const std::int64_t first = std::int64_t{number} - rowInBlock; first != heldFirst) {
            blockRow = number - rowInBlock;
            ReadBlocks();
            heldFirst = first;
        }
        std::memcpy(row, held.data() + rowBytes * rowInBlock, rowBytes);
        ++nextRow;
    }

    // Whole strips need no room of their own.
    void ReadRows(unsigned char* rows, std::uint32_t count, std::int64_t bytes) override
    {
        while (count > 0) {
            const std::uint32_t left = picture.height - nextRow;
            const std::uint32_t length = std::min(grid.blockLength, left);
            const bool whole = !picture.tiled && grid.planes == 1 && !flip && count >= length &&
                               nextRow % grid.blockLength == 0;
            if (whole)
                ReadStrip(rows, length);
            else
                ReadRow(rows);
            const std::uint32_t done = whole ? length : 1;
            rows += bytes * done;
            count -= done;
        }
    }

private:
    // False for strips that are rows as they are handed out.
    bool IsPlaced() const { return picture.tiled || grid.planes > 1; }

    void ReadStrip(unsigned char* rows, std::uint32_t length)
    {
        const auto wanted = static_cast<tmsize_t>(rowBytes * length);
        const std::uint32_t strip = TIFFComputeStrip(file.Get(), nextRow, 0);
        if (TIFFReadEncodedStrip(file.Get(), strip, rows, wanted) != wanted)
            file.Throw(ExitCode::BadInput, RowName(nextRow));
        nextRow += length;
    }

    void ReadBlocks()
    {
        const std::uint32_t rows = std::min(grid.blockLength, picture.height - blockRow);
        for (std::uint32_t plane = 0; plane < grid.planes; ++plane) {
            for (std::uint32_t column = 0; column < grid.columns; ++column) {
                ReadBlock(plane, column, rows);
                if (IsPlaced())
                    Place(plane, column, rows);
            }
        }
    }

    void ReadBlock(std::uint32_t plane, std::uint32_t column, std::uint32_t rows)
    {
        const auto x = static_cast<std::uint32_t>(column * grid.blockWidth);
        const auto sample = static_cast<std::uint16_t>(plane);
        unsigned char* const to = IsPlaced() ? block.data() : held.data();
        tmsize_t wanted = static_cast<tmsize_t>(block.size());
        tmsize_t got = 0;
        if (picture.tiled) {
            const std::uint32_t tile = TIFFComputeTile(file.Get(), x, blockRow, 0, sample);
            got = TIFFReadEncodedTile(file.Get(), tile, to, wanted);
        } else {
            wanted = static_cast<tmsize_t>(grid.blockRowBytes * rows);
            const std::uint32_t strip = TIFFComputeStrip(file.Get(), blockRow, sample);
            got = TIFFReadEncodedStrip(file.Get(), strip, to, wanted);
        }
        if (got != wanted)
            file.Throw(ExitCode::BadInput, RowName(blockRow));
    }

    // The last column of tiles reaches beyond the picture; so does the last row of them.
    void Place(std::uint32_t plane, std::uint32_t column, std::uint32_t rows)
    {
        const std::int64_t start = column * grid.blockRowBytes;
        const auto bytes =
            static_cast<std::size_t>(std::min(grid.blockRowBytes, grid.planeBytes - start));
        for (std::uint32_t row = 0; row < rows; ++row)
            std::memcpy(held.data() + rowBytes * row +
                            static_cast<std::size_t>(plane * grid.planeBytes + start),
                        block.data() + static_cast<std::size_t>(row * grid.blockRowBytes), bytes);
    }

    const TiffFile& file;
    TiffPicture picture;
    bool flip;
    BlockGrid grid;
    std::size_t rowBytes;
    std::uint32_t nextRow = 0;
    // The first row of the blocks that are being read, and of those that are held.
    std::uint32_t blockRow = 0;
    std::int64_t heldFirst = -1;
    std::vector<unsigned char> held;
    std::vector<unsigned char> block;
};

// For strips too large to hold: row by row, in place in the file. A decoder keeps its place in one
// strip alone, so compressed planes get a handle each.
class ScanlineReader final : public IRowReader
{
public:
    ScanlineReader(const TiffFile& newFile, const TiffPicture& newPicture, const RowOrder& order)
        : height(newPicture.height), flip(order.flip),
          mostReadBytes(releasedBytes / static_cast<std::size_t>(order.readers)),
          planes(newPicture.separate ? newPicture.channels : 1),
          planeBytes(static_cast<std::size_t>(MakeGrid(newPicture).planeBytes)),
          mapping(newFile.Descriptor(), newFile.Size())
    {
        const bool shared = planes == 1 || newPicture.compression == COMPRESSION_NONE;
        if (!shared && planes > mostPlaneFiles)
            throw Failure(ExitCode::Unsupported, newFile.Path(),
                          "has " + std::to_string(planes) +
                              " separate planes in compressed strips of over 8 MiB; supported "
                              "are 256 of that size");
        for (int plane = 0; plane < (shared ? 1 : planes); ++plane) {
            planeFiles.push_back(newFile.OpenAgain(mapping));
            // It asks the decoder for the same samples.
            ReadPicture(planeFiles.back());
        }
    }

    void ReadRow(unsigned char* row) override
    {
        const std::uint32_t number = flip ? height - 1 - nextRow : nextRow;
        for (int plane = 0; plane < planes; ++plane) {
            const TiffFile& from = planeFiles.size() == 1
                                       ? planeFiles[0]
                                       : planeFiles[static_cast<std::size_t>(plane)];
            unsigned char* to = row + planeBytes * static_cast<std::size_t>(plane);
            if (TIFFReadScanline(from.Get(), to, number, static_cast<std::uint16_t>(plane)) != 1)
                from.Throw(ExitCode::BadInput, RowName(number));
            from.RequireSound();
            readBytes += planeBytes;
        }
        ++nextRow;
        if (readBytes < mostReadBytes)
            return;
        readBytes = 0;
        mapping.Release();
    }

private:
    std::uint32_t height;
    bool flip;
    std::size_t mostReadBytes;
    int planes;
    std::size_t planeBytes;
    MappedFile mapping;
    std::uint32_t nextRow = 0;
    std::size_t readBytes = 0;
    std::vector<TiffFile> planeFiles;
};

} // namespace

void IRowReader::ReadRows(unsigned char* rows, std::uint32_t count, std::int64_t rowBytes)
{
    for (std::uint32_t row = 0; row < count; ++row)
        ReadRow(rows + rowBytes * row);
}

std::unique_ptr<IRowReader> OpenRows(const TiffFile& file, const TiffPicture& picture,
                                     const RowOrder& order)
{
    const BlockGrid grid = MakeGrid(picture);
    const std::int64_t heldBytes =
        grid.planeBytes * grid.planes * std::min(grid.blockLength, picture.height);
    const std::int64_t mostBytes = picture.compression == COMPRESSION_JBIG
                                       ? largestHeldJbigBytes
                                       : largestHeldBytes / order.readers;
    if (picture.tiled || heldBytes <= mostBytes || picture.rowsPerStrip == 1)
        return std::make_unique<BlockReader>(file, picture, order.flip);
    if (!order.flip || picture.compression == COMPRESSION_NONE)
        return std::make_unique<ScanlineReader>(file, picture, order);
    ScanlineReader forward(file, picture, {});
    return std::make_unique<SpooledRows>(forward, picture, order.spool, file.Path());
}

} // namespace zvk::Pelkraft::Client
