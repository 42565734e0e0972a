#include "chunks/chunk_methods.h"
#include "common/chunk_header.h"

#include <cstring>

namespace zvk::Pelkraft {
namespace {

// Either side may begin at any address.
template <typename Sample>
void CopySamples(const unsigned char* from, std::uint64_t fromStep, unsigned char* to,
                 std::uint64_t toStep)
{
    for (std::uint64_t i = 0; i < slotsPerChunk; ++i)
        std::memcpy(to + i * toStep, from + i * fromStep, sizeof(Sample));
}

template <End end, typename Sample>
void MoveChunk(const void* from, void* to)
{
    constexpr std::uint64_t sampleBytes = sizeof(Sample);
    const auto& header = *static_cast<const ChunkHeader*>(end == End::Load ? to : from);
    const std::uint64_t slotBytes = RoundUpToUnit(header.pixelBytes);
    const auto planes = static_cast<std::int64_t>(header.pixelBytes / sampleBytes);
    const auto* source = static_cast<const unsigned char*>(from);
    auto* target = static_cast<unsigned char*>(to);

    for (std::int64_t plane = 0; plane < planes; ++plane) {
        const std::int64_t lane = headerBytes + plane * static_cast<std::int64_t>(sampleBytes);
        if constexpr (end == End::Load) {
            const auto pitch = static_cast<std::int64_t>(header.loadPlanePitch);
            CopySamples<Sample>(source + plane * pitch, sampleBytes, target + lane, slotBytes);
        } else {
            const auto pitch = static_cast<std::int64_t>(header.savePlanePitch);
            CopySamples<Sample>(source + lane, slotBytes, target + plane * pitch, sampleBytes);
        }
    }
}

template <End end>
ChunkMethod MethodFor(std::size_t sampleBytes)
{
    return sampleBytes == 1 ? MoveChunk<end, unsigned char> : MoveChunk<end, unsigned short>;
}

} // namespace

ChunkMethod PortableRoad::GetPlanar(End end, std::size_t sampleBytes)
{
    return end == End::Load ? MethodFor<End::Load>(sampleBytes) : MethodFor<End::Save>(sampleBytes);
}

} // namespace zvk::Pelkraft
