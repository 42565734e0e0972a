#pragma once

// The intrinsics on vectors of 16 bytes, up to the byte shuffle of SSSE3: the compiler's own where
// it has them, and else those that SIMDe makes of what the target does have. Only for files built
// with vector flags.
#if defined(__SSSE3__) || defined(_M_X64) || defined(_M_IX86)
#include <tmmintrin.h>
#else
// Without it the names would begin with simde_.
#define SIMDE_ENABLE_NATIVE_ALIASES
#include <simde/x86/ssse3.h>

// SIMDe takes vectors of integers apart for these two, and joins those of doubles by one
// instruction of 64-bit Arm.
#undef _mm_unpacklo_epi64
#undef _mm_unpackhi_epi64
#define _mm_unpacklo_epi64(a, b)                                                                   \
    _mm_castpd_si128(_mm_unpacklo_pd(_mm_castsi128_pd(a), _mm_castsi128_pd(b)))
#define _mm_unpackhi_epi64(a, b)                                                                   \
    _mm_castpd_si128(_mm_unpackhi_pd(_mm_castsi128_pd(a), _mm_castsi128_pd(b)))
#endif
