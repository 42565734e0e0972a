#include "tools/pelkraft/tag_writer.h"

#include "tools/pelkraft/lost_tags.h"

#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {
namespace {

template <typename... Value>
void Set(const TiffFile& out, std::uint32_t tag, Value... value)
{
    if (TIFFSetField(out.Get(), tag, value...) != 1)
        out.Throw(ExitCode::ReadWrite, "cannot take tag " + std::to_string(tag));
}

void CopyShort(TIFF* from, TIFF* to, std::uint32_t tag)
{
    std::uint16_t value = 0;
    if (TIFFGetField(from, tag, &value) == 1)
        TIFFSetField(to, tag, value);
}

void CopyShortPair(TIFF* from, TIFF* to, std::uint32_t tag)
{
    std::uint16_t first = 0;
    std::uint16_t second = 0;
    if (TIFFGetField(from, tag, &first, &second) == 1)
        TIFFSetField(to, tag, first, second);
}

void CopyFloat(TIFF* from, TIFF* to, std::uint32_t tag)
{
    float value = 0;
    if (TIFFGetField(from, tag, &value) == 1)
        TIFFSetField(to, tag, static_cast<double>(value));
}

void CopyPointer(TIFF* from, TIFF* to, std::uint32_t tag)
{
    void* value = nullptr;
    if (TIFFGetField(from, tag, &value) == 1 && value != nullptr)
        TIFFSetField(to, tag, value);
}

void CopyBlob(TIFF* from, TIFF* to, std::uint32_t tag)
{
    std::uint32_t count = 0;
    void* value = nullptr;
    if (TIFFGetField(from, tag, &count, &value) == 1 && value != nullptr && count > 0)
        TIFFSetField(to, tag, count, value);
}

// One curve, or one for each of three colours.
void CopyTransferFunction(TIFF* from, TIFF* to)
{
    std::uint16_t* red = nullptr;
    std::uint16_t* green = nullptr;
    std::uint16_t* blue = nullptr;
    if (TIFFGetField(from, TIFFTAG_TRANSFERFUNCTION, &red, &green, &blue) == 1 && red != nullptr)
        TIFFSetField(to, TIFFTAG_TRANSFERFUNCTION, red, green != nullptr ? green : red,
                     blue != nullptr ? blue : red);
}

void CopyDocumentTags(TIFF* from, TIFF* to)
{
    constexpr std::uint32_t texts[] = {
        TIFFTAG_DOCUMENTNAME, TIFFTAG_IMAGEDESCRIPTION, TIFFTAG_MAKE,         TIFFTAG_MODEL,
        TIFFTAG_PAGENAME,     TIFFTAG_SOFTWARE,         TIFFTAG_DATETIME,     TIFFTAG_ARTIST,
        TIFFTAG_HOSTCOMPUTER, TIFFTAG_COPYRIGHT,        TIFFTAG_TARGETPRINTER};
    constexpr std::uint32_t blobs[] = {TIFFTAG_XMLPACKET, TIFFTAG_PHOTOSHOP, TIFFTAG_RICHTIFFIPTC};
    for (const std::uint32_t tag : texts)
        CopyPointer(from, to, tag);
    for (const std::uint32_t tag : blobs)
        CopyBlob(from, to, tag);
    std::uint32_t kind = 0;
    if (TIFFGetField(from, TIFFTAG_SUBFILETYPE, &kind) == 1)
        TIFFSetField(to, TIFFTAG_SUBFILETYPE, kind);
    CopyShort(from, to, TIFFTAG_ORIENTATION);
    CopyShortPair(from, to, TIFFTAG_PAGENUMBER);
    CopyFloat(from, to, TIFFTAG_XPOSITION);
    CopyFloat(from, to, TIFFTAG_YPOSITION);
}

void CopyColourTags(TIFF* from, TIFF* to, std::uint16_t photometric)
{
    CopyBlob(from, to, TIFFTAG_ICCPROFILE);
    CopyPointer(from, to, TIFFTAG_WHITEPOINT);
    CopyPointer(from, to, TIFFTAG_PRIMARYCHROMATICITIES);
    if (photometric == PHOTOMETRIC_YCBCR) {
        CopyPointer(from, to, TIFFTAG_YCBCRCOEFFICIENTS);
        CopyPointer(from, to, TIFFTAG_REFERENCEBLACKWHITE);
        CopyShort(from, to, TIFFTAG_YCBCRPOSITIONING);
        TIFFSetField(to, TIFFTAG_YCBCRSUBSAMPLING, 1, 1);
    }
    std::uint16_t* red = nullptr;
    std::uint16_t* green = nullptr;
    std::uint16_t* blue = nullptr;
    if (photometric == PHOTOMETRIC_PALETTE &&
        TIFFGetField(from, TIFFTAG_COLORMAP, &red, &green, &blue) == 1)
        TIFFSetField(to, TIFFTAG_COLORMAP, red, green, blue);
}

void WriteResolution(TIFF* from, TIFF* to, int repeat)
{
    float horizontal = 0;
    float vertical = 0;
    const bool hasX = TIFFGetField(from, TIFFTAG_XRESOLUTION, &horizontal) == 1;
    const bool hasY = TIFFGetField(from, TIFFTAG_YRESOLUTION, &vertical) == 1;
    if (hasX)
        TIFFSetField(to, TIFFTAG_XRESOLUTION, static_cast<double>(horizontal) * repeat);
    if (hasY)
        TIFFSetField(to, TIFFTAG_YRESOLUTION, static_cast<double>(vertical));
    CopyShort(from, to, TIFFTAG_RESOLUTIONUNIT);
    if (!hasX && !hasY && repeat > 1) {
        // Without a unit the two numbers tell the shape of a pixel, which is no square any more.
        TIFFSetField(to, TIFFTAG_XRESOLUTION, static_cast<double>(repeat));
        TIFFSetField(to, TIFFTAG_YRESOLUTION, 1.0);
        TIFFSetField(to, TIFFTAG_RESOLUTIONUNIT, RESUNIT_NONE);
    }
}

// Readers take a separated picture for four inks and want every further sample announced as an
// extra one; the number of inks says which of those are inks as well.
std::vector<std::uint16_t> AnnouncedExtras(const PageTags& tags, int channels)
{
    constexpr std::size_t expectedInks = 4;
    std::vector<std::uint16_t> kinds = tags.extraKinds;
    const std::size_t inks = static_cast<std::size_t>(channels) - kinds.size();
    if (tags.photometric == PHOTOMETRIC_SEPARATED && inks > expectedInks)
        kinds.insert(kinds.begin(), inks - expectedInks, std::uint16_t{EXTRASAMPLE_UNSPECIFIED});
    return kinds;
}

void WriteInks(const TiffFile& out, const PageTags& tags, int channels)
{
    if (tags.inkSet)
        Set(out, TIFFTAG_INKSET, *tags.inkSet);
    std::string joined;
    for (const std::string& name : tags.inkNames)
        joined.append(name).push_back('\0');
    if (!joined.empty() && joined.size() < 65536)
        Set(out, TIFFTAG_INKNAMES, static_cast<int>(joined.size()), joined.data());
    if (tags.numberOfInks)
        Set(out, TIFFTAG_NUMBEROFINKS, *tags.numberOfInks);
    const std::vector<std::uint16_t> extras = AnnouncedExtras(tags, channels);
    if (!extras.empty())
        Set(out, TIFFTAG_EXTRASAMPLES, static_cast<int>(extras.size()), extras.data());
}

bool TakesPredictor(std::uint16_t compression)
{
    return compression == COMPRESSION_LZW || compression == COMPRESSION_ADOBE_DEFLATE ||
           compression == COMPRESSION_DEFLATE || compression == COMPRESSION_LZMA ||
           compression == COMPRESSION_ZSTD;
}

void WriteShape(const TiffFile& from, const TiffFile& out, const TiffPicture& to)
{
    Set(out, TIFFTAG_IMAGEWIDTH, to.width);
    Set(out, TIFFTAG_IMAGELENGTH, to.height);
    Set(out, TIFFTAG_BITSPERSAMPLE, to.bits);
    Set(out, TIFFTAG_SAMPLESPERPIXEL, to.channels);
    Set(out, TIFFTAG_PLANARCONFIG, to.separate ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
    Set(out, TIFFTAG_COMPRESSION, to.compression);
    Set(out, TIFFTAG_ROWSPERSTRIP, to.rowsPerStrip);
    std::uint16_t fillOrder = FILLORDER_MSB2LSB;
    const bool told = TIFFGetField(from.Get(), TIFFTAG_FILLORDER, &fillOrder) == 1;
    if (told && (to.bits < 8 || fillOrder == FILLORDER_MSB2LSB))
        Set(out, TIFFTAG_FILLORDER, fillOrder);
    std::uint16_t predictor = PREDICTOR_NONE;
    if (TakesPredictor(to.compression) && to.bits >= 8 &&
        TIFFGetField(from.Get(), TIFFTAG_PREDICTOR, &predictor) == 1 &&
        predictor == PREDICTOR_HORIZONTAL)
        Set(out, TIFFTAG_PREDICTOR, predictor);
}

} // namespace

std::uint16_t ChooseCompression(const TiffPicture& from, const TiffPicture& to)
{
    switch (from.compression) {
    case COMPRESSION_NONE:
    case COMPRESSION_LZW:
    case COMPRESSION_PACKBITS:
    case COMPRESSION_ADOBE_DEFLATE:
    case COMPRESSION_LZMA:
    case COMPRESSION_ZSTD:
        return from.compression;
    case COMPRESSION_DEFLATE:
        return COMPRESSION_ADOBE_DEFLATE;
    case COMPRESSION_CCITTRLE:
    case COMPRESSION_CCITTRLEW:
    case COMPRESSION_CCITTFAX3:
    case COMPRESSION_CCITTFAX4:
        if (to.bits == 1 && (to.separate || to.channels == 1))
            return COMPRESSION_CCITTFAX4;
        return COMPRESSION_LZW;
    default:
        return COMPRESSION_LZW;
    }
}

void WriteTags(const TiffFile& from, const TiffFile& out, const TiffPicture& to,
               const PageTags& tags)
{
    WriteShape(from, out, to);
    Set(out, TIFFTAG_PHOTOMETRIC, tags.photometric);
    WriteInks(out, tags, to.channels);
    WriteResolution(from.Get(), out.Get(), tags.repeat);
    CopyDocumentTags(from.Get(), out.Get());
    if (tags.dotRange)
        Set(out, TIFFTAG_DOTRANGE, static_cast<std::uint16_t>(tags.dotRange->none),
            static_cast<std::uint16_t>(tags.dotRange->full));
    if (tags.keepColourTags)
        CopyColourTags(from.Get(), out.Get(), tags.photometric);
    CarryTags(from, out, tags.otherTags);
    if (tags.keepValueTags) {
        CopyShortPair(from.Get(), out.Get(), TIFFTAG_HALFTONEHINTS);
        CopyShort(from.Get(), out.Get(), TIFFTAG_MINSAMPLEVALUE);
        CopyShort(from.Get(), out.Get(), TIFFTAG_MAXSAMPLEVALUE);
        CopyShort(from.Get(), out.Get(), TIFFTAG_THRESHHOLDING);
        CopyTransferFunction(from.Get(), out.Get());
    }
}

} // namespace zvk::Pelkraft::Client
