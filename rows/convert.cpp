#include "rows/convert.h"

#include "portal/conversion_portal.h"
#include "rows/chain_choice.h"

#include <algorithm>
#include <cstdlib>

namespace zvk::Pelkraft {
namespace {

constexpr const char* invalidWidth = "zvk::Pelkraft::ImageRowFormat invalid width";
constexpr const char* invalidChannels = "zvk::Pelkraft::ImageRowFormat invalid channel count";
constexpr const char* onlyOneOption = "zvk::Pelkraft::Convert only one option is allowed";
constexpr const char* unsupported = "zvk::Pelkraft::Convert unsupported conversion";
constexpr const char* unsupportedRemap =
    "zvk::Pelkraft::ImageRow::FillFromWithRemap unsupported conversion";

ImageRowFormat BuildFormat(const RowGeometry& geometry, bool reversed, std::int64_t activeWidth)
{
    ImageRowFormat format;
    format.bits = geometry.bits;
    format.layout = LayoutOf(geometry.bits, geometry.planar);
    format.channels = geometry.channels;
    format.reversed = reversed;
    format.width = geometry.width;
    format.activeWidth = activeWidth;

    RequireSupportedDepth(format.bits);
    // Compared as unsigned: a negative active width must fail here.
    if (static_cast<std::uint32_t>(format.width) < static_cast<std::uint32_t>(format.activeWidth))
        throw invalidWidth;
    return format;
}

// Sizes that index memory are right only where the row's own size is. Each fault is looked for in
// both rows ahead of the next.
void RequireTrueSizes(const RowGeometry& source, const RowGeometry& destination)
{
    if (source.width < 0 || destination.width < 0)
        throw invalidWidth;
    if (source.channels < 0 || destination.channels < 0)
        throw invalidChannels;
    if (!RowSizeFits(source) || !RowSizeFits(destination))
        throw invalidWidth;
}

// A row of bytes and a row of packed bytes of one depth have no step between them, and the bytes
// of a packed row of depth 10 hold no whole number of samples.
bool LayoutsMeet(const FormatPair& formats)
{
    const bool packedSource = IsPacked(formats.source);
    const bool packedDestination = IsPacked(formats.destination);
    if ((packedSource && formats.source.bits == 10) ||
        (packedDestination && formats.destination.bits == 10))
        return false;
    return formats.source.bits != formats.destination.bits || packedSource == packedDestination;
}

bool HasNullMap(std::size_t chainLength, const ChunkConvertFacility* chain)
{
    return std::any_of(chain, chain + chainLength, [](const ChunkConvertFacility& facility) {
        return facility.remapChannels != 0 && facility.remap == nullptr;
    });
}

} // namespace

RowView ViewOf(const ImageRow& row)
{
    return {{row.GetWidth(), row.GetChannels(), row.GetBits(), row.IsPlanar()}, row.GetData()};
}

FormatPair BuildFormats(const ConversionRequest& request)
{
    const std::int64_t factor = request.factor;
    const std::int64_t repeats = std::abs(factor);
    const std::int64_t sourceWidth = request.source.geometry.width;
    const std::int64_t destinationWidth = request.destination.geometry.width;
    const std::int64_t sourceActive =
        std::min(sourceWidth, (destinationWidth + repeats - 1) / repeats);
    const std::int64_t destinationActive = std::min(sourceWidth * repeats, destinationWidth);

    FormatPair formats;
    formats.source = BuildFormat(request.source.geometry, factor < 0, sourceActive);
    formats.destination = BuildFormat(request.destination.geometry, false, destinationActive);
    return formats;
}

void Convert(const ConversionRequest& request, const ChunkConvertFacility& repeatFacility,
             const ChunkConvertFacility& remapFacility)
{
    const FormatPair formats = BuildFormats(request);
    if (repeatFacility.select != nullptr && remapFacility.select != nullptr)
        throw onlyOneOption;
    const ChainOptions options{ReverseFor(request), repeatFacility, remapFacility};
    const Chain chain = ChooseChain(formats, options, request.sseVersion);
    RunChain(request, formats, chain.length, chain.facilities.data());
}

void RunChain(const ConversionRequest& request, const FormatPair& formats, std::size_t chainLength,
              const ChunkConvertFacility* chain)
{
    RequireTrueSizes(request.source.geometry, request.destination.geometry);
    if (formats.destination.channels == 0)
        return;
    if (formats.source.channels == 0 || !LayoutsMeet(formats))
        throw unsupported;
    if (HasNullMap(chainLength, chain))
        throw unsupportedRemap;
    // Both sides' active widths are 0, or neither.
    if (formats.source.activeWidth == 0)
        return;
    ConversionPortal({request.sseVersion, request.source.data, request.destination.data,
                      formats.source, formats.destination},
                     chainLength, chain);
}

} // namespace zvk::Pelkraft
