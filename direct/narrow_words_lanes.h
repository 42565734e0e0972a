#pragma once

// Included after one of the vocabularies common/lanes_*.h.
// Only for files built with vector flags: all of it has internal linkage on purpose.
namespace zvk::Pelkraft {
namespace {

// Samples of 16 bits to as many of 8, in the low bytes of the words.
inline Lanes NarrowWords(Lanes v)
{
    return ShiftRight16<8>(Add16(MultiplyHigh16(v, Set16(0xff01)), Set16(127)));
}

} // namespace
} // namespace zvk::Pelkraft
