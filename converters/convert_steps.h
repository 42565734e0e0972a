#pragma once

#include "common/size_policies.h"
#include "common/units.h"
#include "converters/convert_facility.h"
#include "converters/convert_methods.h"
#include "converters/remap_blocks.h"

#include <cstdint>
#include <type_traits>

// The classes of the steps on both roads.
namespace zvk::Pelkraft {

enum class StepBlock : std::uint8_t
{
    None,
    // The block has its room, but the step does nothing and leaves it alone.
    Idle,
    Pack,
    Spread,
};

// The answers of a step that depend on nothing it is asked with.
struct StepRecord
{
    std::uint64_t inputChunks;
    std::uint64_t outputChunks;
    StepBlock block;
    // The bytes in which the block counts the size of a slot.
    std::uint64_t slotUnit;
    bool ownRegion;
    // The depth of an interleaved output, or 0 for the input's own format.
    std::int32_t bits;
};

// A changed slot size asks for chunks of its own. A packed chunk is a chunk of bytes, one for each
// plane and column.
inline constexpr StepRecord widening{1, 1, StepBlock::None, 0, true, 16};
inline constexpr StepRecord narrowing{1, 1, StepBlock::None, 0, true, 8};
template <int depth, std::int64_t slotUnit>
inline constexpr StepRecord packing{8 / depth, 1, StepBlock::Pack, slotUnit, false, 8};
template <int depth, std::int64_t slotUnit>
inline constexpr StepRecord unpacking{1, 8 / depth, StepBlock::Spread, slotUnit, false, 8};
template <int factor>
inline constexpr StepRecord repeating{
    1, factor, factor == 1 ? StepBlock::Idle : StepBlock::Spread, unitBytes, false, 0};
inline constexpr StepRecord reversing{1, 1, StepBlock::None, 0, false, 0};

ChunkConvertMetrics MetricsOf(const StepRecord& record);
// Both leave the widths to the caller.
ImageRowFormat& SetInterleavedFormat(ImageRowFormat& out, std::int32_t bits, std::int32_t channels);
ImageRowFormat& SetOutputFormat(ImageRowFormat& out, const StepRecord& record,
                                const ImageRowFormat& input);
void FillBlock(void* parameters, const StepRecord& record, const ImageRowFormat& input,
               const ChunkStepGeometry& geometry);
// The method of an idle step.
void LeaveChunk(void* chunkHeader, const void* parameters);

template <const StepRecord& record>
class RecordedStep : public IChunkConvertDescriptor
{
public:
    ChunkConvertMetrics& GetMetrics(ChunkConvertMetrics& out, const ChunkConvertFacility&,
                                    const ImageRowFormat&) const final
    {
        return out = MetricsOf(record);
    }

    ImageRowFormat& GetOutputFormat(ImageRowFormat& out, const ChunkConvertFacility&,
                                    const ImageRowFormat& input) const final
    {
        return SetOutputFormat(out, record, input);
    }

protected:
    ~RecordedStep() = default;

    static constexpr const StepRecord& answers = record;
};

// The numbers choose among the methods of a family.
template <typename Base, auto getMethod, auto... numbers>
class MethodStep : public Base
{
public:
    ConvertMethod GetConvertMethod(const ChunkConvertFacility&, const ImageRowFormat& input,
                                   const ChunkStepGeometry& geometry, void* parameters) const final
    {
        if constexpr (Base::answers.block == StepBlock::Idle)
            return LeaveChunk;
        FillBlock(parameters, Base::answers, input, geometry);
        return getMethod(input, numbers...);
    }

protected:
    ~MethodStep() = default;
};

class Convert8to16bit final : public MethodStep<RecordedStep<widening>, VectorRoad::GetWiden>
{};
class Convert8to16bitX86 final : public MethodStep<RecordedStep<widening>, PortableRoad::GetWiden>
{};

class Convert16to8bit final : public MethodStep<RecordedStep<narrowing>, VectorRoad::GetNarrow>
{};
class Convert16to8bitX86 final : public MethodStep<RecordedStep<narrowing>, PortableRoad::GetNarrow>
{};

template <int depth>
class Convert8bitToNbit final
    : public MethodStep<RecordedStep<packing<depth, unitBytes>>, VectorRoad::GetPack, depth>
{};
template <int depth>
class Convert8bitToNbitX86 final
    : public MethodStep<RecordedStep<packing<depth, 1>>, PortableRoad::GetPack, depth>
{};

template <int depth>
class ConvertNbitTo8bit final
    : public MethodStep<RecordedStep<unpacking<depth, unitBytes>>, VectorRoad::GetUnpack, depth>
{};
template <int depth>
class ConvertNbitTo8bitX86 final
    : public MethodStep<RecordedStep<unpacking<depth, 1>>, PortableRoad::GetUnpack, depth>
{};

class ConvertReverse final : public MethodStep<RecordedStep<reversing>, VectorRoad::GetReverse>
{};
class ConvertReverseX86 final : public MethodStep<RecordedStep<reversing>, PortableRoad::GetReverse>
{};

template <int factor>
using ConvertPixelRepeatBase = RecordedStep<repeating<factor>>;
template <int factor>
using ConvertPixelRepeatBaseX86 = RecordedStep<repeating<factor>>;

template <int factor, typename Policy>
class ConvertPixelRepeat final
    : public MethodStep<ConvertPixelRepeatBase<factor>, VectorRoad::GetRepeat, factor,
                        std::is_same_v<Policy, OneUnit>>
{};
template <int factor>
class ConvertPixelRepeatX86 final
    : public MethodStep<ConvertPixelRepeatBaseX86<factor>, PortableRoad::GetRepeat, factor>
{};

// A remap's answers depend on its table. The output format throws
// "zvk::Pelkraft::ImageRowFormat unsupported bit depth" for a depth that no row can have.
class ConvertRemapBase : public IChunkConvertDescriptor
{
public:
    ImageRowFormat& GetOutputFormat(ImageRowFormat& out, const ChunkConvertFacility& facility,
                                    const ImageRowFormat& input) const final
    {
        RequireSupportedDepth(input.bits);
        return SetInterleavedFormat(out, input.bits,
                                    static_cast<std::int32_t>(facility.remapChannels));
    }

protected:
    ~ConvertRemapBase() = default;
};

template <int units>
RemapUnits UnitsOf(SlotUnits<units>, const ChunkConvertFacility&, const ImageRowFormat&)
{
    return {units, units};
}

inline RemapUnits UnitsOf(VariableSize, const ChunkConvertFacility& facility,
                          const ImageRowFormat& input)
{
    return CountRemapUnits(facility, input);
}

// The policies are those of the input and the output slot, which are the same.
template <typename Policy, typename>
class ConvertRemapInitialized : public ConvertRemapBase
{
public:
    ChunkConvertMetrics& GetMetrics(ChunkConvertMetrics& out, const ChunkConvertFacility& facility,
                                    const ImageRowFormat& input) const final
    {
        const RemapUnits units = UnitsOf(Policy{}, facility, input);
        return out = {1, 1, units.output * units.input * unitBytes, true};
    }

protected:
    ~ConvertRemapInitialized() = default;
};

template <typename Policy, typename OutputPolicy>
class ConvertRemap final : public ConvertRemapInitialized<Policy, OutputPolicy>
{
public:
    ConvertMethod GetConvertMethod(const ChunkConvertFacility& facility,
                                   const ImageRowFormat& input, const ChunkStepGeometry&,
                                   void* parameters) const override
    {
        BuildRemapMasks(facility, input, UnitsOf(Policy{}, facility, input),
                        static_cast<unsigned char*>(parameters));
        return VectorRoad::GetRemap(Policy{});
    }
};

template <typename Sample>
class ConvertRemapX86 final : public ConvertRemapBase
{
public:
    ChunkConvertMetrics& GetMetrics(ChunkConvertMetrics& out, const ChunkConvertFacility& facility,
                                    const ImageRowFormat&) const override
    {
        return out = {1, 1, sizeof(RemapEntry) * facility.remapChannels, true};
    }

    ConvertMethod GetConvertMethod(const ChunkConvertFacility& facility,
                                   const ImageRowFormat& input, const ChunkStepGeometry&,
                                   void* parameters) const override
    {
        BuildRemapEntries(facility, input, static_cast<RemapEntry*>(parameters));
        return PortableRoad::GetRemap(sizeof(Sample));
    }
};

} // namespace zvk::Pelkraft
