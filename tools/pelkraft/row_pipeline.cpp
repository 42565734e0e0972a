#include "tools/pelkraft/row_pipeline.h"

#include "tools/pelkraft/bit_weave.h"
#include "tools/pelkraft/level_check.h"

#include <cstring>
#include <new>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::align_val_t cacheLine{64};
constexpr std::size_t spareBytes = 64;

std::size_t PlaneBytes(const RowShape& fileShape, const RowShape& libraryShape)
{
    return fileShape.woven ? static_cast<std::size_t>(libraryShape.Bytes()) : 0;
}

std::int64_t PlaneStride(const RowShape& shape)
{
    return shape.planar && shape.channels != 0 ? shape.Bytes() / shape.channels : 0;
}

} // namespace

RowBuffer::RowBuffer(std::size_t size)
    : bytes(static_cast<unsigned char*>(::operator new(size + spareBytes, cacheLine)))
{
    // Unused bits of a last byte must not bring foreign memory into a file.
    std::memset(bytes.get(), 0, size + spareBytes);
}

void RowBuffer::Free::operator()(unsigned char* memory) const
{
    ::operator delete(memory, cacheLine);
}

RowPipeline::RowPipeline(const RowPlan& newPlan)
    : plan(newPlan), sourcePlanes(PlaneBytes(plan.Request().from, plan.LinesSource())),
      linesRow(plan.Request().lines ? static_cast<std::size_t>(plan.LibrarySource().Bytes()) : 0),
      targetPlanes(PlaneBytes(plan.Request().to, plan.LibraryTarget()))
{
    const RowShape from = plan.LinesSource();
    if (plan.Request().lines)
        lines.emplace(*plan.Request().lines,
                      MappedSamples{from.width, from.channels, from.bits, from.planar},
                      plan.Request().to.bits);
}

const unsigned char* RowPipeline::Prepare(const unsigned char* fileRow)
{
    const unsigned char* row = fileRow;
    const RowShape from = plan.LinesSource();
    if (plan.Request().from.woven) {
        SplitToPlanes(row, static_cast<int>(from.width), from.channels, from.bits,
                      sourcePlanes.Data());
        row = sourcePlanes.Data();
    }
    if (lines) {
        lines->Run(row, linesRow.Data());
        row = linesRow.Data();
    }
    return row;
}

void RowPipeline::Run(const unsigned char* fileRow, unsigned char* newRow)
{
    const RowShape from = plan.LibrarySource();
    const RowShape to = plan.LibraryTarget();
    const unsigned char* const source = Prepare(fileRow);
    const int cutBits = plan.CutBits();
    if (cutBits != 0 && !cutSamples)
        cutSamples = ExceedsLevels(source, from, cutBits, plan.Request().map);
    unsigned char* const target = plan.Request().to.woven ? targetPlanes.Data() : newRow;
    plan.Conversion().Run(
        SourceRows(source, static_cast<std::uint64_t>(from.Bytes()), 0, PlaneStride(from)),
        TargetRows(target, static_cast<std::uint64_t>(to.Bytes()), 0, PlaneStride(to)), 1);
    if (plan.Request().to.woven)
        WeavePlanes(target, static_cast<int>(to.width), to.channels, to.bits, newRow);
}

} // namespace zvk::Pelkraft::Client
