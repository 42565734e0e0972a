#include "copy/copy_unit.h"
#include "copy/division.h"
#include "copy/group_copy.h"
#include "pelkraft/copy_primitives.h"

namespace zvk::Pelkraft {
namespace {

constexpr int largestPixel = 32;

// Nothing has to be cut out of units that pixels fill without a remainder, or of long ones.
bool GoesInWholeUnits(std::size_t pixelBytes)
{
    return pixelBytes > copyUnitBytes || copyUnitBytes % pixelBytes == 0;
}

} // namespace

void copySimulationAlignedFixed(unsigned char* source, unsigned char* destination, int size,
                                int pixelBytes)
{
    const int count = DivideOrFault(size, pixelBytes);
    if (pixelBytes < 1 || pixelBytes > largestPixel || count < pixelsPerGroup)
        return;

    const GroupRun run{source, destination, static_cast<std::size_t>(count / pixelsPerGroup),
                       static_cast<std::size_t>(pixelBytes)};
    CopyAligned(GoesInWholeUnits(run.pixelBytes) ? GetWholeUnitCopy(run.pixelBytes)
                                                 : GetPixelCopy(run.pixelBytes),
                run);
}

} // namespace zvk::Pelkraft
