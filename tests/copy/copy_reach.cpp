#include "tests/copy/copy_reach.h"

#include "pelkraft/copy_primitives.h"

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr const char* names[] = {"intelMemcopy", "copyByDwords", "copySimulationUnaligned",
                                 "copySimulationAlignedFixed", "copySimulationAlignedVariable"};
constexpr int mostPixelBytesOfFixed = 32;

bool TakesPixels(CopyShape::Kind kind)
{
    return kind != CopyShape::Intel && kind != CopyShape::Dwords;
}

std::size_t ReachOfGroups(const CopyShape& shape)
{
    if (shape.kind == CopyShape::AlignedFixed && shape.pixelBytes > mostPixelBytesOfFixed)
        return 0;
    const int groups = shape.size / shape.pixelBytes / 16;
    return static_cast<std::size_t>(groups) * 16 * static_cast<std::size_t>(shape.pixelBytes);
}

std::size_t ReachOfUnits(const CopyShape& shape)
{
    if (shape.pixelBytes > shape.size)
        return 0;
    const auto pixels = static_cast<std::size_t>(shape.size / shape.pixelBytes);
    const auto pixelBytes = static_cast<std::size_t>(shape.pixelBytes);
    return (pixels - 1) * pixelBytes + (pixelBytes + 15) / 16 * 16;
}

} // namespace

std::string Describe(const CopyShape& shape)
{
    return std::string(names[shape.kind]) + ", size " + std::to_string(shape.size) +
           ", pixelBytes " + std::to_string(shape.pixelBytes);
}

std::size_t ReachOf(const CopyShape& shape)
{
    if (shape.size <= 0 || shape.pixelBytes <= 0)
        return 0;
    if (!TakesPixels(shape.kind))
        return static_cast<std::size_t>(shape.size);
    return shape.kind == CopyShape::Unaligned ? ReachOfUnits(shape) : ReachOfGroups(shape);
}

bool ServesAnyAddress(const CopyShape& shape)
{
    return shape.kind != CopyShape::AlignedFixed && shape.kind != CopyShape::AlignedVariable;
}

void RunCopy(const CopyShape& shape, unsigned char* source, unsigned char* destination)
{
    switch (shape.kind) {
    case CopyShape::Intel:
        return intelMemcopy(source, destination, shape.size);
    case CopyShape::Dwords:
        return copyByDwords(source, destination, shape.size);
    case CopyShape::Unaligned:
        return copySimulationUnaligned(source, destination, shape.size, shape.pixelBytes);
    case CopyShape::AlignedFixed:
        return copySimulationAlignedFixed(source, destination, shape.size, shape.pixelBytes);
    case CopyShape::AlignedVariable:
        return copySimulationAlignedVariable(source, destination, shape.size, shape.pixelBytes);
    }
}

std::vector<CopyShape> AllCopyShapes(int largestSize)
{
    std::vector<int> pixelSizes;
    for (int pixelBytes = 1; pixelBytes <= 33; ++pixelBytes)
        pixelSizes.push_back(pixelBytes);
    for (const int pixelBytes : {40, 47, 48, 49, 64, 81, 160})
        pixelSizes.push_back(pixelBytes);

    std::vector<CopyShape> shapes;
    for (const auto kind : {CopyShape::Intel, CopyShape::Dwords, CopyShape::Unaligned,
                            CopyShape::AlignedFixed, CopyShape::AlignedVariable})
        for (int size = 0; size <= largestSize; ++size) {
            if (!TakesPixels(kind))
                shapes.push_back({kind, size, 1});
            else
                for (const int pixelBytes : pixelSizes)
                    shapes.push_back({kind, size, pixelBytes});
        }
    return shapes;
}

} // namespace zvk::Pelkraft::TestSupport
