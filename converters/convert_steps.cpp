#include "converters/convert_steps.h"

namespace zvk::Pelkraft {

static_assert(sizeof(PackBlock) == sizeof(SpreadBlock));

ChunkConvertMetrics MetricsOf(const StepRecord& record)
{
    return {record.inputChunks, record.outputChunks,
            record.block != StepBlock::None ? sizeof(SpreadBlock) : 0, record.ownRegion};
}

ImageRowFormat& SetInterleavedFormat(ImageRowFormat& out, std::int32_t bits, std::int32_t channels)
{
    out.bits = bits;
    out.layout = LayoutInterleaved;
    out.channels = channels;
    out.reversed = false;
    return out;
}

ImageRowFormat& SetOutputFormat(ImageRowFormat& out, const StepRecord& record,
                                const ImageRowFormat& input)
{
    if (record.bits != 0)
        return SetInterleavedFormat(out, record.bits, input.channels);
    out.bits = input.bits;
    out.layout = input.layout;
    out.channels = input.channels;
    out.reversed = input.reversed;
    return out;
}

void FillBlock(void* parameters, const StepRecord& record, const ImageRowFormat& input,
               const ChunkStepGeometry& geometry)
{
    const std::uint64_t pixelBytes = PixelBytes(input);
    if (record.block == StepBlock::Pack) {
        const std::uint64_t chunkHop = geometry.inputChunkStride * geometry.expansion;
        *static_cast<PackBlock*>(parameters) = {chunkHop - SlotAreaBytes(pixelBytes),
                                                RoundUpToUnit(pixelBytes) / record.slotUnit};
    } else if (record.block == StepBlock::Spread) {
        *static_cast<SpreadBlock*>(parameters) = {geometry.outputChunkStride * geometry.reduction,
                                                  RoundUpToUnit(pixelBytes) / record.slotUnit};
    }
}

void LeaveChunk(void*, const void*) {}

} // namespace zvk::Pelkraft
