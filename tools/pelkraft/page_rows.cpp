#include "tools/pelkraft/page_rows.h"

#include "tools/pelkraft/band_reader.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/one_behind.h"
#include "tools/pelkraft/strip_writer.h"
#include "tools/pelkraft/tag_writer.h"

#include <algorithm>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::int64_t wantedBandBytes = std::int64_t{8} << 20;

// Takes the rows of a band from first on to new rows, with all threads.
void WorkOnBand(const PageRows& page, const RowWork& work, const BandReader& reader,
                unsigned char* newRows, std::uint32_t first, std::uint32_t rows)
{
    const std::int64_t newBytes = page.to.RowBytes();
    try {
        ShareOutRows(page.threads, rows, page.from.RowBytes(),
                     [&](int worker, std::int64_t begin, std::int64_t end) {
                         reader.Fetch(begin, end);
                         for (std::int64_t row = begin; row < end; ++row)
                             work(worker, first + row, reader.Row(row), newRows + newBytes * row);
                     });
    } catch (const char* text) {
        throw Failure(ExitCode::Unsupported, page.file.Path(),
                      std::string("the library refuses it: ") + text);
    }
}

// Writes rows as they are, few at a time, so that a processor's own cache holds them meanwhile.
void CopyRows(const PageRows& page, StripWriter& writer,
              const std::function<void(const unsigned char* newRow)>& show, Progress& progress)
{
    const std::uint32_t height = page.from.height;
    const std::uint32_t strips =
        std::max(RowsOfFew(page.from.RowBytes()) / page.to.rowsPerStrip, 1U);
    const std::uint32_t most = std::min(strips * page.to.rowsPerStrip, height);
    BandReader reader(page.file, page.from, most, page.order);
    for (std::uint32_t first = 0, rows = 0; first < height; first += rows) {
        rows = std::min(most, height - first);
        StopIfInterrupted(page.output);
        reader.Next(rows);
        reader.Fetch(0, rows);
        writer.WriteRows(reader.Row(0), page.to.RowBytes(), rows);
        for (std::uint32_t row = 0; row < rows; ++row)
            show(reader.Row(row));
        progress.Advance(rows);
    }
}

} // namespace

RowShape ShapeOf(const TiffPicture& picture)
{
    RowShape shape;
    shape.width = picture.width;
    shape.channels = picture.channels;
    shape.bits = picture.bits;
    // One channel of packed bits is a plane already.
    shape.planar = picture.separate || (picture.bits < 8 && picture.channels == 1);
    shape.woven = picture.bits < 8 && !shape.planar;
    return shape;
}

void PlanStrips(const TiffPicture& from, TiffPicture& to, const OutputOptions& options)
{
    to.rowsPerStrip = ChooseRowsPerStrip(to);
    to.tiled = false;
    if (options.IsPipe())
        to.compression = COMPRESSION_NONE;
    else
        to.compression = options.compression.value_or(ChooseCompression(from, to));
}

RowPlan PlanRows(const TiffFile& file, const RowRequest& request)
{
    try {
        return RowPlan(request);
    } catch (const Failure& failure) {
        throw Failure(failure.Code(), file.Path(), failure.what());
    }
}

std::uint32_t BandRows(const TiffPicture& from, const TiffPicture& to)
{
    const std::int64_t stripBytes = (from.RowBytes() + to.RowBytes()) * to.rowsPerStrip;
    const std::int64_t strips = std::max<std::int64_t>(wantedBandBytes / stripBytes, 1);
    return static_cast<std::uint32_t>(std::min<std::int64_t>(strips * to.rowsPerStrip, to.height));
}

void WriteRows(const PageRows& page, const RowWork& work,
               const std::function<void(const unsigned char* newRow)>& show, Progress& progress)
{
    const std::uint32_t height = page.from.height;
    const std::uint32_t bandRows = BandRows(page.from, page.to);
    const std::int64_t rowBytes = page.to.RowBytes();
    StripWriter writer(page.out, page.to);
    progress.StartPage();
    // Decoding and compressing are worth a thread of their own.
    const bool plain =
        page.from.compression == COMPRESSION_NONE && page.to.compression == COMPRESSION_NONE;
    if (page.same && plain) {
        CopyRows(page, writer, show, progress);
        writer.EndPage();
        return;
    }
    BandReader reader(page.file, page.from, bandRows, page.order);
    const BandBuffers newRows(static_cast<std::size_t>(rowBytes) * bandRows, page.threads);
    OneBehind writing(page.threads);
    for (std::uint32_t first = 0, rows = 0; first < height; first += rows) {
        rows = std::min(bandRows, height - first);
        unsigned char* const made = newRows.For(first / bandRows);
        StopIfInterrupted(page.output);
        reader.Next(rows);
        WorkOnBand(page, work, reader, made, first, rows);
        StopIfInterrupted(page.output);
        writing.Run([&writer, &show, made, rowBytes, rows] {
            writer.WriteRows(made, rowBytes, rows);
            for (std::uint32_t row = 0; row < rows; ++row)
                show(made + rowBytes * row);
        });
        progress.Advance(rows);
    }
    writing.Finish();
    writer.EndPage();
}

} // namespace zvk::Pelkraft::Client
