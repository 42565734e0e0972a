#pragma once

#include "c_interface/row_views.h"

#include <cstdint>
#include <limits>

// Most calls have one row on each side, forwards and far from the other. Few comparisons show that
// such rows are right, and take less time than the row itself; what they do not show is left to the
// full checks.
namespace zvk::Pelkraft {

inline constexpr std::uint64_t plainLimit = std::uint64_t{1} << 40;

// The bytes of each row of a side, or none where the full checks are needed.
struct PlainBytes
{
    PlainBytes() = default;
    explicit PlainBytes(const CoveredBytes& covered)
        : count(covered.count), lastPlane(covered.planes - 1),
          isServed(covered.HasBytes() && covered.first == 0 && covered.firstPlane == 0 &&
                   count < plainLimit && lastPlane < (1U << 20))
    {}

    std::uint64_t count = 0;
    std::uint64_t lastPlane = 0;
    bool isServed = false;
};

// The addresses of a row's first byte and of the one after its last.
struct PlainExtent
{
    std::uintptr_t begin;
    std::uintptr_t end;
};

// Answers whether the row lies in its memory. Nothing can wrap below the limits.
template <typename Record>
bool FindExtent(const Record& record, const PlainBytes& bytes, PlainExtent& extent)
{
    const auto offset = static_cast<std::uint64_t>(record.offset);
    const auto planeStride = static_cast<std::uint64_t>(record.plane_stride);
    const auto base = reinterpret_cast<std::uintptr_t>(record.base);
    const std::uint64_t end = offset + bytes.lastPlane * planeStride + bytes.count;
    extent.begin = base + static_cast<std::uintptr_t>(offset);
    extent.end = base + static_cast<std::uintptr_t>(end);
    return record.size == sizeof(Record) && record.reserved == 0 && base != 0 &&
           (offset | planeStride) < plainLimit && end <= record.bytes &&
           end <= std::numeric_limits<std::uintptr_t>::max() - base;
}

// True if the one row of each side lies in its memory and the target shares no byte, neither with
// the source nor with itself.
inline bool ArePlain(const plk_source& source, const PlainBytes& read, const plk_target& target,
                     const PlainBytes& written)
{
    PlainExtent from;
    PlainExtent to;
    return FindExtent(source, read, from) && FindExtent(target, written, to) &&
           (written.lastPlane == 0 ||
            static_cast<std::uint64_t>(target.plane_stride) >= written.count) &&
           (from.end <= to.begin || to.end <= from.begin);
}

} // namespace zvk::Pelkraft
