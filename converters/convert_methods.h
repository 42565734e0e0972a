#pragma once

#include "common/size_policies.h"
#include "converters/convert_descriptor.h"

#include <cstddef>
#include <cstdint>

// Each file of methods is entered here, and nowhere else.
namespace zvk::Pelkraft {

// The parameter block of a step that packs. A slot's size is in units on the vector road and in
// bytes on the portable one.
struct PackBlock
{
    // Bytes from the end of one unpacked chunk's slots to the start of the next one's.
    std::uint64_t gap;
    std::uint64_t slotSize;
};

// The block of a step that unpacks, where a slot's size is as above, or repeats, where it is in
// units on both roads.
struct SpreadBlock
{
    // Bytes from the header of one output chunk to that of the next.
    std::uint64_t stride;
    std::uint64_t slotSize;
};

namespace PortableRoad {

ConvertMethod GetWiden(const ImageRowFormat& input);
ConvertMethod GetNarrow(const ImageRowFormat& input);
// depth is 1 or 2.
ConvertMethod GetPack(const ImageRowFormat& input, int depth);
ConvertMethod GetUnpack(const ImageRowFormat& input, int depth);
ConvertMethod GetReverse(const ImageRowFormat& input);
// factor is 2 or 4.
ConvertMethod GetRepeat(const ImageRowFormat& input, int factor);
ConvertMethod GetRemap(std::size_t sampleBytes);

} // namespace PortableRoad

namespace VectorRoad {

ConvertMethod GetWiden(const ImageRowFormat& input);
ConvertMethod GetNarrow(const ImageRowFormat& input);
ConvertMethod GetPack(const ImageRowFormat& input, int depth);
ConvertMethod GetUnpack(const ImageRowFormat& input, int depth);
ConvertMethod GetReverse(const ImageRowFormat& input);
ConvertMethod GetRepeat(const ImageRowFormat& input, int factor, bool isOneUnit);
ConvertMethod GetRemap(SlotUnits<1>);
ConvertMethod GetRemap(SlotUnits<2>);
ConvertMethod GetRemap(VariableSize);

} // namespace VectorRoad
} // namespace zvk::Pelkraft
