#include "tools/pelkraft/row_pipeline.h"

#include "pelkraft/image_row.h"
#include "tools/pelkraft/bit_weave.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/level_check.h"
#include "tools/pelkraft/tones.h"

#include <cstring>
#include <new>

namespace zvk::Pelkraft::Client {
namespace {

using Kind = RowStep::Kind;

constexpr std::align_val_t cacheLine{64};

// The library never writes to a source.
ImageRow Wrap(const RowShape& shape, const unsigned char* data)
{
    return ImageRow(static_cast<int>(shape.width), shape.channels, shape.bits, shape.planar,
                    const_cast<unsigned char*>(data));
}

void Fill(const RowStep& step, bool portable, const unsigned char* from, unsigned char* to)
{
    const ImageRow source = Wrap(step.from, from);
    ImageRow destination = Wrap(step.to, to);
    try {
        if (!step.map.empty())
            destination.FillFromWithRemap(source, step.map.data(), false, portable);
        else if (step.factor != 1)
            destination.FillFromWithPixelRepeat(source, step.factor, false, portable);
        else
            destination.FillFrom(source, false, portable);
    } catch (const char* text) {
        // The library reports missing memory in words where it mirrors a packed row.
        if (std::strstr(text, "memory allocation failed") != nullptr)
            throw std::bad_alloc();
        throw;
    }
}

} // namespace

RowBuffer::RowBuffer(std::size_t size)
    : bytes(static_cast<unsigned char*>(
          ::operator new(size + static_cast<std::size_t>(ImageRow::SafetyTrail), cacheLine)))
{
    // Unused bits of a last byte and empty planes must not bring foreign memory into a file.
    std::memset(bytes.get(), 0, size + static_cast<std::size_t>(ImageRow::SafetyTrail));
}

void RowBuffer::Free::operator()(unsigned char* memory) const
{
    ::operator delete(memory, cacheLine);
}

RowPipeline::RowPipeline(const std::vector<RowStep>& newSteps, bool forcePortable)
    : steps(newSteps), portable(forcePortable)
{
    for (std::size_t i = 0; i < steps.size(); ++i) {
        if (steps[i].Moves())
            lastMove = i;
    }
    for (std::size_t i = 0; i < lastMove; ++i) {
        if (steps[i].Moves())
            buffers.emplace_back(static_cast<std::size_t>(steps[i].to.Bytes()));
    }
}

void RowPipeline::Run(unsigned char* fileRow, unsigned char* newRow)
{
    unsigned char* present = fileRow;
    auto buffer = buffers.begin();
    for (std::size_t i = 0; i < steps.size(); ++i) {
        if (!steps[i].Moves()) {
            ChangeInPlace(steps[i], present);
            continue;
        }
        unsigned char* const next = i == lastMove ? newRow : (buffer++)->Data();
        Move(steps[i], present, next);
        present = next;
    }
}

void RowPipeline::Move(const RowStep& step, const unsigned char* from, unsigned char* to) const
{
    const int width = static_cast<int>(step.from.width);
    switch (step.kind) {
    case Kind::Split:
        SplitToPlanes(from, width, step.from.channels, step.from.bits, to);
        break;
    case Kind::Weave:
        WeavePlanes(from, width, step.from.channels, step.from.bits, to);
        break;
    case Kind::Pad:
        // The planes after them stay as they were allocated: zero.
        std::memcpy(to, from, static_cast<std::size_t>(step.from.Bytes()));
        break;
    case Kind::Crop:
        std::memcpy(to, from, static_cast<std::size_t>(step.to.Bytes()));
        break;
    default:
        Fill(step, portable, from, to);
        break;
    }
}

void RowPipeline::ChangeInPlace(const RowStep& step, unsigned char* row)
{
    const auto samples = static_cast<std::size_t>(step.from.Bytes());
    if (step.kind == Kind::Quantize)
        QuantizeTones(row, samples, step.levelBits);
    else if (step.kind == Kind::Stretch)
        StretchLevels(row, samples, step.levelBits);
    else if (!cutSamples)
        cutSamples = ExceedsLevels(row, step.from, step.levelBits, step.map);
}

} // namespace zvk::Pelkraft::Client
