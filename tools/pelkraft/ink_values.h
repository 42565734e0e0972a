#pragma once

#include "tools/pelkraft/pattern_outline.h"

#include <algorithm>
#include <cstddef>

namespace zvk::Pelkraft::Client {

// Calls visit(inColour, step, value) for each value that the text gives to an ink.
template <typename Visit>
void VisitInkValues(const PatternOutline& outline, const Visit& visit)
{
    for (std::size_t i = 0; i < outline.InColourCount(); ++i) {
        const InColorRecord& record = outline.Record(i);
        for (std::size_t number = 0; number < static_cast<std::size_t>(record.numSteps); ++number) {
            const StepValues& step = record.steps[number];
            for (std::size_t r = 0; r < static_cast<std::size_t>(step.numRandoms); ++r)
                for (std::size_t p = 0; p < static_cast<std::size_t>(record.numInks); ++p)
                    if (step.table[r][p] != unsetValue)
                        visit(i, number, step.table[r][p] & 0xFF);
        }
    }
}

// The highest one stands for full ink: 255 where no ink gets a value.
inline int HighestInkValue(const PatternOutline& outline)
{
    int highest = 0;
    VisitInkValues(
        outline, [&](std::size_t, std::size_t, int value) { highest = std::max(highest, value); });
    return highest == 0 ? 255 : highest;
}

} // namespace zvk::Pelkraft::Client
