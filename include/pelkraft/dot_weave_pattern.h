// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pelkraft/export.h"

namespace zvk {
namespace Pelkraft {

class DotWeavePatternEngine;

// A dot pattern reads its text once, then turns rows of step numbers into rows of ink values.
// A pixel's alternative is drawn from a field that is built with the pattern: in the long run each
// as often as its weight says, and the same for the same text.
//
// Shape      A source pixel is one byte for each in-colour, its step number; a destination pixel
//            one byte for each out-ink. Pixels are packed. One call of ApplyPattern is one row.
// Units      Counts of pixels, up to 4,294,967,295 for a row: a larger count loses all but its low
//            32 bits, so that 2^32 + 5 is 5 pixels. Step numbers 0 to 7.
// Ranges     A step above the top step of its in-colour is taken for the top step; with Reference
//            a step above 7 sets nothing. No byte beyond the pixels of a row is read or written.
// Errors     Thrown by the constructors alone, as const wchar_t* or const char*, a constant text;
//            std::bad_alloc where memory is short. A failed constructor frees all that it took.
// Ownership  The text is the caller's and is not kept. Copies share one engine, and so the place
//            in its field; the last of them frees it.
// Threads    One object serves one thread at a time, and so do all its copies together. Distinct
//            patterns may be built and applied at once. The field of a version 3 pattern on the
//            Sse engine wraps at the size of the field that the process built last for such a
//            pattern, where that is smaller than its own.
//
// The texts that a constructor throws, wide:
//   "Internal Message: no input dotweave pattern"            null text
//   "Internal Message: to long dotweave pattern"             length of 0x7FFFFFFF
//   "Internal Message: no version in dotweave pattern"       VERSION or its number is missing
//   "Internal Message: init from dotweave pattern failed"    header word is missing
//   "DotWeavePattern::Init invalid DotWeave pattern configuration file!"
//                                                            no in-colour or no out-ink
// and narrow:
//   "unsupported pattern version"                            values below version 2
//   "step out of range in pattern"                           below 0 or above 7
//   "ink position out of range in pattern"                   above 15; with Reference above 11
//   "too many ink positions in pattern"                      more than 16; with Reference 12
//   "BEGIN_INKS without in-colour in pattern"
//   "BEGIN_IN_COLORS without END_IN_COLORS in pattern"
//   "in-colour without record in pattern"                    dropped by a second list
//   "sum of weights out of range in pattern"                 0, negative or beyond 32 bits; with
//                                                            Reference above 30
//   "step without value line in pattern"                     below the highest step
//   "fraction out of range in pattern"                       a denominator that wraps to 0
//   "numCombinations > MAXS_CHANNEL_RANDOM"                  above 32 in one in-colour
//   "numCombinations > MAXS_TOTAL_RANDOM"                    above 1024 in all
//   "Array too long for pattern tables"                      X86: more than 16 in-colours or
//                                                            out-inks; Reference: 12 out-inks
//   "out-ink without in-colour in pattern"                   X86
//   "pattern without random combinations"                    X86, version 3 and above
//   "capacity exceeded in mComonTrans"                       Sse: more than 16 values
//   "Array too long for SSE register"                        Sse: more than 16 in-colours or
//                                                            out-inks
//   "DotWeavePattern::Init unsupported engine"
//
// The order of the fields is a binary interface: append, never reorder.
class PELKRAFT_EXPORT DotWeavePattern
{
public:
    // An engine runs the pattern.
    enum Engine : int
    {
        // The processor decides: where zvk::SystemTools::GetSseVersion() is 3 or more, Automatic
        // gives the bytes of Sse, from level 6 on by wider vectors where they suit the pattern.
        // Below that it is X86.
        Automatic = 0,
        // Reference is a simple second implementation that draws for each in-colour, and so gives
        // other bytes. It takes every version.
        Reference = 1,
        // X86 is portable and runs on any processor.
        X86 = 2,
        // Sse needs SSSE3 on x86, which the caller answers for, and runs on any other processor. It
        // gives the bytes of X86, save that the first row after ResetRandomizer starts one place
        // earlier. It takes patterns that X86 refuses, and refuses patterns that need too many
        // values at once.
        Sse = 3
    };

    // The engine is Automatic.
    explicit DotWeavePattern(char* text);
    // The text ends with a zero byte.
    DotWeavePattern(char* text, Engine engine);
    // Shares the engine of other.
    DotWeavePattern(const DotWeavePattern& other);
    // Shares the engine of other, and frees its former one where no copy shares that.
    DotWeavePattern& operator=(const DotWeavePattern& other);
    // Frees the engine where no copy shares it.
    ~DotWeavePattern();

    // The rows begin again from the first one. The field stays as it is.
    void ResetRandomizer();

    // Applies the pattern to one row, from source to destination, which must not overlap. A row of
    // 0 pixels touches neither and counts as a row.
    void ApplyPattern(unsigned char* source, unsigned char* destination, unsigned long pixels);

    // The bytes of a source pixel.
    int GetInColorCount();

    // The result is no count, but the number of an in-colour's top step, and 255 for one that is
    // listed but not described. With Reference it is the number of the in-colour's value lines. An
    // index outside the in-colours gives 0.
    int GetNumberOfStepsForInColor(int inColor);

    // The bytes of a destination pixel.
    int GetOutColorCount();

protected:
    // Builds the engine and loads the text into it.
    void Init(char* text, Engine engine);

private:
    void ChkInPatternStr(char* text);

    DotWeavePatternEngine* mEngine;
    int mTextVersion;
};

} // namespace Pelkraft
} // namespace zvk
