#include "copy/group_copy.h"

#include "common/road.h"
#include "zvk/system_tools.h"

#if defined(_M_X64)
#include <emmintrin.h>

#include <cstdint>
#endif

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
#elif defined(_M_X64)
    // Without inline assembly only a streaming store is sure to fault: for an aligned load or store
    // a compiler may take the unaligned instruction. One store stands for both addresses, since its
    // own has the low bits of both.
    const auto place = reinterpret_cast<std::uintptr_t>(run.destination) |
                       (reinterpret_cast<std::uintptr_t>(run.source) & 15);
    _mm_stream_si128(reinterpret_cast<__m128i*>(place),
                     _mm_loadu_si128(reinterpret_cast<const __m128i*>(run.source)));
    _mm_sfence();
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
