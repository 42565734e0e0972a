#include "tools/pelkraft/tiff_picture.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/missing_data.h"

#include <algorithm>
#include <limits>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::int64_t largestRow = std::numeric_limits<std::int32_t>::max();
// A need for more is believed only if the file is of a likely size for it.
constexpr std::uint64_t believedBytes = std::uint64_t{64} << 20;
constexpr std::uint64_t largestTileBytes = std::uint64_t{1} << 30;
constexpr std::uint64_t largestTileRowBytes = std::uint64_t{1} << 32;
// No compression that pictures use does better over a whole row; tiles may reach beyond the
// picture, so that even plain ones are not held to the byte.
constexpr std::uint64_t largestExpansion = 65536;
constexpr std::uint64_t plainExpansion = 2;

std::uint16_t ShortTag(const TiffFile& file, std::uint32_t tag, std::uint16_t otherwise)
{
    std::uint16_t value = 0;
    return TIFFGetFieldDefaulted(file.Get(), tag, &value) == 1 ? value : otherwise;
}

std::uint32_t LongTag(const TiffFile& file, std::uint32_t tag)
{
    std::uint32_t value = 0;
    return TIFFGetFieldDefaulted(file.Get(), tag, &value) == 1 ? value : 0;
}

void RefuseFormat(const TiffFile& file, const TiffPicture& picture)
{
    if (picture.width == 0 || picture.height == 0 || picture.channels == 0)
        file.Throw(ExitCode::BadInput, "declares a picture without pixels");
    const int bits = picture.bits;
    if (bits != 1 && bits != 2 && bits != 8 && bits != 16)
        throw Failure(ExitCode::Unsupported, file.Path(),
                      "has samples of " + std::to_string(bits) +
                          " bits; supported are 1, 2, 8 and 16");
    const auto sampleFormat = ShortTag(file, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
    if (sampleFormat != SAMPLEFORMAT_UINT && sampleFormat != SAMPLEFORMAT_VOID)
        throw Failure(ExitCode::Unsupported, file.Path(),
                      "has signed, floating or complex samples; supported are unsigned integers");
    if (picture.photometric == PHOTOMETRIC_LOGL || picture.photometric == PHOTOMETRIC_LOGLUV)
        throw Failure(ExitCode::Unsupported, file.Path(),
                      "has logarithmic samples; supported are unsigned integers");
}

void RefuseSubsampling(const TiffFile& file, const TiffPicture& picture)
{
    if (picture.photometric != PHOTOMETRIC_YCBCR)
        return;
    std::uint16_t horizontal = 2;
    std::uint16_t vertical = 2;
    TIFFGetFieldDefaulted(file.Get(), TIFFTAG_YCBCRSUBSAMPLING, &horizontal, &vertical);
    if (horizontal != 1 || vertical != 1)
        throw Failure(ExitCode::Unsupported, file.Path(),
                      "has YCbCr samples with subsampled colour; supported are YCbCr without "
                      "subsampling, and with it as JPEG");
}

void RefuseWideRows(const TiffFile& file, const TiffPicture& picture)
{
    const std::int64_t rowBytes = picture.RowBytes();
    if (rowBytes > largestRow || picture.width > largestRow)
        throw Failure(ExitCode::Unsupported, file.Path(),
                      "has rows of " + std::to_string(rowBytes) +
                          " bytes; supported are rows of up to 2147483647 bytes");
}

// Bytes that must be held at once to read the page: a row of tiles, or one row of a strip.
std::uint64_t HeldBytes(const TiffPicture& picture)
{
    return static_cast<std::uint64_t>(picture.RowBytes()) *
           (picture.tiled ? std::min(picture.tileLength, picture.height) : 1);
}

void RefuseTileShape(const TiffFile& file, const TiffPicture& picture)
{
    if (!picture.tiled)
        return;
    if (picture.tileWidth == 0 || picture.tileLength == 0)
        file.Throw(ExitCode::BadInput, "declares tiles without pixels");
    const std::int64_t channels = picture.separate ? 1 : picture.channels;
    if (std::int64_t{picture.tileWidth} * picture.bits * channels % 8 != 0)
        file.Throw(ExitCode::BadInput, "declares tiles whose rows end inside a byte");
    const std::uint64_t tileBytes = TIFFTileSize64(file.Get());
    if (tileBytes > largestTileBytes)
        file.Throw(ExitCode::BadInput, "declares tiles of " + std::to_string(tileBytes) +
                                           " bytes; supported are tiles of up to 1 GiB");
    // Compared by division: the product of a hostile file may leave 64 bits.
    if (static_cast<std::uint64_t>(picture.RowBytes()) >
        largestTileRowBytes / std::min(picture.tileLength, picture.height))
        throw Failure(ExitCode::Unsupported, file.Path(),
                      "needs over 4 GiB for one row of tiles; supported is up to 4 GiB");
}

// libtiff cuts long strips into short ones, which the file doesn't know.
[[noreturn]] void ThrowMissing(const TiffFile& file, const std::string& seenByLibtiff)
{
    const std::string stored = MissingDataWords(file);
    throw Failure(ExitCode::BadInput, file.Path(), stored.empty() ? seenByLibtiff : stored);
}

// A damaged or hostile directory is found here, before its sizes reach an allocation.
void RefuseMissingData(const TiffFile& file, const TiffPicture& picture)
{
    const std::uint32_t count =
        picture.tiled ? TIFFNumberOfTiles(file.Get()) : TIFFNumberOfStrips(file.Get());
    const std::uint64_t heldBytes = HeldBytes(picture);
    const std::uint64_t expansion =
        picture.compression == COMPRESSION_NONE ? plainExpansion : largestExpansion;
    if (heldBytes > believedBytes && heldBytes / expansion > file.Size())
        file.Throw(ExitCode::BadInput, "declares rows of " + std::to_string(picture.RowBytes()) +
                                           " bytes, which a file of " +
                                           std::to_string(file.Size()) + " bytes can't hold");

    for (std::uint32_t block = 0; block < count; ++block) {
        int failed = 0;
        const std::uint64_t offset = TIFFGetStrileOffsetWithErr(file.Get(), block, &failed);
        const std::uint64_t bytes =
            failed != 0 ? 0 : TIFFGetStrileByteCountWithErr(file.Get(), block, &failed);
        const std::string name =
            (picture.tiled ? "tile " : "strip ") + std::to_string(std::uint64_t{block} + 1);
        if (failed != 0)
            file.Throw(ExitCode::BadInput, "does not say where its " + name + " is");
        if (offset > file.Size() || bytes > file.Size() - offset)
            ThrowMissing(file, MissingBlockWords(name, count, bytes, offset, file.Size()));
        if (bytes == 0)
            file.Throw(ExitCode::BadInput, "has no bytes in its " + name + " of " +
                                               std::to_string(count) +
                                               "; it was never finished, or is damaged");
    }
}

} // namespace

std::int64_t BytesOfSamples(std::int64_t samples, int bits)
{
    return (samples * bits + 7) / 8;
}

std::int64_t TiffPicture::PlaneBytes() const
{
    return BytesOfSamples(std::int64_t{width} * (separate ? 1 : channels), bits);
}

TiffPicture DescribePicture(const TiffFile& file)
{
    TiffPicture picture;
    picture.width = LongTag(file, TIFFTAG_IMAGEWIDTH);
    picture.height = LongTag(file, TIFFTAG_IMAGELENGTH);
    picture.channels = ShortTag(file, TIFFTAG_SAMPLESPERPIXEL, 1);
    picture.bits = ShortTag(file, TIFFTAG_BITSPERSAMPLE, 1);
    picture.separate =
        ShortTag(file, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == PLANARCONFIG_SEPARATE;
    picture.compression = ShortTag(file, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    picture.photometric = ShortTag(file, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    picture.fillOrder = ShortTag(file, TIFFTAG_FILLORDER, FILLORDER_MSB2LSB);
    picture.tiled = TIFFIsTiled(file.Get()) != 0;
    if (picture.tiled) {
        picture.tileWidth = LongTag(file, TIFFTAG_TILEWIDTH);
        picture.tileLength = LongTag(file, TIFFTAG_TILELENGTH);
    } else {
        picture.rowsPerStrip = std::max(LongTag(file, TIFFTAG_ROWSPERSTRIP), std::uint32_t{1});
    }
    return picture;
}

TiffPicture ReadPicture(const TiffFile& file)
{
    TiffPicture picture = DescribePicture(file);
    if (TIFFIsCODECConfigured(picture.compression) == 0)
        throw Failure(ExitCode::Unsupported, file.Path(),
                      "is compressed by scheme " + std::to_string(picture.compression) +
                          ", which this libtiff does not read");

    // libtiff turns subsampled JPEG into pixels when it is asked for RGB.
    if (picture.compression == COMPRESSION_JPEG && picture.photometric == PHOTOMETRIC_YCBCR &&
        !picture.separate) {
        TIFFSetField(file.Get(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
        picture.photometric = PHOTOMETRIC_RGB;
    }
    RefuseFormat(file, picture);
    RefuseSubsampling(file, picture);
    RefuseWideRows(file, picture);
    RefuseTileShape(file, picture);
    RefuseMissingData(file, picture);
    return picture;
}

std::string CompressionName(std::uint16_t compression)
{
    if (compression == COMPRESSION_NONE)
        return "uncompressed";
    const TIFFCodec* codec = TIFFFindCODEC(compression);
    return codec != nullptr ? codec->name : "compression " + std::to_string(compression);
}

std::string PhotometricName(std::uint16_t photometric)
{
    switch (photometric) {
    case PHOTOMETRIC_MINISWHITE:
        return "MinIsWhite";
    case PHOTOMETRIC_MINISBLACK:
        return "MinIsBlack";
    case PHOTOMETRIC_RGB:
        return "RGB";
    case PHOTOMETRIC_PALETTE:
        return "palette";
    case PHOTOMETRIC_MASK:
        return "transparency mask";
    case PHOTOMETRIC_SEPARATED:
        return "separated inks";
    case PHOTOMETRIC_YCBCR:
        return "YCbCr";
    case PHOTOMETRIC_CIELAB:
    case PHOTOMETRIC_ICCLAB:
    case PHOTOMETRIC_ITULAB:
        return "Lab";
    default:
        return "photometric " + std::to_string(photometric);
    }
}

} // namespace zvk::Pelkraft::Client
