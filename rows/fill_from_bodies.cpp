#include "pelkraft/image_row.h"
#include "rows/chain_choice.h"
#include "rows/convert.h"
#include "zvk/system_tools.h"

namespace zvk::Pelkraft {
namespace {

constexpr const char* unsupportedFill = "zvk::Pelkraft::ImageRow::FillFrom unsupported conversion";
constexpr const char* unsupportedRepeat =
    "zvk::Pelkraft::ImageRow::FillFromWithPixelRepeat unsupported conversion";

ConversionRequest RequestFor(const ImageRow& source, const ImageRow& destination,
                             std::int32_t factor, const ImageRow::OptionalParameters& options)
{
    const std::int32_t sseVersion = options.forcePortable ? 0 : SystemTools::GetSseVersion();
    return {ViewOf(source), ViewOf(destination), factor, sseVersion};
}

bool HaveSameChannels(const ConversionRequest& request)
{
    return request.source.geometry.channels == request.destination.geometry.channels;
}

// Repeating copies bytes, and here a byte is several pixels: each gets one of its own for it.
void RepeatPacked(const ConversionRequest& request, const FormatPair& formats,
                  const ChunkConvertFacility& repeat)
{
    const std::int32_t depth = formats.source.bits;
    const ChunkConvertFacility chain[] = {
        ReverseFor(request), ChunkConvertFacility::Create_Unpacker(request.sseVersion, depth),
        repeat, ChunkConvertFacility::Create_Packer(request.sseVersion, depth)};
    RunChain(request, formats, std::size(chain), chain);
}

} // namespace

void ImageRow::FillFromBody2(const ImageRow& source, const OptionalParameters& options)
{
    const ConversionRequest request = RequestFor(source, *this, 1, options);
    if (!HaveSameChannels(request))
        throw unsupportedFill;
    Convert(request, {}, {});
}

void ImageRow::FillFromWithRemapBody2(const ImageRow& source, const int* map,
                                      const OptionalParameters& options)
{
    const ConversionRequest request = RequestFor(source, *this, 1, options);
    const auto remapChannels =
        static_cast<std::uint64_t>(std::int64_t{request.destination.geometry.channels});
    Convert(request, {},
            ChunkConvertFacility::Create_Remap(request.sseVersion, remapChannels, map));
}

void ImageRow::FillFromWithPixelRepeatBody2(const ImageRow& source, int factor,
                                            const OptionalParameters& options)
{
    const ConversionRequest request = RequestFor(source, *this, factor, options);
    if (!HaveSameChannels(request))
        throw unsupportedRepeat;
    if (factor != 1 && factor != 2 && factor != 4 && factor != -1 && factor != -2 && factor != -4)
        throw unsupportedRepeat;

    const auto repeat = ChunkConvertFacility::Create_PixelRepeat(request.sseVersion, factor);
    const FormatPair formats = BuildFormats(request);
    if (IsPacked(formats.source) && formats.source.bits == formats.destination.bits)
        RepeatPacked(request, formats, repeat);
    else
        Convert(request, repeat, {});
}

} // namespace zvk::Pelkraft
