#include "tools/pelkraft/step_plan.h"

#include "tools/pelkraft/page_rows.h"

#include <algorithm>
#include <cstdlib>

namespace zvk::Pelkraft::Client {
namespace {

// The samples of the codes where those of fewer bits are stretched to tones.
InkCodes ToneCodesOf(const InkCodes& codes, const TiffPicture& from, int toneBits)
{
    const int highest = (1 << from.bits) - 1;
    const int stretch = ((1 << toneBits) - 1) / highest;
    return {codes.none * stretch, codes.full * stretch};
}

int DistanceOf(const InkCodes& codes)
{
    return std::abs(codes.full - codes.none);
}

RowRequest RequestOf(const TiffPicture& from, const ChannelChoice& choice, int bits, Levels levels)
{
    RowRequest request;
    request.from = ShapeOf(from);
    request.to.width = from.width;
    request.to.channels = static_cast<int>(choice.map.size());
    request.to.bits = bits;
    request.map = choice.map;
    request.tones = levels == Levels::Raw ? Tones::Raw : Tones::Scale;
    return request;
}

std::size_t BufferBytes(const std::optional<RowPlan>& rows)
{
    return rows ? static_cast<std::size_t>(rows->Request().to.Bytes()) : 0;
}

} // namespace

StepPlan::StepPlan(const TiffFile& file, const TiffPicture& from, const InkCodes& codes,
                   const ChannelChoice& choice, const StepChoice& newSteps)
    : steps(newSteps), width(from.width), toneCount(DistanceOf(codes) + 1),
      toneBits(from.bits == 16 ? 16 : 8), toneCodes(ToneCodesOf(codes, from, toneBits))
{
    for (std::size_t i = 0; i < steps.topSteps.size(); ++i)
        ways.push_back(steps.WayOf(i, toneCount));
    const bool dithers = Uses(StepWay::Dither);
    if (dithers)
        toneRows = PlanRows(file, RequestOf(from, choice, toneBits, steps.levels));
    // A page without in-colours has rows all the same.
    if (dithers && !Uses(StepWay::Quantize))
        return;
    RowRequest request = RequestOf(from, choice, 8, steps.levels);
    // The whole of the samples takes the library's way.
    if (steps.levels != Levels::Raw && codes != InkCodes{0, (1 << from.bits) - 1})
        request.lines =
            SampleLines(static_cast<std::size_t>(from.channels), {codes.none, codes.full, 0, 255});
    levelRows = PlanRows(file, request);
}

bool StepPlan::Uses(StepWay way) const
{
    return std::find(ways.begin(), ways.end(), way) != ways.end();
}

DitherSpec StepPlan::MakeDitherSpec() const
{
    DitherSpec spec;
    spec.bits = toneBits;
    for (std::size_t i = 0; i < ways.size(); ++i) {
        const bool dithers = ways[i] == StepWay::Dither;
        spec.tones.push_back(
            {dithers ? steps.inks[i] : StepInks{0}, toneCodes.none, toneCodes.full});
    }
    return spec;
}

const DitherPlan* DitherStore::For(const StepPlan& plan)
{
    if (!plan.toneRows)
        return nullptr;
    if (!dither || toneBits != plan.toneBits || toneCodes != plan.toneCodes || ways != plan.ways) {
        try {
            dither.emplace(plan.MakeDitherSpec());
        } catch (const PelkraftError& refusal) {
            ThrowRefusal(refusal);
        }
        toneBits = plan.toneBits;
        toneCodes = plan.toneCodes;
        ways = plan.ways;
    }
    return &*dither;
}

StepMaker::StepMaker(const StepPlan& newPlan, const StepLevels& newLevels,
                     const DitherPlan* newDither)
    : plan(newPlan), levels(newLevels), dither(newDither), byLevels(BufferBytes(plan.levelRows)),
      byDither(BufferBytes(plan.toneRows))
{
    if (plan.levelRows)
        levelPipeline.emplace(*plan.levelRows);
    if (plan.toneRows)
        tonePipeline.emplace(*plan.toneRows);
}

unsigned char* StepMaker::Make(const unsigned char* fileRow, std::int64_t x, std::int64_t y)
{
    if (tonePipeline)
        MakeByDither(fileRow, x, y);
    if (!levelPipeline)
        return byDither.Data();
    levelPipeline->Run(fileRow, byLevels.Data());
    if (levels.Apply(byLevels.Data(), static_cast<std::size_t>(plan.width)))
        sawHighStep = true;
    if (tonePipeline)
        MergeDithered();
    return byLevels.Data();
}

void StepMaker::MakeByDither(const unsigned char* fileRow, std::int64_t x, std::int64_t y)
{
    tonePipeline->Run(fileRow, byDither.Data());
    // The steps take the place of the tones.
    const auto bytes = static_cast<std::uint64_t>(BufferBytes(plan.toneRows));
    dither->Run(x, y, 1, static_cast<std::uint64_t>(plan.width),
                SourceRows(byDither.Data(), bytes, 0), TargetRows(byDither.Data(), bytes, 0));
}

void StepMaker::MergeDithered()
{
    const std::size_t inColours = plan.ways.size();
    const std::size_t count = static_cast<std::size_t>(plan.width) * inColours;
    for (std::size_t i = 0; i < inColours; ++i) {
        if (plan.ways[i] != StepWay::Dither)
            continue;
        for (std::size_t sample = i; sample < count; sample += inColours)
            byLevels.Data()[sample] = byDither.Data()[sample];
    }
}

} // namespace zvk::Pelkraft::Client
