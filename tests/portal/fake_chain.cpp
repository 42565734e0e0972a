#include "tests/portal/fake_chain.h"

#include <cstring>

namespace zvk::Pelkraft::TestSupport {
namespace {

FakeChain* chain = nullptr;

std::size_t StepOf(const ChunkConvertFacility& facility)
{
    return static_cast<std::size_t>(facility.remapChannels);
}

class FakeDescriptor final : public IChunkConvertDescriptor
{
public:
    ChunkConvertMetrics& GetMetrics(ChunkConvertMetrics& out, const ChunkConvertFacility& facility,
                                    const ImageRowFormat&) const override
    {
        chain->Note("metrics", StepOf(facility));
        const FakeStep& step = chain->GetStep(StepOf(facility));
        return out = {step.inputChunks, step.outputChunks, step.parameterBytes, step.ownRegion};
    }

    ImageRowFormat& GetOutputFormat(ImageRowFormat& out, const ChunkConvertFacility& facility,
                                    const ImageRowFormat& input) const override
    {
        chain->Note("format", StepOf(facility));
        const FakeStep& step = chain->GetStep(StepOf(facility));
        out.bits = step.outputBits != 0 ? step.outputBits : input.bits;
        out.channels = step.outputChannels != 0 ? step.outputChannels : input.channels;
        out.layout = LayoutInterleaved;
        out.reversed = false;
        return out;
    }

    ConvertMethod GetConvertMethod(const ChunkConvertFacility& facility, const ImageRowFormat&,
                                   const ChunkStepGeometry& geometry,
                                   void* parameters) const override
    {
        return chain->Prepare(StepOf(facility), geometry, parameters);
    }
};

constexpr FakeDescriptor descriptor;

const IChunkConvertDescriptor* Select(const ChunkConvertFacility& facility,
                                      const ImageRowFormat& input)
{
    chain->Note("select", StepOf(facility));
    chain->NoteInput(StepOf(facility), input);
    return &descriptor;
}

template <std::size_t step>
void RunStep(void* chunkHeader, const void* parameters)
{
    chain->Run(step, static_cast<ChunkHeader*>(chunkHeader), parameters);
}

constexpr ConvertMethod methods[] = {RunStep<0>, RunStep<1>, RunStep<2>, RunStep<3>, RunStep<4>};

std::size_t SlotBytes(const ChunkHeader* chunk)
{
    return static_cast<std::size_t>((chunk->pixelBytes + 15) / 16 * 16);
}

unsigned char* SlotOf(ChunkHeader* chunk, std::size_t slot)
{
    return reinterpret_cast<unsigned char*>(chunk) + 64 + slot * SlotBytes(chunk);
}

ChunkHeader* Behind(ChunkHeader* chunk, std::int64_t bytes)
{
    return reinterpret_cast<ChunkHeader*>(reinterpret_cast<unsigned char*>(chunk) + bytes);
}

} // namespace

FakeChain::FakeChain(const std::vector<FakeStep>& newSteps)
    : steps(newSteps), geometries(newSteps.size()), blocks(newSteps.size()), inputs(newSteps.size())
{
    chain = this;
}

FakeChain::~FakeChain()
{
    chain = nullptr;
}

std::vector<ChunkConvertFacility> FakeChain::MakeRecords(bool withGaps) const
{
    std::vector<ChunkConvertFacility> records;
    for (std::size_t i = 0; i != steps.size(); ++i) {
        if (withGaps)
            records.emplace_back();
        ChunkConvertFacility& record = records.emplace_back();
        record.remapChannels = i;
        record.select = Select;
    }
    return records;
}

void FakeChain::Note(const char* call, std::size_t step)
{
    calls.push_back(std::string(call) + " " + std::to_string(step));
}

ConvertMethod FakeChain::Prepare(std::size_t step, const ChunkStepGeometry& geometry, void* block)
{
    Note("method", step);
    if (step == failingStep)
        throw failure;
    geometries[step] = geometry;
    blocks[step] = block;
    if (block != nullptr)
        std::memset(block, static_cast<int>(step + 1),
                    static_cast<std::size_t>(steps[step].parameterBytes));
    return methods[step];
}

void FakeChain::Run(std::size_t step, ChunkHeader* chunk, const void* parameters)
{
    Note("run", step);
    runs.push_back({step, chunk, parameters});
    if (onRun)
        onRun(runs.back());
    MovePixels(step, chunk);
}

// Only what the portal said of the buffer is used to find the chunks. The pixels are all read
// before one is written, so that working in place is safe.
void FakeChain::MovePixels(std::size_t step, ChunkHeader* chunk) const
{
    const ChunkStepGeometry& geometry = geometries[step];
    const std::size_t inputs16 = static_cast<std::size_t>(steps[step].inputChunks) * 16;
    const std::size_t outputs16 = static_cast<std::size_t>(steps[step].outputChunks) * 16;
    ChunkHeader* target = steps[step].ownRegion ? Behind(chunk, chunk->nextRegionOffset) : chunk;
    const auto bytes = static_cast<std::size_t>(
        chunk->pixelBytes < target->pixelBytes ? chunk->pixelBytes : target->pixelBytes);

    std::vector<std::vector<unsigned char>> pixels;
    for (std::size_t i = 0; i != inputs16; ++i) {
        const std::uint64_t hop = i / 16 * geometry.expansion * geometry.inputChunkStride;
        const unsigned char* slot = SlotOf(Behind(chunk, static_cast<std::int64_t>(hop)), i % 16);
        pixels.emplace_back(slot, slot + bytes);
    }
    for (std::size_t i = 0; i != outputs16; ++i) {
        const std::uint64_t hop = i / 16 * geometry.reduction * geometry.outputChunkStride;
        std::memcpy(SlotOf(Behind(target, static_cast<std::int64_t>(hop)), i % 16),
                    pixels[i * inputs16 / outputs16].data(), bytes);
    }
}

ActiveSteps ActiveOf(const std::vector<ChunkConvertFacility>& records)
{
    ActiveSteps active;
    for (const ChunkConvertFacility& record : records)
        active.facilities[active.count++] = &record;
    return active;
}

ChainMetrics MeasureChain(const std::vector<FakeStep>& steps, std::int32_t channels)
{
    const FakeChain measured(steps);
    const std::vector<ChunkConvertFacility> records = measured.MakeRecords();
    ImageRowFormat source;
    source.bits = 8;
    source.layout = LayoutInterleaved;
    source.channels = channels;
    return ChainMetrics(ActiveOf(records), source);
}

std::vector<unsigned char> PixelsOf(const ChunkHeader* chunk)
{
    const auto* slots = reinterpret_cast<const unsigned char*>(chunk) + 64;
    std::vector<unsigned char> pixels;
    for (std::size_t slot = 0; slot != 16; ++slot) {
        const unsigned char* pixel = slots + slot * SlotBytes(chunk);
        pixels.insert(pixels.end(), pixel, pixel + chunk->pixelBytes);
    }
    return pixels;
}

} // namespace zvk::Pelkraft::TestSupport
