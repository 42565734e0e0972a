#include "c_interface/row_views.h"

#include "c_interface/record_size.h"
#include "c_interface/row_overlap.h"

#include <algorithm>
#include <limits>

namespace zvk::Pelkraft {

template <typename Record>
struct EndsOfRows
{
    static constexpr std::array ends = {
        PELKRAFT_FIELD_END(Record, size),         PELKRAFT_FIELD_END(Record, reserved),
        PELKRAFT_FIELD_END(Record, base),         PELKRAFT_FIELD_END(Record, bytes),
        PELKRAFT_FIELD_END(Record, offset),       PELKRAFT_FIELD_END(Record, row_stride),
        PELKRAFT_FIELD_END(Record, plane_stride),
    };
};

template <>
struct FieldEnds<plk_source> : EndsOfRows<plk_source>
{};

template <>
struct FieldEnds<plk_target> : EndsOfRows<plk_target>
{};

namespace {

struct Extent
{
    std::uintptr_t begin;
    std::uintptr_t end;
};

Refusal ReservedRefusal(const char* side, std::int32_t reserved)
{
    return {PLK_TOO_NEW, FieldName(side, ".reserved"),
            reserved,    0,
            side,        ".reserved is ",
            reserved,    "; this library knows of nothing but 0 there"};
}

template <typename Record>
RowView ViewOfRecord(const Record& record, const char* name)
{
    if (record.reserved != 0)
        throw ReservedRefusal(name, record.reserved);
    return {record.base, record.bytes, record.offset, record.row_stride, record.plane_stride};
}

// Most records have this header's size, and need no copy.
template <typename Record>
RowView ViewOfGiven(const Record* given, const char* name)
{
    if (given != nullptr && given->size == sizeof(Record))
        return ViewOfRecord(*given, name);
    return ViewOfRecord(ReadRecord(given, name), name);
}

// So many strides, or beyondMemory where they are more than that.
std::int64_t Span(std::uint64_t count, std::int64_t stride)
{
    constexpr std::uint64_t common = std::uint64_t{1} << 30;
    constexpr auto most = static_cast<std::uint64_t>(beyondMemory);
    const std::uint64_t magnitude = Magnitude(stride);
    // A division takes longer than all else here.
    const bool fits =
        (count < common && magnitude < common) || magnitude == 0 || count <= most / magnitude;
    const auto span = static_cast<std::int64_t>(fits ? count * magnitude : most);
    return stride < 0 ? -span : span;
}

bool IsBeyondMemory(std::uint64_t bytes)
{
    return bytes >= static_cast<std::uint64_t>(beyondMemory);
}

// From base to the last of all addresses.
std::uint64_t BytesUntilEnd(const RowView& view)
{
    return std::numeric_limits<std::uintptr_t>::max() - reinterpret_cast<std::uintptr_t>(view.base);
}

// The two ends of all that a side covers, as distances from its base.
struct Distances
{
    std::int64_t low;
    std::int64_t high;
    bool fit;
};

Distances DistancesOf(const RowView& view, const CoveredBytes& covered, std::uint64_t rows)
{
    const std::int64_t rowSpan = Span(rows - 1, view.rowStride);
    const std::int64_t planeSpan = Span(covered.planes - 1, view.planeStride);
    const std::int64_t firstPlane = Span(covered.firstPlane, view.planeStride);
    for (const std::uint64_t bytes :
         {Magnitude(rowSpan), Magnitude(planeSpan), Magnitude(firstPlane), Magnitude(view.offset),
          covered.first, covered.count})
        if (IsBeyondMemory(bytes))
            return {0, 0, false};
    const std::int64_t start = view.offset + firstPlane + static_cast<std::int64_t>(covered.first);
    const std::int64_t zero = 0;
    return {start + std::min(rowSpan, zero) + std::min(planeSpan, zero),
            start + std::max(rowSpan, zero) + std::max(planeSpan, zero) +
                static_cast<std::int64_t>(covered.count),
            true};
}

Extent RequireExtent(const RowSide& side, std::uint64_t rows, const char* name)
{
    const RowView& view = side.view;
    if (view.base == nullptr)
        throw NullRefusal(FieldName(name, ".base").GetChars().data());
    const Distances distances = DistancesOf(view, side.covered, rows);
    const auto high = static_cast<std::uint64_t>(distances.high);
    if (!distances.fit || (distances.high > 0 && high > BytesUntilEnd(view)))
        throw Refusal(PLK_TOO_SMALL, FieldName(name, ".bytes"), Limited(view.bytes), 0, name,
                      ".bytes is ", view.bytes, "; no memory holds ", rows,
                      " rows with row_stride ", view.rowStride, ", plane_stride ", view.planeStride,
                      " and offset ", view.offset);
    const std::int64_t before = -distances.low;
    const std::int64_t needed = view.offset + before;
    if (before > 0)
        throw Refusal(PLK_TOO_SMALL, FieldName(name, ".offset"), view.offset, needed, name,
                      ".offset is ", view.offset, "; the rows begin ", before,
                      " bytes before the base, so it must be ", needed, " or more");
    if (high > view.bytes)
        throw Refusal(PLK_TOO_SMALL, FieldName(name, ".bytes"), Limited(view.bytes), distances.high,
                      name, ".bytes is ", view.bytes, "; the rows end ", distances.high,
                      " bytes after the base, so it must be that or more");
    const auto base = reinterpret_cast<std::uintptr_t>(view.base);
    return {base + static_cast<std::uintptr_t>(distances.low),
            base + static_cast<std::uintptr_t>(distances.high)};
}

Pieces PiecesOf(const RowSide& side, std::uint64_t rows)
{
    const auto start = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(side.view.base));
    // Modulo the size of an address: an offset may be negative.
    const std::uint64_t distance =
        static_cast<std::uint64_t>(side.view.offset) + side.covered.first +
        side.covered.firstPlane * static_cast<std::uint64_t>(side.view.planeStride);
    return {static_cast<std::uintptr_t>(start + distance),
            rows > 1 ? side.view.rowStride : 0,
            side.covered.planes > 1 ? side.view.planeStride : 0,
            rows,
            side.covered.planes,
            side.covered.count};
}

void RequireSeparateRows(const RowSide& target, std::uint64_t rows)
{
    if (!ShareBytes(PiecesOf(target, rows)))
        return;
    const RowView& view = target.view;
    const bool planesMeet =
        target.covered.planes > 1 && Magnitude(view.planeStride) < target.covered.count;
    const std::uint64_t needed =
        planesMeet || target.covered.planes == 1
            ? target.covered.count
            : Magnitude(Span(target.covered.planes - 1, view.planeStride)) + target.covered.count;
    const char* field = planesMeet ? "target.plane_stride" : "target.row_stride";
    const std::int64_t given = planesMeet ? view.planeStride : view.rowStride;
    throw Refusal(PLK_OVERLAP, FieldName(field), given, Limited(needed), field, " is ", given,
                  ", so that ", planesMeet ? "planes" : "rows", " share bytes; ", needed,
                  " or more keeps them apart");
}

// Strides that no row or plane takes may be any number.
bool AreSameRows(const RowSide& source, const RowSide& target, std::uint64_t rows)
{
    const auto startOf = [](const RowView& view) {
        return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(view.base)) +
               static_cast<std::uint64_t>(view.offset);
    };
    const bool hasPlanes = source.covered.planes > 1 || target.covered.planes > 1;
    return startOf(source.view) == startOf(target.view) &&
           (rows == 1 || source.view.rowStride == target.view.rowStride) &&
           (!hasPlanes || source.view.planeStride == target.view.planeStride);
}

void RequireSides(const RowSide& source, const RowSide& target, std::uint64_t rows,
                  bool mayBeInPlace)
{
    if ((mayBeInPlace && AreSameRows(source, target, rows)) ||
        !ShareBytes(PiecesOf(source, rows), PiecesOf(target, rows)))
        return;
    throw Refusal(PLK_OVERLAP, FieldName("target.base"), 0, 0,
                  "target.base leads to bytes of the source; ",
                  mayBeInPlace ? "give other rows, or the source's own base, offset and strides"
                               : "give rows that share no byte with the source");
}

} // namespace

RowView ViewOf(const plk_source* source)
{
    return ViewOfGiven(source, "source");
}

RowView ViewOf(const plk_target* target)
{
    return ViewOfGiven(target, "target");
}

RowSide InterleavedSide(const RowView& view, std::uint64_t pixels, std::uint64_t pixelBytes)
{
    RowSide side = {view, {}};
    side.covered.count = pixels * pixelBytes;
    side.view.planeStride = 0;
    return side;
}

const unsigned char* RowAt(const RowView& view, std::uint64_t row)
{
    const std::uint64_t distance =
        static_cast<std::uint64_t>(view.offset) + row * static_cast<std::uint64_t>(view.rowStride);
    return static_cast<const unsigned char*>(view.base) + static_cast<std::size_t>(distance);
}

void RequireMemory(const RowSide& source, const RowSide& target, std::uint64_t rows,
                   bool mayBeInPlace)
{
    const bool reads = source.covered.HasBytes();
    Extent from = {0, 0};
    if (reads)
        from = RequireExtent(source, rows, "source");
    if (!target.covered.HasBytes())
        return;
    const Extent to = RequireExtent(target, rows, "target");
    if (rows > 1 || target.covered.planes > 1)
        RequireSeparateRows(target, rows);
    if (reads && from.begin < to.end && to.begin < from.end)
        RequireSides(source, target, rows, mayBeInPlace);
}

} // namespace zvk::Pelkraft
