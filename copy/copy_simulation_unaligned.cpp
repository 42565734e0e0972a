#include "copy/copy_unit.h"
#include "copy/division.h"
#include "pelkraft/copy_primitives.h"

#include <cstddef>

namespace zvk::Pelkraft {
namespace {

void CopyPixel(const unsigned char* source, unsigned char* destination, std::size_t units)
{
    for (std::size_t unit = 0; unit != units; ++unit)
        CopyUnit(source + unit * copyUnitBytes, destination + unit * copyUnitBytes);
}

} // namespace

void copySimulationUnaligned(unsigned char* source, unsigned char* destination, int size,
                             int pixelBytes)
{
    // Unsigned: INT_MIN and -1 have a quotient here.
    const auto rowBytes = static_cast<unsigned>(size);
    const auto step = static_cast<unsigned>(pixelBytes);
    const unsigned count = DivideOrFault(rowBytes, step);
    if (size < 0 || step > rowBytes)
        return;

    const std::size_t units = (std::size_t{step} + copyUnitBytes - 1) / copyUnitBytes;
    for (unsigned pixel = 0; pixel != count; ++pixel) {
        CopyPixel(source, destination, units);
        source += step;
        destination += step;
    }
}

} // namespace zvk::Pelkraft
