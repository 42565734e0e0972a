#include "tools/pelkraft/lost_tags.h"

#include <algorithm>
#include <iterator>

namespace zvk::Pelkraft::Client {
namespace {

// The writer of tags copies these, or plans them anew.
constexpr std::uint32_t writtenTags[] = {
    TIFFTAG_DOCUMENTNAME, TIFFTAG_IMAGEDESCRIPTION, TIFFTAG_MAKE, TIFFTAG_MODEL, TIFFTAG_PAGENAME,
    TIFFTAG_XPOSITION, TIFFTAG_YPOSITION, TIFFTAG_PAGENUMBER, TIFFTAG_SOFTWARE, TIFFTAG_DATETIME,
    TIFFTAG_ARTIST, TIFFTAG_HOSTCOMPUTER, TIFFTAG_WHITEPOINT, TIFFTAG_PRIMARYCHROMATICITIES,
    TIFFTAG_INKSET, TIFFTAG_INKNAMES, TIFFTAG_NUMBEROFINKS, TIFFTAG_DOTRANGE, TIFFTAG_TARGETPRINTER,
    TIFFTAG_YCBCRCOEFFICIENTS, TIFFTAG_YCBCRPOSITIONING, TIFFTAG_YCBCRSUBSAMPLING,
    TIFFTAG_REFERENCEBLACKWHITE, TIFFTAG_XMLPACKET, TIFFTAG_COPYRIGHT, TIFFTAG_RICHTIFFIPTC,
    TIFFTAG_PHOTOSHOP, TIFFTAG_ICCPROFILE,
    // Tables of a compression that is undone.
    TIFFTAG_JPEGTABLES, TIFFTAG_PREDICTOR};

struct NamedTag
{
    std::uint32_t tag;
    const char* name;
};

constexpr NamedTag valueTags[] = {{TIFFTAG_HALFTONEHINTS, "HalftoneHints"},
                                  {TIFFTAG_MINSAMPLEVALUE, "MinSampleValue"},
                                  {TIFFTAG_MAXSAMPLEVALUE, "MaxSampleValue"},
                                  {TIFFTAG_THRESHHOLDING, "Threshholding"},
                                  {TIFFTAG_TRANSFERFUNCTION, "TransferFunction"}};

constexpr NamedTag directories[] = {{TIFFTAG_EXIFIFD, "The EXIF directory"},
                                    {TIFFTAG_GPSIFD, "The GPS directory"}};

// Enough for the values of any tag here, of which only the first is asked for.
struct AnyValue
{
    void* pointers[4];
};

bool Has(TIFF* tiff, std::uint32_t tag)
{
    AnyValue value = {};
    return TIFFGetField(tiff, tag, &value.pointers[0], &value.pointers[1], &value.pointers[2],
                        &value.pointers[3]) == 1;
}

// Fractions would be rounded, and offsets would point elsewhere.
bool KeepsBytes(TIFFDataType type)
{
    constexpr TIFFDataType types[] = {TIFF_BYTE,  TIFF_ASCII,     TIFF_SHORT,  TIFF_LONG,
                                      TIFF_SBYTE, TIFF_UNDEFINED, TIFF_SSHORT, TIFF_SLONG,
                                      TIFF_FLOAT, TIFF_DOUBLE};
    return std::find(std::begin(types), std::end(types), type) != std::end(types);
}

// libtiff gives the values of such a tag as a count of 32 bits and their address.
bool CanCarry(const TIFFField* field)
{
    return TIFFFieldPassCount(field) != 0 && TIFFFieldReadCount(field) == TIFF_VARIABLE2 &&
           KeepsBytes(TIFFFieldDataType(field));
}

bool IsDirectory(std::uint32_t tag)
{
    return std::any_of(std::begin(directories), std::end(directories),
                       [tag](const NamedTag& known) { return known.tag == tag; });
}

void AddOtherTags(TIFF* tiff, PageTags& tags)
{
    const int count = TIFFGetTagListCount(tiff);
    for (int i = 0; i < count; ++i) {
        const std::uint32_t tag = TIFFGetTagListEntry(tiff, i);
        const bool written =
            std::find(std::begin(writtenTags), std::end(writtenTags), tag) != std::end(writtenTags);
        const TIFFField* const field = TIFFFindField(tiff, tag, TIFF_ANY);
        if (written || IsDirectory(tag) || field == nullptr)
            continue;
        if (CanCarry(field))
            tags.otherTags.push_back(tag);
        else
            tags.warnings.push_back("tag " + std::to_string(tag) + " (" + TIFFFieldName(field) +
                                    ") is not kept: its values can't be carried as they are");
    }
}

} // namespace

void AddLosses(const TiffFile& file, const std::string& changeOfSamples, PageTags& tags)
{
    TIFF* const tiff = file.Get();
    if (!changeOfSamples.empty()) {
        for (const NamedTag& known : valueTags) {
            if (Has(tiff, known.tag))
                tags.warnings.push_back(std::string(known.name) +
                                        " is not kept: " + changeOfSamples);
        }
    }
    if (Has(tiff, TIFFTAG_SUBIFD))
        tags.warnings.push_back("SubIFDs are not kept: the pictures in them are not converted");
    for (const NamedTag& known : directories) {
        if (Has(tiff, known.tag))
            tags.warnings.push_back(std::string(known.name) +
                                    " is not kept: only the tags of the page itself are");
    }
    AddOtherTags(tiff, tags);
    if (TIFFIsByteSwapped(tiff) != 0)
        tags.warnings.push_back("the byte order is not kept: new files have that of this machine");
}

void CarryTags(const TiffFile& from, const TiffFile& out, const std::vector<std::uint32_t>& tags)
{
    for (const std::uint32_t tag : tags) {
        const TIFFField* const field = TIFFFindField(from.Get(), tag, TIFF_ANY);
        std::uint32_t count = 0;
        void* values = nullptr;
        if (field == nullptr || TIFFGetField(from.Get(), tag, &count, &values) != 1)
            continue;
        // The names of the new file's own fields would end with the old file.
        static char name[] = "OtherTag";
        const TIFFFieldInfo info = {
            tag, TIFF_VARIABLE2, TIFF_VARIABLE2, TIFFFieldDataType(field), FIELD_CUSTOM, 1, 1,
            name};
        const TIFFField* const known = TIFFFindField(out.Get(), tag, TIFF_ANY);
        if (known == nullptr)
            TIFFMergeFieldInfo(out.Get(), &info, 1);
        if (TIFFSetField(out.Get(), tag, count, values) != 1)
            out.Throw(ExitCode::ReadWrite, "cannot take tag " + std::to_string(tag));
    }
}

} // namespace zvk::Pelkraft::Client
