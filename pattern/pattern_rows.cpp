#include "pattern/pattern_rows.h"

#include "common/road.h"
#include "pattern/early_check.h"
#include "pattern/engine_loading.h"
#include "pattern/field_walk.h"
#include "pattern/pattern_engine_portable.h"
#include "pattern/pattern_engine_sse.h"
#include "zvk/split.h"
#include "zvk/system_tools.h"

#include <algorithm>
#include <cstddef>

namespace zvk::Pelkraft {
namespace {

// An engine whose random source nobody moves.
template <typename Engine>
class EngineRows final : public PatternRows
{
public:
    template <typename... Arguments>
    explicit EngineRows(char* text, Arguments... arguments) : mEngine(arguments...)
    {
        LoadEngine(mEngine, text);
        const DotWeavePatternConverter& converter = *mEngine.GetConverter();
        mNumbers.inColors = mEngine.GetInColorCount();
        mNumbers.outInks = mEngine.GetOutColorCount();
        mNumbers.version = converter.GetVersion();
        mNumbers.combinations = converter.GetCombinationCount();
        mNumbers.fieldSize = mEngine.GetWalk().GetSize();
        mNumbers.topSteps = converter.GetMaxStepOfInColor();
    }

private:
    std::uint32_t GetStartOfRow(std::uint16_t row) const override
    {
        return mEngine.GetWalk().GetStartOfRow(row);
    }

    void ApplyFrom(std::uint32_t position, const unsigned char* source, unsigned char* destination,
                   std::uint32_t pixels) const override
    {
        mEngine.ApplyFrom(position, source, destination, pixels);
    }

    Engine mEngine;
};

using RowsOwner = std::unique_ptr<const PatternRows>;

RowsOwner LoadPortableRows(char* text, bool isSecondGeneration)
{
    if (isSecondGeneration)
        return std::make_unique<EngineRows<DotWeavePatternEngineX86<RandomFieldNG>>>(text);
    return std::make_unique<EngineRows<DotWeavePatternEngineX86<RandomField>>>(text);
}

RowsOwner LoadVectorRows(char* text, bool isSecondGeneration, Road road)
{
    using First = DotWeavePatternEngineSse<RandomPointer<SseTransformation>>;
    using Second = DotWeavePatternEngineSse<ShuffledPointers<SseTransformation>>;
    if (isSecondGeneration)
        return std::make_unique<EngineRows<Second>>(text, road);
    return std::make_unique<EngineRows<First>>(text, road);
}

} // namespace

void PatternRows::Apply(const NumberedRow& row, std::uint32_t pieceOfPixels) const
{
    const auto sourceStride = static_cast<std::size_t>(mNumbers.inColors);
    const auto destinationStride = static_cast<std::size_t>(mNumbers.outInks);
    // The jump table has 65536 places.
    std::uint32_t position = GetStartOfRow(static_cast<std::uint16_t>(row.number));
    const unsigned char* source = row.source;
    unsigned char* destination = row.destination;
    for (std::uint64_t left = row.pixels; left != 0;) {
        const auto pixels =
            static_cast<std::uint32_t>(std::min<std::uint64_t>(left, pieceOfPixels));
        ApplyFrom(position, source, destination, pixels);
        position =
            static_cast<std::uint32_t>((std::uint64_t{position} + pixels) % mNumbers.fieldSize);
        source += pixels * sourceStride;
        destination += pixels * destinationStride;
        left -= pixels;
    }
}

RowsOwner LoadPatternRows(char* text, DotWeavePattern::Engine engine)
{
    const bool isSecondGeneration =
        CheckPatternText(text, zvk::split) >= firstVersionOfSecondGeneration;
    if (engine == DotWeavePattern::X86)
        return LoadPortableRows(text, isSecondGeneration);
    return LoadVectorRows(text, isSecondGeneration, RoadOf(SystemTools::GetSseVersion()));
}

} // namespace zvk::Pelkraft
