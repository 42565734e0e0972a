#include "tests/converters/step_runner.h"

#include "common/road.h"
#include "zvk/system_tools.h"

namespace zvk::Pelkraft::TestSupport {

bool HasVectorRoad()
{
    return RoadOf(SystemTools::GetSseVersion()) != Pelkraft::Road::Portable;
}

std::vector<Road> AvailableRoads()
{
    std::vector<Road> roads = {{"portable", 0, false}};
    if (HasVectorRoad())
        roads.push_back({"vector", 3, true});
    return roads;
}

ImageRowFormat FormatOf(std::int32_t bits, std::size_t channels, std::int32_t layout)
{
    ImageRowFormat format;
    format.bits = bits;
    format.layout = layout;
    format.channels = static_cast<std::int32_t>(channels);
    return format;
}

void RunDescriptor(const IChunkConvertDescriptor& descriptor, const StepCall& call,
                   void* firstChunkHeader)
{
    ChunkConvertMetrics metrics{};
    descriptor.GetMetrics(metrics, call.facility, call.input);
    const GuardedBuffer block(static_cast<std::size_t>(metrics.parameterBytes), Flush::AtEnd, 0xA5);
    void* parameters = metrics.parameterBytes != 0 ? block.data() : nullptr;
    const ConvertMethod method =
        descriptor.GetConvertMethod(call.facility, call.input, call.geometry, parameters);
    method(firstChunkHeader, parameters);
}

void RunStep(const StepCall& call, void* firstChunkHeader)
{
    RunDescriptor(*call.facility.select(call.facility, call.input), call, firstChunkHeader);
}

} // namespace zvk::Pelkraft::TestSupport
