#include "direct/kernels.h"
#include "direct/pixels_map.h"
#include "direct/pixels_move.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zvk::Pelkraft::PortableRoad {
namespace {

// Some bytes that are moved as they are.
template <std::size_t count>
struct Piece
{
    struct Value
    {
        // cppcheck-suppress unusedStructMember // it is copied as a whole
        unsigned char content[count];
    };
    static constexpr std::size_t bytes = count;
    static Value Get(const unsigned char* from)
    {
        Value value;
        std::memcpy(&value, from, count);
        return value;
    }
    static void Put(unsigned char* to, Value value) { std::memcpy(to, &value, count); }
};

// Pixels that a word holds. The loops take nothing but words, so that compilers vectorise them.
template <typename Word>
struct WordPiece
{
    static constexpr std::size_t bytes = sizeof(Word);
    static Word Get(const unsigned char* from)
    {
        Word word;
        std::memcpy(&word, from, sizeof word);
        return word;
    }
    static void Put(unsigned char* to, Word word) { std::memcpy(to, &word, sizeof word); }
};

template <typename Pixel, int repeat, bool mirrored>
void MoveSmall(const unsigned char* source, unsigned char* destination,
               std::size_t destinationPixels)
{
    const std::size_t whole = destinationPixels / repeat;
    const std::size_t sourcePixels = (destinationPixels + repeat - 1) / repeat;
    for (std::size_t pixel = 0; pixel < whole; ++pixel) {
        const std::size_t from = mirrored ? sourcePixels - 1 - pixel : pixel;
        const auto value = Pixel::Get(source + from * Pixel::bytes);
        for (std::size_t i = 0; i < repeat; ++i)
            Pixel::Put(destination + (pixel * repeat + i) * Pixel::bytes, value);
    }
    for (std::size_t pixel = whole * repeat; pixel < destinationPixels; ++pixel)
        Pixel::Put(destination + pixel * Pixel::bytes,
                   Pixel::Get(source + (mirrored ? 0 : whole) * Pixel::bytes));
}

using SmallMethod = void (*)(const unsigned char* source, unsigned char* destination,
                             std::size_t destinationPixels);

template <typename Pixel>
SmallMethod SmallMethodOf(int repeat, bool mirrored)
{
    if (repeat == 1)
        return mirrored ? MoveSmall<Pixel, 1, true> : MoveSmall<Pixel, 1, false>;
    if (repeat == 2)
        return mirrored ? MoveSmall<Pixel, 2, true> : MoveSmall<Pixel, 2, false>;
    return mirrored ? MoveSmall<Pixel, 4, true> : MoveSmall<Pixel, 4, false>;
}

void Move(const PixelMove& move, const unsigned char* source, unsigned char* destination,
          std::size_t destinationPixels)
{
    const auto run = [&](SmallMethod method) { method(source, destination, destinationPixels); };
    const auto small = [&](auto pixel) {
        run(SmallMethodOf<decltype(pixel)>(move.repeat, move.mirrored));
    };
    switch (move.pixelBytes) {
    case 1:
        return small(WordPiece<std::uint8_t>{});
    case 2:
        return small(WordPiece<std::uint16_t>{});
    case 3:
        return small(Piece<3>{});
    case 4:
        return small(WordPiece<std::uint32_t>{});
    case 6:
        return small(Piece<6>{});
    case 8:
        return small(WordPiece<std::uint64_t>{});
    case 12:
        return small(Piece<12>{});
    case 16:
        return small(Piece<16>{});
    default:
        break;
    }
    if (move.pixelBytes >= 16)
        MovePixels<Piece<16>, Piece<8>, 17>(move, source, destination, destinationPixels);
    else if (move.pixelBytes >= 8)
        MovePixels<Piece<8>, Piece<4>, 9, 15>(move, source, destination, destinationPixels);
    else
        MovePixels<Piece<4>, Piece<2>, 5, 7>(move, source, destination, destinationPixels);
}

bool MovesWholePixels(const PixelStep& step)
{
    if (step.sourceBytes != step.destinationBytes)
        return false;
    for (std::size_t byte = 0; byte < step.destinationBytes; ++byte)
        if (step.places[byte] != byte)
            return false;
    return true;
}

void StepRow(const PixelStep& step, const unsigned char* source, unsigned char* destination,
             std::size_t destinationPixels)
{
    if (step.repeat == 1 && !step.mirrored)
        return MapPixels(step, source, destination, destinationPixels);

    // Mapped into a tile, then turned and repeated from there.
    unsigned char tile[4096];
    const std::size_t tilePixels = sizeof tile / step.destinationBytes;
    const std::size_t sourcePixels = (destinationPixels + step.repeat - 1) / step.repeat;
    const PixelMove move = {step.destinationBytes, step.repeat, step.mirrored};
    for (std::size_t first = 0; first < sourcePixels; first += tilePixels) {
        const std::size_t left = sourcePixels - first;
        const std::size_t count = left < tilePixels ? left : tilePixels;
        const std::size_t done = first * step.repeat;
        const std::size_t copies = count * step.repeat;
        const std::size_t leftCopies = destinationPixels - done;
        MapPixels(step, source + (step.mirrored ? left - count : first) * step.sourceBytes, tile,
                  count);
        Move(move, tile, destination + done * step.destinationBytes,
             copies < leftCopies ? copies : leftCopies);
    }
}

void Step(const PixelStep& step, const StepRows& rows, std::size_t destinationPixels)
{
    const bool isMove = MovesWholePixels(step);
    for (std::size_t row = 0; row < rows.count; ++row)
        if (isMove)
            Move({step.sourceBytes, step.repeat, step.mirrored}, rows.sources[row],
                 rows.destinations[row], destinationPixels);
        else
            StepRow(step, rows.sources[row], rows.destinations[row], destinationPixels);
}

void RunPrepared(const PreparedStep& prepared, const unsigned char* source,
                 unsigned char* destination)
{
    StepRow(*prepared.step, source, destination, prepared.destinationPixels);
}

void MovePrepared(const PreparedStep& prepared, const unsigned char* source,
                  unsigned char* destination)
{
    const PixelStep& step = *prepared.step;
    Move({step.sourceBytes, step.repeat, step.mirrored}, source, destination,
         prepared.destinationPixels);
}

void Prepare(PreparedStep& prepared)
{
    prepared.run = MovesWholePixels(*prepared.step) ? MovePrepared : RunPrepared;
}

constexpr PixelKernels kernels = {Step, maxStepBytes, Move, Prepare};

} // namespace

const PixelKernels& GetPixelKernels()
{
    return kernels;
}

} // namespace zvk::Pelkraft::PortableRoad
