#include "common/inlining.h"
#include "pelkraft/image_row.h"
#include "plan/plan.h"
#include "zvk/system_tools.h"

namespace zvk::Pelkraft {
namespace {

constexpr const char* unsupportedFill = "zvk::Pelkraft::ImageRow::FillFrom unsupported conversion";
constexpr const char* unsupportedRepeat =
    "zvk::Pelkraft::ImageRow::FillFromWithPixelRepeat unsupported conversion";

// A derived row sees the order of the questions: the channel counts come first, since a fill is
// refused by them alone, and the data last, once all checks have passed. Each is asked once.
void AskForChannels(ConversionRequest& request, const ImageRow& source, const ImageRow& destination)
{
    request.source.channels = source.GetChannels();
    request.destination.channels = destination.GetChannels();
}

void RequireSameChannels(const ConversionRequest& request, const char* text)
{
    if (request.source.channels != request.destination.channels)
        throw text;
}

void AskForTheRest(RowGeometry& geometry, const ImageRow& row)
{
    geometry.width = row.GetWidth();
    geometry.bits = row.GetBits();
    geometry.planar = row.IsPlanar();
}

PELKRAFT_ALWAYS_INLINE inline void Convert(Plan& plan, const ImageRow& source,
                                           const ImageRow& destination,
                                           const ImageRow::OptionalParameters& options)
{
    ConversionRequest& request = plan.request;
    request.sseVersion = options.forcePortable ? 0 : SystemTools::GetSseVersion();
    AskForTheRest(request.source, source);
    AskForTheRest(request.destination, destination);
    MakePlan(plan);
    const unsigned char* const from = source.GetData();
    RunPlan(plan, from, destination.GetData());
}

} // namespace

void ImageRow::FillFromBody2(const ImageRow& source, const OptionalParameters& options)
{
    Plan plan;
    ConversionRequest& request = plan.request;
    AskForChannels(request, source, *this);
    RequireSameChannels(request, unsupportedFill);
    Convert(plan, source, *this, options);
}

void ImageRow::FillFromWithRemapBody2(const ImageRow& source, const int* map,
                                      const OptionalParameters& options)
{
    Plan plan;
    ConversionRequest& request = plan.request;
    AskForChannels(request, source, *this);
    request.maps = true;
    // Widened with its sign: a negative count is refused later, by its own words.
    request.map = {static_cast<std::uint64_t>(std::int64_t{request.destination.channels}), map};
    Convert(plan, source, *this, options);
}

void ImageRow::FillFromWithPixelRepeatBody2(const ImageRow& source, int factor,
                                            const OptionalParameters& options)
{
    Plan plan;
    ConversionRequest& request = plan.request;
    AskForChannels(request, source, *this);
    RequireSameChannels(request, unsupportedRepeat);
    if (factor != 1 && factor != 2 && factor != 4 && factor != -1 && factor != -2 && factor != -4)
        throw unsupportedRepeat;
    request.repeats = true;
    request.factor = factor;
    Convert(plan, source, *this, options);
}

} // namespace zvk::Pelkraft
