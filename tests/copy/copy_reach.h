#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// One call of one of the five copies.
struct CopyShape
{
    enum Kind
    {
        Intel,
        Dwords,
        Unaligned,
        AlignedFixed,
        AlignedVariable,
    };
    Kind kind;
    int size;
    int pixelBytes;
};

std::string Describe(const CopyShape& shape);
// Bytes that the call reads and writes, from the first one on.
std::size_t ReachOf(const CopyShape& shape);
// True if the copy is promised for any address.
bool ServesAnyAddress(const CopyShape& shape);
void RunCopy(const CopyShape& shape, unsigned char* source, unsigned char* destination);

// All five with every size up to this one, and pixels of 1 to 33 bytes and some larger.
std::vector<CopyShape> AllCopyShapes(int largestSize);

} // namespace zvk::Pelkraft::TestSupport
