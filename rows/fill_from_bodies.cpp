#include "pelkraft/image_row.h"
#include "plan/plan.h"
#include "rows/row_view.h"
#include "zvk/system_tools.h"

namespace zvk::Pelkraft {
namespace {

constexpr const char* unsupportedFill = "zvk::Pelkraft::ImageRow::FillFrom unsupported conversion";
constexpr const char* unsupportedRepeat =
    "zvk::Pelkraft::ImageRow::FillFromWithPixelRepeat unsupported conversion";

ConversionRequest RequestFor(const ImageRow& source, const ImageRow& destination,
                             const ImageRow::OptionalParameters& options)
{
    const std::int32_t sseVersion = options.forcePortable ? 0 : SystemTools::GetSseVersion();
    return {ViewOf(source), ViewOf(destination), sseVersion};
}

bool HaveSameChannels(const ConversionRequest& request)
{
    return request.source.geometry.channels == request.destination.geometry.channels;
}

void Convert(const ConversionRequest& request)
{
    Plan plan;
    MakePlan(plan, request);
    RunPlan(plan, request.source.data, request.destination.data);
}

} // namespace

RowView ViewOf(const ImageRow& row)
{
    return {{row.GetWidth(), row.GetChannels(), row.GetBits(), row.IsPlanar()}, row.GetData()};
}

void ImageRow::FillFromBody2(const ImageRow& source, const OptionalParameters& options)
{
    const ConversionRequest request = RequestFor(source, *this, options);
    if (!HaveSameChannels(request))
        throw unsupportedFill;
    Convert(request);
}

void ImageRow::FillFromWithRemapBody2(const ImageRow& source, const int* map,
                                      const OptionalParameters& options)
{
    ConversionRequest request = RequestFor(source, *this, options);
    request.maps = true;
    // Widened with its sign: a negative count is refused later, by its own words.
    request.map = {static_cast<std::uint64_t>(std::int64_t{request.destination.geometry.channels}),
                   map};
    Convert(request);
}

void ImageRow::FillFromWithPixelRepeatBody2(const ImageRow& source, int factor,
                                            const OptionalParameters& options)
{
    ConversionRequest request = RequestFor(source, *this, options);
    if (!HaveSameChannels(request))
        throw unsupportedRepeat;
    if (factor != 1 && factor != 2 && factor != 4 && factor != -1 && factor != -2 && factor != -4)
        throw unsupportedRepeat;
    request.repeats = true;
    request.factor = factor;
    Convert(request);
}

} // namespace zvk::Pelkraft
