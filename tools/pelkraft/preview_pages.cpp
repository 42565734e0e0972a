#include "tools/pelkraft/preview_pages.h"

#include "tools/pelkraft/atomic_output.h"
#include "tools/pelkraft/band_reader.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/file_calls.h"
#include "tools/pelkraft/findings.h"
#include "tools/pelkraft/ink_codes.h"
#include "tools/pelkraft/input_file.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/json.h"
#include "tools/pelkraft/one_behind.h"
#include "tools/pelkraft/page_inks.h"
#include "tools/pelkraft/page_orientation.h"
#include "tools/pelkraft/page_rows.h"
#include "tools/pelkraft/preview_png.h"
#include "tools/pelkraft/progress.h"
#include "tools/pelkraft/row_pipeline.h"
#include "tools/pelkraft/text_output.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <list>
#include <optional>
#include <set>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

// Everything that is known of a page's picture before its first row.
struct PagePlan
{
    TiffPicture picture;
    // The part of the page that is shown.
    Crop part;
    PreviewFrame frame;
    LayerCodes codes;
    // In the order of their printing.
    std::vector<PageInk> inks;
    std::vector<InkLayer> layers;
    ShownPage page;
    // From a row of the file to samples of 8 or 16 bits side by side.
    RowPlan rows;
};

Crop CropOf(const PreviewOptions& options, const TiffPicture& picture)
{
    if (!options.crop)
        return {0, 0, picture.width, picture.height};
    const Crop& crop = *options.crop;
    if (crop.x >= picture.width || crop.width > picture.width - crop.x ||
        crop.y >= picture.height || crop.height > picture.height - crop.y)
        throw Failure(ExitCode::Usage, options.input.path,
                      "--crop reaches beyond the page, which has " + std::to_string(picture.width) +
                          " x " + std::to_string(picture.height) + " pixels");
    return crop;
}

RowPlan PlanSamples(const TiffFile& file, const TiffPicture& picture)
{
    RowRequest request;
    request.from = ShapeOf(picture);
    request.to.width = picture.width;
    request.to.channels = picture.channels;
    request.to.bits = picture.bits == 16 ? 16 : 8;
    request.tones = Tones::Raw;
    return PlanRows(file, request);
}

std::string AdviseInkFile(const std::string& ink)
{
    return "--inks FILE with a line \"" + ink + "\" #RRGGBB 0 (name, colour, opacity)";
}

PagePlan PlanPage(const TiffFile& file, const PreviewOptions& options, std::set<std::string>& told)
{
    const TiffPicture picture = ReadPicture(file);
    std::vector<PageInk> inks = ReadPageInks(file, picture);
    SortByPrintOrder(inks, options.printOrder, options.input.path);
    const InkCodes codes = ReadInkCodes(file, picture, options.input);
    const Crop part = CropOf(options, picture);
    const PreviewFrame frame =
        options.crop ? PlainFrame(part.width, part.height)
                     : FitFrame(part.width, part.height, ReadResolution(file).PixelHeight());
    const ShownPage page = {
        ReadResolution(file), ReadOrientation(file), {options.output, options.input.spoolLimit}};
    CheckTurn(OutputName(options.output), TurnShapeOf(frame, page.orientation), page.spool);
    return {picture,
            part,
            frame,
            {picture.bits == 16 ? 16 : 8, static_cast<std::size_t>(picture.channels), codes.none,
             codes.full, options.gain},
            inks,
            LayersOf(inks, options.inks, {options.input.path, AdviseInkFile, told}),
            page,
            PlanSamples(file, picture)};
}

// Mixes rows of a page to light, with all threads.
class LightMaker
{
public:
    LightMaker(const PagePlan& newPlan, const PreviewPicture& newPicture, int newThreads)
        : plan(newPlan), picture(newPicture), threads(newThreads)
    {
        for (int worker = 0; worker < threads; ++worker)
            workers.emplace_back(plan.rows);
    }

    // Takes the first rows of the reader's band.
    void Mix(const BandReader& reader, std::uint32_t rows, double* light)
    {
        const std::size_t left =
            plan.codes.samplesPerPixel * (plan.codes.bits == 16 ? 2 : 1) * plan.part.x;
        ShareOutRows(threads, rows, plan.picture.RowBytes(),
                     [&](int index, std::int64_t begin, std::int64_t end) {
                         Worker& worker = workers[static_cast<std::size_t>(index)];
                         reader.Fetch(begin, end);
                         for (std::int64_t row = begin; row < end; ++row) {
                             worker.pipeline.Run(reader.Row(row), worker.samples.Data());
                             picture.MixRow(worker.samples.Data() + left,
                                            light + static_cast<std::int64_t>(picture.LightSize()) *
                                                        row);
                         }
                     });
    }

private:
    struct Worker
    {
        explicit Worker(const RowPlan& rows)
            : pipeline(rows), samples(static_cast<std::size_t>(rows.Request().to.Bytes()))
        {}

        RowPipeline pipeline;
        RowBuffer samples;
    };

    const PagePlan& plan;
    const PreviewPicture& picture;
    int threads;
    std::vector<Worker> workers;
};

// A picture goes to one of these: a file that appears whole or not at all, or the standard output
// stream.
class PictureOutput
{
public:
    PictureOutput(const std::string& path, const OutputRules& rules)
    {
        if (path != standardStream)
            file.emplace(path, rules);
    }

    int Append(const void* bytes, std::size_t size) const
    {
        return file ? file->Append(bytes, size) : WriteAll(standardOutput, bytes, size);
    }

    void Store()
    {
        if (file)
            file->Store();
    }

    void Commit()
    {
        if (file)
            file->Commit();
    }

private:
    std::optional<AtomicOutput> file;
};

void ShowPage(const TiffFile& file, const PagePlan& plan, int threads, PictureOutput& output,
              const std::string& path, Progress& progress)
{
    PreviewPng png(
        path, plan.frame, InkLayers(plan.codes, plan.layers), plan.page,
        [&output](const void* bytes, std::size_t size) { return output.Append(bytes, size); });
    const std::size_t lightSize = png.Picture().LightSize();
    const std::uint32_t most = std::min(
        RowsOfBand(plan.picture.RowBytes(), plan.picture.height),
        RowsOfBand(static_cast<std::int64_t>(lightSize * sizeof(double)), plan.picture.height));
    BandReader reader(file, plan.picture, most);
    const auto next = [&](std::uint32_t done, std::uint32_t end) {
        const std::uint32_t count = std::min(most, end - done);
        StopIfInterrupted(path);
        reader.Next(count);
        progress.Advance(count);
        return count;
    };
    for (std::uint32_t done = 0; done < plan.part.y;)
        done += next(done, plan.part.y);
    LightMaker maker(plan, png.Picture(), threads);
    std::array<std::vector<double>, 2> lights;
    OneBehind drawing(threads);
    for (std::uint32_t done = 0, count = 0; done < plan.part.height; done += count) {
        count = next(done, plan.part.height);
        std::vector<double>& light = lights[done / most % lights.size()];
        light.resize(lightSize * most);
        maker.Mix(reader, count, light.data());
        drawing.Run([&png, &light, lightSize, count] {
            for (std::uint32_t row = 0; row < count; ++row)
                png.AddLight(light.data() + lightSize * row);
        });
    }
    drawing.Finish();
    png.Finish();
    output.Store();
}

// All pictures of several pages but the first bear the number of the page.
std::string PathOfPage(const std::string& path, int page)
{
    const std::size_t folder = path.find_last_of("/\\") + 1;
    const std::size_t dot = path.rfind('.');
    const std::size_t end = dot == std::string::npos || dot <= folder ? path.size() : dot;
    return path.substr(0, end) + "-" + std::to_string(page) + path.substr(end);
}

Json ExplainJson(const PagePlan& plan, int page, const std::string& path)
{
    const bool swaps = TurnShapeOf(plan.frame, plan.page.orientation).SwapsSides();
    Json json = {{"page", page},
                 {"writes", path},
                 {"x", plan.part.x},
                 {"y", plan.part.y},
                 {"width", plan.part.width},
                 {"height", plan.part.height},
                 {"orientation", plan.page.orientation},
                 {"shown_width", swaps ? plan.frame.shownHeight : plan.frame.shownWidth},
                 {"shown_height", swaps ? plan.frame.shownWidth : plan.frame.shownHeight},
                 {"no_ink", plan.codes.none},
                 {"full_ink", plan.codes.full},
                 {"gain", plan.codes.gain},
                 {"inks", Json::array()}};
    for (std::size_t i = 0; i < plan.inks.size(); ++i)
        json["inks"].push_back({{"name", plan.inks[i].name},
                                {"channel", plan.inks[i].sample},
                                {"colour", HexWords(plan.layers[i].look.colour)},
                                {"opacity", plan.layers[i].look.opacity}});
    return json;
}

std::string ExplainWords(const Json& plan)
{
    std::string words = "page " + plan["page"].dump() + ": " + plan["width"].dump() + " x " +
                        plan["height"].dump() + " as " + plan["shown_width"].dump() + " x " +
                        plan["shown_height"].dump() + " in " +
                        Shown(plan["writes"].get<std::string>()) + "\n  no ink is " +
                        plan["no_ink"].dump() + ", full ink " + plan["full_ink"].dump() + '\n';
    const auto orientation = plan["orientation"].get<std::uint16_t>();
    if (orientation != ORIENTATION_TOPLEFT)
        words += "  turned by its tag Orientation, " + OrientationWords(orientation) + '\n';
    for (const Json& ink : plan["inks"])
        words += "  ink " + Shown(ink["name"].get<std::string>()) + ": channel " +
                 ink["channel"].dump() + ", " + ink["colour"].get<std::string>() + ", opacity " +
                 ink["opacity"].dump() + '\n';
    return words;
}

void CheckOutputs(const std::vector<std::string>& paths, const OutputRules& rules)
{
    if (paths.front() == standardStream) {
        if (paths.size() > 1)
            throw Failure(ExitCode::Usage, {},
                          "the standard output takes one page, and here are " +
                              std::to_string(paths.size()) + "; --page chooses one");
        RefuseTerminal("a picture");
        return;
    }
    for (const std::string& path : paths)
        AtomicOutput::Check(path, rules);
}

} // namespace

Crop ReadCrop(const std::string& words)
{
    std::vector<std::uint32_t> numbers;
    const char* at = words.data();
    const char* const end = at + words.size();
    while (numbers.size() < 4) {
        std::uint32_t number = 0;
        const auto [next, error] = std::from_chars(at, end, number);
        if (error != std::errc())
            break;
        numbers.push_back(number);
        at = next;
        if (numbers.size() == 4 || at == end || *at != ',')
            break;
        ++at;
    }
    if (numbers.size() < 4 || at != end || numbers[2] == 0 || numbers[3] == 0)
        throw Failure(ExitCode::Usage, {},
                      "--crop " + words +
                          ": supported is X,Y,W,H in pixels, such as 1000,2000,800,600");
    return {numbers[0], numbers[1], numbers[2], numbers[3]};
}

void PreviewPages(const PreviewOptions& options)
{
    TiffFile file = OpenInput(options.input, options.output);
    std::set<std::string> told;
    std::uint64_t rows = 0;
    Json plans = Json::array();
    std::string words;
    std::vector<std::string> paths;
    VisitPages(file, options.input.pages, [&](int page) {
        const PagePlan plan = PlanPage(file, options, told);
        rows += std::uint64_t{plan.part.y} + plan.part.height;
        paths.push_back(paths.empty() ? options.output : PathOfPage(options.output, page));
        plans.push_back(ExplainJson(plan, page, paths.back()));
        words += ExplainWords(plans.back());
    });
    if (options.common.explain)
        PrintBeside(options.output,
                    options.common.json ? JsonText({{"schema", 1}, {"pages", plans}}) : words);
    CheckOutputs(paths, options.rules);
    if (options.common.dryRun)
        return;

    std::list<PictureOutput> outputs;
    Progress progress("preview " + OutputName(options.output), rows,
                      static_cast<int>(paths.size()));
    std::size_t shown = 0;
    VisitPages(file, options.input.pages, [&](int) {
        const std::string& path = paths[shown++];
        progress.StartPage();
        ShowPage(file, PlanPage(file, options, told), options.common.threads,
                 outputs.emplace_back(path, options.rules), path, progress);
    });
    file.RequireSound();
    file.Close();
    StopIfInterrupted(options.output);
    for (PictureOutput& output : outputs)
        output.Commit();
    for (const std::string& warning : file.Warnings())
        PrintWarning(options.input.path, warning);
}

} // namespace zvk::Pelkraft::Client
