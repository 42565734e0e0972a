#include "direct/row_patch.h"

#include "common/bit_sizes.h"
#include "direct/kernels.h"

#include <cstring>

namespace zvk::Pelkraft {
namespace {

// The same 16 bits all over a pattern.
struct PlanePattern
{
    explicit PlanePattern(std::uint16_t unit)
    {
        for (std::size_t i = 0; i != sizeof bytes; i += sizeof unit)
            std::memcpy(bytes + i, &unit, sizeof unit);
    }

    unsigned char bytes[2 * patternBytes];
};

} // namespace

void PatchRow(const FinishKernels& kernels, const RowPatch& patch, const PatchedRow& row)
{
    if (patch.planes == nullptr)
        return kernels.patch(row.bytes, BytesOf(row.pixels * row.channels, patch.bits),
                             patch.pixels, patch.period);
    for (std::size_t c = 0; c != row.channels; ++c) {
        const std::uint16_t unit = patch.planes[patch.uniform ? 0 : row.firstChannel + c];
        if (unit == 0)
            continue;
        unsigned char* plane = row.bytes + static_cast<std::ptrdiff_t>(c) * row.planeStep;
        kernels.patch(plane, BytesOf(row.pixels, patch.bits), PlanePattern(unit).bytes,
                      patternBytes);
        ClearUnusedBits(plane, row.pixels, patch.bits);
    }
}

void ClearUnusedBits(unsigned char* plane, std::size_t pixels, std::uint8_t bits)
{
    const unsigned used = static_cast<unsigned>(pixels % 8 * bits % 8);
    if (used != 0)
        plane[WholeBytesOf(pixels, bits)] &= static_cast<unsigned char>(0xFF00U >> used);
}

} // namespace zvk::Pelkraft
