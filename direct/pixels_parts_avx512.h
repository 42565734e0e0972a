#pragma once

#include "common/lanes_avx512.h"
#include "direct/kernels.h"
#include "direct/pixels_lanes.h"

#include <cstddef>

// The operations that pixels_blocks.h asks of a level, for AVX-512 with VBMI.
// Only for files built with vector flags: all of it has internal linkage on purpose.
namespace zvk::Pelkraft {
namespace {

inline Lanes LoadPlaces(const StepNumbers& numbers)
{
    return numbers.destinationBytes <= 16 ? _mm512_zextsi128_si512(LoadFirstPlaces(numbers.places))
                                          : Load(numbers.places);
}

inline Lanes PlacesAt(Lanes places, Lanes index)
{
    return _mm512_maskz_permutexvar_epi8(~__mmask64{0}, index, places);
}

// A byte of the mask with its top bit set gives 0.
inline Lanes Permute(Lanes pixels, Lanes mask)
{
    const __mmask64 used = _mm512_testn_epi8_mask(mask, Set8(emptyByte));
    return _mm512_maskz_permutexvar_epi8(used, mask, pixels);
}

// The count is 1 to 63. The bytes after those loaded are 0.
inline Lanes LoadPart(const unsigned char* bytes, std::ptrdiff_t count)
{
    return _mm512_maskz_loadu_epi8((__mmask64{1} << count) - 1, bytes);
}

// The first bytes of v, so many of them as the count says, or all where it is above 64.
inline void StorePart(unsigned char* bytes, Lanes v, std::ptrdiff_t count)
{
    if (count >= 64)
        Store(bytes, v);
    else
        _mm512_mask_storeu_epi8(bytes, (__mmask64{1} << count) - 1, v);
}

} // namespace
} // namespace zvk::Pelkraft
