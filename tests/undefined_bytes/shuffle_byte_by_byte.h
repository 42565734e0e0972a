#pragma once

// Included ahead of everything in the build for MemorySanitizer. Clang 14 knows no shuffle of
// bytes: it takes each byte of the result for as defined as the byte of the source in the same
// place. Spelled out, it follows every byte to where it goes; valgrind sees the real instruction.
#if defined(__SSSE3__)

#include "common/intrinsics_vector.h"

static inline __m128i ShuffleByteByByte(__m128i source, __m128i places)
{
    unsigned char from[16];
    unsigned char at[16];
    unsigned char to[16];
    __builtin_memcpy(from, &source, sizeof from);
    __builtin_memcpy(at, &places, sizeof at);
    for (int i = 0; i != 16; ++i)
        to[i] = (at[i] & 0x80) != 0 ? 0 : from[at[i] & 0x0F];
    __m128i shuffled;
    __builtin_memcpy(&shuffled, to, sizeof to);
    return shuffled;
}

#define _mm_shuffle_epi8 ShuffleByteByByte

#endif

#if defined(__AVX2__)

#include <immintrin.h>

static inline __m256i ShuffleHalvesByteByByte(__m256i source, __m256i places)
{
    const __m128i low =
        ShuffleByteByByte(_mm256_castsi256_si128(source), _mm256_castsi256_si128(places));
    const __m128i high =
        ShuffleByteByByte(_mm256_extracti128_si256(source, 1), _mm256_extracti128_si256(places, 1));
    return _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
}

static inline __m256i ShuffleWordByWord(__m256i source, __m256i places)
{
    unsigned from[8];
    unsigned at[8];
    unsigned to[8];
    __builtin_memcpy(from, &source, sizeof from);
    __builtin_memcpy(at, &places, sizeof at);
    for (int i = 0; i != 8; ++i)
        to[i] = from[at[i] & 7];
    __m256i shuffled;
    __builtin_memcpy(&shuffled, to, sizeof to);
    return shuffled;
}

#define _mm256_shuffle_epi8 ShuffleHalvesByteByByte
#define _mm256_permutevar8x32_epi32 ShuffleWordByWord

#endif
