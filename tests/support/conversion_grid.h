#pragma once

#include "tests/support/conversion_choices.h"
#include "tests/support/conversion_run.h"

#include <functional>
#include <utility>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

struct CaseShape
{
    std::pair<Form, Form> forms;
    int channels;
    int sourceWidth;
    int destinationWidth;
    bool forcePortable;
};
ConversionCase CaseOf(const CaseShape& shape, const NaiveOperation& operation);

// Conversions between all forms, by every operation, on both roads, and with each of these.
struct ConversionGrid
{
    std::vector<int> channelCounts;
    std::vector<int> widths;

    // In an order that is always the same.
    void ForEach(const std::function<void(const ConversionCase&)>& visit) const;
};

// 0 to the last.
std::vector<int> WidthsUpTo(int last);

} // namespace zvk::Pelkraft::TestSupport
