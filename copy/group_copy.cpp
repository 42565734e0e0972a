#include "copy/group_copy.h"

#include "common/road.h"
#include "zvk/system_tools.h"

namespace zvk::Pelkraft {
namespace {

// Moves the first unit by the instructions that fault on other addresses. Spelled out, since an
// access through a pointer to a wider type would be undefined there and free to do anything.
void CopyFirstUnit([[maybe_unused]] const GroupRun& run)
{
#if defined(__SSE2__)
    asm volatile("movdqa (%0), %%xmm0\n\t"
                 "movdqa %%xmm0, (%1)"
                 :
                 : "r"(run.source), "r"(run.destination)
                 : "xmm0", "memory");
#endif
}

} // namespace

GroupCopy GetPixelCopy(std::size_t pixelBytes)
{
    if constexpr (hasVectorRoad)
        if (RoadOf(SystemTools::GetSseVersion()) != Road::Portable)
            return VectorRoad::GetRegisterCopy(pixelBytes);
    return GetWholeUnitCopy(pixelBytes);
}

void CopyAligned(GroupCopy copy, const GroupRun& run)
{
    CopyFirstUnit(run);
    copy(run);
}

} // namespace zvk::Pelkraft
