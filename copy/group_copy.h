#pragma once

#include <cstddef>

namespace zvk::Pelkraft {

constexpr int pixelsPerGroup = 16;

// Whole groups of 16 pixels, and so as many units of 16 bytes each as a pixel has bytes.
struct GroupRun
{
    const unsigned char* source;
    unsigned char* destination;
    std::size_t groups;
    std::size_t pixelBytes;
};

// Copies a run of at least one group, between 16-aligned addresses.
using GroupCopy = void (*)(const GroupRun& run);

// Moves whole units, whatever pixel they belong to. For any pixel size.
GroupCopy GetWholeUnitCopy(std::size_t pixelBytes);

namespace VectorRoad {

// Passes each pixel through registers, as a loader and a saver would move it. For any pixel size.
GroupCopy GetRegisterCopy(std::size_t pixelBytes);

} // namespace VectorRoad

// The register copy on all roads but the portable one, which has the whole unit copy.
GroupCopy GetPixelCopy(std::size_t pixelBytes);

// Ends in the processor's fault, where it has one, unless both ends of the run are 16-aligned.
void CopyAligned(GroupCopy copy, const GroupRun& run);

} // namespace zvk::Pelkraft
