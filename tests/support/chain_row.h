#pragma once

#include "pelkraft/image_row.h"
#include "plan/plan.h"
#include "rows/row_view.h"
#include "zvk/system_tools.h"

namespace zvk::Pelkraft::TestSupport {

// Sends every conversion through the chain of chunks, also those that the direct road serves. The
// checks, their order and the log are those of any row.
class ChainRow : public ImageRow
{
public:
    using ImageRow::ImageRow;

protected:
    void FillFromBody2(const ImageRow& source, const OptionalParameters& options) override
    {
        Run(RequestFor(source, options));
    }

    void FillFromWithRemapBody2(const ImageRow& source, const int* map,
                                const OptionalParameters& options) override
    {
        ConversionRequest request = RequestFor(source, options);
        request.maps = true;
        request.map = {static_cast<std::uint64_t>(request.destination.geometry.channels), map};
        Run(request);
    }

    void FillFromWithPixelRepeatBody2(const ImageRow& source, int factor,
                                      const OptionalParameters& options) override
    {
        ConversionRequest request = RequestFor(source, options);
        request.repeats = true;
        request.factor = factor;
        Run(request);
    }

private:
    ConversionRequest RequestFor(const ImageRow& source, const OptionalParameters& options) const
    {
        const int level = options.forcePortable ? 0 : SystemTools::GetSseVersion();
        return {ViewOf(source), ViewOf(*this), level};
    }

    static void Run(const ConversionRequest& request)
    {
        Plan plan;
        MakePlan(plan, request);
        if (plan.road != PlanRoad::None)
            RunChain(plan, request.source.data, request.destination.data);
    }
};

} // namespace zvk::Pelkraft::TestSupport
