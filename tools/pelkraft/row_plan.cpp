#include "tools/pelkraft/row_plan.h"

#include "tools/pelkraft/failure.h"

#include <algorithm>
#include <limits>
#include <new>

namespace zvk::Pelkraft::Client {
namespace {

RowShape PlanesOf(RowShape shape)
{
    if (!shape.woven)
        return shape;
    shape.woven = false;
    shape.planar = true;
    return shape;
}

// Samples that follow lines are numbers of the new depth in bytes, or in words.
RowShape AfterLines(const RowRequest& request)
{
    RowShape shape = PlanesOf(request.from);
    if (request.lines)
        shape.bits = std::max(request.to.bits, 8);
    return shape;
}

void RefuseLongRow(const RowShape& shape)
{
    constexpr std::int64_t longest = std::numeric_limits<std::int32_t>::max();
    const bool longPlane = shape.planar && shape.width * shape.bits > longest - 7;
    if (shape.Bytes() > longest || shape.width > longest || longPlane)
        throw Failure(ExitCode::Unsupported, {},
                      "would need " + shape.Words() +
                          "; supported are rows of up to 2147483647 bytes, and bits in a plane");
}

RowFormat FormatOf(const RowShape& shape)
{
    return {shape.width, shape.channels, shape.bits, shape.planar};
}

std::int32_t SamplesOf(const RowRequest& request)
{
    if (request.lines)
        return PLK_SAMPLES_AS_LEVELS;
    if (request.from.bits >= 8 && request.to.bits >= 8)
        return PLK_SAMPLES_AS_FILL;
    return request.tones == Tones::Scale ? PLK_SAMPLES_AS_TONES : PLK_SAMPLES_AS_LEVELS;
}

ConversionPlan PlanConversion(const RowRequest& request)
{
    for (const RowShape& shape :
         {request.from, AfterLines(request), PlanesOf(request.to), request.to})
        RefuseLongRow(shape);
    ConversionSpec spec;
    spec.source = FormatOf(AfterLines(request));
    spec.target = FormatOf(PlanesOf(request.to));
    if (!request.map.empty())
        spec.map.emplace(request.map.begin(), request.map.end());
    spec.repeat = request.repeat;
    spec.mirror = request.mirror;
    spec.invert = request.invert;
    spec.samples = SamplesOf(request);
    spec.road = request.portableRoad ? PLK_ROAD_PORTABLE : PLK_ROAD_AUTOMATIC;
    try {
        return ConversionPlan(spec);
    } catch (const PelkraftError& refusal) {
        ThrowRefusal(refusal);
    }
}

} // namespace

void ThrowRefusal(const PelkraftError& refusal)
{
    if (refusal.GetStatus() == PLK_NO_MEMORY)
        throw std::bad_alloc();
    throw Failure(ExitCode::Unsupported, {}, refusal.what());
}

std::int64_t RowShape::Bytes() const
{
    if (woven)
        return (width * channels * bits + 7) / 8;
    if (planar)
        return channels * ((width * bits + 7) / 8);
    return channels * width * ((bits + 7) / 8);
}

std::string RowShape::Words() const
{
    const char* const layout = woven ? "contiguous bits" : planar ? "planar" : "interleaved";
    return std::string(layout) + ", " + std::to_string(width) + " pixels, " +
           std::to_string(channels) + " x " + std::to_string(bits) +
           (bits == 1 ? " bit, " : " bits, ") + std::to_string(Bytes()) + " bytes";
}

RowPlan::RowPlan(const RowRequest& newRequest)
    : request(newRequest), conversion(PlanConversion(request))
{}

RowShape RowPlan::LinesSource() const
{
    return PlanesOf(request.from);
}

RowShape RowPlan::LibrarySource() const
{
    return AfterLines(request);
}

RowShape RowPlan::LibraryTarget() const
{
    return PlanesOf(request.to);
}

bool RowPlan::KeepsRows() const
{
    return request.from == request.to && request.map.empty() && request.repeat == 1 &&
           !request.mirror && !request.invert && !request.lines;
}

int RowPlan::CutBits() const
{
    const bool cuts = request.to.bits < 8 && request.to.bits < request.from.bits;
    return cuts && !request.lines && request.tones == Tones::Raw ? request.to.bits : 0;
}

} // namespace zvk::Pelkraft::Client
