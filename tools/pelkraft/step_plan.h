#pragma once

#include "pelkraft/dither.hpp"
#include "tools/pelkraft/channel_choice.h"
#include "tools/pelkraft/ink_codes.h"
#include "tools/pelkraft/row_pipeline.h"
#include "tools/pelkraft/row_plan.h"
#include "tools/pelkraft/step_choice.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace zvk::Pelkraft::Client {

// Tells how the rows of a page become steps, a byte for each in-colour.
struct StepPlan
{
    StepPlan(const TiffFile& file, const TiffPicture& from, const InkCodes& codes,
             const ChannelChoice& choice, const StepChoice& newSteps);

    bool Uses(StepWay way) const;
    // The library's work on the tones.
    DitherSpec MakeDitherSpec() const;

    const StepChoice& steps;
    std::int64_t width;
    // Samples from no ink to full ink.
    int toneCount;
    // Bits of the samples that are dithered, 8 or 16, and their codes.
    int toneBits;
    InkCodes toneCodes;
    // By in-colour.
    std::vector<StepWay> ways;
    // From a row of the file to packed pixels: to 8 bits that run from no ink to full ink, or hold
    // raw samples, where some in-colours are not dithered; and to tones, where some are.
    std::optional<RowPlan> levelRows;
    std::optional<RowPlan> toneRows;
};

// Keeps the dither of a page for those after it, since it takes some time to make.
class DitherStore
{
public:
    // Null where no in-colour is dithered. The answer lasts until the next call.
    const DitherPlan* For(const StepPlan& plan);

private:
    int toneBits = 0;
    InkCodes toneCodes;
    std::vector<StepWay> ways;
    std::optional<DitherPlan> dither;
};

// Takes rows of the file to steps. Each thread has one of its own.
class StepMaker
{
public:
    // dither is null where no in-colour is dithered.
    StepMaker(const StepPlan& newPlan, const StepLevels& newLevels, const DitherPlan* newDither);

    // The row's first pixel stands at this place of the page. Answers the steps, which last until
    // the next call.
    unsigned char* Make(const unsigned char* fileRow, std::int64_t x, std::int64_t y);

    // True if a raw sample so far was above its top step.
    bool SawHighStep() const { return sawHighStep; }

private:
    void MakeByDither(const unsigned char* fileRow, std::int64_t x, std::int64_t y);
    void MergeDithered();

    const StepPlan& plan;
    const StepLevels& levels;
    const DitherPlan* dither;
    std::optional<RowPipeline> levelPipeline;
    std::optional<RowPipeline> tonePipeline;
    // Steps of in-colours that are not dithered, and of those that are.
    RowBuffer byLevels;
    RowBuffer byDither;
    bool sawHighStep = false;
};

} // namespace zvk::Pelkraft::Client
