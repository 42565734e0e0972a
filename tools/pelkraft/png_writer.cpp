#include "tools/pelkraft/png_writer.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/file_calls.h"

#include <png.h>

#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <new>
#include <utility>

namespace zvk::Pelkraft::Client {

struct PngState
{
    std::string path;
    PngWriter::Sink sink;
    png_structp png = nullptr;
    png_infop info = nullptr;
    int error = 0;
    char message[128] = {};
};

namespace {

// Some files of the world are larger than libpng thinks likely.
constexpr png_uint_32 largestSide = 0x7FFFFFFF;

// Nothing may be thrown through libpng, which is C: it jumps.
[[noreturn]] void NoteError(png_structp png, png_const_charp message)
{
    auto* const state = static_cast<PngState*>(png_get_error_ptr(png));
    std::snprintf(state->message, sizeof state->message, "%s", message);
    png_longjmp(png, 1);
}

void NoteWarning(png_structp, png_const_charp) {}

void PassOn(png_structp png, png_bytep bytes, png_size_t size)
{
    auto* const state = static_cast<PngState*>(png_get_io_ptr(png));
    try {
        state->error = state->sink(bytes, size);
    } catch (...) {
        state->error = ENOMEM;
    }
    if (state->error != 0)
        png_error(png, "not written");
}

void Flush(png_structp) {}

// Each of these answers whether libpng did all of it. There is nothing in them to destroy, so that
// a jump passes nothing by.
bool WriteHead(PngState& state, const PngShape& shape)
{
    if (setjmp(png_jmpbuf(state.png)) != 0)
        return false;
    png_set_user_limits(state.png, largestSide, largestSide);
    png_set_write_fn(state.png, &state, PassOn, Flush);
    png_set_IHDR(state.png, state.info, shape.width, shape.height, 8, PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_sRGB_gAMA_and_cHRM(state.png, state.info, PNG_sRGB_INTENT_PERCEPTUAL);
    if (shape.pixelsPerMetre > 0 && shape.rowsPerMetre > 0)
        png_set_pHYs(state.png, state.info, shape.pixelsPerMetre, shape.rowsPerMetre,
                     PNG_RESOLUTION_METER);
    png_write_info(state.png, state.info);
    return true;
}

bool WriteRow(PngState& state, const std::uint8_t* row)
{
    if (setjmp(png_jmpbuf(state.png)) != 0)
        return false;
    png_write_row(state.png, row);
    return true;
}

bool WriteEnd(PngState& state)
{
    if (setjmp(png_jmpbuf(state.png)) != 0)
        return false;
    png_write_end(state.png, state.info);
    return true;
}

} // namespace

PngWriter::PngWriter(std::string newPath, const PngShape& shape, Sink newSink)
    : state(std::make_unique<PngState>())
{
    state->path = std::move(newPath);
    state->sink = std::move(newSink);
    state->png =
        png_create_write_struct(PNG_LIBPNG_VER_STRING, state.get(), NoteError, NoteWarning);
    if (state->png != nullptr)
        state->info = png_create_info_struct(state->png);
    const bool made = state->info != nullptr;
    if (made && WriteHead(*state, shape))
        return;
    png_destroy_write_struct(&state->png, &state->info);
    if (!made)
        throw std::bad_alloc();
    Throw();
}

PngWriter::~PngWriter()
{
    png_destroy_write_struct(&state->png, &state->info);
}

void PngWriter::AddRow(const std::uint8_t* row)
{
    if (!WriteRow(*state, row))
        Throw();
}

void PngWriter::Finish()
{
    if (!WriteEnd(*state))
        Throw();
}

void PngWriter::Throw() const
{
    if (state->error == ENOMEM)
        throw std::bad_alloc();
    throw Failure(ExitCode::ReadWrite, state->path,
                  "cannot be written: " +
                      (state->error != 0 ? ErrorText(state->error) : std::string(state->message)));
}

} // namespace zvk::Pelkraft::Client
