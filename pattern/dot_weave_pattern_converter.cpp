#include "pattern/dot_weave_pattern_converter.h"

#include "pattern/tokenizer.h"

#include <cstddef>

namespace zvk::Pelkraft {
namespace {

constexpr const wchar_t* headerMissing = L"Internal Message: init from dotweave pattern failed";

} // namespace

// The sink stores what the reader finds in the fields of a converter.
class DotWeavePatternConverter::TextSink final : public PatternHandler
{
public:
    explicit TextSink(DotWeavePatternConverter& newConverter) : converter(newConverter) {}

    void TakeVersion(std::int32_t version, const PatternToken&) override
    {
        converter.mVersion = version;
    }
    void TakeSeed(std::int32_t seed) override { converter.mRandomSeed = seed; }
    void AllocateInColors(std::int32_t count) override { converter.mInColors.Allocate(count); }

    void SelectInColor(std::int32_t inColor, const PatternToken&) override
    {
        converter.mInColors.Select(inColor).steps[0].numRandoms = 1;
    }

    void TakeInk(std::int32_t inColor, std::int32_t position, std::int32_t outInk,
                 const PatternToken&) override
    {
        converter.mInColors.Select(inColor).inks[static_cast<std::size_t>(position)] = outInk;
        if (outInk < outInkLanes)
            converter.mInColorOfOutInk[static_cast<std::size_t>(outInk)] =
                static_cast<std::uint8_t>(inColor);
    }

    void TakeInkCount(std::int32_t inColor, std::int32_t count) override
    {
        converter.mInColors.Select(inColor).numInks = count;
    }

    // A second list only replaces the steps that it names.
    void BeginValueLines(std::int32_t) override {}

    void TakeValueLine(std::int32_t inColor, const ValueLine& line) override
    {
        converter.mInColors.Select(inColor).Store(line);
    }

private:
    DotWeavePatternConverter& converter;
};

DotWeavePatternConverter::DotWeavePatternConverter()
{
    mInColorOfOutInk.fill(noInColorOfInk);
}

void DotWeavePatternConverter::Load(const char* text)
{
    Reset();
    mVersion = 1;
    if (!Parse(text, 0))
        throw headerMissing;
}

void DotWeavePatternConverter::Reset()
{
    mInColors.Free();
    mInColorOfOutInk.fill(noInColorOfInk);
}

bool DotWeavePatternConverter::Parse(const std::string& text, int)
{
    Reset();
    mVersion = 1;
    mTokens = CutTokens(text, mCommentCharacter);
    TextSink sink(*this);
    PatternReader reader(mainRules, mInColorNames, mOutInkNames, sink);
    if (!reader.Read(mTokens))
        return false;
    Finish();
    return true;
}

void DotWeavePatternConverter::Finish()
{
    const std::int32_t inColorCount = GetInColorCount();
    for (std::int32_t i = 0; i < inColorCount; ++i) {
        const InColorRecord* record = mInColors.Find(i);
        const std::int32_t numSteps = record != nullptr ? record->numSteps : 0;
        if (i < static_cast<std::int32_t>(mMaxStepOfInColor.size()))
            mMaxStepOfInColor[static_cast<std::size_t>(i)] =
                static_cast<std::uint8_t>(numSteps - 1);
    }

    for (std::int32_t i = 0; i < inColorCount; ++i)
        if (InColorRecord* record = mInColors.Find(i); record != nullptr)
            BuildChannelCombinations(*record);
    mNumCombinations = BuildPatternCombinations(mInColors, inColorCount, mCombinations);
    BuildDistribution(mCombinations, mNumCombinations, mDistribution);
}

} // namespace zvk::Pelkraft
