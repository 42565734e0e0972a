#include "copy/copy_unit.h"
#include "copy/group_copy.h"

#include <array>
#include <utility>

namespace zvk::Pelkraft {
namespace {

constexpr std::size_t largestUnrolledPixel = 32;

// A group of the smallest pixels is too short to make a pass of its own.
constexpr std::size_t CountUnitsPerPass(std::size_t pixelBytes)
{
    return pixelBytes < 4 ? 8 : pixelBytes;
}

template <std::size_t unitsPerPass>
void CopyWholeUnits(const GroupRun& run)
{
    const unsigned char* source = run.source;
    unsigned char* destination = run.destination;
    std::size_t units = run.groups * run.pixelBytes;
    for (; units >= unitsPerPass; units -= unitsPerPass) {
        for (std::size_t unit = 0; unit != unitsPerPass; ++unit)
            CopyUnit(source + unit * copyUnitBytes, destination + unit * copyUnitBytes);
        source += unitsPerPass * copyUnitBytes;
        destination += unitsPerPass * copyUnitBytes;
    }
    for (std::size_t unit = 0; unit != units; ++unit)
        CopyUnit(source + unit * copyUnitBytes, destination + unit * copyUnitBytes);
}

template <std::size_t... index>
constexpr std::array<GroupCopy, sizeof...(index)> MakeCopies(std::index_sequence<index...>)
{
    return {CopyWholeUnits<CountUnitsPerPass(index + 1)>...};
}

constexpr auto copies = MakeCopies(std::make_index_sequence<largestUnrolledPixel>{});

} // namespace

GroupCopy GetWholeUnitCopy(std::size_t pixelBytes)
{
    return pixelBytes <= largestUnrolledPixel ? copies[pixelBytes - 1] : copies.back();
}

} // namespace zvk::Pelkraft
