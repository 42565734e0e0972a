#pragma once

#include "chunks/chunk_facility.h"
#include "chunks/chunk_methods.h"
#include "chunks/row_walk.h"
#include "common/size_policies.h"
#include "common/units.h"

// The classes of loaders and savers on both roads.
namespace zvk::Pelkraft {

// A class of the vector road counts its trails in samples of so many bytes, and throws its text for
// a damaged record that leaves no whole one.
struct TrailRecord
{
    std::uint64_t sampleBytes;
    const char* invalidTrail;
};

inline constexpr TrailRecord interleavedTrail{1, "Invalid"};
inline constexpr TrailRecord loaderP8Trail{1, "ChunkMultiLoaderP8::GetLoadMethod Invalid trail"};
inline constexpr TrailRecord loaderP16Trail{2, "ChunkMultiLoaderP16::GetLoadMethod Invalid trail"};
inline constexpr TrailRecord saverP8Trail{1, "Invalid"};
inline constexpr TrailRecord saverP16Trail{2, "ChunkMultiSaverP16::GetLoadMethod Invalid trail"};

template <typename Facility>
std::uint64_t IndexOfTrail(const Facility& facility, const TrailRecord& record)
{
    const std::uint64_t trail = (PixelBytesOf(facility) - 1) % unitBytes + 1;
    const std::uint64_t samples = trail / record.sampleBytes;
    if (samples < 1 || samples > unitBytes / record.sampleBytes)
        throw record.invalidTrail;
    return samples - 1;
}

// The numbers choose among the method lists of a family.
template <typename Walk, const TrailRecord& record, auto getMethods, auto... numbers>
class VectorEnd : public Walk
{
public:
    ChunkMethod GetLoadMethod(const typename Walk::Facility& facility) const final
    {
        return getMethods(numbers...)[IndexOfTrail(facility, record)];
    }

protected:
    ~VectorEnd() = default;
};

template <typename Walk, auto getMethod, auto... numbers>
class PortableEnd : public Walk
{
public:
    ChunkMethod GetLoadMethod(const typename Walk::Facility&) const final
    {
        return getMethod(numbers...);
    }

protected:
    ~PortableEnd() = default;
};

template <int count>
constexpr int NumberOf(LeadingUnits<count>)
{
    return count;
}

constexpr int NumberOf(VariableSize)
{
    return 5;
}

template <typename Policy>
class ChunkMultiLoaderI final
    : public VectorEnd<InterleavedLoader, interleavedTrail, VectorRoad::GetInterleavedLoads,
                       NumberOf(Policy{})>
{};
template <typename Policy>
class ChunkMultiSaverI final : public VectorEnd<InterleavedSaver, interleavedTrail,
                                                VectorRoad::GetInterleavedSaves, NumberOf(Policy{})>
{};

template <typename Policy>
constexpr bool isOneUnit = std::is_same_v<Policy, OneUnit>;

template <typename Policy>
class ChunkMultiLoaderP8 final
    : public VectorEnd<PlanarLoader, loaderP8Trail, VectorRoad::GetPlanar, End::Load, 1,
                       isOneUnit<Policy>>
{};
template <typename Policy>
class ChunkMultiSaverP8 final : public VectorEnd<PlanarSaver, saverP8Trail, VectorRoad::GetPlanar,
                                                 End::Save, 1, isOneUnit<Policy>>
{};
template <typename Policy>
class ChunkMultiLoaderP16 final
    : public VectorEnd<PlanarLoader, loaderP16Trail, VectorRoad::GetPlanar, End::Load, 2,
                       isOneUnit<Policy>>
{};
template <typename Policy>
class ChunkMultiSaverP16 final : public VectorEnd<PlanarSaver, saverP16Trail, VectorRoad::GetPlanar,
                                                  End::Save, 2, isOneUnit<Policy>>
{};

class ChunkMultiLoaderX86I final
    : public PortableEnd<InterleavedLoader, PortableRoad::GetInterleaved, End::Load>
{};
class ChunkMultiSaverX86I final
    : public PortableEnd<InterleavedSaver, PortableRoad::GetInterleaved, End::Save>
{};
template <typename Sample>
class ChunkMultiLoaderX86 final
    : public PortableEnd<PlanarLoader, PortableRoad::GetPlanar, End::Load, sizeof(Sample)>
{};
template <typename Sample>
class ChunkMultiSaverX86 final
    : public PortableEnd<PlanarSaver, PortableRoad::GetPlanar, End::Save, sizeof(Sample)>
{};

} // namespace zvk::Pelkraft
