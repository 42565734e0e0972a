#include "c_interface/row_overlap.h"

#include <limits>
#include <optional>

namespace zvk::Pelkraft {
namespace {

constexpr std::uint64_t mostComparisons = std::uint64_t{1} << 20;
std::uint64_t DivideUp(std::uint64_t dividend, std::uint64_t divisor)
{
    return dividend / divisor + (dividend % divisor != 0 ? 1 : 0);
}

// The smallest count for which low <= count * step mod modulus <= high, or none where count * step
// would be beyond 63 bits. Both ends and the step are below the modulus, and there is such a count:
// steps of planes come back to where they began, which is as near to a row as can be.
std::optional<std::uint64_t> FirstBetween(std::uint64_t step, std::uint64_t modulus,
                                          std::uint64_t low, std::uint64_t high)
{
    constexpr auto limit = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    // A step of 0 ends here, too.
    if (low == 0)
        return 0;
    if (const std::uint64_t count = DivideUp(low, step); count * step <= high)
        return count;
    // A multiple of the step lies between the ends after some turns round the modulus. How many is
    // the same question about smaller numbers, counted backwards.
    const auto turns = FirstBetween(modulus % step, step, step - 1 - (high - 1) % step,
                                    step - 1 - (low - 1) % step);
    if (!turns || *turns > limit / modulus)
        return std::nullopt;
    return DivideUp(low + *turns * modulus, step);
}

// The smallest number of plane steps, not 0, that ends less than the bytes of a piece from a
// multiple of the row step.
std::optional<std::uint64_t> FirstNearRow(std::uint64_t planeStep, std::uint64_t rowStep,
                                          std::uint64_t bytes)
{
    if (rowStep < 2 * bytes)
        return 1;
    // Seen from the first step on: distances from `low` on, round the end of a row.
    const std::uint64_t first = planeStep % rowStep;
    const std::uint64_t low = (2 * rowStep - (bytes - 1) - first) % rowStep;
    const std::uint64_t high = low + 2 * (bytes - 1);
    if (high >= rowStep)
        return 1;
    const auto more = FirstBetween(first, rowStep, low, high);
    return more ? std::optional(*more + 1) : std::nullopt;
}

// The places of a row number that may be added.
struct RowRange
{
    std::int64_t first;
    std::int64_t last;
};

std::int64_t DivideDown(std::int64_t dividend, std::int64_t divisor)
{
    return dividend / divisor - (dividend % divisor < 0 ? 1 : 0);
}

// True if for some number of the range a piece that begins distance + number * step after the
// other shares a byte with it.
bool Meet(std::int64_t distance, std::int64_t step, RowRange range, const Pieces& one,
          const Pieces& other)
{
    const auto closest = 1 - static_cast<std::int64_t>(one.bytes);
    const auto furthest = static_cast<std::int64_t>(other.bytes) - 1;
    if (step == 0)
        return closest <= distance && distance <= furthest;
    if (step < 0)
        return Meet(distance, -step, {-range.last, -range.first}, one, other);
    const std::int64_t low = -DivideDown(distance - closest, step);
    const std::int64_t high = DivideDown(furthest - distance, step);
    return low <= high && low <= range.last && high >= range.first;
}

// A row of the one for each row of the other, or all at once where their distances depend on the
// difference of the row numbers alone.
bool PlanesMeet(std::int64_t distance, const Pieces& one, const Pieces& other)
{
    const auto lastRow = static_cast<std::int64_t>(one.rows - 1);
    const auto lastOther = static_cast<std::int64_t>(other.rows - 1);
    if (one.rowStep == other.rowStep || one.rows == 1)
        return Meet(distance, other.rowStep, {-lastOther, lastRow}, one, other);
    for (std::int64_t row = 0; row <= lastRow; ++row)
        if (Meet(distance + row * one.rowStep, other.rowStep, {-lastOther, 0}, one, other))
            return true;
    return false;
}

bool TakesTooLong(const Pieces& one, const Pieces& other)
{
    const std::uint64_t rows = one.rowStep == other.rowStep ? 1 : one.rows;
    if (one.planes > mostComparisons || other.planes > mostComparisons || rows > mostComparisons)
        return true;
    return one.planes * other.planes > mostComparisons / rows;
}

} // namespace

bool ShareBytes(const Pieces& pieces)
{
    const std::uint64_t rowStep = Magnitude(pieces.rowStep);
    const std::uint64_t planeStep = Magnitude(pieces.planeStep);
    const bool hasRows = pieces.rows > 1;
    const bool hasPlanes = pieces.planes > 1;
    if ((hasRows && rowStep < pieces.bytes) || (hasPlanes && planeStep < pieces.bytes))
        return true;
    if (!hasRows || !hasPlanes)
        return false;
    // All planes of a row between two rows, or all rows of a plane between two planes.
    if (rowStep >= (pieces.planes - 1) * planeStep + pieces.bytes ||
        planeStep >= (pieces.rows - 1) * rowStep + pieces.bytes)
        return false;
    // The first planes that come near a row of another number are those with the nearest row.
    const auto planes = FirstNearRow(planeStep, rowStep, pieces.bytes);
    if (!planes || *planes >= pieces.planes)
        return false;
    const std::uint64_t distance = *planes * planeStep;
    return distance / rowStep + (distance % rowStep < pieces.bytes ? 0 : 1) < pieces.rows;
}

bool ShareBytes(const Pieces& one, const Pieces& other)
{
    // Wraps where the other begins later, and is negative then.
    const auto start =
        static_cast<std::int64_t>(static_cast<std::uint64_t>(one.start) - other.start);
    if (start > beyondMemory || start < -beyondMemory || TakesTooLong(one, other))
        return true;
    for (std::uint64_t plane = 0; plane != one.planes; ++plane) {
        const std::int64_t begin = start + static_cast<std::int64_t>(plane) * one.planeStep;
        for (std::uint64_t facing = 0; facing != other.planes; ++facing)
            if (PlanesMeet(begin - static_cast<std::int64_t>(facing) * other.planeStep, one, other))
                return true;
    }
    return false;
}

} // namespace zvk::Pelkraft
