#pragma once

#include "pelkraft/image_row.h"
#include "plan/plan.h"
#include "zvk/system_tools.h"

namespace zvk::Pelkraft::TestSupport {

inline RowGeometry GeometryOf(const ImageRow& row)
{
    return {row.GetWidth(), row.GetChannels(), row.GetBits(), row.IsPlanar()};
}

// Sends every conversion through the chain of chunks, also those that the direct road serves. The
// checks, their order and the log are those of any row.
class ChainRow : public ImageRow
{
public:
    using ImageRow::ImageRow;

protected:
    void FillFromBody2(const ImageRow& source, const OptionalParameters& options) override
    {
        Run(RequestFor(source, options), source);
    }

    void FillFromWithRemapBody2(const ImageRow& source, const int* map,
                                const OptionalParameters& options) override
    {
        ConversionRequest request = RequestFor(source, options);
        request.maps = true;
        request.map = {static_cast<std::uint64_t>(request.destination.channels), map};
        Run(request, source);
    }

    void FillFromWithPixelRepeatBody2(const ImageRow& source, int factor,
                                      const OptionalParameters& options) override
    {
        ConversionRequest request = RequestFor(source, options);
        request.repeats = true;
        request.factor = factor;
        Run(request, source);
    }

private:
    ConversionRequest RequestFor(const ImageRow& source, const OptionalParameters& options) const
    {
        const int level = options.forcePortable ? 0 : SystemTools::GetSseVersion();
        return {GeometryOf(source), GeometryOf(*this), level};
    }

    void Run(const ConversionRequest& request, const ImageRow& source)
    {
        Plan plan;
        plan.request = request;
        MakePlan(plan);
        if (plan.road != PlanRoad::None)
            RunChain(plan, source.GetData(), GetData());
    }
};

} // namespace zvk::Pelkraft::TestSupport
