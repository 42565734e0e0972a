#include "tests/support/conversion_grid.h"

#include <numeric>

namespace zvk::Pelkraft::TestSupport {

ConversionCase CaseOf(const CaseShape& shape, const NaiveOperation& operation)
{
    const auto& [from, to] = shape.forms;
    const int destinationChannels =
        operation.hasMap ? static_cast<int>(operation.map.size()) : shape.channels;
    return {{shape.sourceWidth, shape.channels, from.bits, from.planar},
            {shape.destinationWidth, destinationChannels, to.bits, to.planar},
            operation,
            shape.forcePortable};
}

void ConversionGrid::ForEach(const std::function<void(const ConversionCase&)>& visit) const
{
    for (const int channels : channelCounts)
        for (const NaiveOperation& operation : Operations(channels))
            for (const auto& pair : ServedForms(operation))
                for (const int width : widths)
                    for (unsigned choice = 0; choice != 3; ++choice)
                        for (const bool forcePortable : {false, true})
                            visit(CaseOf({pair, channels, width,
                                          DestinationWidth(width, operation.factor, choice),
                                          forcePortable},
                                         operation));
}

std::vector<int> WidthsUpTo(int last)
{
    std::vector<int> widths(static_cast<std::size_t>(last) + 1);
    std::iota(widths.begin(), widths.end(), 0);
    return widths;
}

} // namespace zvk::Pelkraft::TestSupport
