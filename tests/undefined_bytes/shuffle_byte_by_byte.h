#pragma once

// Included ahead of everything in the build for MemorySanitizer. Clang 14 knows no shuffle of
// bytes: it takes each byte of the result for as defined as the byte of the source in the same
// place. Spelled out, it follows every byte to where it goes; valgrind sees the real instruction.
#if defined(__SSSE3__)

#include <tmmintrin.h>

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
