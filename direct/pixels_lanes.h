#pragma once

#include "direct/kernels.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

// The pixel steps of all vector levels share the way from the places of one destination pixel to
// the shuffle masks of a block. This file is included after the lanes of one level.
//
// A block takes some source pixels to the repeats of them, in whole vectors. Byte b of the block's
// output belongs to the source pixel b / (repeat * destinationBytes), and in it to the place that
// the step names for b % destinationBytes.
namespace zvk::Pelkraft {
namespace {

constexpr int vectorBytes = 16 * laneCount;

struct Counting
{
    unsigned char of[64];
};

constexpr Counting MakeCounting()
{
    Counting bytes{};
    for (int i = 0; i < 64; ++i)
        bytes.of[i] = static_cast<unsigned char>(i);
    return bytes;
}

alignas(64) constexpr Counting counting = MakeCounting();

// 2 * byte * of[divisor] / 65536 is byte / divisor for every byte.
struct Reciprocals
{
    std::uint16_t of[maxStepBytes + 1];
};

constexpr Reciprocals MakeReciprocals()
{
    Reciprocals rounded{};
    for (unsigned i = 1; i <= maxStepBytes; ++i)
        rounded.of[i] = static_cast<std::uint16_t>((32768 + i - 1) / i);
    return rounded;
}

constexpr Reciprocals reciprocals = MakeReciprocals();

constexpr bool ReciprocalsAreExact()
{
    for (unsigned divisor = 1; divisor <= maxStepBytes; ++divisor)
        for (unsigned byte = 0; byte < 256; ++byte)
            if ((2 * byte * reciprocals.of[divisor]) >> 16 != byte / divisor)
                return false;
    return true;
}

static_assert(ReciprocalsAreExact());

inline int Quotient(int byte, int divisor)
{
    return (2 * byte * reciprocals.of[divisor]) >> 16;
}

// A step in numbers, with the pixels of its blocks.
struct StepNumbers
{
    const unsigned char* places;
    int sourceBytes;
    int destinationBytes;
    // The repeat is 1 << repeatShift.
    int repeatShift;
    bool mirrored;
    // Source pixels of a block.
    int pixels;
};

inline StepNumbers NumbersOf(const PixelStep& step, int pixels)
{
    // An operator of the array would be code that the linker might take for the whole program.
    return {reinterpret_cast<const unsigned char*>(&step.places),
            step.sourceBytes,
            step.destinationBytes,
            step.repeat >> 1,
            step.mirrored,
            pixels};
}

// The first 16 places, in two halves: a load that is wider than the stores before it would wait
// until they have reached the cache.
inline __m128i LoadFirstPlaces(const unsigned char* places)
{
    const __m128i low = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(places));
    const __m128i high = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(places + 8));
    return _mm_unpacklo_epi64(low, high);
}

inline Lanes Quotients(Lanes bytes, int divisor)
{
    const Lanes reciprocal = Set16(reciprocals.of[divisor]);
    const Lanes twice = Set16(0x1fe);
    const Lanes even = MultiplyHigh16(And(ShiftLeft16<1>(bytes), twice), reciprocal);
    const Lanes odd = MultiplyHigh16(And(ShiftRight16<7>(bytes), twice), reciprocal);
    return Or(even, ShiftLeft16<8>(odd));
}

// The tables give, for the common sizes of a destination pixel and each byte of a block's output,
// the number of the pixel and the byte in it.
constexpr int maxTabledSize = 16;
constexpr int tabledBytes = 256;

struct ByteOrigins
{
    unsigned char pixel[maxTabledSize + 1][tabledBytes];
    unsigned char index[maxTabledSize + 1][tabledBytes];
};

constexpr ByteOrigins MakeByteOrigins()
{
    ByteOrigins bytes{};
    for (int size = 1; size <= maxTabledSize; ++size)
        for (int byte = 0; byte < tabledBytes; ++byte) {
            bytes.pixel[size][byte] = static_cast<unsigned char>(byte / size);
            bytes.index[size][byte] = static_cast<unsigned char>(byte % size);
        }
    return bytes;
}

alignas(64) constexpr ByteOrigins byteOrigins = MakeByteOrigins();

// For each byte of one output vector: the number of its pixel, and the byte in it.
struct ByteOrigin
{
    Lanes pixel;
    Lanes index;
};

// The words of the product never carry into each other: the bytes of both factors give a byte.
inline ByteOrigin OriginOf(int destinationBytes, int firstByte)
{
    if (laneCount != 4 || destinationBytes <= maxTabledSize)
        return {Load(byteOrigins.pixel[destinationBytes] + firstByte),
                Load(byteOrigins.index[destinationBytes] + firstByte)};
    const Lanes bytes = Add8(Load(counting.of), Set8(firstByte));
    const Lanes pixel = Quotients(bytes, destinationBytes);
    return {pixel, Subtract8(bytes, MultiplyLow16(pixel, Set16(destinationBytes)))};
}

// Gives for each byte of one output vector the first byte of its source pixel in the block, counted
// from `loadAt` on.
inline Lanes PixelStarts(const StepNumbers& numbers, Lanes copies, int loadAt)
{
    const Lanes pixel =
        And(ShiftRight16By(copies, numbers.repeatShift), Set8(0xff >> numbers.repeatShift));
    const Lanes start = MultiplyLow16(pixel, Set16(numbers.sourceBytes));
    return numbers.mirrored
               ? Subtract8(Set8((numbers.pixels - 1) * numbers.sourceBytes - loadAt), start)
               : Subtract8(start, Set8(loadAt));
}

// A vector of output, in a block of its own loads, starts to read at the first of its pixels, or
// so much earlier that the loads stay in the block.
inline int LoadStart(const StepNumbers& numbers, int firstByte, int loadedBytes)
{
    const int lastByte = firstByte + vectorBytes - 1;
    const int first = Quotient(firstByte, numbers.destinationBytes) >> numbers.repeatShift;
    const int last = Quotient(lastByte, numbers.destinationBytes) >> numbers.repeatShift;
    const int pixel = numbers.mirrored ? numbers.pixels - 1 - last : first;
    const int start = pixel * numbers.sourceBytes;
    const int latest = numbers.pixels * numbers.sourceBytes - loadedBytes;
    return start < latest ? start : latest;
}

// True where every vector of a block's output comes from so many bytes of its source.
constexpr bool VectorsFit(int sourceBytes, int outputBytes, int pixels, int loadedBytes)
{
    const int blockBytes = pixels * sourceBytes;
    const int latest = blockBytes - loadedBytes;
    bool fits = latest >= 0;
    for (int start = 0; fits && start < pixels * outputBytes; start += vectorBytes) {
        const int first = start / outputBytes * sourceBytes;
        const int last = (start + vectorBytes - 1) / outputBytes * sourceBytes + sourceBytes;
        const int load = first < latest ? first : latest;
        // The mirrored block is the same, seen from its end.
        const int backwards = blockBytes - last;
        const int loadBackwards = backwards < latest ? backwards : latest;
        fits = last - load <= loadedBytes && blockBytes - first - loadBackwards <= loadedBytes;
    }
    return fits;
}

// The step that moves small pixels as they are.
inline PixelStep WholePixelStep(const PixelMove& move)
{
    PixelStep step;
    step.sourceBytes = static_cast<std::uint8_t>(move.pixelBytes);
    step.destinationBytes = static_cast<std::uint8_t>(move.pixelBytes);
    step.repeat = move.repeat;
    step.mirrored = move.mirrored;
    std::memcpy(&step.places, counting.of, sizeof counting.of);
    return step;
}

// The pieces of pixels_move.h.
struct WidePiece
{
    static constexpr std::size_t bytes = vectorBytes;
    static Lanes Get(const unsigned char* from) { return Load(from); }
    static void Put(unsigned char* to, Lanes v) { Store(to, v); }
};

// Half as long as the wide piece, it serves what is too short for that one.
struct NarrowPiece
{
    static constexpr std::size_t bytes = laneCount == 1 ? 8 : 16;
    static __m128i Get(const unsigned char* from)
    {
        const auto* unit = reinterpret_cast<const __m128i*>(from);
        return laneCount == 1 ? _mm_loadl_epi64(unit) : _mm_loadu_si128(unit);
    }
    static void Put(unsigned char* to, __m128i v)
    {
        auto* unit = reinterpret_cast<__m128i*>(to);
        laneCount == 1 ? _mm_storel_epi64(unit, v) : _mm_storeu_si128(unit, v);
    }
};

} // namespace
} // namespace zvk::Pelkraft
