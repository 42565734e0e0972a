#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/json.h"
#include "tools/pelkraft/preview_picture.h"
#include "web/page/module/answer.h"
#include "web/page/module/picture_job.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zvk::Pelkraft::Page {
namespace {

using Client::Json;

// JavaScript writes these records as rows of numbers of 32 bits.
struct JobRecord
{
    const char* text;
    std::uint32_t textBytes;
    Client::Levels levels;
    // 0 is coverage, 1 equal.
    std::int32_t tone;
    // Names, each with a zero byte at its end.
    const char* channels;
    std::uint32_t channelCount;
    // 65,536 ranks or null.
    const std::uint16_t* mask;
};

struct RowsRecord
{
    const unsigned char* samples;
    std::uint32_t pixels;
    std::uint32_t rows;
    // The place of the first pixel on its page.
    std::int32_t x;
    std::int32_t y;
    // The pixels before are not wanted; the pattern begins with them all the same.
    std::uint32_t firstPixel;
    // It takes a plane of dots for each ink, or four bytes of a preview for each pixel.
    unsigned char* target;
};

struct LayerRecord
{
    // The index of the ink.
    std::uint32_t ink;
    // 0xRRGGBB
    std::uint32_t colour;
    // Thousandths, or negative for what is usual.
    std::int32_t opacity;
    // 0 takes the usual colour.
    std::uint32_t hasColour;
};

std::optional<PictureJob> job;
std::optional<Client::PreviewPicture> preview;

PictureJob::Request RequestOf(const JobRecord& record)
{
    PictureJob::Request request;
    request.text.assign(record.text, record.textBytes);
    request.levels = record.levels;
    request.tone = record.tone == 0 ? "coverage" : "equal";
    const char* name = record.channels;
    for (std::uint32_t i = 0; i < record.channelCount; ++i) {
        request.channels.emplace_back(name);
        name += request.channels.back().size() + 1;
    }
    if (record.mask != nullptr)
        request.mask.assign(record.mask, record.mask + 65536);
    return request;
}

Client::InkLayer LayerOf(const LayerRecord& record, const std::vector<std::string>& inks)
{
    Client::InkLayer layer;
    layer.sample = record.ink;
    layer.look = Client::LookOfInk(inks.at(record.ink), {});
    if (record.hasColour != 0)
        layer.look.colour = {static_cast<std::uint8_t>(record.colour >> 16),
                             static_cast<std::uint8_t>(record.colour >> 8),
                             static_cast<std::uint8_t>(record.colour)};
    if (record.opacity >= 0)
        layer.look.opacity = record.opacity / 1000.0;
    return layer;
}

void Spread(const unsigned char* row, const RowsRecord& rows, std::uint32_t index)
{
    const std::size_t inks = job->Inks().size();
    const std::size_t width = rows.pixels - rows.firstPixel;
    for (std::size_t ink = 0; ink < inks; ++ink) {
        unsigned char* to = rows.target + (ink * rows.rows + index) * width;
        const unsigned char* from = row + rows.firstPixel * inks + ink;
        for (std::size_t pixel = 0; pixel < width; ++pixel, from += inks)
            to[pixel] = *from;
    }
}

const unsigned char* MakeRow(const RowsRecord& rows, std::uint32_t index)
{
    const std::size_t rowBytes = std::size_t{rows.pixels} * job->Channels();
    return job->MakeRow(rows.samples + index * rowBytes, rows.pixels, rows.x,
                        std::int64_t{rows.y} + index);
}

unsigned char* Show(const std::uint8_t* shown, unsigned char* target)
{
    for (std::uint32_t pixel = 0; pixel < preview->Frame().shownWidth; ++pixel) {
        *target++ = *shown++;
        *target++ = *shown++;
        *target++ = *shown++;
        *target++ = 255;
    }
    return target;
}

std::string Facts()
{
    return Client::JsonText({{"lacksMask", job->LacksMask()},
                             {"fullInk", job->FullInk()},
                             {"inks", job->Inks()},
                             {"warnings", job->Warnings()}});
}

} // namespace

PELKRAFT_FOR_PAGE(begin_job) BeginJob(const JobRecord* record)
{
    return Answer([=] {
        preview.reset();
        job.emplace(RequestOf(*record));
        return Facts();
    });
}

// The in-colours of a text as simulation takes them, for pictures that show each of them.
PELKRAFT_FOR_PAGE(list_in_colours) ListInColours(const char* text, std::uint32_t bytes)
{
    return Answer([=] {
        const Client::PatternText read("pattern", std::string(text, bytes));
        const Client::LoadedPattern pattern(read, DotWeavePattern::Automatic);
        Json json = Json::array();
        for (std::size_t i = 0; i < pattern.inColours.size(); ++i)
            json.push_back({{"name", pattern.inColours[i]}, {"topStep", pattern.topSteps[i]}});
        return Client::JsonText(json);
    });
}

PELKRAFT_FOR_PAGE(job_facts) JobFacts()
{
    return Answer(Facts);
}

PELKRAFT_FOR_PAGE(make_dots) MakeDots(const RowsRecord* rows)
{
    return Answer([=] {
        for (std::uint32_t index = 0; index < rows->rows; ++index)
            Spread(MakeRow(*rows, index), *rows, index);
        return std::string();
    });
}

PELKRAFT_FOR_PAGE(begin_preview)
BeginPreview(const Client::PreviewFrame* frame, std::int32_t gainThousandths,
             const LayerRecord* layers, std::uint32_t layerCount)
{
    return Answer([=] {
        std::vector<Client::InkLayer> all;
        for (std::uint32_t i = 0; i < layerCount; ++i)
            all.push_back(LayerOf(layers[i], job->Inks()));
        const Client::LayerCodes codes = {8, job->Inks().size(), 0, job->FullInk(),
                                          gainThousandths / 1000.0};
        preview.emplace(*frame, Client::InkLayers(codes, all));
        return std::string();
    });
}

// The answer is the number of bytes that were shown.
PELKRAFT_FOR_PAGE(show_rows) ShowRows(const RowsRecord* rows)
{
    return Answer([=] {
        std::vector<double> light(preview->LightSize());
        unsigned char* target = rows->target;
        for (std::uint32_t index = 0; index < rows->rows; ++index) {
            const unsigned char* const row =
                MakeRow(*rows, index) + rows->firstPixel * job->Inks().size();
            preview->MixRow(row, light.data());
            if (const std::uint8_t* const shown = preview->AddLight(light.data()))
                target = Show(shown, target);
        }
        return std::to_string(target - rows->target);
    });
}

PELKRAFT_FOR_PAGE(end_job) EndJob()
{
    return Answer([] {
        preview.reset();
        job.reset();
        return std::string();
    });
}

} // namespace zvk::Pelkraft::Page
