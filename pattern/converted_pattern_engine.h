#pragma once

#include "pattern/dot_weave_pattern_engine.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

namespace zvk::Pelkraft {

// What both families that own a converter have in common: the counts, and the answers from them.
template <typename Converter>
class ConvertedPatternEngine : public DotWeavePatternEngine
{
public:
    int GetInColorCount() final { return mNumInColors; }
    int GetOutColorCount() final { return mNumOutInks; }
    DotWeavePatternConverter* GetConverter() final { return mConverter.get(); }

    // The highest step, and 255 for an in-colour without a block. 0 outside the in-colours.
    int GetNumberOfStepsForInColor(int inColor) final
    {
        return inColor >= 0 && inColor < mNumInColors
                   ? mMaxStepOfInColor[static_cast<std::size_t>(inColor)]
                   : 0;
    }

protected:
    // A converter that fails to load leaves the engine without one.
    void LoadConverter(const char* text)
    {
        mConverter.reset();
        auto converter = std::make_unique<Converter>();
        converter->Load(text);
        mConverter = std::move(converter);
        mNumInColors = mConverter->GetInColorCount();
        mNumOutInks = mConverter->GetOutInkCount();
        mNumCombinations = mConverter->GetCombinationCount();
    }

    bool ExceedsTables() const
    {
        const auto lanes = static_cast<std::int32_t>(mMaxStepOfInColor.size());
        return mNumInColors > lanes || mNumOutInks > lanes;
    }

    void CopySteps()
    {
        std::copy_n(mConverter->GetMaxStepOfInColor().begin(), mNumInColors,
                    mMaxStepOfInColor.begin());
    }

    // Without a choice the random source stands still.
    bool DrawsCombinations() const { return mNumCombinations >= 2; }

    std::int32_t mNumInColors = 0;
    std::int32_t mNumOutInks = 0;
    std::uint32_t mNumCombinations = 0;
    std::array<std::uint8_t, 16> mMaxStepOfInColor{};
    std::unique_ptr<Converter> mConverter;
};

} // namespace zvk::Pelkraft
