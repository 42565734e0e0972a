#pragma once

#include "common/lanes_vector.h"
#include "direct/pixels_lanes.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

// The operations that pixels_blocks.h asks of a level, for SSSE3. Loads and stores of fewer than 16
// bytes are two of half the size or more, which overlap.
// Only for files built with vector flags: all of it has internal linkage on purpose.
namespace zvk::Pelkraft {
namespace {

template <typename Word>
__m128i LoadWord(const unsigned char* bytes)
{
    if constexpr (sizeof(Word) == 8)
        return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes));
    Word word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return _mm_cvtsi32_si128(static_cast<int>(word));
}

template <typename Word>
void StoreWord(unsigned char* bytes, __m128i v)
{
    if constexpr (sizeof(Word) == 8) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(bytes), v);
    } else {
        const auto word = static_cast<Word>(_mm_cvtsi128_si32(v));
        std::memcpy(bytes, &word, sizeof word);
    }
}

// Byte i of it is i - shift: a shuffle by it moves bytes up, or down where the shift is negative.
inline __m128i MovedBy(std::ptrdiff_t shift)
{
    return Subtract8(Load(counting.of), Set8(static_cast<int>(shift)));
}

template <typename Word>
__m128i LoadTwice(const unsigned char* bytes, std::ptrdiff_t count)
{
    const std::ptrdiff_t second = count - std::ptrdiff_t{sizeof(Word)};
    const __m128i end = Shuffle(LoadWord<Word>(bytes + second), MovedBy(second));
    return Or(LoadWord<Word>(bytes), end);
}

inline Lanes LoadPlaces(const StepNumbers& numbers)
{
    return LoadFirstPlaces(numbers.places);
}

inline Lanes PlacesAt(Lanes places, Lanes index)
{
    return Shuffle(places, index);
}

inline Lanes Permute(Lanes pixels, Lanes mask)
{
    return Shuffle(pixels, mask);
}

// The count is 1 to 15. The bytes after those loaded are 0.
inline Lanes LoadPart(const unsigned char* bytes, std::ptrdiff_t count)
{
    if (count >= 8)
        return LoadTwice<std::uint64_t>(bytes, count);
    if (count >= 4)
        return LoadTwice<std::uint32_t>(bytes, count);
    if (count >= 2)
        return LoadTwice<std::uint16_t>(bytes, count);
    return LoadWord<std::uint8_t>(bytes);
}

template <typename Word>
void StoreTwice(unsigned char* bytes, __m128i v, std::ptrdiff_t count)
{
    const std::ptrdiff_t second = count - std::ptrdiff_t{sizeof(Word)};
    StoreWord<Word>(bytes, v);
    StoreWord<Word>(bytes + second, Shuffle(v, MovedBy(-second)));
}

// The first bytes of v, so many of them as the count says, or all where it is above 16.
inline void StorePart(unsigned char* bytes, __m128i v, std::ptrdiff_t count)
{
    if (count >= 16)
        Store(bytes, v);
    else if (count >= 8)
        StoreTwice<std::uint64_t>(bytes, v, count);
    else if (count >= 4)
        StoreTwice<std::uint32_t>(bytes, v, count);
    else if (count >= 2)
        StoreTwice<std::uint16_t>(bytes, v, count);
    else
        StoreWord<std::uint8_t>(bytes, v);
}

} // namespace
} // namespace zvk::Pelkraft
