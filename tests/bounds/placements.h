#pragma once

#include "tests/support/conversion_grid.h"
#include "tests/support/guarded_arena.h"

#include <cstdint>

namespace zvk::Pelkraft::TestSupport {

// A source and a destination lie with the forbidden page before or after both, and each of them as
// near to it as can be or at an odd address.
struct Placement
{
    Flush flush;
    bool oddSource;
    bool oddDestination;
};

constexpr Placement allPlacements[] = {
    {Flush::AtEnd, false, false},  {Flush::AtEnd, true, true},   {Flush::AtStart, false, false},
    {Flush::AtStart, true, true},  {Flush::AtEnd, true, false},  {Flush::AtEnd, false, true},
    {Flush::AtStart, true, false}, {Flush::AtStart, false, true}};

inline unsigned char* PlaceIn(const GuardedArena& arena, std::size_t size, Flush flush, bool odd)
{
    return odd ? arena.PlaceAtOddAddress(size, flush) : arena.Place(size, flush);
}

// Takes one of so many, in the order in which it is asked, and counts what it took.
class Sampler
{
public:
    explicit Sampler(std::uint64_t newEvery) : every(newEvery) {}

    bool Takes()
    {
        const bool taken = asked++ % every == 0;
        count += taken ? 1 : 0;
        return taken;
    }
    std::uint64_t GetCount() const { return count; }

private:
    std::uint64_t every;
    std::uint64_t asked = 0;
    std::uint64_t count = 0;
};

// Widths on both sides of every batch, and pixels of all kinds of size.
ConversionGrid BoundsGrid();

// 1 for the whole grid, which PELKRAFT_TEST_FULL asks for, else as given.
std::uint64_t OneOf(std::uint64_t cases);

// Random bytes, which an arena's buffer begins with, so many at least.
void FillWithNoise(const GuardedArena& arena, std::size_t capacity, std::uint32_t seed);

} // namespace zvk::Pelkraft::TestSupport
