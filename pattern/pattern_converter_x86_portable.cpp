#include "pattern/pattern_converter_x86.h"

#include <algorithm>
#include <cstddef>

namespace zvk::Pelkraft {
namespace {

constexpr const char* inkWithoutInColor = "out-ink without in-colour in pattern";

void RepairRow(StepRow& row, std::int32_t topStep)
{
    const auto top = static_cast<std::size_t>(std::min(topStep, stepsOfInColor - 1));
    for (std::size_t step = 0; step < row.size(); ++step) {
        if (row[step] == unsetValue)
            row[step] = 0;
        if (step > top)
            row[step] = row[top];
    }
}

} // namespace

bool DotWeavePatternConverterX86::Parse(const std::string& text, int flag)
{
    if (!DotWeavePatternConverter::Parse(text, flag))
        return false;
    // Without in-colours every ink would be refused here, ahead of the refusal of such a text.
    if (GetInColorCount() > 0)
        RepairRows();
    return true;
}

void DotWeavePatternConverterX86::RepairRows()
{
    const auto inks = static_cast<std::size_t>(std::min(GetOutInkCount(), outInkLanes));
    for (std::uint32_t c = 0; c < mNumCombinations; ++c)
        for (std::size_t ink = 0; ink < inks; ++ink) {
            StepRow* row = mCombinations[c].inkSteps[ink];
            // An in-colour listed at index 255 reads like none, but has a row.
            if (row == nullptr)
                throw inkWithoutInColor;
            RepairRow(*row, TopStepOfInk(ink));
        }
}

// 0 where a repeated name has led to an index that no in-colour has.
std::int32_t DotWeavePatternConverterX86::TopStepOfInk(std::size_t outInk) const
{
    const std::size_t inColor = GetInColorOfOutInk()[outInk];
    const auto& topSteps = GetMaxStepOfInColor();
    return inColor < topSteps.size() ? topSteps[inColor] : 0;
}

} // namespace zvk::Pelkraft
