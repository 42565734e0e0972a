#include "pattern/pattern_engine_sse.h"

#include "pattern/field_walk.h"

#include <algorithm>
#include <cstddef>
#include <type_traits>

namespace zvk::Pelkraft {
namespace {

constexpr const char* arrayTooLong = "Array too long for SSE register";

SseRowMethod GetMethodForAnySteps(Road road)
{
    if constexpr (hasVectorRoad)
        if (road != Road::Portable)
            return GetSseRowMethodVector();
    return GetSseRowMethodPortable();
}

// The pattern must be one that can look up ink values.
SseRowMethod GetLookupMethod(Road road, std::uint32_t inColors, std::uint32_t outInks)
{
    if constexpr (hasWideRoads) {
        if (road == Road::Avx512)
            return GetWideWordMethodAvx512();
        if (road == Road::Avx2 && SuitsShortWords(inColors, outInks))
            return GetShortWordMethodAvx2();
    }
    return GetMethodForAnySteps(road);
}

} // namespace

template <typename RandomSource>
DotWeavePatternEngineSse<RandomSource>::DotWeavePatternEngineSse(Road newRoad)
    : mRoad(newRoad), mApplyRow(GetMethodForAnySteps(newRoad))
{}

template <typename RandomSource>
void DotWeavePatternEngineSse<RandomSource>::InitFromText(char* text)
{
    LoadConverter(text);
    mSourceStride = mNumInColors;
    mDestinationStride = mNumOutInks;
    PackTransformations();
    if (ExceedsTables())
        throw arrayTooLong;
    BuildLanes();
    SelectRowMethod();
    BuildRandomSource();
}

template <typename RandomSource>
void DotWeavePatternEngineSse<RandomSource>::PackTransformations()
{
    const SseTransformationBuilder* tables = mConverter->GetSseTables();
    std::transform(tables, tables + mNumCombinations, mTransformations.begin(),
                   [](const SseTransformationBuilder& table) { return table.Pack(); });
}

template <typename RandomSource>
void DotWeavePatternEngineSse<RandomSource>::BuildLanes()
{
    mLanes = SseLanes{};
    std::copy_n(mMaxStepOfInColor.begin(), mNumInColors, mLanes.mStepLimits.begin());
    for (std::size_t ink = 0; ink < static_cast<std::size_t>(mNumOutInks); ++ink) {
        const std::uint8_t inColor = mConverter->GetInColorOfOutInk()[ink];
        // A repeated name can lead beyond the last lane, and a shuffle would see only the low four
        // bits of that.
        mLanes.mInColorLanes[ink] = inColor < outInkLanes ? inColor : noInColorOfInk;
    }
}

template <typename RandomSource>
void DotWeavePatternEngineSse<RandomSource>::SelectRowMethod()
{
    const auto inColors = static_cast<std::uint32_t>(mNumInColors);
    const auto outInks = static_cast<std::uint32_t>(mNumOutInks);
    if (inColors != 0 && outInks != 0 && CanLookUp(mLanes, outInks)) {
        mLanes.mLookup = BuildInkLookup(mLanes, inColors, outInks);
        mApplyRow = GetLookupMethod(mRoad, inColors, outInks);
    } else {
        mApplyRow = GetMethodForAnySteps(mRoad);
    }
}

template <typename RandomSource>
void DotWeavePatternEngineSse<RandomSource>::BuildRandomSource()
{
    const std::int32_t seed = mConverter->GetRandomSeed();
    if constexpr (std::is_same_v<RandomSource, RandomPointer<SseTransformation>>)
        mRandom.Build(seed, mConverter->GetDistribution(), mTransformations.data());
    else
        mRandom.Build(seed, mConverter->GetCombinations(), mNumCombinations,
                      mTransformations.data());
}

template <typename RandomSource>
void DotWeavePatternEngineSse<RandomSource>::ResetRandomizer()
{
    mRandom.Reset();
}

template <typename RandomSource>
void DotWeavePatternEngineSse<RandomSource>::ApplyPattern(unsigned char* source,
                                                          unsigned char* destination,
                                                          unsigned long pixels)
{
    ApplyFrom(mRandom.GetPosition(), source, destination, static_cast<std::uint32_t>(pixels));
    mRandom.StartNextRow();
}

template <typename RandomSource>
void DotWeavePatternEngineSse<RandomSource>::ApplyFrom(std::uint32_t position,
                                                       const unsigned char* source,
                                                       unsigned char* destination,
                                                       std::uint32_t pixels) const
{
    const SseRow row = {
        .source = source,
        .destination = destination,
        .pixels = pixels,
        .sourceStride = static_cast<std::uint32_t>(mSourceStride),
        .destinationStride = static_cast<std::uint32_t>(mDestinationStride),
        .lanes = &mLanes,
        .field = mRandom.GetData(),
        .position = position,
        .fieldSize = mRandom.GetWalkSize(),
        .single = DrawsCombinations() ? nullptr : mTransformations.data(),
    };
    mApplyRow(row);
}

template class DotWeavePatternEngineSse<RandomPointer<SseTransformation>>;
template class DotWeavePatternEngineSse<RandomPointerNG<SseTransformation>>;
template class DotWeavePatternEngineSse<ShuffledPointers<SseTransformation>>;

} // namespace zvk::Pelkraft
