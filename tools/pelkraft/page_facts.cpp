#include "tools/pelkraft/page_facts.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/page_orientation.h"
#include "tools/pelkraft/stored_tags.h"

#include <algorithm>

namespace zvk::Pelkraft::Client {
namespace {

std::string SampleKind(const TiffFile& file)
{
    std::uint16_t kind = SAMPLEFORMAT_UINT;
    TIFFGetFieldDefaulted(file.Get(), TIFFTAG_SAMPLEFORMAT, &kind);
    switch (kind) {
    case SAMPLEFORMAT_INT:
        return "signed";
    case SAMPLEFORMAT_IEEEFP:
        return "floating point";
    case SAMPLEFORMAT_COMPLEXINT:
    case SAMPLEFORMAT_COMPLEXIEEEFP:
        return "complex";
    default:
        return "unsigned";
    }
}

std::optional<ProfileHeader> ReadProfile(const TiffFile& file)
{
    std::uint32_t bytes = 0;
    const char* profile = nullptr;
    if (TIFFGetField(file.Get(), TIFFTAG_ICCPROFILE, &bytes, &profile) != 1 || profile == nullptr)
        return std::nullopt;
    return ReadProfileHeader({profile, bytes});
}

// libtiff cuts long strips into short ones.
std::uint32_t StoredRows(const TiffFile& file, const TiffPicture& picture)
{
    const std::vector<std::uint64_t> rows = StoredNumbers(file, TIFFTAG_ROWSPERSTRIP, 1);
    return rows.empty() ? picture.height
                        : static_cast<std::uint32_t>(
                              std::min<std::uint64_t>(rows[0], std::max(picture.height, 1U)));
}

// Samples of these kinds are more or less of something that has a name.
bool HasInks(const PageFacts& facts)
{
    switch (facts.picture.photometric) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
    case PHOTOMETRIC_RGB:
    case PHOTOMETRIC_SEPARATED:
        return facts.picture.bits >= 1 && facts.picture.bits <= 16 &&
               facts.sampleKind == "unsigned";
    default:
        return false;
    }
}

} // namespace

PageFacts ReadPageFacts(const TiffFile& file, const InputOptions& input, int page)
{
    PageFacts facts;
    facts.page = page;
    facts.picture = DescribePicture(file);
    facts.picture.rowsPerStrip = StoredRows(file, facts.picture);
    facts.sampleKind = SampleKind(file);
    facts.resolution = ReadResolution(file);
    facts.orientation = ReadOrientation(file);
    facts.profile = ReadProfile(file);
    std::uint16_t inkSet = 0;
    if (TIFFGetField(file.Get(), TIFFTAG_INKSET, &inkSet) == 1)
        facts.inkSet = inkSet;
    facts.channels = ReadChannels(file, facts.picture);
    if (!HasInks(facts))
        return facts;
    try {
        facts.codes = ReadChannelCodes(file, facts.picture, input);
    } catch (const Failure& failure) {
        facts.codesFault = failure.what();
    }
    return facts;
}

} // namespace zvk::Pelkraft::Client
