#include "direct/kernels.h"
#include "direct/pixels_move.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zvk::Pelkraft::PortableRoad {
namespace {

// These bytes are moved as they are.
template <std::size_t count>
struct Piece
{
    struct Value
    {
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
        MovePixels<Piece<16>, Piece<16>>(move, source, destination, destinationPixels);
    else if (move.pixelBytes >= 8)
        MovePixels<Piece<8>, Piece<8>>(move, source, destination, destinationPixels);
    else
        MovePixels<Piece<4>, Piece<4>>(move, source, destination, destinationPixels);
}

// The bytes of a word that travel equally far in it.
template <typename Word>
struct Travel
{
    Word mask;
    int bits;
};

// A pixel that a word holds becomes another one: the bytes that stay, those that travel to higher
// bits and those that travel to lower ones.
template <typename Word>
struct WordMap
{
    Word stay;
    Travel<Word> up[sizeof(Word)];
    Travel<Word> down[sizeof(Word)];
    // The longer of the two lists; what is left of the other one moves nothing.
    int count;
};

template <typename Word>
int BitOf(int byte)
{
    const int last = int{sizeof(Word)} - 1;
    return 8 * (std::endian::native == std::endian::little ? byte : last - byte);
}

// Adds a byte at this bit, and answers how many are used.
template <typename Word>
int AddTravel(Travel<Word>* travels, int count, int bit, int bits)
{
    int i = 0;
    while (i < count && travels[i].bits != bits)
        ++i;
    travels[i].mask = static_cast<Word>(travels[i].mask | (Word{0xff} << bit));
    travels[i].bits = bits;
    return i < count ? count : i + 1;
}

template <typename Word>
WordMap<Word> MakeWordMap(const PixelStep& step)
{
    WordMap<Word> map{};
    int ups = 0;
    int downs = 0;
    const int bytes =
        step.destinationBytes < int{sizeof(Word)} ? step.destinationBytes : int{sizeof(Word)};
    for (int byte = 0; byte < bytes; ++byte) {
        const unsigned place = step.places[static_cast<std::size_t>(byte)];
        if (place == emptyByte)
            continue;
        const int from = BitOf<Word>(static_cast<int>(place));
        const int to = BitOf<Word>(byte);
        if (from == to)
            map.stay = static_cast<Word>(map.stay | (Word{0xff} << from));
        else if (from < to)
            ups = AddTravel(map.up, ups, from, to - from);
        else
            downs = AddTravel(map.down, downs, from, from - to);
    }
    map.count = ups > downs ? ups : downs;
    return map;
}

// The part of a map that a loop needs, as values that no store can change.
template <typename Word, int count>
struct FixedMap
{
    explicit FixedMap(const WordMap<Word>& map) : stay(map.stay)
    {
        for (int i = 0; i < count; ++i) {
            up[i] = map.up[i];
            down[i] = map.down[i];
        }
    }

    Word operator()(Word word) const
    {
        Word mapped = word & stay;
        for (int i = 0; i < count; ++i) {
            mapped |= (word & up[i].mask) << up[i].bits;
            mapped |= (word & down[i].mask) >> down[i].bits;
        }
        return mapped;
    }

    Word stay;
    Travel<Word> up[count];
    Travel<Word> down[count];
};

template <typename Word, int count, bool mirrored>
[[gnu::noinline]] void MapWords(const WordMap<Word>& map, const unsigned char* source,
                                unsigned char* destination, std::size_t pixels)
{
    const FixedMap<Word, count> fixed(map);
    for (std::size_t pixel = 0; pixel < pixels; ++pixel) {
        const std::size_t from = mirrored ? pixels - 1 - pixel : pixel;
        const Word word = WordPiece<Word>::Get(source + from * sizeof(Word));
        WordPiece<Word>::Put(destination + pixel * sizeof(Word), fixed(word));
    }
}

// Does the same for pixels of fewer bytes than the word has. The bytes that it reads and writes too
// much lie in the next pixels, so that the last ones are left; answers how many are done.
template <int count>
std::size_t MapLooseWords(const WordMap<std::uint64_t>& map, const PixelStep& step,
                          const unsigned char* source, unsigned char* destination,
                          std::size_t pixels)
{
    using Word = WordPiece<std::uint64_t>;
    const FixedMap<std::uint64_t, count> fixed(map);
    const std::size_t sourceBytes = step.sourceBytes;
    const std::size_t destinationBytes = step.destinationBytes;
    const std::size_t done = pixels < 8 ? 0 : pixels - 7;
    for (std::size_t pixel = 0; pixel < done; ++pixel) {
        const std::uint64_t word = Word::Get(source + pixel * sourceBytes);
        Word::Put(destination + pixel * destinationBytes, fixed(word));
    }
    return done;
}

template <typename Word, bool mirrored>
void MapByWords(const PixelStep& step, const unsigned char* source, unsigned char* destination,
                std::size_t pixels)
{
    const WordMap<Word> map = MakeWordMap<Word>(step);
    if (map.count <= 1)
        MapWords<Word, 1, mirrored>(map, source, destination, pixels);
    else if (map.count == 2)
        MapWords<Word, 2, mirrored>(map, source, destination, pixels);
    else if (map.count == 3)
        MapWords<Word, 3, mirrored>(map, source, destination, pixels);
    else
        MapWords<Word, sizeof(Word) - 1, mirrored>(map, source, destination, pixels);
}

// One unit of each pixel, from source + from on. Unsigned, so that a step backwards wraps around.
template <typename Unit>
void MapColumn(const unsigned char* source, std::size_t from, std::size_t fromStep,
               unsigned char* destination, std::size_t to, std::size_t toStep, std::size_t pixels)
{
    const auto one = [=](std::size_t pixel) {
        WordPiece<Unit>::Put(destination + (to + pixel * toStep),
                             WordPiece<Unit>::Get(source + (from + pixel * fromStep)));
    };
    std::size_t pixel = 0;
    for (; pixel + 4 <= pixels; pixel += 4) {
        one(pixel);
        one(pixel + 1);
        one(pixel + 2);
        one(pixel + 3);
    }
    for (; pixel < pixels; ++pixel)
        one(pixel);
}

template <typename Unit>
void EmptyColumn(unsigned char* destination, std::size_t to, std::size_t toStep, std::size_t pixels)
{
    for (; pixels != 0; --pixels, to += toStep)
        WordPiece<Unit>::Put(destination + to, 0);
}

// True where the places come in runs of so many bytes.
bool HasUnits(const PixelStep& step, unsigned unitBytes)
{
    if (step.destinationBytes % unitBytes != 0)
        return false;
    for (unsigned unit = 0; unit < step.destinationBytes; unit += unitBytes)
        for (unsigned byte = 1; byte < unitBytes; ++byte) {
            const unsigned first = step.places[unit];
            const unsigned expected = first == emptyByte ? first : first + byte;
            if (step.places[unit + byte] != expected)
                return false;
        }
    return true;
}

// Few enough pixels that their columns stay in the first-level cache.
constexpr std::size_t columnPixels = 128;

template <typename Unit>
void MapByColumns(const PixelStep& step, const unsigned char* source, unsigned char* destination,
                  std::size_t pixels)
{
    const std::size_t sourceBytes = step.sourceBytes;
    const std::size_t destinationBytes = step.destinationBytes;
    const std::size_t fromStep = step.mirrored ? std::size_t{0} - sourceBytes : sourceBytes;
    for (std::size_t first = 0; first < pixels; first += columnPixels) {
        const std::size_t left = pixels - first;
        const std::size_t count = left < columnPixels ? left : columnPixels;
        const std::size_t from = sourceBytes * (step.mirrored ? pixels - 1 - first : first);
        for (std::size_t byte = 0; byte < destinationBytes; byte += sizeof(Unit)) {
            const std::size_t to = destinationBytes * first + byte;
            const std::size_t place = step.places[byte];
            if (place == emptyByte)
                EmptyColumn<Unit>(destination, to, destinationBytes, count);
            else
                MapColumn<Unit>(source, from + place, fromStep, destination, to, destinationBytes,
                                count);
        }
    }
}

void MapBytes(const PixelStep& step, const unsigned char* source, unsigned char* destination,
              std::size_t pixels)
{
    constexpr std::size_t wordBytes = sizeof(std::uint64_t);
    std::size_t done = 0;
    if (!step.mirrored && step.sourceBytes <= wordBytes && step.destinationBytes <= wordBytes &&
        step.destinationBytes > 2) {
        const WordMap<std::uint64_t> map = MakeWordMap<std::uint64_t>(step);
        if (map.count <= 1)
            done = MapLooseWords<1>(map, step, source, destination, pixels);
        else if (map.count == 2)
            done = MapLooseWords<2>(map, step, source, destination, pixels);
        else if (map.count == 3)
            done = MapLooseWords<3>(map, step, source, destination, pixels);
    }
    MapByColumns<std::uint8_t>(step, source + done * step.sourceBytes,
                               destination + done * step.destinationBytes, pixels - done);
}

// Maps each source pixel once; repeats are added elsewhere.
void Map(const PixelStep& step, const unsigned char* source, unsigned char* destination,
         std::size_t pixels)
{
    const bool isWord = step.sourceBytes == step.destinationBytes;
    if (isWord && step.sourceBytes == 4)
        step.mirrored ? MapByWords<std::uint32_t, true>(step, source, destination, pixels)
                      : MapByWords<std::uint32_t, false>(step, source, destination, pixels);
    else if (isWord && step.sourceBytes == 8)
        step.mirrored ? MapByWords<std::uint64_t, true>(step, source, destination, pixels)
                      : MapByWords<std::uint64_t, false>(step, source, destination, pixels);
    else if (HasUnits(step, 4))
        MapByColumns<std::uint32_t>(step, source, destination, pixels);
    else if (HasUnits(step, 2))
        MapByColumns<std::uint16_t>(step, source, destination, pixels);
    else
        MapBytes(step, source, destination, pixels);
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
    if (MovesWholePixels(step))
        return Move({step.sourceBytes, step.repeat, step.mirrored}, source, destination,
                    destinationPixels);
    if (step.repeat == 1)
        return Map(step, source, destination, destinationPixels);

    // Mapped into a tile, then repeated from there.
    unsigned char tile[4096];
    const std::size_t tilePixels = sizeof tile / step.destinationBytes;
    const std::size_t sourcePixels = (destinationPixels + step.repeat - 1) / step.repeat;
    const PixelMove repeat = {step.destinationBytes, step.repeat, false};
    for (std::size_t first = 0; first < sourcePixels; first += tilePixels) {
        const std::size_t left = sourcePixels - first;
        const std::size_t count = left < tilePixels ? left : tilePixels;
        const std::size_t done = first * step.repeat;
        const std::size_t copies = count * step.repeat;
        const std::size_t leftCopies = destinationPixels - done;
        Map(step, source + (step.mirrored ? left - count : first) * step.sourceBytes, tile, count);
        Move(repeat, tile, destination + done * step.destinationBytes,
             copies < leftCopies ? copies : leftCopies);
    }
}

void Step(const PixelStep& step, const StepRows& rows, std::size_t destinationPixels)
{
    for (std::size_t row = 0; row < rows.count; ++row)
        StepRow(step, rows.sources[row], rows.destinations[row], destinationPixels);
}

constexpr PixelKernels kernels = {Step, maxStepBytes, Move};

} // namespace

const PixelKernels& GetPixelKernels()
{
    return kernels;
}

} // namespace zvk::Pelkraft::PortableRoad
