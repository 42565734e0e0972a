#include "copy/division.h"
#include "copy/group_copy.h"
#include "pelkraft/copy_primitives.h"

namespace zvk::Pelkraft {

void copySimulationAlignedVariable(unsigned char* source, unsigned char* destination, int size,
                                   int pixelBytes)
{
    const int count = DivideOrFault(size, pixelBytes);
    // A negative size and a negative pixelBytes have a positive quotient.
    if (pixelBytes < 1 || count < pixelsPerGroup)
        return;

    const GroupRun run{source, destination, static_cast<std::size_t>(count / pixelsPerGroup),
                       static_cast<std::size_t>(pixelBytes)};
    CopyAligned(GetPixelCopy(run.pixelBytes), run);
}

} // namespace zvk::Pelkraft
