#pragma once

#include "pelkraft/dot_weave_pattern.h"
#include "tools/pelkraft/channel_choice.h"
#include "tools/pelkraft/common_options.h"
#include "tools/pelkraft/image_options.h"
#include "tools/pelkraft/ink_colours.h"
#include "tools/pelkraft/loaded_pattern.h"
#include "tools/pelkraft/page_tags.h"
#include "tools/pelkraft/preview_png.h"
#include "tools/pelkraft/progress.h"
#include "tools/pelkraft/step_plan.h"
#include "tools/pelkraft/tiff_file.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// The place of each page's first pixel for the dither, and its row for the pattern.
struct PageOrigin
{
    std::int64_t x = 0;
    std::int64_t y = 0;
};

// The options of the command line.
struct SimulateOptions
{
    std::string pattern;
    InputOptions input;
    OutputOptions output;
    DotWeavePattern::Engine engine = DotWeavePattern::Automatic;
    Levels levels = Levels::Automatic;
    // The inks of steps: coverage, equal or the path of a CSV file.
    std::string tone = "coverage";
    // The new samples have 2 or 8.
    int bits = 8;
    PageOrigin origin;
    // The rows of the pattern and of the dither run on from page to page.
    bool runsOn = false;
    std::string preview;
    InkTable inks;
    CommonOptions common;
};

// Everything that is known of a page's simulation before its first row.
struct SimulationPlan
{
    TiffPicture from;
    TiffPicture to;
    PageTags tags;
    std::vector<Channel> channels;
    ChannelChoice choice;
    StepPlan steps;
    // From a byte for each out-ink to the new samples, where these are narrower.
    std::optional<RowPlan> packing;
};

SimulationPlan PlanSimulation(const TiffFile& file, const SimulateOptions& options,
                              const LoadedPattern& pattern, const StepChoice& steps);

// The pages that are simulated one after the other.
struct SimulationRun
{
    const SimulateOptions& options;
    const LoadedPattern& pattern;
    DitherStore dithers = {};
    // Rows of the pages before, as far as these count.
    std::int64_t rowsBefore = 0;
};

// Writes the page, tags and rows, every row one call of the pattern. Answers whether raw samples
// were above the top steps. preview may be null.
[[nodiscard]] bool SimulatePage(const TiffFile& file, const TiffFile& out,
                                const SimulationPlan& plan, SimulationRun& run, PreviewPng* preview,
                                Progress& progress);

} // namespace zvk::Pelkraft::Client
