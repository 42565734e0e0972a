#include "pattern/pattern_engine_portable.h"

#include "pattern/field_walk.h"

#include <algorithm>
#include <cstddef>

namespace zvk::Pelkraft {
namespace {

constexpr const char* arrayTooLong = "Array too long for pattern tables";
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
    // A text without in-colours is refused later, for that and not for its inks.
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

// A repeated name can lead to an index that no in-colour has: its top step is 0.
std::int32_t DotWeavePatternConverterX86::TopStepOfInk(std::size_t outInk) const
{
    const std::size_t inColor = GetInColorOfOutInk()[outInk];
    const auto& topSteps = GetMaxStepOfInColor();
    return inColor < topSteps.size() ? topSteps[inColor] : 0;
}

template <typename RandomSource>
void DotWeavePatternEngineX86<RandomSource>::InitFromText(char* text)
{
    mRandom.reset();
    LoadConverter(text);
    if (ExceedsTables())
        throw arrayTooLong;

    mInColorOfOutInk = mConverter->GetInColorOfOutInk();
    // A pattern without in-colours or inks is refused later, for that and not for its random
    // source.
    if (mNumInColors > 0 && mNumOutInks > 0)
        mRandom = std::make_unique<RandomSource>(mConverter->GetRandomSeed(),
                                                 mConverter->GetDistribution(),
                                                 mConverter->GetCombinations(), mNumCombinations);
}

template <typename RandomSource>
void DotWeavePatternEngineX86<RandomSource>::ResetRandomizer()
{
    mRandom->Reset();
}

template <typename RandomSource>
void DotWeavePatternEngineX86<RandomSource>::ApplyPattern(unsigned char* source,
                                                          unsigned char* destination,
                                                          unsigned long pixels)
{
    ApplyFrom(mRandom->GetPosition(), source, destination, static_cast<std::uint32_t>(pixels));
    mRandom->StartNextRow();
}

template <typename RandomSource>
void DotWeavePatternEngineX86<RandomSource>::ApplyFrom(std::uint32_t position,
                                                       const unsigned char* source,
                                                       unsigned char* destination,
                                                       std::uint32_t pixels) const
{
    if (DrawsCombinations())
        ApplyDrawn(position, source, destination, pixels);
    else
        ApplySingle(source, destination, pixels);
}

template <typename RandomSource>
void DotWeavePatternEngineX86<RandomSource>::ApplyDrawn(std::uint32_t position,
                                                        const unsigned char* source,
                                                        unsigned char* destination,
                                                        std::uint32_t pixels) const
{
    const PatternCombinations& combinations = mConverter->GetCombinations();
    const std::uint32_t* const field = mRandom->GetData();
    const std::uint32_t fieldSize = mRandom->GetSize();
    for (; pixels != 0; --pixels) {
        ApplyPixel(source, destination, combinations[field[position++]]);
        if (position == fieldSize)
            position = 0;
        source += mNumInColors;
        destination += mNumOutInks;
    }
}

template <typename RandomSource>
void DotWeavePatternEngineX86<RandomSource>::ApplySingle(const unsigned char* source,
                                                         unsigned char* destination,
                                                         std::uint32_t pixels) const
{
    const PatternCombination& combination = mConverter->GetCombinations()[0];
    for (; pixels >= 2; pixels -= 2) {
        ApplyPixel(source, destination, combination);
        ApplyPixel(source + mNumInColors, destination + mNumOutInks, combination);
        source += 2 * std::ptrdiff_t{mNumInColors};
        destination += 2 * std::ptrdiff_t{mNumOutInks};
    }
    if (pixels != 0)
        ApplyPixel(source, destination, combination);
}

template <typename RandomSource>
void DotWeavePatternEngineX86<RandomSource>::ApplyPixel(const unsigned char* source,
                                                        unsigned char* destination,
                                                        const PatternCombination& combination) const
{
    for (std::size_t ink = 0; ink < static_cast<std::size_t>(mNumOutInks); ++ink) {
        const std::size_t inColor = mInColorOfOutInk[ink];
        // A repeated name leads to an index beyond the pixel, where no step stands.
        std::uint8_t step = 0;
        if (inColor < static_cast<std::size_t>(mNumInColors))
            step = std::min(source[inColor], mMaxStepOfInColor[inColor]);
        const StepRow& row = *combination.inkSteps[ink];
        destination[ink] = step < row.size() ? static_cast<std::uint8_t>(row[step]) : 0;
    }
}

template class DotWeavePatternEngineX86<RandomField>;
template class DotWeavePatternEngineX86<RandomFieldNG>;

} // namespace zvk::Pelkraft
