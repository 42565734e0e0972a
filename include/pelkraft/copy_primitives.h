// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pelkraft/export.h"

// Five copies of pixel bytes. Beware: source comes first and destination second, the reverse of
// the standard library's order.
//
// The copySimulation functions move a row as a conversion without any step would: pixel by pixel,
// or in the groups of 16 pixels that a conversion works on. What they leave in the destination is
// a plain copy; how many bytes that is, is given at each.
//
// Units      size and pixelBytes in bytes, 32-bit signed. pixelBytes is one pixel, all channels
//            together. Below, count is size / pixelBytes, truncated.
// Ranges     Each function reads and writes the same range of bytes, from the first one on, and
//            touches nothing beyond it. Where the range is empty, the pointers are not used.
// Alignment  Any address, except in the aligned simulations.
// Overlap    Only intelMemcopy and copyByDwords promise something for buffers that overlap; a
//            simulation then leaves unspecified bytes in the destination's range.
// Errors     Nothing is thrown or reported. A pixelBytes of 0 is a divide error, first of all
//            and whatever the other arguments are: the processor's own fault on x86, a raised
//            SIGFPE elsewhere. It stops the program unless the program handles it.
// Ownership  Stays with the caller. source is only read.
// Threads    No state: calls on disjoint buffers may run at once.
namespace zvk {
namespace Pelkraft {

// Copies size bytes in the fastest way there is, overlapping buffers as if by way of a third one.
// A size of 0 or less does nothing.
PELKRAFT_EXPORT void intelMemcopy(unsigned char* source, unsigned char* destination, int size);

// Copies size bytes in ascending order, in words of 32 bits or more and then single bytes. A size
// of 0 or less does nothing. This is no memory move where the buffers overlap:
//   destination below source           the bytes arrive as they were
//   destination 4 or more bytes above  the bytes between repeat, as if copied one by one
//   destination 1 to 3 bytes above     whole blocks of 16 bytes are copied word by word, so that
//                                      each word takes with it what the last one left; the bytes
//                                      after them one by one
PELKRAFT_EXPORT void copyByDwords(unsigned char* source, unsigned char* destination, int size);

// Copies each whole pixel in units of 16 bytes, so that the copy runs over the last pixel's end
// by up to 15 bytes, on both sides. The range is
//   (count - 1) * pixelBytes + (pixelBytes + 15) / 16 * 16
// Does nothing if pixelBytes is negative or above size, or if size is negative.
PELKRAFT_EXPORT void copySimulationUnaligned(unsigned char* source, unsigned char* destination,
                                             int size, int pixelBytes);

// Copies the whole groups of 16 pixels, for pixels of 1 to 32 bytes. The range is
//   count / 16 * 16 * pixelBytes
// Does nothing if pixelBytes is negative or above 32, or if size is negative. A size of INT_MIN
// with a pixelBytes of -1 is a divide error too.
//
// Both buffers must be 16-aligned. On x86 others fault at the first access, which a range that is
// empty doesn't make; elsewhere they are served.
PELKRAFT_EXPORT void copySimulationAlignedFixed(unsigned char* source, unsigned char* destination,
                                                int size, int pixelBytes);

// Does as copySimulationAlignedFixed does, for pixels of any positive size.
PELKRAFT_EXPORT void copySimulationAlignedVariable(unsigned char* source,
                                                   unsigned char* destination, int size,
                                                   int pixelBytes);

} // namespace Pelkraft
} // namespace zvk
