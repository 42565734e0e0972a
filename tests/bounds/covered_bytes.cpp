#include "tests/bounds/covered_bytes.h"

#include <algorithm>

namespace zvk::Pelkraft::TestSupport {

CoveredBytes BytesOfPixels(const NaiveGeometry& destination, int pixels)
{
    CoveredBytes covered(NaiveRowBytes(destination), false);
    const auto cover = [&covered](std::size_t begin, std::size_t end) {
        std::fill(covered.begin() + static_cast<std::ptrdiff_t>(begin),
                  covered.begin() + static_cast<std::ptrdiff_t>(end), true);
    };
    NaiveGeometry part = destination;
    part.width = pixels;
    if (!destination.planar) {
        cover(0, NaiveRowBytes(part));
        return covered;
    }
    const auto planes = static_cast<std::size_t>(destination.channels);
    const std::size_t pitch = covered.size() / planes;
    for (std::size_t plane = 0; plane != planes; ++plane)
        cover(plane * pitch, plane * pitch + NaiveRowBytes(part) / planes);
    return covered;
}

} // namespace zvk::Pelkraft::TestSupport
