#include "tools/pelkraft/picture_turn.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/file_calls.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/system_calls.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::size_t pixelBytes = 3;
// No picture of up to 1600 pixels on a side is larger.
constexpr std::uint64_t mostHeldBytes = std::uint64_t{8} << 20;
// Columns become rows so many bytes at a time, or one by one where they are longer.
constexpr std::size_t gatheredBytes = std::size_t{4} << 20;

// A stored picture is seen with its sides swapped, then mirrored, then upside down, if at all.
struct Turn
{
    bool mirror;
    bool flip;
};

// By the numbers of the tag; those above 4 swap sides.
constexpr Turn turns[] = {{false, false}, {false, false}, {true, false},
                          {true, true},   {false, true},  {false, false},
                          {true, false},  {true, true},   {false, true}};

Turn TurnOf(const TurnShape& shape)
{
    return turns[shape.orientation];
}

std::uint64_t BytesOf(const TurnShape& shape)
{
    return std::uint64_t{pixelBytes} * shape.width * shape.height;
}

bool TakesFile(const TurnShape& shape)
{
    return shape.orientation > 2 && BytesOf(shape) > mostHeldBytes;
}

} // namespace

PictureTurn::PictureTurn(std::string newPath, const TurnShape& newShape, const Spool& spool,
                         Sink newSink)
    : path(std::move(newPath)), shape(newShape), rowBytes(pixelBytes * shape.width),
      sink(std::move(newSink))
{
    if (TurnOf(shape).mirror && !shape.SwapsSides())
        mirroredRow.resize(rowBytes);
    if (!TakesFile(shape)) {
        held.resize(Keeps() ? static_cast<std::size_t>(BytesOf(shape)) : 0);
    } else if (const int error = OpenSpool(spool, descriptor); error != 0) {
        throw Failure(ExitCode::ReadWrite, path,
                      "cannot be written: no file can be made to keep its rows: " +
                          ErrorText(error));
    }
}

PictureTurn::~PictureTurn()
{
    if (descriptor >= 0)
        Close(descriptor);
}

void PictureTurn::AddRow(const std::uint8_t* row)
{
    const std::uint32_t number = nextRow++;
    if (!Keeps()) {
        GiveRow(row);
    } else if (descriptor < 0) {
        std::memcpy(held.data() + rowBytes * number, row, rowBytes);
    } else if (const int error =
                   WriteAllAt(descriptor, row, rowBytes, std::uint64_t{rowBytes} * number);
               error != 0) {
        throw Failure(ExitCode::ReadWrite, path,
                      "cannot be written: its rows can't be kept to turn them: " +
                          ErrorText(error));
    }
}

void PictureTurn::Finish()
{
    if (!Keeps())
        return;
    if (shape.SwapsSides())
        GiveKeptColumns();
    else
        GiveKeptRows();
}

const std::uint8_t* PictureTurn::Kept(std::uint32_t row, std::size_t start, std::size_t bytes,
                                      std::uint8_t* space) const
{
    if (descriptor < 0)
        return held.data() + rowBytes * row + start;
    std::size_t got = 0;
    const int error =
        ReadUpTo(descriptor, space, bytes, std::uint64_t{rowBytes} * row + start, got);
    if (error != 0 || got < bytes)
        throw Failure(ExitCode::ReadWrite, path,
                      "cannot be written: its rows can't be read again: " + ErrorText(error));
    return space;
}

void PictureTurn::GiveRow(const std::uint8_t* row)
{
    if (mirroredRow.empty()) {
        sink(row);
        return;
    }
    for (std::size_t at = 0; at < rowBytes; at += pixelBytes)
        std::memcpy(mirroredRow.data() + (rowBytes - pixelBytes - at), row + at, pixelBytes);
    sink(mirroredRow.data());
}

void PictureTurn::GiveKeptRows()
{
    std::vector<std::uint8_t> space(descriptor < 0 ? 0 : rowBytes);
    for (std::uint32_t row = shape.height; row-- > 0;) {
        StopIfInterrupted(path);
        GiveRow(Kept(row, 0, rowBytes, space.data()));
    }
}

void PictureTurn::GiveKeptColumns()
{
    const std::size_t columnBytes = pixelBytes * shape.height;
    const auto most = static_cast<std::uint32_t>(
        std::clamp<std::size_t>(gatheredBytes / columnBytes, 1, shape.width));
    std::vector<std::uint8_t> rows(columnBytes * most);
    const bool flip = TurnOf(shape).flip;
    for (std::uint32_t done = 0, count = 0; done < shape.width; done += count) {
        count = std::min(most, shape.width - done);
        GatherColumns(flip ? shape.width - done - count : done, count, rows.data());
        for (std::uint32_t i = 0; i < count; ++i)
            sink(rows.data() + columnBytes * (flip ? count - 1 - i : i));
    }
}

// Each column becomes a row, the first one first.
void PictureTurn::GatherColumns(std::uint32_t first, std::uint32_t count, std::uint8_t* rows) const
{
    const std::size_t bytes = pixelBytes * count;
    const bool mirror = TurnOf(shape).mirror;
    std::vector<std::uint8_t> space(descriptor < 0 ? 0 : bytes);
    for (std::uint32_t row = 0; row < shape.height; ++row) {
        StopIfInterrupted(path);
        const std::uint8_t* from = Kept(row, pixelBytes * first, bytes, space.data());
        std::uint8_t* to = rows + pixelBytes * (mirror ? shape.height - 1 - row : row);
        for (std::uint32_t column = 0; column < count; ++column, from += pixelBytes)
            std::memcpy(to + pixelBytes * shape.height * column, from, pixelBytes);
    }
}

void CheckTurn(const std::string& path, const TurnShape& shape, const Spool& spool)
{
    if (TakesFile(shape) && BytesOf(shape) > spool.limit)
        throw Failure(ExitCode::Unsupported, path,
                      "takes " + std::to_string(BytesOf(shape)) +
                          " bytes to be turned as its tag Orientation wants it, of which " +
                          std::to_string(spool.limit) +
                          " may be kept; --spool-limit allows more, and --crop shows a part");
}

} // namespace zvk::Pelkraft::Client
